#pragma once

#include <lumivane/export.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Geometry {
class Region2d;
}

namespace Lumivane::Algorithm {

class Bounds2D;
class ProjectedPolygonData;
class SortShapes;

/// What the depth sort orders: one face of one object of the shot.
///
/// A face may have been torn into several polygons by the projection. Element k of the source
/// regions, of the source polygons and of the projected polygons is the same piece of the face.
/// All lists are pointers that setters store and nobody here frees; copies share them, and the id
/// as well.
class LUMIVANE_EXPORT ObjectData {
 public:
  /// The face's pieces in the shot.
  using Regions = std::vector<Geometry::Region2d*>;
  /// A polygon is a list of points, a point a vector of 3 coordinates of the scene.
  using SourcePolygons = std::vector<std::vector<std::vector<double>>>;
  /// The same pieces in the picture.
  using ProjectedPolygons = std::vector<ProjectedPolygonData*>;

  /// Draws the next id of the process; the first object ever made has the id "1". No lists, and
  /// the depth index -1.
  ObjectData();
  /// Copies the id too, and shares the lists.
  ObjectData(const ObjectData& other);
  ObjectData& operator=(const ObjectData& other);  ///< Likewise; frees nothing.

  /// The decimal text of a running number, unique in the process.
  std::string getId() const { return id; }

  /// The id of the object of the shot, and so of the scene, that the face belongs to.
  std::string getSourceObject() const { return sourceObject; }
  void setSourceObject(std::string value) { sourceObject = std::move(value); }  ///< Unchecked.

  /// The face's regions in the shot; borrowed, may be null.
  Regions* getSourceRegions() const { return withLists().sourceRegions; }
  /// Stores it; frees nothing.
  void setSourceRegions(Regions* value) { withLists().sourceRegions = value; }

  /// Their polygons in the scene; borrowed, may be null.
  SourcePolygons* getSourcePolygons() const { return withLists().sourcePolygons; }
  /// Stores it; frees nothing.
  void setSourcePolygons(SourcePolygons* value) { withLists().sourcePolygons = value; }

  /// Their polygons in the picture; borrowed, may be null.
  ProjectedPolygons* getProjectedPolygons() const { return withLists().projectedPolygons; }
  /// Stores the pointer, then calls `calculateProjectedBounds2D`.
  void setProjectedPolygons(ProjectedPolygons* value);

  /// The bounds of all projected polygons; may be null.
  Bounds2D* getProjectedBounds() const { return withLists().projectedBounds; }
  /// Stores it; frees nothing.
  void setProjectedBounds(Bounds2D* value) { withLists().projectedBounds = value; }

  /// Place in the drawing order, from 1; -1 while unset.
  int getDepthIndex() const { return depthIndex; }
  void setDepthIndex(int value) { depthIndex = value; }  ///< Unchecked.

  /// Sets the projected bounds to a new object, the union of the polygons' bounds, in which a
  /// polygon without bounds counts as a default bound. Without polygons they stay unchanged. An
  /// earlier object is not freed.
  void calculateProjectedBounds2D();

  /// Whether the depth index of `first` is less than that of `second`, strictly.
  static bool compareByDepthIndex(const ObjectData* first, const ObjectData* second);

 private:
  friend class SortObject;

  // The regions and polygons of an object, with their bounds.
  struct Lists {
    Regions* sourceRegions = nullptr;
    SourcePolygons* sourcePolygons = nullptr;
    ProjectedPolygons* projectedPolygons = nullptr;
    Bounds2D* projectedBounds = nullptr;
  };

  // An object that the sort has made knows where its polygons lie flat, and which regions of the
  // shot it has. They become lists, the regions copies, when somebody first asks for one, which a
  // sort does not.
  Lists& withLists() const {
    if (shapes != nullptr) makeLists();
    return lists;
  }
  void makeLists() const;

  static std::atomic<int> idCounter;

  std::string id;
  std::string sourceObject;
  mutable Lists lists;
  mutable const SortShapes* shapes = nullptr;  // until the lists are made
  std::size_t face = 0;                        // the object's place there
  int depthIndex = -1;
};

}  // namespace Lumivane::Algorithm
