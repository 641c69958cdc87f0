// Scenes made to break the engine: the first of each kind, and those by number that once did.

#include "truth/Builder.h"
#include "truth/Invariants.h"
#include "truth/MapCheck.h"
#include "truth/SceneFaults.h"
#include "truth/WildScenes.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using Visibility::SceneIndex;
using Visibility::Vector;
using Visibility::VisibleMap;

constexpr std::size_t Rounds = 3;
constexpr std::size_t Rays = 1500;

void expectRight(const HardScene& wild) {
  const SceneIndex index(wild.scene);
  const VisibleMap map = index.look(wild.eye, wild.options);
  EXPECT_NEAR(areaError(map), 0.0, 1e-9);
  if (wild.truth == HardScene::Truth::Nobody) return;
  EXPECT_EQ(faultText(map), "");
  if (wild.truth == HardScene::Truth::Single) {
    EXPECT_EQ(differencesFromSingle(index, map, Rays, 7), 0U);
    return;
  }
  const Judge judge(wild.scene);
  const RayReport report = checkByRays(judge, map, Rays, 7);
  EXPECT_TRUE(report.wrong.empty()) << report.text();
  EXPECT_EQ(report.wrongDistances, 0U);
  EXPECT_EQ(sceneFaultText(judge, map), "");
}

void expectRight(std::size_t number) {
  const HardScene wild = wildScene(number);
  SCOPED_TRACE("wild scene " + std::to_string(number) + ": " + wild.name);
  expectRight(wild);
}

class WildSceneProperty : public ::testing::TestWithParam<std::size_t> {};

TEST_P(WildSceneProperty, TheMapIsRight) {
  for (std::size_t round = 0; round < Rounds; ++round) expectRight(GetParam() + round * WildKinds);
}

INSTANTIATE_TEST_SUITE_P(Kinds, WildSceneProperty, ::testing::Range<std::size_t>(0, WildKinds));

TEST(WildScene, ARegionThatIsBentAroundTheEyeTakesNearlyAllOfTheSphere) {
  // It took nothing, and the map was four fifths of a sphere short.
  expectRight(100);
  expectRight(68);
}

TEST(WildScene, TheNearestPointOfARegionAroundTheEyeIsOnAnyOfItsPieces) { expectRight(20); }

TEST(WildScene, LengthsBelowTheRootOfTheLeastDoubleAreLengths) { expectRight(37); }

TEST(WildScene, AnEdgeThatAllButRunsThroughTheEyeGoesRoundItOnTheRightSide) {
  expectRight(35);
  expectRight(115);
}

TEST(WildScene, HundredsOfEdgesOnOneLineAreSweptAtOnce) {
  // Tiles were halved until there were as many as the line has units.
  expectRight(151);
}

TEST(WildScene, SpecksAsSmallAsRoundingDoNotCoverTheSky) {
  for (const std::size_t number : {63U, 95U, 159U, 287U}) expectRight(number);
}

TEST(WildScene, FansOfHundredsOfTrianglesCloseTheirRings) {
  expectRight(60);
  expectRight(140);
}

TEST(WildScene, ASliverThatIsTakenUpByTheSkyLeavesASilhouette) { expectRight(73); }

/// Seen along a docking edge whose other side faces away, another part of the object stands behind.
TEST(WildScene, ADockingEdgeWithAnotherFaceBehindItIsASilhouette) {
  SceneBuilder builder;
  builder.object();
  const Vector eye{0, 0, 0};
  builder.addFacing({{2, -1, -1}, {2, 1, -1}, {2, 1, 1}, {2, -1, 1}}, eye);
  builder.addFacing({{4, -9, -9}, {4, 9, -9}, {4, 9, 9}, {4, -9, 9}}, eye);
  HardScene scene;
  scene.scene = builder.scene();
  scene.scene.docking.assign(scene.scene.corners.size(), 0);
  std::fill_n(scene.scene.docking.begin(), 4, std::uint8_t{1});
  const VisibleMap map = SceneIndex(scene.scene).look(eye);
  EXPECT_EQ(sceneFaultText(Judge(scene.scene), map), "");
  const auto isInner = [](const VisibleMap::Edge& edge) {
    return edge.kind == VisibleMap::EdgeKind::Inner;
  };
  EXPECT_EQ(std::count_if(map.edges.begin(), map.edges.end(), isInner), 0);
  // Two pieces of one wall, with an edge of the one longer than that of the other.
  builder.addFacing({{2, 1, -3}, {2, 3, -3}, {2, 3, 3}, {2, 1, 3}}, eye);
  scene.scene = builder.scene();
  scene.scene.docking.assign(scene.scene.corners.size(), 1);
  const VisibleMap joined = SceneIndex(scene.scene).look(eye);
  EXPECT_EQ(std::count_if(joined.edges.begin(), joined.edges.end(), isInner), 1);
}

