#pragma once

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/base/Pen.h>
#include <lumivane/base/Pens.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewNormalCamera.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/base/ViewSphericalCamera.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <array>
#include <memory>
#include <vector>

namespace Lumivane::Test {

/// A scene to add to: two brushes (red, half transparent green), two pens (opaque black of width 2,
/// blue of width 3).
struct SceneModel {
  SceneModel() : scene(std::make_unique<Scene::Scene3D>()) {
    scene->setBrushes(new Base::Brushes);
    scene->getBrushes()->addBrush(new Base::Brush(255, 0, 0, 255));
    scene->getBrushes()->addBrush(new Base::Brush(0, 102, 0, 51));
    scene->setPens(new Base::Pens);
    scene->getPens()->addPen(new Base::Pen(0, 0, 0, 255, 2.0));
    scene->getPens()->addPen(new Base::Pen(0, 0, 51, 204, 3.5));
    scene->setPoints(new Geometry::Points3d);
    scene->setObjects(new Scene::Objects);
  }

  Scene::Object* addObject(int penNumber) const {
    auto* object = new Scene::Object;
    object->setPenNumber(penNumber);
    object->setRegions(new Geometry::Regions);
    scene->getObjects()->addObject(object);
    return object;
  }

  /// Adds a region over new points.
  Geometry::Region* addRegion(Scene::Object* object, int brushNumber,
                              const std::vector<std::array<double, 3>>& corners) const {
    auto* region = new Geometry::Region;
    region->setBrushNumber(brushNumber);
    for (const auto& corner : corners) {
      scene->getPoints()->addPoint(new Geometry::Point3d(corner[0], corner[1], corner[2]));
      region->addPoint(static_cast<int>(scene->getPoints()->getPoints()->size()));
    }
    object->getRegions()->addRegion(region);
    return region;
  }

  std::unique_ptr<Scene::Scene3D> scene;
};

/// A shot to add to, with the brushes and pens of SceneModel and a view that it refers to.
struct ShotModel {
  ShotModel() : shot(std::make_unique<Shot::Shot2d>()) {
    SceneModel source;
    shot->setBrushes(source.scene->getBrushes());
    shot->setPens(source.scene->getPens());
    source.scene->setBrushes(nullptr);
    source.scene->setPens(nullptr);
    shot->setPoints(new Geometry::Points2d);
    shot->setRegions(new Geometry::Regions2dInDrawingOrder);
    view.setCamera(&spherical);
    view.setOrientation(&orientation);
    shot->setView(&view);
  }

  /// Adds a region over new points.
  Geometry::Region2d* addRegion(int brushNumber, int penNumber,
                                const std::vector<std::array<double, 2>>& corners) const {
    auto* region = new Geometry::Region2d;
    region->setBrushNumber(brushNumber);
    region->setPenNumber(penNumber);
    for (const auto& corner : corners) {
      shot->getPoints()->addPoint(new Geometry::Point2d(corner[0], corner[1]));
      region->addPoint(static_cast<int>(shot->getPoints()->getPoints()->size()));
    }
    shot->getRegions()->addRegion(region);
    return region;
  }

  /// An axis-parallel rectangle.
  Geometry::Region2d* addRectangle(int brushNumber, int penNumber, double left, double bottom,
                                   double right, double top) const {
    return addRegion(brushNumber, penNumber,
                     {{left, bottom}, {right, bottom}, {right, top}, {left, top}});
  }

  Base::ViewSphericalCamera spherical;
  Base::ViewNormalCamera normal;
  Base::ViewOrientation3D orientation;
  Base::View view;
  std::unique_ptr<Shot::Shot2d> shot;
};

}  // namespace Lumivane::Test
