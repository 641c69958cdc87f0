#pragma once

#include <lumivane/export.h>

#include <vector>

#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Base {
class Brushes;
class Camera;
class Pens;
class Properties;
class Scales;
class View;
}  // namespace Lumivane::Base

namespace Lumivane::Geometry {
class EdgeStartPoint2d;
class EdgeStartPoint3d;
class Points2d;
class Points3d;
class Region;
class Region2d;
}  // namespace Lumivane::Geometry

namespace Lumivane::Scene {
class Object;
class Objects;
class Scene3D;
}  // namespace Lumivane::Scene

namespace Lumivane::Shot {
class Shot2d;
}

namespace Lumivane::Algorithm {

class ShotParameters;
enum class ProjectionType : int;

/// Makes a shot: the flat vector picture of a scene as one eye sees it.
///
/// A creator only borrows what it works on, and it lives as long as one call. Two shots at a time,
/// or two on one scene, are not allowed.
///
/// A point below is a vector of 3 doubles in scene units (2 on the plane); a polygon is a vector of
/// such points, closed implicitly. The plane has x to the right of the picture and y upward, both
/// from -1 to 1, and the forward direction at (0, 0). Point, region, face and edge numbers count
/// from 1; edge e of a polygon starts at its point e.
class LUMIVANE_EXPORT ShotCreator {
 public:
  using Point = std::vector<double>;   ///< Its coordinates.
  using Polygon = std::vector<Point>;  ///< Its corners in order.
  /// One polygon data for each region of an object.
  using PolyDataList = std::vector<vtkSmartPointer<vtkPolyData>>;
  /// The polygons of each region, a list per region.
  using RegionPolygons = std::vector<std::vector<Polygon>>;
  /// A polygon on the plane. Whoever receives one from an operation below owns the points.
  using ProjectedPolygon = std::vector<Geometry::EdgeStartPoint2d*>;
  /// The projected polygons of each region, a list per region.
  using RegionProjections = std::vector<std::vector<ProjectedPolygon>>;

  /// No scene, no view, no colouring (`propertyNum` and `scaleNum` -1), D1 0.01 and D2 1.0.
  ShotCreator();

  Scene::Scene3D* getScene() const { return scene; }          ///< The source; still the caller's.
  void setScene(Scene::Scene3D* value) { scene = value; }     ///< Borrowed.
  Base::Brushes* getBrushes() const { return brushes; }       ///< Shared with every shot.
  void setBrushes(Base::Brushes* value) { brushes = value; }  ///< Borrowed.
  Base::Pens* getPens() const { return pens; }                ///< Shared with every shot.
  void setPens(Base::Pens* value) { pens = value; }           ///< Borrowed.
  Geometry::Points3d* getPoints() const { return points; }    ///< The pool of the scene's points.
  /// Borrowed; null counts as empty.
  void setPoints(Geometry::Points3d* value) { points = value; }
  Scene::Objects* getObjects() const { return objects; }       ///< What a shot is made of.
  void setObjects(Scene::Objects* value) { objects = value; }  ///< Borrowed.
  /// The record whose interior colour fills an interior shot; null for the default colour.
  Base::Camera* getCamera() const { return camera; }
  void setCamera(Base::Camera* value) { camera = value; }              ///< Borrowed.
  Base::Properties* getProperties() const { return properties; }       ///< Null: no colouring.
  void setProperties(Base::Properties* value) { properties = value; }  ///< Borrowed.
  Base::Scales* getScales() const { return scales; }                   ///< Null: no colouring.
  void setScales(Base::Scales* value) { scales = value; }              ///< Borrowed.
  Base::View* getView() const { return view; }  ///< Whence the shot is taken.
  /// Borrowed; a camera shift writes its eye position.
  void setView(Base::View* value) { view = value; }
  /// Number of the property to colour by; below 1 for none.
  int getPropertyNum() const { return propertyNum; }
  void setPropertyNum(int value) { propertyNum = value; }  ///< Unchecked.
  /// Position, counted from 1, of the scale to colour by; below 1 for none.
  int getScaleNum() const { return scaleNum; }
  void setScaleNum(int value) { scaleNum = value; }  ///< Unchecked.
  /// Distance limit of the camera shift, in scene units.
  double getD1() const { return D1; }
  void setD1(double value) { D1 = value; }  ///< Unchecked.
  /// Angle limit of the camera shift, in degrees.
  double getD2() const { return D2; }
  void setD2(double value) { D2 = value; }  ///< Unchecked.
  /// The object that holds the camera; when it is set, an interior shot is made.
  Scene::Object* getCameraObject() const { return cameraObject; }
  void setCameraObject(Scene::Object* value) { cameraObject = value; }  ///< Borrowed.

