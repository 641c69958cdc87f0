#pragma once

#include <lumivane/measure/SunHours.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/export.h>

#include <optional>
#include <string>
#include <vector>

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
  bool declaration = true;  ///< whether it starts with an XML declaration; not inside a page
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

/// A page of one eye, in one file that loads nothing and prints well: the diagram, the sums of its
/// days (or of its months, if there are more than 31 days), the times of sun and shade of a single
/// day, and what stands in front of the sun how long.
///
/// \param days  as `Measure::SunHours` found them from the same map
/// \throws as `sunDiagram`
LUMIVANE_PICTURES_EXPORT std::string sunPage(const Visibility::VisibleMap& upwards,
                                             const MapColors& colors, const Measure::Place& place,
                                             const std::vector<Measure::SunDay>& days,
                                             const SunDiagramOptions& options = {});

}  // namespace Lumivane::Pictures
