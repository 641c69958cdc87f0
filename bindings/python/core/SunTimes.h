#pragma once

#include "SceneData.h"

#include <lumivane/measure/SunHours.h>

#include <vector>

#include <pybind11/pybind11.h>

namespace Lumivane::Python {

/// From where and when the sun is looked for.
struct WantedSun {
  std::vector<Visibility::Vector> eyes;
  Measure::Place place;
  Measure::CivilDate first;
  Measure::CivilDate last;
  double lowestElevation = 0.0;
  bool twoSided = false;
  int threads = 0;  ///< 0: one for each processor
};

/// For each eye and day how long the sun shines, for each day how long it is up, in seconds, and
/// all spans of all eyes, one eye after the other.
///
/// \param progress  is called with the finished part, 0 to 1; may be None
pybind11::dict sunHoursOf(const SceneData& scene, const WantedSun& wanted,
                          const pybind11::object& progress);

}  // namespace Lumivane::Python
