#pragma once

#include <lumivane/export.h>

#include <string>
#include <vector>

namespace Lumivane::Session {

/// What the surfaces of a scene are: roof, wall, ground ... A value.
struct LUMIVANE_EXPORT SurfaceClasses {
  std::vector<std::string> names;  ///< none empty, all different, in the order of tables
  /// One for each region, through all objects in the scene's order: a position from 0 in `names`,
  /// or -1 for none. Empty: no region has a class.
  std::vector<int> regions;

  /// The classes of regions that have each the name given, or none where it is empty. The names
  /// come out in the order of their bytes, so that they are the same in whatever order a scene
  /// lists its objects.
  static SurfaceClasses ofNames(const std::vector<std::string>& nameOfRegion);
  /// The reverse: the name for each region, empty for none.
  std::vector<std::string> namesOfRegions() const;
};

}  // namespace Lumivane::Session
