#pragma once

#include "kernel/Vec.h"

#include <map>
#include <string>
#include <vector>

namespace Lumivane::Importers {

struct SourceMaterial {
  std::string name;
  int red = 200;
  int green = 200;
  int blue = 204;
  int alpha = 255;
  std::string className{};  ///< of what has the material; empty: that of its object
};

struct SourceObject {
  std::string id;
  bool isTerrain = false;
  std::string className{};  ///< of what has a material without one; may be empty
};

/// One polygon: its outline, counter-clockwise as seen from outside, then its holes. The numbers
/// count from 0.
struct SourcePolygon {
  std::vector<std::vector<int>> loops;
  int material = 0;
  int object = 0;
};

/// What every reader makes of its file. All numbers are in range and all coordinates finite.
struct SourceModel {
  std::string format;
  bool yUp = false;             ///< the format says that y is up
  std::string referenceSystem;  ///< of the coordinates, as the file names it; or empty
  std::vector<Kernel::Vec3> vertices;
  std::vector<SourceMaterial> materials;
  std::vector<SourceObject> objects;
  std::vector<SourcePolygon> polygons;
  std::map<std::string, std::string> wholes;  ///< as `ImportReport::wholes`
  std::vector<std::string> warnings;
};

}  // namespace Lumivane::Importers
