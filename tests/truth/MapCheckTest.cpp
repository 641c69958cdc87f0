#include "truth/Builder.h"
#include "truth/HandMadeMaps.h"
#include "truth/MapCheck.h"
#include "truth/Reduce.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using ::testing::HasSubstr;
using Visibility::PolygonScene;
using Visibility::VisibleMap;

constexpr std::size_t Rays = 20000;

/// What `windowMap` shows.
Judge windowJudge() {
  return Judge(SceneBuilder()
                   .addFacing({{2, 1, 1}, {2, 1, -1}, {2, -1, -1}, {2, -1, 1}}, {0, 0, 0})
                   .scene());
}

VisibleMap windowWithDistances() {
  VisibleMap map = windowMap();
  map.cells[0].minDistance = 2.0;
  map.cells[0].maxDistance = 2.5;
  return map;
}

TEST(MapCheck, FindsNothingWrongWithARightMap) {
  const RayReport report = checkByRays(windowJudge(), windowWithDistances(), Rays, 1);
  EXPECT_TRUE(report.wrong.empty()) << report.text();
  EXPECT_EQ(report.wrongDistances, 0U);
  EXPECT_LT(report.worstShare, 5.0);
}

TEST(MapCheck, FindsACornerThatIsOffItsPlace) {
  VisibleMap map = windowWithDistances();
  map.vertices[4] = narrow(unit({2.0L, 1.1L, 1.0L}));
  const RayReport report = checkByRays(windowJudge(), map, Rays, 1);
  EXPECT_FALSE(report.wrong.empty());
  EXPECT_THAT(report.text(), HasSubstr("sees 0/0/0, the map has 1/1/1"));
  for (const WrongLabel& wrong : report.wrong) EXPECT_GT(wrong.angleToEdge, NoMansLand);
}

TEST(MapCheck, FindsAWrongLabelAndAWrongShare) {
  VisibleMap map = windowWithDistances();
  map.cells[0].label.region = 2;
  EXPECT_FALSE(checkByRays(windowJudge(), map, Rays, 1).wrong.empty());
  map.cells[0].label = {2, 1, 1};
  EXPECT_GT(checkByRays(windowJudge(), map, Rays, 1).worstShare, 10.0);
}

TEST(MapCheck, FindsDistancesThatAreNotThoseOfTheScene) {
  VisibleMap map = windowWithDistances();
  map.cells[0].maxDistance = 2.1;
  EXPECT_GT(checkByRays(windowJudge(), map, Rays, 1).wrongDistances, 0U);
}

TEST(Reduced, KeepsOnlyTheOutlinesThatAreNeeded) {
  SceneBuilder builder;
  for (int i = 0; i < 37; ++i) builder.object().addBox({i + 0.0, 0, 0}, {i + 0.5, 1, 1});
  const PolygonScene part = reduced(builder.scene(), [](const PolygonScene& scene) {
    const Judge judge(scene);
    return judge.seen({-1, 0.5, 0.5}, {1, 0, 0}).outline >= 0 &&
           judge.seen({10.25, 0.5, 9}, {0, 0, -1}).outline >= 0;
  });
  EXPECT_EQ(part.labels.size(), 2U);
  EXPECT_THAT(sceneFileText(part), HasSubstr("\"Points\":[5,6,2,1]"));
}

}  // namespace
}  // namespace Lumivane::Truth
