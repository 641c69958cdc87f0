#pragma once

#include <lumivane/algorithm/IntersectionType.h>
#include <lumivane/export.h>

#include <memory>
#include <vector>

namespace Lumivane::Scene {
class Scene3D;
}
namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Algorithm {

class ClassificationMatrix;
class ObjectData;
class SortShapes;

/// Puts the faces of a shot into the order in which they are drawn, back to front, and removes the
/// faces that are wholly hidden.
///
/// Serves one shot: make one, set scene and shot, call `run`, drop it. Owns neither of the two. Its
/// working objects, which no caller can reach, end with it. A copy shares the working objects that
/// there are, which end with the last of both, and its own `run` makes its own.
///
/// The method is a painter's algorithm on whole faces: after Newell, Newell and Sancha, "A Solution
/// to the Hidden Surface Problem" (1972), with a graph of drawn-before relations in place of their
/// list.
class LUMIVANE_EXPORT DepthSortAlgorithmExecutor {
 public:
  DepthSortAlgorithmExecutor();
  ~DepthSortAlgorithmExecutor();
  DepthSortAlgorithmExecutor(const DepthSortAlgorithmExecutor&) = default;  ///< Shares; see above.
  /// Shares; see above.
  DepthSortAlgorithmExecutor& operator=(const DepthSortAlgorithmExecutor&) = default;

  void setScene(Scene::Scene3D* value) { scene = value; }  ///< What the shot was made from.
  void setShot(Shot::Shot2d* value) { shot = value; }      ///< What is to be ordered.

  /// Orders the shot. Its regions are replaced by copies in drawing order, and the faces of every
  /// object by one new face per drawn face, in drawing order; hidden faces and faces without points
  /// are gone. The old regions and faces are destroyed. Everything else stays.
  ///
  /// The progress record runs from 30 towards 100. With no scene or no shot only the first line is
  /// printed. A cycle among the relations is survived: see `Graph::topologicalSort`.
  ///
  /// \throws std::out_of_range if a face, a region or an object refers to something that is not
  ///         there; the shot is then as it was
  void run();

 private:
  using Point = std::vector<double>;
  using Polygon = std::vector<Point>;

  // The steps of `run`.
  void fillObjectDataList();
  void classifyObjects();
  void classifyObjectsByBoundingBoxes();
  void calculateObjectsOrder();

  // How two polygons lie to each other: DepthSortAlgorithmExecutorRelations.cpp.
  double rotate(Point a, Point b, Point c);
  bool intersect(const Point& a, const Point& b, const Point& c, const Point& d);
  bool isContainsPointArea(const Polygon& polygon, const Point& point);
  bool isPolygonsEquals(Polygon first, Polygon second);
  IntersectionType getPolygonsIntersectionType(Polygon* first, Polygon* second);
  int checkPolygonsLocation(const Polygon& first, const Polygon& second);

  std::shared_ptr<std::vector<ObjectData*>> objectDataList;    // owns its objects
  std::shared_ptr<ClassificationMatrix> classificationMatrix;  // one cell for every pair; sparse
  Scene::Scene3D* scene = nullptr;
  Shot::Shot2d* shot = nullptr;
  std::shared_ptr<SortShapes> shapes;  // the polygons of the objects, in flat arrays
};

}  // namespace Lumivane::Algorithm
