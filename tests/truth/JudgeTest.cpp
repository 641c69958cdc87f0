#include "truth/Builder.h"
#include "truth/HardScenes.h"
#include "truth/Judge.h"

#include <cmath>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using Visibility::Label;
using Visibility::PolygonScene;
using Visibility::Vector;

constexpr Vector Origin{0, 0, 0};
const Outline Square{{5, -1, -1}, {5, -1, 1}, {5, 1, 1}, {5, 1, -1}};

Outline reversed(Outline outline) { return {outline.rbegin(), outline.rend()}; }

TEST(Judge, SeesAPolygonWhoseCornersRunClockwiseForTheEye) {
  // From the origin along x, y is to the left and z up: lower right, upper right, upper left...
  // runs counter-clockwise.
  const Judge wrong(SceneBuilder().add(Square).scene());
  const Judge right(SceneBuilder().add(reversed(Square)).scene());
  EXPECT_EQ(wrong.seen(Origin, {1, 0, 0}).label, (Label{0, 0, 0}));
  EXPECT_EQ(right.seen(Origin, {1, 0, 0}).label, (Label{1, 1, 1}));
  EXPECT_EQ(wrong.seen(Origin, {1, 0, 0}, true).label, (Label{1, 1, 1}));
  EXPECT_DOUBLE_EQ(right.seen(Origin, {2, 0, 0}).distance, 5.0);
  EXPECT_DOUBLE_EQ(right.seen(Origin, {1, 0.1, 0}).distance, 5.0 * std::sqrt(1.01));
  EXPECT_EQ(right.seen(Origin, {1, 0.201, 0}).outline, -1);
  EXPECT_EQ(right.seen(Origin, {1, 0.199, 0.199}).outline, 0);
  EXPECT_EQ(right.seen(Origin, {-1, 0, 0}).outline, -1);
}

TEST(Judge, SeesTheNearerOfTwo) {
  Outline far = Square;
  for (Vector& corner : far) corner = {7, 3 * corner[1], 3 * corner[2]};
  const Judge judge(SceneBuilder().add(reversed(Square)).add(reversed(far)).scene());
  EXPECT_EQ(judge.seen(Origin, {1, 0, 0}).outline, 0);
  EXPECT_EQ(judge.seen(Origin, {1, 0.3, 0}).outline, 1);
}

TEST(Judge, SeesTheLaterOfOnePlaneHoweverItIsTurned) {
  Random random(5);
  for (int i = 0; i < 20; ++i) {
    const Rotation turn(random);
    PolygonScene scene =
        SceneBuilder()
            .add(reversed(Square))
            .addFacing({{5, 0, 0}, {5, 0, -2}, {5, -2, -2}, {5, -2, 0}}, Origin)
            .addFacing({{5, 3, 3}, {5, 3, -3}, {5, -3, -3}, {5, -3, 3}}, Origin)
            .addFacing({{5, 0.1, 0.1}, {5, 0.1, -0.1}, {5, -0.1, -0.1}, {5, -0.1, 0.1}}, Origin)
            .scene();
    scene = moved(scene, turn);
    const Judge judge(scene);
    EXPECT_EQ(judge.pieces().layers, 1U);
    EXPECT_EQ(judge.seen(Origin, turn({1, 0.01, 0.01})).outline, 3);
    EXPECT_EQ(judge.seen(Origin, turn({1, 0.1, 0.1})).outline, 2);
  }
}

TEST(Judge, PlanesThatDifferByMoreThanTheToleranceAreNoLayer) {
  const auto at = [](double x) { return Outline{{x, 1, -1}, {x, 1, 1}, {x, -1, 1}, {x, -1, -1}}; };
  const Judge apart(SceneBuilder().add(at(5)).add(at(5.000001)).scene());
  EXPECT_EQ(apart.pieces().layers, 0U);
  const Judge near(SceneBuilder().add(at(5)).add(at(5.0000001)).scene());
  EXPECT_EQ(near.pieces().layers, 1U);
}

TEST(Judge, FillsOutlinesByTheEvenOddRule) {
  Outline star;
  const Outline circle = regularPolygon({5, 0, 0}, {1, 0, 0}, 2.0, 5);
  for (std::size_t i = 0; i < 5; ++i) star.push_back(circle[2 * i % 5]);
  const Judge judge(SceneBuilder().add(star).scene());
  EXPECT_EQ(judge.seen(Origin, {1, 0, 0}, true).outline, -1);
  const Vector& tip = circle[0];
  EXPECT_EQ(judge.seen(Origin, {5, tip[1] * 0.9, tip[2] * 0.9}, true).outline, 0);
}

TEST(Judge, SeesNothingEdgeOn) {
  const Judge judge(SceneBuilder().add({{1, 1, 0}, {-1, 1, 0}, {-1, -1, 0}, {1, -1, 0}}).scene());
  EXPECT_EQ(judge.seen({0, 0, 0}, {0, 0, -1}, true).outline, -1);
  EXPECT_EQ(judge.seen({0, 0, 1e-9}, {0, 0, -1}, true).outline, 0);
}

TEST(Judge, CountsOutlinesWithoutANormal) {
  const Judge judge(SceneBuilder()
                        .add({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}})
                        .add({{1, 0, 0}, {1, 1, 1}, {1, 1, 0}, {1, 0, 1}})
                        .add({{1, 0, 0}, {2, 0, 0}})
                        .scene());
  EXPECT_EQ(judge.pieces().dropped, 3U);
}

TEST(Judge, TakesABentOutlineAsTrianglesOfOneLabel) {
  const Outline bent{{5, 1, 1}, {5, 1, -1}, {4, -1.1, -1}, {5, -1, 1}};
  const Judge judge(SceneBuilder().add(bent).scene());
  EXPECT_EQ(judge.pieces().triangulated, 1U);
  EXPECT_EQ(judge.pieces().list.size(), 2U);
  EXPECT_EQ(judge.seen(Origin, {1, 0, 0}, true).outline, 0);
}

TEST(ClipEars, TakesTheEarWithTheLargestLeastAngleFirst) {
  const std::vector<LongVector> kite{{0, 0, 0}, {4, -1, 0}, {5, 0, 0}, {4, 1, 0}};
  const auto triangles = clipEars(kite, {0, 0, 1});
  ASSERT_EQ(triangles.size(), 2U);
  EXPECT_EQ(triangles[0], (std::vector<int>{1, 2, 3}));
}

TEST(ClipEars, KeepsOutOfTheDentOfAConcaveOutline) {
  const std::vector<LongVector> arrow{{0, 0, 0}, {4, -3, 0}, {3, 0, 0}, {4, 3, 0}};
  for (const auto& triangle : clipEars(arrow, {0, 0, 1}))
    EXPECT_NE(triangle, (std::vector<int>{1, 2, 3}));
}

class HardSceneJudge : public ::testing::TestWithParam<std::size_t> {};

TEST_P(HardSceneJudge, SaysTheSameWithAndWithoutItsTree) {
  for (std::size_t number = GetParam(); number < HardSceneCount; number += 20) {
    const HardScene hard = hardScene(number);
    const Judge judge(hard.scene);
    Random random(number);
    for (int i = 0; i < 300; ++i) {
      const Vector d = random.direction();
      const bool twoSided = hard.options.twoSided;
      ASSERT_EQ(judge.seen(hard.eye, d, twoSided).outline,
                judge.seenOfAll(hard.eye, d, twoSided).outline)
          << hard.name;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, HardSceneJudge, ::testing::Range<std::size_t>(0, 20));

}  // namespace
}  // namespace Lumivane::Truth
