#pragma once

#include <lumivane/measure/SunHours.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/export.h>

#include <optional>
#include <string>

namespace Lumivane::Pictures {

/// How a sun-path diagram is drawn.
struct SunDiagramOptions {
  /// Of the hemisphere; `Equirectangular` is none of the sky.
  MapProjection projection = MapProjection::EquidistantFisheye;
  int width = 800;    ///< pixels, 1 to `VectorOptions::LargestSide`
  int height = 800;   ///< likewise
  int year = 2024;    ///< whose days are drawn, 1900 to 2100
  std::string title;  ///< for the document's data; may be empty
  /// A day to draw as a thick line: where the sun shines on the eye, and dashed where it does not.
  std::optional<Measure::SunDay> day;
};

/// The cells of a map of the sky, and over them the sun's paths: of the 21st days of the months
/// from December to June, which July to November repeat, and for each hour of standard time the
/// sun's place on all days of the year (the analemmas). Upwards is north, and east is on the left,
/// as it is seen looking up. An SVG document of one eye, whose lines are in the group `sun`.
///
/// \param upwards  a map of the hemisphere above the eye, with north upwards, as
///                 `Measure::lookUpwards` asks for
/// \throws std::invalid_argument for options out of range and another map
/// \throws std::runtime_error if it was built without libnova
LUMIVANE_PICTURES_EXPORT std::string sunDiagram(const Visibility::VisibleMap& upwards,
                                                const MapColors& colors,
                                                const Measure::Place& place,
                                                const SunDiagramOptions& options = {});

}  // namespace Lumivane::Pictures