  /// Makes the shot of `scene` from `view`: radial for a spherical camera, square for a normal one.
  /// `camera` and `cameraObject` are left as they are; progress runs but is not reset first.
  ///
  /// The working lists of the scene's objects are replaced, and the old ones are not freed. A
  /// camera shift changes the eye position of `view`.
  ///
  /// \return owned by the caller; it shares brushes, pens, scale and property with the scene, so at
  ///         most one of scene and shot may be destroyed. Null if an argument, the view's camera or
  ///         its orientation is null, if the camera's kind is neither, or if `scene` has no objects
  ///         list.
  /// \throws std::invalid_argument naming an object with regions but without a faces list
  /// \throws std::out_of_range for a wrong point or face number; for parallel or zero forward and
  ///         up directions with the text "invalid vector subscript"
  /// \throws std::length_error naming object and region when splitting has no end
  Shot::Shot2d* makeShot(Scene::Scene3D* scene, Base::View* view, ShotParameters* parameters);

  /// The polygon of a region, as one cell.
  ///
  /// \return empty, after a message, for a region of fewer than 3 points
  /// \throws std::out_of_range for a point number that is not in `points`
  static vtkNew<vtkPolyData> getRegionPolyData(Geometry::Region* region,
                                               Geometry::Points3d* points);

  /// The polygon of a region, cut into triangles; otherwise as getRegionPolyData.
  static vtkNew<vtkPolyData> getRegionPolyDataTriangulated(Geometry::Region* region,
                                                           Geometry::Points3d* points);

  /// The outline of a region without its docking edges, as poly-lines.
  ///
  /// \return empty for a region of fewer than 2 points
  /// \throws std::out_of_range for a point number that is not in `points`
  static vtkNew<vtkPolyData> getRegionLinePolyData(Geometry::Region* region,
                                                   Geometry::Points3d* points);

  /// The polygon of a shot's region, cut into triangles, at z = `depth` times the layer distance.
  ///
  /// \throws std::out_of_range for a point number that is not in `points`
  static vtkNew<vtkPolyData> getRegionPolyData(Geometry::Region2d* region,
                                               Geometry::Points2d* points, int depth);

  /// The outline of a shot's region without its docking edges, as poly-lines, at z = `depth` times
  /// the layer distance.
  ///
  /// \return empty for a region of fewer than 2 points
  /// \throws std::out_of_range for a point number that is not in `points`
  static vtkNew<vtkPolyData> getRegionLinePolyData(Geometry::Region2d* region,
                                                   Geometry::Points2d* points, int depth);

  /// Whether both points have exactly 3 coordinates, each pair less than 1e-07 apart.
  static bool isPoints3dEquals(Point a, Point b);

  /// Whether both points have exactly 2 coordinates, each pair less than 1e-07 apart.
  static bool isPoints2dEquals(Point a, Point b);

 protected:
  /// A deep copy of a list of points.
  static Polygon copyPoints(Polygon points);

  /// Both passes over the objects, and the depth sort.
  ///
  /// \return owned by the caller; null only if there is not an objects list (or, with objects, no
  ///         complete view)
  /// \throws as makeShot
  Shot::Shot2d* getProjection(ProjectionType type);

