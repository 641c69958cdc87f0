// How large a shot may grow.

#include "session/Scenes.h"
#include "support/Floor.h"
#include "support/Thrown.h"
#include "support/WorkingFolder.h"

#include <lumivane/geometry/EdgeStartPoint2d.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/ViewSetup.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::floorText;
using Lumivane::Test::smallScene;
using Lumivane::Test::smallView;
using Lumivane::Test::squareScene;
using Lumivane::Test::thrownText;

// Five centimetres above the floor.
ViewSettings aboveTheFloor() {
  ViewSettings view;
  view.eye = {0, 0, 0.05};
  view.forward = {1, 0.01, 0};
  return view;
}

LoadedScene floorScene() { return LoadedScene::fromText(floorText(200, 10.0), "hall"); }

std::string takeError(LoadedScene& scene, const ViewSettings& view) {
  return thrownText<Error>([&] { scene.take(view); });
}

std::size_t references(const TakenShot& shot) {
  std::size_t count = 0;
  for (const Geometry::Region2d* region : *shot.shot().getRegions()->getRegions())
    count += region->getPoints()->size();
  return count;
}

TEST(Limits, TooManyPointReferencesNameObjectRegionAndOption) {
  LoadedScene scene = floorScene();
  ViewSettings view = aboveTheFloor();
  view.limitPoints = 100'000;
  EXPECT_EQ(
      "hall: no shot can be made: Scene::Object \"floor\", region 1: its edges of 768 pieces each "
      "need 347904 point references, and --limit-points (ViewSettings::limitPoints) leaves 100000: "
      "raise it or the maximum length, or move the eye",
      takeError(scene, view));
}

TEST(Limits, TooMuchMemoryNamesObjectRegionAndOption) {
  LoadedScene scene = floorScene();
  ViewSettings view = aboveTheFloor();
  view.limitMemory = 13'000'000;  // of which a point reference with its point takes 130
  EXPECT_EQ(
      "hall: no shot can be made: Scene::Object \"floor\", region 1: its edges of 768 pieces each "
      "need 347904 point references, and --limit-memory (ViewSettings::limitMemory) of 13000000 "
      "bytes leaves room for 100000: raise it or the maximum length, or move the eye",
      takeError(scene, view));
}

TEST(Limits, AShotOfExactlyTheLimitIsMade) {
  LoadedScene scene = smallScene();
  ViewSettings view = smallView();
  const std::string text = scene.take(view).text();
  const std::size_t count = references(scene.take(view));
  view.limitPoints = static_cast<std::int64_t>(count);
  EXPECT_EQ(text, scene.take(view).text());
  view.limitPoints = static_cast<std::int64_t>(count) - 1;
  EXPECT_NE("", takeError(scene, view));
  view.limitPoints = 0;  // any number
  EXPECT_EQ(text, scene.take(view).text());
}

TEST(Limits, ManyPairsOfFacesThatOverlapAreRefusedInTime) {
  // A thousand squares behind each other: half a million pairs.
  std::string points;
  std::string regions;
  std::string faces;
  for (int i = 0; i < 1000; ++i) {
    const std::string x = std::to_string(3 + i);
    points +=
        (i == 0 ? "[" : ",[") + x + ",-1,-1],[" + x + ",1,-1],[" + x + ",1,1],[" + x + ",-1,1]";
    const int first = 4 * i + 1;
    regions += std::string(i == 0 ? "" : ",") + R"({"Brush":1,"Face":)" + std::to_string(i + 1) +
               R"(,"Points":[)" + std::to_string(first) + "," + std::to_string(first + 1) + "," +
               std::to_string(first + 2) + "," + std::to_string(first + 3) + "]}";
    faces += std::string(i == 0 ? "" : ",") + R"({"Regions":[)" + std::to_string(i + 1) + "]}";
  }
  LoadedScene scene = LoadedScene::fromText(
      R"({"Points":[)" + points + R"(],"Brushes":[[1,2,3,255]],"Pens":[[0,0,0,255,1]],)" +
          R"("Objects":[{"Id":"stack","Pen":1,"Faces":[)" + faces + R"(],"Regions":[)" + regions +
          "]}]}",
      "stack");
  ViewSettings view;
  view.maxLength = 0.0;
  view.limitMemory = 10'000'000;
  EXPECT_EQ(
      "stack: no shot can be made: Scene::Object \"stack\": more than 250000 pairs of its faces "
      "and "
      "earlier ones overlap, and --limit-memory (ViewSettings::limitMemory) of "
      "10000000 bytes has no room for more: raise it, or take apart what overlaps",
      takeError(scene, view));
  view.limitMemory = 40'000'000;
  EXPECT_NO_THROW(scene.take(view));
}

TEST(Limits, RawClassesKnowNoLimitAfterATake) {
  LoadedScene scene = squareScene();
  ViewSettings view;
  view.limitPoints = 1;
  EXPECT_NE("", takeError(scene, view));
  ViewSetup setup(ViewSettings{});
  const auto free = [](Shot::Shot2d* shot) {
    shot->setBrushes(nullptr);
    shot->setPens(nullptr);
    delete shot;
  };
  const std::unique_ptr<Shot::Shot2d, decltype(free)> shot(
      scene.scene().makeShot(setup.view(), setup.parameters()), free);
  ASSERT_NE(nullptr, shot);
  EXPECT_EQ(1u, shot->getRegions()->getRegions()->size());
}

TEST(Limits, LimitsBelowZeroAreAFault) {
  ViewSettings view;
  view.limitPoints = -1;
  EXPECT_EQ("the limit of point references is -1, below 0", view.fault());
  view.limitPoints = 0;
  view.limitMemory = -5;
  EXPECT_EQ("the limit of memory is -5, below 0", view.fault());
}

TEST(Limits, PointsOfAProjectionAreThoseOfTheShotWheneverTheyAreLookedAt) {
  LoadedScene scene = floorScene();
  ViewSettings view = aboveTheFloor();
  view.maxLength = 0.2;
  view.mergeDistance = 1e-12;  // so that no two points are one
  const TakenShot shot = scene.take(view);
  std::size_t count = 0;
  const Scene::Object& floor = *(*scene.scene().getObjects()->getObjects())[0];
  for (const auto& region : *floor.getRegionsProjectedPolygons())
    for (const auto& polygon : region) count += polygon.size();
  EXPECT_EQ(references(shot), count);
}

}  // namespace
}  // namespace Lumivane::Session
