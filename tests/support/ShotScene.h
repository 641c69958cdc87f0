#pragma once

#include <lumivane/algorithm/ShotParameters.h>
#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pen.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/Properties.h>
#include <lumivane/base/Scale.h>
#include <lumivane/base/Scales.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/base/ViewSphericalCamera.h>
#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Face2d.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Faces2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Object2d.h>
#include <lumivane/shot/Objects2d.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Test {

using Coordinates = std::vector<double>;
using PolygonPoints = std::vector<Coordinates>;

/// A square of the side 2 across the x axis at `x`, wound clockwise as seen from the origin, so
/// that an eye there keeps it.
inline PolygonPoints wallAhead(double x = 3.0) {
  return {{x, -1, -1}, {x, 1, -1}, {x, 1, 1}, {x, -1, 1}};
}

inline PolygonPoints reversed(const PolygonPoints& polygon) {
  return {polygon.rbegin(), polygon.rend()};
}

/// Frees the working lists that shots leave on an object, and takes them from it.
inline void freeWorkingLists(Scene::Object& object) {
  delete object.getRegionsPolyData();
  delete object.getRegionsClippedPolyData();
  delete object.getRegionsVisiblePolygons();
  if (object.getRegionsProjectedPolygons() != nullptr) {
    for (const auto& polygons : *object.getRegionsProjectedPolygons())
      for (const auto& polygon : polygons)
        for (const Geometry::EdgeStartPoint2d* point : polygon) delete point;
  }
  delete object.getRegionsProjectedPolygons();
  object.setRegionsPolyData(nullptr);
  object.setRegionsClippedPolyData(nullptr);
  object.setRegionsVisiblePolygons(nullptr);
  object.setRegionsProjectedPolygons(nullptr);
}

/// Destroys a shot that shares brushes, pens, scale and property with its scene, which keeps them.
struct SharingShotDeleter {
  void operator()(Shot::Shot2d* shot) const {
    shot->setBrushes(nullptr);
    shot->setPens(nullptr);
    shot->setScale(nullptr);
    shot->setProperty(nullptr);
    delete shot;
  }
};
using SharingShot = std::unique_ptr<Shot::Shot2d, SharingShotDeleter>;

/// A scene with one brush and one pen, and a view from the origin along the x axis with z upward.
/// It frees all that the scene's objects hold after a shot.
class ShotScene {
 public:
  ShotScene() : orientation(new Base::ViewOrientation3D()) {
    scene.setBrushes(new Base::Brushes());
    scene.getBrushes()->addBrush(new Base::Brush(200, 10, 20, 255));
    scene.setPens(new Base::Pens());
    scene.getPens()->addPen(new Base::Pen());
    scene.setPoints(new Geometry::Points3d());
    scene.setObjects(new Scene::Objects());
    view.setCamera(&spherical);
    view.setOrientation(orientation.get());
  }
  ShotScene(const ShotScene&) = delete;
  ShotScene& operator=(const ShotScene&) = delete;
  ~ShotScene() { forget(); }

  /// Frees what earlier shots have left on the objects.
  void forget() {
    for (Scene::Object* object : *scene.getObjects()->getObjects()) freeWorkingLists(*object);
  }

  Scene::Object& addObject(const std::string& id = "object") {
    auto* object = new Scene::Object();
    object->setId(id);
    object->setPenNumber(1);
    object->setFaces(new Geometry::Faces());
    object->setRegions(new Geometry::Regions());
    scene.getObjects()->addObject(object);
    return *object;
  }

  /// A region with points of its own, on the face of that number, which is made if it is the next.
  Geometry::Region& addRegion(Scene::Object& object, const PolygonPoints& polygon,
                              int faceNumber = 1, const std::vector<int>& dockingEdges = {}) {
    auto* region = new Geometry::Region();
    object.getRegions()->addRegion(region);
    for (const Coordinates& point : polygon) {
      scene.getPoints()->addPoint(new Geometry::Point3d(point[0], point[1], point[2]));
      region->addPoint(static_cast<int>(scene.getPoints()->getPoints()->size()));
    }
    for (const int edge : dockingEdges) region->addDockingEdge(edge);
    region->setBrushNumber(1);
    region->setFaceNumber(faceNumber);
    const auto regionNumber = static_cast<int>(object.getRegions()->getRegions()->size());
    const auto faceCount = static_cast<int>(object.getFaces()->getFaces()->size());
    if (faceNumber == faceCount + 1) object.getFaces()->addFace(new Geometry::Face());
    if (faceNumber >= 1 && faceNumber <= faceCount + 1) {
      object.getFaces()->getFace(faceNumber - 1)->addRegion(regionNumber);
    }
    return *region;
  }

  void setEye(const Coordinates& eye) {
    orientation->getEyePosition()->setX(eye[0]);
    orientation->getEyePosition()->setY(eye[1]);
    orientation->getEyePosition()->setZ(eye[2]);
  }

  Coordinates eye() const { return orientation->getEyePosition()->toVector(); }

  void setForward(const Coordinates& forward) { set(orientation->getForwardDirection(), forward); }
  void setUp(const Coordinates& up) { set(orientation->getUpDirection(), up); }

  SharingShot makeShot() { return SharingShot(scene.makeShot(&view, &parameters)); }

  Scene::Scene3D scene;
  Base::View view;
  Base::ViewSphericalCamera spherical;
  Base::ViewNormalCamera normal;
  std::unique_ptr<Base::ViewOrientation3D> orientation;
  Algorithm::ShotParameters parameters;

 private:
  static void set(Geometry::Vector3d* vector, const Coordinates& values) {
    vector->setX(values[0]);
    vector->setY(values[1]);
    vector->setZ(values[2]);
  }
};

}  // namespace Lumivane::Test
