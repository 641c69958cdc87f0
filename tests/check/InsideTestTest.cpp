#include <lumivane/check/InsideTest.h>
#include <lumivane/session/LoadedScene.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Check {
namespace {

using Sides = std::vector<std::vector<int>>;

// The corners of a box from (0, 0, 0) to (4, 2, 3), and its sides as they are seen from outside.
const std::string Corners = "[0,0,0],[4,0,0],[4,2,0],[0,2,0],[0,0,3],[4,0,3],[4,2,3],[0,2,3]";
const std::vector<int> Floor = {1, 2, 3, 4};
const std::vector<int> Roof = {8, 7, 6, 5};
const Sides Walls = {{5, 6, 2, 1}, {6, 7, 3, 2}, {7, 8, 4, 3}, {8, 5, 1, 4}};

Sides turned(Sides sides) {
  for (std::vector<int>& side : sides) side = {side.rbegin(), side.rend()};
  return sides;
}

Sides with(Sides sides, const Sides& more) {
  sides.insert(sides.end(), more.begin(), more.end());
  return sides;
}

Session::LoadedScene sceneOf(const Sides& sides) {
  std::string regions;
  for (const std::vector<int>& side : sides) {
    std::string numbers;
    for (const int number : side) numbers += (numbers.empty() ? "" : ",") + std::to_string(number);
    regions += std::string(regions.empty() ? "" : ",") + R"({"Brush":1,"Face":1,"Points":[)" +
               numbers + "]}";
  }
  return Session::LoadedScene::fromText(
      R"({"Points":[)" + Corners + R"(],"Brushes":[[1,2,3,255]],"Pens":[[0,0,0,255,1]],)" +
          R"("Objects":[{"Id":"box","Pen":1,"Faces":[{"Regions":[1]}],"Regions":[)" + regions +
          "]}]}",
      "box");
}

bool isInside(const Sides& sides, const std::array<double, 3>& point) {
  const Session::LoadedScene scene = sceneOf(sides);
  return InsideTest(scene.scene()).isInside(point);
}

const Sides Box = with(with(Walls, {Floor}), {Roof});

TEST(InsideTest, PointInAClosedBodyIsInside) {
  EXPECT_TRUE(isInside(Box, {1.0, 1.0, 1.0}));
  EXPECT_TRUE(isInside(Box, {3.9, 0.1, 2.9}));
  EXPECT_TRUE(isInside(Box, {2.0, 1.0, 1.5}));  // where all diagonals meet
}

TEST(InsideTest, PointOutsideIsNot) {
  for (const std::array<double, 3>& point :
       std::vector<std::array<double, 3>>{{-1, 1, 1}, {5, 1, 1}, {2, 3, 1}, {2, 1, 4}, {2, 1, -1}})
    EXPECT_FALSE(isInside(Box, point)) << point[0] << " " << point[1] << " " << point[2];
}

TEST(InsideTest, HouseWithoutAFloorCounts) {
  EXPECT_TRUE(isInside(with(Walls, {Roof}), {1.0, 1.0, 1.0}));
}

TEST(InsideTest, PointUnderALoneRoofIsInsideNothing) {
  EXPECT_FALSE(isInside({Roof}, {2.0, 1.0, 0.5}));
}

TEST(InsideTest, PointInARoomThatIsSeenFromWithinIsInsideNothing) {
  EXPECT_FALSE(isInside(turned(Box), {1.0, 1.0, 1.0}));
}

TEST(InsideTest, TwoSidedBodyIsSeenFromWithin) {
  EXPECT_FALSE(isInside(with(Box, turned(Box)), {1.0, 1.0, 1.0}));
  EXPECT_FALSE(isInside(with(turned(Box), Box), {1.0, 1.0, 1.0}));
}

// Its wall and its neighbour's stand on each other, which let the point pass for one outside.
TEST(InsideTest, PointBesideTheWallBetweenTwoHousesIsInside) {
  Session::ScenePolygons houses;
  houses.addBox({0, 0, 0}, {4, 4, 7}, 0);
  houses.addBox({4, 0, 0}, {8, 4, 7}, 1);
  const Session::LoadedScene scene = Session::LoadedScene::fromPolygons(houses, "houses");
  const InsideTest inside(scene.scene());
  EXPECT_TRUE(inside.isInside({3.99, 2, 3}));
  EXPECT_TRUE(inside.isInside({4.01, 1, 5}));
  EXPECT_FALSE(inside.isInside({4, -0.01, 3}));
  EXPECT_FALSE(inside.isInside({8.01, 2, 3}));
}

TEST(InsideTest, SceneWithNothingInItHasNoInside) { EXPECT_FALSE(isInside({}, {0, 0, 0})); }

TEST(InsideTest, TakeReportsAnEyeInsideABody) {
  Session::LoadedScene scene = sceneOf(Box);
  Session::ViewSettings view;
  view.eye = {1.0, 1.0, 1.0};
  EXPECT_TRUE(scene.take(view).isInside());
  view.eye = {-1.0, 1.0, 1.0};
  EXPECT_FALSE(scene.take(view).isInside());
}

// Points of the box and sides as plain arrays.
struct Arrays {
  std::vector<std::array<double, 3>> points = {{0, 0, 0}, {4, 0, 0}, {4, 2, 0}, {0, 2, 0},
                                               {0, 0, 3}, {4, 0, 3}, {4, 2, 3}, {0, 2, 3}};
  std::vector<std::size_t> offsets{0};
  std::vector<int> corners;

  explicit Arrays(const Sides& sides) {
    for (const std::vector<int>& side : sides) {
      for (const int number : side) corners.push_back(number - 1);
      offsets.push_back(corners.size());
    }
  }
  InsideTest::Outlines outlines() const {
    InsideTest::Outlines result;
    result.points = points.data();
    result.offsets = offsets.data();
    result.corners = corners.data();
    result.objects.assign(offsets.size() - 1, 1);
    return result;
  }
};

TEST(InsideTest, ArraysAnswerAsTheirScene) {
  const Sides line = {{1, 2}};
  for (const Sides& sides : {Box, with(Walls, {Roof}), with(Box, turned(Box)), with(line, Box)}) {
    const Arrays arrays(sides);
    const InsideTest test(arrays.outlines());
    const Session::LoadedScene scene = sceneOf(sides);
    const InsideTest same(scene.scene());
    for (double x = -0.9; x < 5.0; x += 0.7)
      for (double y = -0.6; y < 3.0; y += 0.45)
        for (double z = -0.8; z < 4.0; z += 0.55)
          EXPECT_EQ(same.isInside({x, y, z}), test.isInside({x, y, z}))
              << x << " " << y << " " << z;
  }
}

}  // namespace
}  // namespace Lumivane::Check
