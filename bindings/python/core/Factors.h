#pragma once

#include "SceneData.h"

#include <lumivane/measure/FaceFactors.h>

#include <cstdint>
#include <optional>
#include <vector>

#include <pybind11/pybind11.h>

namespace Lumivane::Python {

/// Which view factors from face to face are integrated, and how.
struct WantedFactors {
  Measure::FactorOptions how;                     ///< without what cancels
  std::optional<std::vector<std::int64_t>> rows;  ///< positions of elements, rising; or all
  bool isReciprocal = false;                      ///< of all rows alone
  int threads = 0;                                ///< 0: one for each processor
};

/// The elements, the rows as the arrays of a sparse matrix, and for each element what its row has
/// beside them.
///
/// \param progress  is called with the finished part, 0 to 1; may be None
pybind11::dict factorsOf(const SceneData& scene, const WantedFactors& wanted,
                         const pybind11::object& progress);

}  // namespace Lumivane::Python
