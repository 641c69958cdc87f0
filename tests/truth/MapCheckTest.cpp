#include "truth/Builder.h"
#include "truth/HandMadeMaps.h"
#include "truth/MapCheck.h"
#include "truth/Reduce.h"

#include <cmath>

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

TEST(MapCheck, AsksMoreRaysAboutOneObject) {
  VisibleMap map = windowWithDistances();
  const auto deviation = [&map] {
    return deviationWithin(windowJudge(), map, 1, 1e6, 20000, 3).by;
  };
  EXPECT_LT(std::abs(deviation()), 5.0);
  map.cells[0].solidAngle *= 0.9;
  EXPECT_GT(deviation(), 10.0) << "more rays hit it than the map says";
}

TEST(MapCheck, ListsTheDeviationsOfObjectsThatExpectRays) {
  const RayReport report = checkByRays(windowJudge(), windowWithDistances(), Rays, 1);
  ASSERT_EQ(report.deviations.size(), 2U) << "the sky and the window";
  EXPECT_NEAR(report.deviations[0].share + report.deviations[1].share, 1.0, 1e-12);
  // What one gets, the other does not.
  EXPECT_NEAR(report.deviations[0].by, -report.deviations[1].by, 1e-9);
  EXPECT_TRUE(checkByRays(windowJudge(), windowWithDistances(), 20, 1).deviations.empty());
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
