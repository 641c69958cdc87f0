#include "session/Scenes.h"
#include "support/Thrown.h"

#include <lumivane/geometry/Face.h>
#include <lumivane/geometry/Faces.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Vector3d.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::squareScene;
using Lumivane::Test::thrownText;

// The square of squareScene(), which faces the origin.
ScenePolygons square() {
  ScenePolygons polygons;
  polygons.points = {{3, -1, -1}, {3, 1, -1}, {3, 1, 1}, {3, -1, 1}};
  polygons.add({0, 1, 2, 3});
  polygons.objectIds = {"wall"};
  polygons.colors = {{200, 10, 20, 255}};
  return polygons;
}

const Geometry::Region& region(const LoadedScene& scene, int object, int number) {
  return *scene.scene().getObjects()->getObject(object)->getRegions()->getRegion(number);
}

TEST(ScenePolygons, GiveTheShotOfTheSameSceneRead) {
  LoadedScene made = LoadedScene::fromPolygons(square(), "square");
  LoadedScene read = squareScene();
  const ShotPolygons ofMade = made.take({}).polygons();
  const ShotPolygons ofRead = read.take({}).polygons();
  EXPECT_EQ(ofRead.points, ofMade.points);
  EXPECT_EQ(ofRead.drawnEdges, ofMade.drawnEdges);
  EXPECT_EQ(ofRead.colors, ofMade.colors);
  EXPECT_EQ(ofRead.objectIds, ofMade.objectIds);
  EXPECT_EQ("square", made.name());
}

TEST(ScenePolygons, OfCounterClockwiseCornersAreSeenFromTheOtherSide) {
  ScenePolygons polygons = square();
  polygons.seen = ScenePolygons::Seen::CounterClockwise;
  EXPECT_EQ(0u, LoadedScene::fromPolygons(polygons, "square").take({}).polygons().count());
  polygons.corners = {3, 2, 1, 0};
  EXPECT_EQ(1u, LoadedScene::fromPolygons(polygons, "square").take({}).polygons().count());
}

TEST(ScenePolygons, KeepTheirDockingEdgesWhenTheyAreTurned) {
  ScenePolygons polygons = square();
  polygons.docking = {1, 0, 0, 0};  // from point 0 to point 1
  const LoadedScene kept = LoadedScene::fromPolygons(polygons, "square");
  EXPECT_EQ(std::vector<int>({1, 2, 3, 4}), *region(kept, 0, 0).getPoints());
  EXPECT_EQ(std::vector<int>({1}), *region(kept, 0, 0).getDockingEdges());
  polygons.seen = ScenePolygons::Seen::CounterClockwise;
  const LoadedScene turned = LoadedScene::fromPolygons(polygons, "square");
  EXPECT_EQ(std::vector<int>({4, 3, 2, 1}), *region(turned, 0, 0).getPoints());
  EXPECT_EQ(std::vector<int>({3}), *region(turned, 0, 0).getDockingEdges());
}

TEST(ScenePolygons, BecomeRegionAndFaceOfTheirObjectInTheirOrder) {
  ScenePolygons polygons = square();
  polygons.add({2, 1, 0}, 1);
  polygons.add({0, 2, 3}, 0);
  polygons.objectIds = {"a", "b"};
  polygons.colors.clear();
  const LoadedScene scene = LoadedScene::fromPolygons(polygons, "three");
  EXPECT_EQ(std::vector<int>({1, 3, 4}), *region(scene, 0, 1).getPoints());
  EXPECT_EQ(2, region(scene, 0, 1).getFaceNumber());
  EXPECT_EQ(std::vector<int>({3, 2, 1}), *region(scene, 1, 0).getPoints());
  EXPECT_EQ(1, region(scene, 1, 0).getFaceNumber());
  const Scene::Object& object = *scene.scene().getObjects()->getObject(1);
  EXPECT_EQ("b", object.getId());
  const Geometry::Vector3d& normal = *object.getFaces()->getFace(0)->getNormal();
  EXPECT_DOUBLE_EQ(1.0, std::abs(normal.getX()));
}

