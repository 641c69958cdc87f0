#include "visibility/Polygons.h"

#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::PolygonBuilder;
using Samples::square;
using Session::LoadedScene;

// Two squares one above the other, the lower one in an object of its own, and a line.
const char* const TwoSquares = R"({
  "Points": [[0,0,2],[0,1,2],[1,1,2],[1,0,2],[0,0,1],[0,1,1],[1,1,1],[1,0,1]],
  "Objects": [
    {"Id": "upper", "Regions": [{"Brush": 1, "Points": [1, 2]},
                                {"Brush": 1, "Face": 1, "Points": [1,2,3,4]}]},
    {"Id": "lower", "Regions": [{"Brush": 1, "Face": 4, "Points": [5,6,7,8]}]}]})";

template <class Make>
std::string refusal(Make make) {
  try {
    make();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "taken";
}

std::string refusal(const PolygonScene& scene) {
  return refusal([&] { const SceneIndex index(scene); });
}

TEST(SceneIndex, TakesTheRegionsOfALoadedScene) {
  const LoadedScene scene = LoadedScene::fromText(TwoSquares, "two squares");
  const SceneIndex index(scene);
  EXPECT_EQ(3U, index.regionCount());
  EXPECT_EQ(1U, index.droppedRegionCount());
  EXPECT_EQ(0U, index.triangulatedRegionCount());
  EXPECT_EQ(0U, index.layerCount());
  const std::vector<Seen> found = index.seenIn({0.5, 0.5, 3}, {{0, 0, -1}});
  EXPECT_EQ((Label{1, 1, 2}), found[0].label);
  EXPECT_EQ((Label{2, 4, 1}), index.seenIn({0.5, 0.5, 1.5}, {{0, 0, -1}})[0].label);
}

TEST(SceneIndex, TakesTheClassesOfALoadedScene) {
  LoadedScene scene = LoadedScene::fromText(TwoSquares, "two squares");
  scene.setClasses({{"roof", "wall"}, {-1, 1, 0}});
  const PolygonScene polygons = polygonsOf(scene);
  EXPECT_EQ((std::vector<int>{-1, 1, 0}), polygons.classes);
  EXPECT_EQ((std::vector<std::string>{"roof", "wall"}), polygons.classNames);
  const VisibleMap map = SceneIndex(scene).look({0.5, 0.5, 3}, {});
  EXPECT_EQ(polygons.classes, map.names->classes);
  EXPECT_EQ(polygons.classNames, map.names->classNames);
  EXPECT_TRUE(polygonsOf(scene.scene()).classNames.empty());
}

TEST(SceneIndex, RefusesASceneWhoseRegionsHaveChangedSinceItsClasses) {
  LoadedScene scene = LoadedScene::fromText(TwoSquares, "two squares");
  scene.setClasses({{"roof"}, {-1, 0, 0}});
  scene.scene().getObjects()->getObject(1)->getRegions()->addRegion(new Geometry::Region());
  EXPECT_EQ("there is not one class for each outline", refusal([&] { const SceneIndex i(scene); }));
}

TEST(SceneIndex, DoesNotNeedTheSceneAfterwards) {
  auto scene = std::make_unique<LoadedScene>(LoadedScene::fromText(TwoSquares, "two squares"));
  const SceneIndex index(*scene);
  scene.reset();
  EXPECT_EQ(1, index.seenIn({0.5, 0.5, 3}, {{0, 0, -1}})[0].label.object);
}

TEST(SceneIndex, ARawSceneWithNullListsIsEmpty) {
  const Scene::Scene3D scene;
  EXPECT_EQ(0U, SceneIndex(scene).regionCount());
}

TEST(SceneIndex, NullEntriesOfARawSceneKeepTheirNumbers) {
  Scene::Scene3D scene;
  scene.setPoints(new Geometry::Points3d);
  for (const auto& [x, y] : {std::pair(0.0, 0.0), std::pair(0.0, 1.0), std::pair(1.0, 0.0)})
    scene.getPoints()->addPoint(new Geometry::Point3d(x, y, 0.0));
  scene.setObjects(new Scene::Objects);
  scene.getObjects()->addObject(nullptr);
  auto* const object = new Scene::Object;
  scene.getObjects()->addObject(object);
  object->setRegions(new Geometry::Regions);
  object->getRegions()->addRegion(nullptr);
  auto* const region = new Geometry::Region;
  for (const int number : {1, 2, 3}) region->addPoint(number);
  for (const int edge : {-1, 2, 9}) region->addDockingEdge(edge);
  object->getRegions()->addRegion(region);
  const SceneIndex index(scene);
  EXPECT_EQ(2U, index.regionCount());
  EXPECT_EQ(1U, index.droppedRegionCount());
  EXPECT_EQ((Label{2, -1, 2}), index.seenIn({0.2, 0.2, 1}, {{0, 0, -1}})[0].label);
  scene.getObjects()->getObjects()->erase(scene.getObjects()->getObjects()->begin());
  object->getRegions()->getRegions()->erase(object->getRegions()->getRegions()->begin());
}

TEST(SceneIndex, NamesTheRegionWithAPointThatIsNotThere) {
  const LoadedScene scene = LoadedScene::fromText(
      R"({"Points": [[0,0,0],[1,0,0]], "Objects": [{"Id": "a"},
          {"Id": "b", "Regions": [{"Points": []}, {"Points": [1,2,3]}]}]})",
      "wrong");
  EXPECT_EQ("object 2 \"b\", region 2: point 3, but there are 1 to 2",
            refusal([&] { const SceneIndex index(scene); }));
}