TEST(Look, SeesNothingOfAnOutlineThatTheEyeIsOn) {
  // Flat within the tolerance, so that the eye on its edge is off its plane.
  const Outline bent{{-1, 0, 1e-5}, {1, 0, -1e-5}, {1, 2, 1e-5}, {-1, 2, -1e-5}};
  Visibility::LookOptions options;
  options.twoSided = true;
  options.field = Visibility::Field::Sphere;
  const SceneIndex index(SceneBuilder().object().add(bent).scene());
  for (const Vector& eye : {Vector{0, 0, 0}, Vector{-1, 0, 1e-5}}) {
    const VisibleMap map = index.look(eye, options);
    ASSERT_EQ(map.cells.size(), 1U);
    EXPECT_EQ(map.cells[0].label.object, 0);
    EXPECT_EQ(index.seenIn(eye, {{0.1, 0.5, -1}}, true)[0].label.object, 0);
  }
}

// It was taken to be as far off the plane as rounding is off the place, and saw most of the sphere
// full of the triangle.
TEST(Look, SeesNothingOfATriangleInWhosePlaneItIsFarFromTheOrigin) {
  const SceneIndex index(
      SceneBuilder()
          .object()
          .add({{85051, 446074.625, -2}, {85055, 446073.625, 3}, {85049, 446071.625, -1}})
          .scene());
  const Vector eye{85051, 446072.625, 0};
  Visibility::LookOptions options;
  options.twoSided = true;
  options.field = Visibility::Field::Sphere;
  const VisibleMap map = index.look(eye, options);
  ASSERT_EQ(map.cells.size(), 1U);
  EXPECT_EQ(map.cells[0].label.object, 0);
  EXPECT_EQ(index.seenIn(eye, {{-0.13, 0.74, 0.66}}, true)[0].label.object, 0);
  // A millionth of a millimetre above it half of the sphere is.
  const Vector above{85051, 446072.625, 1e-9};
  const VisibleMap half = index.look(above, options);
  ASSERT_EQ(half.cells.size(), 2U);
  EXPECT_EQ(
      sceneFaultText(
          Judge(SceneBuilder()
                    .object()
                    .add({{85051, 446074.625, -2}, {85055, 446073.625, 3}, {85049, 446071.625, -1}})
                    .scene()),
          half),
      "");
}

// The plane of a polygon that is not quite flat is met behind an eye so near to it.
TEST(Look, APolygonHasADistanceThoughItsCornersLieOnBothSidesOfThePlaneBesideTheEye) {
  SceneBuilder builder;
  builder.object().add({{0.041121, -2.259494, -3.891400},
                        {2.014460, -2.328717, -3.573378},
                        {2.395061, -0.974884, -5.640327},
                        {0.421721, -0.905660, -5.958350}});
  Visibility::LookOptions options;
  options.field = Visibility::Field::Sphere;
  const VisibleMap map =
      SceneIndex(builder.scene()).look({1.577493, -2.996981, -2.579656}, options);
  ASSERT_EQ(map.cells.size(), 2U);
  EXPECT_EQ(faultText(map), "");
  EXPECT_NEAR(map.cells[0].minDistance, 1.27475, 1e-4);
  EXPECT_NEAR(map.cells[0].maxDistance, 4.13824, 1e-4);
}

// It became a part of what lies beyond, and left the field's border off its place.
TEST(Look, ASliverAtTheEndOfTheFieldIsTakenUpWithinIt) {
  HardScene scene;
  SceneBuilder builder;
  builder.object().add({{85078.625, 446090, 0}, {85085.625, 446090, 0}, {85083.625, 446087, 1}});
  builder.object().add({{85085.625, 446090, 0}, {85079.625, 446094, 4}, {85079.625, 446090, -3}});
  scene.scene = builder.scene();
  scene.eye = {85082.625, 446091, 0};
  scene.options.forward = {0, 0, 1};
  expectRight(scene);
}

// The tip of the triangle is a sliver beside the wall in front, and the line in which it crosses
// the wall behind stayed as their border.
TEST(Look, ACrossingIsOneOfTheRegionsBesideIt) {
  HardScene scene;
  SceneBuilder builder;
  builder.object().add({{85096, 446030.25, -2},
                        {85096, 446031.25, -2},
                        {85096, 446031.25, 1},
                        {85096, 446030.25, 1}});
  builder.object().add(
      {{85095.5, 446029.25, -1}, {85098.5, 446029.25, -1}, {85097, 446029.75, 0.5}});
  builder.add({{85097, 446029.25, -1},
               {85097, 446030.25, -1},
               {85097, 446030.25, 2},
               {85097, 446029.25, 2}});
  scene.scene = builder.scene();
  scene.eye = {85094, 446034.25, -3};
  scene.options.forward = {0.45354571158451118, -0.55349562520341145, -0.69852622025517708};
  scene.options.twoSided = true;
  expectRight(scene);
}

}  // namespace
}  // namespace Lumivane::Truth