TEST(ScenePolygons, OfABoxAreSeenFromOutsideAlone) {
  for (const auto seen : {ScenePolygons::Seen::Clockwise, ScenePolygons::Seen::CounterClockwise}) {
    ScenePolygons box;
    box.seen = seen;
    box.addBox({-1, -2, -3}, {1, 2, 3});
    LoadedScene scene = LoadedScene::fromPolygons(box, "box");
    const std::vector<Vector> eyes = {{-3, 0, 0}, {3, 0, 0},  {0, -4, 0},
                                      {0, 4, 0},  {0, 0, -5}, {0, 0, 5}};
    for (std::size_t i = 0; i < eyes.size(); ++i) {
      ViewSettings view;
      view.eye = eyes[i];
      view.forward = {-eyes[i][0], -eyes[i][1], -eyes[i][2]};
      view.up = {0.3, 0.5, 0.7};
      const ShotPolygons polygons = scene.take(view).polygons();
      ASSERT_EQ(1u, polygons.count()) << i;
      EXPECT_EQ(static_cast<int>(i) + 1, polygons.regions[0]);
    }
    EXPECT_EQ(0u, scene.take({}).polygons().count());
  }
}

TEST(ScenePolygons, WithoutIdsNumberTheirObjects) {
  ScenePolygons polygons = square();
  polygons.objectIds.clear();
  polygons.add({0, 1, 2}, 1);
  polygons.colors.clear();
  const LoadedScene scene = LoadedScene::fromPolygons(polygons, "two");
  EXPECT_EQ("object 1", scene.scene().getObjects()->getObject(0)->getId());
  EXPECT_EQ("object 2", scene.scene().getObjects()->getObject(1)->getId());
}

TEST(ScenePolygons, WithoutAnyAreAnEmptyScene) {
  LoadedScene scene = LoadedScene::fromPolygons({}, "nothing");
  const ShotPolygons polygons = scene.take({}).polygons();
  EXPECT_EQ(0u, polygons.count());
  EXPECT_EQ(std::vector<std::size_t>({0}), polygons.offsets);
}

TEST(ScenePolygons, ErrorsNameArrayPositionAndPolygon) {
  const auto errorOf = [](const std::function<void(ScenePolygons&)>& change) {
    ScenePolygons polygons = square();
    polygons.add({0, 1, 2}, 0);
    polygons.colors.clear();
    change(polygons);
    return thrownText<Error>([&] { LoadedScene::fromPolygons(polygons, "s"); });
  };
  EXPECT_EQ("nothing thrown", errorOf([](ScenePolygons&) {}));
  EXPECT_EQ("s: polygon at position 1: corners[5] is 9, but points has 4 elements, counted from 0",
            errorOf([](ScenePolygons& p) { p.corners[5] = 9; }));
  EXPECT_EQ("s: polygon at position 0: corners[0] is -1, but points has 4 elements, counted from 0",
            errorOf([](ScenePolygons& p) { p.corners[0] = -1; }));
  EXPECT_EQ("s: points[2] has a coordinate that is not finite", errorOf([](ScenePolygons& p) {
              p.points[2][1] = std::numeric_limits<double>::quiet_NaN();
            }));
  EXPECT_EQ("s: polygon at position 1: it has 2 corners, and needs at least 3",
            errorOf([](ScenePolygons& p) { p.offsets[1] = 5; }));
  EXPECT_EQ("s: polygon at position 1: offsets[2] is 7, less than offsets[1], which is 8",
            errorOf([](ScenePolygons& p) { p.offsets[1] = 8; }));
  EXPECT_EQ("s: offsets must start with 0", errorOf([](ScenePolygons& p) { p.offsets.clear(); }));
  EXPECT_EQ("s: offsets end with 7, but corners has 8 elements",
            errorOf([](ScenePolygons& p) { p.corners.push_back(0); }));
  EXPECT_EQ(
      "s: polygon at position 1: objects[1] is 1, but objectIds has 1 elements, counted from 0",
      errorOf([](ScenePolygons& p) { p.objects[1] = 1; }));
  EXPECT_EQ(
      "s: polygon at position 1: objects[1] is 2, but the scene has 2 elements, counted from 0",
      errorOf([](ScenePolygons& p) {
        p.objects[1] = 2;
        p.objectIds.clear();
      }));
  EXPECT_EQ("s: objects has 1 elements, but there are 2 polygons",
            errorOf([](ScenePolygons& p) { p.objects.pop_back(); }));
  EXPECT_EQ("s: colors has 1 elements, but there are 2 polygons",
            errorOf([](ScenePolygons& p) { p.colors.resize(1); }));
  EXPECT_EQ("s: docking has 2 elements, but there are 7 corners",
            errorOf([](ScenePolygons& p) { p.docking.resize(2); }));
  EXPECT_EQ("s: objectIds[1] is empty", errorOf([](ScenePolygons& p) { p.objectIds = {"a", ""}; }));
  EXPECT_EQ("s: objectIds[1] is \"a\", as objectIds[0] is: ids must differ",
            errorOf([](ScenePolygons& p) {
              p.objectIds = {"a", "a"};
            }));
}

}  // namespace
}  // namespace Lumivane::Session