TEST(SceneIndex, NamesTheRegionWithACoordinateThatIsTooLarge) {
  const LoadedScene scene = LoadedScene::fromText(
      R"({"Points": [[0,0,0],[1,0,0],[0,2e30,0]],
          "Objects": [{"Id": "a", "Regions": [{"Points": [1,2,3]}]}]})",
      "far");
  EXPECT_EQ("object 1 \"a\", region 1: point 3 has a coordinate that is not finite or beyond 1e30",
            refusal([&] { const SceneIndex index(scene); }));
}

TEST(SceneIndex, PlainArraysWithoutLabelsAreOneObject) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 1));
  builder.add(square(2, 0, 0, 1));
  const SceneIndex index(builder.scene);
  EXPECT_EQ((Label{1, -1, 2}), index.seenIn({2.5, 0.5, 1}, {{0, 0, -1}})[0].label);
}

TEST(SceneIndex, RefusesArraysThatDoNotFitEachOther) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 1), 1);
  builder.add(square(0, 0, 1, 1), 2);
  const PolygonScene good = builder.scene;
  EXPECT_EQ("taken", refusal(good));
  EXPECT_EQ("taken", refusal(PolygonScene{}));
  const auto changed = [&](auto change) {
    PolygonScene scene = good;
    change(scene);
    return refusal(scene);
  };
  using S = PolygonScene;
  EXPECT_EQ("the first offset is not 0", changed([](S& s) { s.offsets[0] = 1; }));
  EXPECT_EQ("an offset is below the one before it", changed([](S& s) { s.offsets[1] = 9; }));
  EXPECT_EQ("the last offset is not the number of corners",
            changed([](S& s) { s.corners.push_back(0); }));
  EXPECT_EQ("there are corners but no offsets", changed([](S& s) { s.offsets.clear(); }));
  EXPECT_EQ("a corner points at no point", changed([](S& s) { s.corners[3] = 8; }));
  EXPECT_EQ("a corner points at no point", changed([](S& s) { s.corners[3] = -1; }));
  EXPECT_EQ("there is not one label for each outline", changed([](S& s) { s.labels.pop_back(); }));
  EXPECT_EQ("a label has a number below 1", changed([](S& s) { s.labels[0].face = 0; }));
  EXPECT_EQ("a label has an object number beyond 16777216",
            changed([](S& s) { s.labels.back().object = 2147483647; }));
  EXPECT_EQ("the labels do not rise by object, then by region",
            changed([](S& s) { s.labels[1] = s.labels[0]; }));
  EXPECT_EQ("there is not one docking mark for each corner",
            changed([](S& s) { s.docking.push_back(1); }));
  EXPECT_EQ("there is not one class for each outline",
            changed([](S& s) { s.classes.push_back(-1); }));
  EXPECT_EQ("a class number points at no name", changed([](S& s) { s.classes = {-1, 0}; }));
  EXPECT_EQ("point at position 5 has a coordinate that is not finite or beyond 1e30",
            changed([](S& s) { s.points[5][1] = std::numeric_limits<double>::infinity(); }));
}

TEST(SceneIndex, CopiesShareAndMovesTakeAll) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 1));
  SceneIndex first(builder.scene);
  const SceneIndex copy(first);  // NOLINT(performance-unnecessary-copy-initialization)
  const SceneIndex moved(std::move(first));
  EXPECT_EQ(1U, copy.regionCount());
  EXPECT_EQ(1U, moved.regionCount());
  first = copy;
  EXPECT_EQ(1U, first.regionCount());
}

TEST(SceneIndex, WhatACancelledLookThrowsSaysSo) {
  EXPECT_STREQ("the look was cancelled", Cancelled().what());
}

}  // namespace
}  // namespace Lumivane::Visibility