  /// Whether `point` lies over a convex polygon in its plane: the angles under which it sees the
  /// sides add up to 360 degrees, to within 0.1. False on a corner.
  static bool isPointInArea3dConvex(Point point, Polygon polygon);

  /// Looks at the regions before the clip. It changes nothing: the shift itself is made for each
  /// clipped cell.
  void checkCameraOnPolygonAndShift(PolyDataList* polyData);

  /// Whether the ray from the eye along the forward direction meets the surfaces an odd number of
  /// times. Nothing calls it; a host's subclass may choose `cameraObject` by it.
  bool isCameraInObject(PolyDataList* polyData);

  /// Cuts every edge of a polygon into equal pieces.
  ///
  /// \param dockingEdges  numbers of the edges whose points get `hasEdge` false; may be null
  /// \param segmentCount  pieces per edge, positive; rounding may give one point more
  /// \return new points, owned by the caller, in order; empty if any edge is shorter than 0.0001
  static std::vector<Geometry::EdgeStartPoint3d*> splitPoints(std::vector<int>* dockingEdges,
                                                              Polygon polygon, int segmentCount);

  /// Splits a polygon and carries it onto the unit disc around the forward direction: a direction
  /// at the angle t from it lands sin t from the centre.
  ///
  /// \param dockingEdges  numbers of the region's edges that have no line; may be null
  /// \param polygon       clipped polygon of the region
  /// \param regionPoints  the region's own points in order, before clipping
  /// \param eye           camera position
  /// \param right         unit vector, up x forward (it points to the left of the picture)
  /// \param forward       unit vector
  /// \param segmentCount  pieces per edge
  /// \return new points, owned by the caller
  /// \throws std::out_of_range "invalid vector subscript" for a docking number that is no edge,
  ///         and if `right` and `forward` make no frame
  static ProjectedPolygon projectPointsRadial(std::vector<int>* dockingEdges, Polygon polygon,
                                              Polygon regionPoints, Point eye, Point right,
                                              Point forward, int segmentCount);

  /// The same onto the square from -1 to 1: azimuth and elevation, 90 degrees to 1.
  static ProjectedPolygon projectPointsSquare(std::vector<int>* dockingEdges, Polygon polygon,
                                              Polygon regionPoints, Point eye, Point right,
                                              Point forward, int segmentCount);

  /// Projects all visible polygons of an object, and settles how finely each region is split.
  ///
  /// \param object    the object whose regions the polygons belong to
  /// \param polygons  per region of the object, its visible polygons; empty ones stay empty
  /// \return a new list, owned by the caller, of the shape of `polygons`
  /// \throws std::length_error naming object and region when splitting has no end
  RegionProjections* projectPoints(Scene::Object* object, RegionPolygons* polygons,
                                   ProjectionType type);

  /// For each polygon the numbers of its edges that coincide with an edge of another polygon, once
  /// for each such edge.
  static std::vector<std::vector<int>> getDockingEdges(std::vector<ProjectedPolygon> polygons);

  /// Prints a polygon to standard output, a line per point; nothing for an empty one.
  static void printPoints(Polygon polygon);

 private:
  /// Tolerance, per coordinate or of a length, below which points count as one.
  static constexpr double pointsPrecision = 1e-07;
  /// Distance between two drawing layers along z.
  static constexpr double depthShift = 0.1;

  void checkObjects();

  Scene::Scene3D* scene = nullptr;
  Base::Brushes* brushes = nullptr;
  Base::Pens* pens = nullptr;
  Geometry::Points3d* points = nullptr;
  Scene::Objects* objects = nullptr;
  Base::Camera* camera = nullptr;
  Base::Properties* properties = nullptr;
  Base::Scales* scales = nullptr;
  Base::View* view = nullptr;
  int propertyNum = -1;
  int scaleNum = -1;
  double D1 = 0.01;
  double D2 = 1.0;
  Scene::Object* cameraObject = nullptr;
};

}  // namespace Lumivane::Algorithm
