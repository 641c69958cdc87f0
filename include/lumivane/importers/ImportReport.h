#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Lumivane::Importers {

/// An object with edges that belong to one polygon only, so that it does not enclose a body:
/// through the opening its surfaces can be looked at from behind, where they are not seen unless
/// both sides are.
struct OpenBody {
  std::string object;         ///< its name in the file
  std::size_t openEdges = 0;  ///< edges that one polygon only uses, above 0
};

/// What an import found and did.
struct ImportReport {
  std::vector<std::string> files;  ///< that were read, by the paths that were given

  /// "OBJ", "STL", "PLY", "glTF" or "CityJSON" with its version; of files of several formats all
  /// of them, joined by " + ".
  std::string format;

  /// Was added to every point, after turning and scaling, in scene units: a scene point minus the
  /// shift is the file's point.
  std::array<double, 3> shift{0.0, 0.0, 0.0};

  /// Whether points were turned, so that y, which points up in the file, is z: (x, y, z) became
  /// (x, -z, y). Of several files, whether all were: glTF files beside others are turned to these.
  bool turned = false;

  /// The coordinate reference system of the file's coordinates as the file names it: a CityJSON
  /// document's "referenceSystem", e.g. "https://www.opengis.net/def/crs/EPSG/0/7415". Empty if it
  /// names none.
  std::string referenceSystem;

  std::array<double, 3> lower{0.0, 0.0, 0.0};  ///< smallest coordinates of the scene
  std::array<double, 3> upper{0.0, 0.0, 0.0};  ///< greatest coordinates of the scene

  std::size_t sourcePolygons = 0;  ///< polygons in the file
  std::size_t points = 0;          ///< points of the scene
  std::size_t objects = 0;         ///< objects of the scene
  std::size_t faces = 0;           ///< faces of the scene
  std::size_t regions = 0;         ///< regions of the scene
  std::size_t brushes = 0;         ///< brushes of the scene

  std::size_t splitPolygons = 0;     ///< not flat, or with holes: cut into triangles
  std::size_t emptyPolygons = 0;     ///< left out, since they have no area
  std::size_t unfilledPolygons = 0;  ///< left out, since their outline crosses itself

  /// For each object that is a part of another one, by ids as the scene has them, the outermost
  /// whole that it belongs to, e.g. the building of a part of it. The whole need not be an object
  /// of the scene, as it has no surface of its own then. Of CityJSON alone; groups are no wholes.
  std::map<std::string, std::string> wholes;

  std::vector<OpenBody> openBodies;  ///< but for pieces of the ground, in the order of the file

  std::vector<std::string> warnings;  ///< one line each: what was left out and why
};

}  // namespace Lumivane::Importers
