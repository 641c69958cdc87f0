#pragma once

#include <lumivane/measure/export.h>
#include <lumivane/visibility/VisibleMap.h>

#include <string>
#include <vector>

namespace Lumivane::Measure {

/// How high the sky begins around an eye: at azimuths in equal steps from north, clockwise as seen
/// from above, the highest elevation at which something is seen.
///
/// Each height is exact for its azimuth. Sky under a bridge or an eave counts as blocked; what is
/// thinner than a step and lies between two azimuths is not in the line.
class LUMIVANE_MEASURE_EXPORT HorizonLine {
 public:
  /// \param upwards  a map of the hemisphere above the eye, as `lookUpwards` asks for
  /// \param north    the direction to the north in the scene; its z does not count
  /// \param count    how many azimuths, 1 to 360000
  /// \throws std::invalid_argument for another map, a north of no length or a count out of range
  HorizonLine(const Visibility::VisibleMap& upwards, const Visibility::Vector& north, int count);

  /// Degrees from 0 to 90, the i-th at the azimuth 360 i / count degrees.
  const std::vector<double>& elevations() const { return heights; }

  /// One elevation a line, from north clockwise: what PVGIS takes as a user's horizon.
  std::string listText() const;
  /// A line for each azimuth, `azimuth elevation`, as PVsyst reads a `.hor` file: azimuths from
  /// -180 up, 0 in the south and 90 in the west; on the southern hemisphere 0 in the north, and
  /// still 90 in the west. A leading line that starts with # is a comment.
  std::string horText(bool isSouthern) const;

 private:
  std::vector<double> heights;
};

}  // namespace Lumivane::Measure
