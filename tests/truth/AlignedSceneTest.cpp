// Scenes whose edges run along the faces, borders and tiles of the cube on which the engine lays
// directions, or all but along them. It is turned against the scene's axes so that this does not
// happen to houses and rooms; what is seen must be right all the same.
#include "truth/Builder.h"
#include "truth/Invariants.h"
#include "truth/MapCheck.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using Visibility::LookOptions;
using Visibility::SceneIndex;
using Visibility::Vector;
using Visibility::VisibleMap;

constexpr Vector Eye{0.0, 0.0, 0.0};

/// From the axes of the cube to those of the scene.
Vector fromCube(const Vector& v) {
  constexpr std::array<Vector, 3> Axes{{
      {0.28877634118604695, -0.4555842614920781, 0.8420517831178302},
      {0.9485137722244249, 0.01661011542877444, -0.3163000600158563},
      {0.13011475193763145, 0.8900376872617026, 0.43692455479412934},
  }};
  Vector result{};
  for (std::size_t i = 0; i < 3; ++i)
    result[i] = Axes[0][i] * v[0] + Axes[1][i] * v[1] + Axes[2][i] * v[2];
  return result;
}

/// What is seen at (x, y) of a face, at a depth.
class Face {
 public:
  explicit Face(Random& random) : axis(static_cast<std::size_t>(random.below(3))) {
    if (random.below(2) == 0) sign = -1.0;
    if (random.below(2) == 0) std::swap(u, v);
  }
  Vector operator()(double x, double y, double depth) const {
    Vector result{};
    result[axis] = sign * depth;
    result[(axis + u) % 3] = x * depth;
    result[(axis + v) % 3] = y * depth;
    return fromCube(result);
  }

 private:
  std::size_t axis;
  std::size_t u = 1;
  std::size_t v = 2;
  double sign = 1.0;
};

/// A border of tiles.
double border(Random& random) {
  const int parts = 1 << random.below(7);
  return static_cast<double>(2 * random.below(parts + 1) - parts) / parts;
}

double powerOfTen(Random& random, double low, double high) {
  return std::pow(10.0, random.between(low, high));
}

Vector gridPoint(Random& random, int most, double step) {
  const auto one = [&] { return step * (random.below(2 * most + 1) - most); };
  const double x = one();
  const double y = one();
  return fromCube({x, y, one()});
}

void triangles(Random& random, SceneBuilder& builder) {
  const int most = 1 + random.below(3);
  const double step = random.below(2) == 0 ? 1.0 : 0.5;
  for (int i = 3 + random.below(50); i > 0; --i) {
    const Vector a = gridPoint(random, most, step);
    const Vector b = gridPoint(random, most, step);
    builder.object().add({a, b, gridPoint(random, most, step)});
  }
}

/// Walls with or without slits between them, and much that they hide.
void screens(Random& random, SceneBuilder& builder) {
  const Face at(random);
  std::vector<double> ends{-1.2, 1.2};
  for (int i = 1 + random.below(4); i > 0; --i) ends.push_back(border(random));
  std::sort(ends.begin(), ends.end());
  const double slit = random.below(3) == 0 ? 0.0 : powerOfTen(random, -12.0, -2.0);
  for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
    const double from = ends[i] + slit;
    const double to = ends[i + 1];
    if (!(from < to)) continue;
    const double depth = 1.0 + 0.1 * random.below(5);
    builder.object().addFacing(
        {at(from, -1.1, depth), at(to, -1.1, depth), at(to, 1.1, depth), at(from, 1.1, depth)},
        Eye);
  }
  for (int i = 10 + random.below(80); i > 0; --i) {
    const double depth = 2.0 + 0.01 * i;
    const double x0 = border(random);
    const double y0 = border(random);
    const double x1 = border(random);
    const double y1 = border(random);
    if (x0 == x1 || y0 == y1) continue;
    if (random.below(2) == 0)
      builder.object().addFacing(
          {at(x0, y0, depth), at(x1, y0, depth), at(x1, y1, depth), at(x0, y1, depth)}, Eye);
    else
      builder.object().addFacing(
          {at(x0, y0, depth), at(x1, y1, depth), at(border(random), y0, depth + 1.0)}, Eye);
  }
}

/// Strips whose long sides are off the upright or level line by some units of the cube.
void strips(Random& random, SceneBuilder& builder) {
  const Face at(random);
  const auto tiny = [&] {
    return (random.below(9) - 4) * 0x1p-50 *
           (random.below(3) > 0 ? 1.0 : powerOfTen(random, 0.0, 5.0));
  };
  for (int i = 10 + random.below(50); i > 0; --i) {
    const double depth = random.between(0.8, 3.0);
    const double x = random.below(2) == 0 ? border(random) : random.between(-1.0, 1.0);
    const double end = x + powerOfTen(random, -9.0, -0.5);
    const double before = x + tiny();
    const double behind = end + tiny();
    if (random.below(2) == 0)
      builder.object().addFacing({at(x, -0.9, depth), at(behind, -0.9, depth), at(end, 0.9, depth),
                                  at(before, 0.9, depth)},
                                 Eye);
    else
      builder.object().addFacing({at(-0.9, before, depth), at(0.9, x, depth), at(0.9, end, depth),
                                  at(-0.9, behind, depth)},
                                 Eye);
  }
}

/// Planes that run through each other along lines of any slope, and edges of any slope.
void steepLines(Random& random, SceneBuilder& builder) {
  const Face at(random);
  const auto slope = [&] {
    return (random.below(2) == 0 ? 1.0 : -1.0) * powerOfTen(random, 2.0, 16.0);
  };
  for (int i = 2 + random.below(5); i > 0; --i) {
    const double run = 1.0 / slope();
    const double shift = random.between(-0.5, 0.5);
    const double lean = random.between(-0.3, 0.3);
    const auto corner = [&](double x, double y) {
      return at(x, y, 1.0 / (1.0 + lean * (x - y * run - shift)));
    };
    const double reach = random.between(0.8, 0.95);
    builder.object().addFacing({corner(-reach, -reach), corner(reach, -reach), corner(reach, reach),
                                corner(-reach, reach)},
                               Eye);
  }
  for (int i = 0; i < 10; ++i) {
    const double x = random.between(-0.9, 0.9);
    const double depth = random.between(0.7, 2.0);
    const Vector top = at(x + 1.0 / slope(), random.between(0.0, 0.8), depth);
    const double y = random.between(-0.9, 0.9);
    builder.object().addFacing({at(x, -0.8, depth), top, at(random.between(-0.9, 0.9), y, depth)},
                               Eye);
  }
}

void expectRight(const Visibility::PolygonScene& scene) {
  LookOptions options;
  options.twoSided = true;
  options.field = Visibility::Field::Sphere;
  const VisibleMap map = SceneIndex(scene).look(Eye, options);
  EXPECT_NEAR(areaError(map), 0.0, 1e-9);
  EXPECT_EQ(faultText(map), "");
  const RayReport report = checkByRays(Judge(scene), map, 600, 3);
  EXPECT_TRUE(report.wrong.empty()) << report.text();
}

using Make = void (*)(Random&, SceneBuilder&);

class AlignedSceneProperty : public ::testing::TestWithParam<Make> {};

TEST_P(AlignedSceneProperty, IsSeenAsWellAsAnyOther) {
  for (std::uint64_t seed = 1; seed <= 15; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random random(seed);
    SceneBuilder builder;
    GetParam()(random, builder);
    expectRight(builder.scene());
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, AlignedSceneProperty,
                         ::testing::Values(triangles, screens, strips, steepLines));

TEST(AlignedScene, ATriangleIsSeenBesideAWallWithAnUprightEdge) {
  Random random(1);
  const Face at(random);
  SceneBuilder builder;
  builder.object().addFacing(
      {at(0.6, -0.9, 1.5), at(0.95, -0.9, 1.5), at(0.95, 0.9, 1.5), at(0.6, 0.9, 1.5)}, Eye);
  builder.object().addFacing({at(0.2, -0.05, 2.2), at(0.93, 0.85, 2.2), at(0.9, -0.8, 2.2)}, Eye);
  expectRight(builder.scene());
}

TEST(AlignedScene, PlanesThatCrossAlongAnUprightLineAreTurnedAgainstEachOtherThereAlone) {
  Random random(1);
  const Face at(random);
  // A line that is off the upright by 1e-5, and was taken for upright over the whole face.
  const auto depth = [](double x, double y, double lean) {
    return 1.0 / (1.0 + lean * (x - 1e-5 * y - 0.1));
  };
  SceneBuilder builder;
  for (const double lean : {0.2, -0.2}) {
    const auto corner = [&](double x, double y) { return at(x, y, depth(x, y, lean)); };
    builder.object().addFacing(
        {corner(-0.9, -0.9), corner(0.9, -0.9), corner(0.9, 0.9), corner(-0.9, 0.9)}, Eye);
  }
  const Visibility::PolygonScene scene = builder.scene();
  LookOptions options;
  options.field = Visibility::Field::Sphere;
  const VisibleMap map = SceneIndex(scene).look(Eye, options);
  const Judge judge(scene);
  for (const double y : {-0.8, -0.5, -0.1, 0.2, 0.6, 0.85})
    for (const double off : {-6e-6, -3e-6, 3e-6, 6e-6})
      EXPECT_TRUE(checkDirection(judge, map, at(0.1 + 1e-5 * y + off, y, 1.0))) << y << ' ' << off;
}

// It lost the edge between what the line passes before that corner and behind it.
TEST(AlignedScene, ASteepLineThatPassesACornerBetweenTwoWholeNumbersGoesOn) {
  const Vector eye{-0.137251, -0.331123, -0.428975};
  SceneBuilder builder;
  builder.object().add({{-0.539314, -0.453324, -0.060312},
                        {0.4092, -0.436714, -0.376612},
                        {0.683702, 0.225532, 0.481338}});
  builder.object().add({{-0.209446, -0.217227, -0.639488},
                        {-0.474257, -0.008305, 0.15815},
                        {0.553588, -0.664506, 0.044414}});
  for (const auto field : {Visibility::Field::Sphere, Visibility::Field::Hemisphere}) {
    LookOptions options;
    options.field = field;
    options.forward = {0.685267, 0.412499, -0.600211};
    const SceneIndex index(builder.scene());
    const VisibleMap map = index.look(eye, options);
    EXPECT_NEAR(areaError(map), 0.0, 1e-9);
    EXPECT_EQ(faultText(map), "");
    EXPECT_EQ(differencesFromSingle(index, map, 600, 3), 0U);
  }
}

// They were found to meet a unit beside where they do, farther off than the line passes around it.
TEST(AlignedScene, ASteepLineMeetsTheEndOfTheFieldWhereItIs) {
  SceneBuilder builder;
  builder.object().add(
      {{-5.1234792495488961e-07, 5.1391023558842323e-07, 1.634833118420355e-06},
       {1.0225864534613461e-06, 4.0697129140799774e-07, 7.4831159490136833e-07},
       {5.9519390376602499e-07, 1.081241622282175e-06, -4.9793543864751406e-07},
       {-1.0867418377896013e-06, 1.4200953666471896e-06, -4.0059694917516151e-08}});
  builder.object().add(
      {{-3.7189025116995265e-07, 3.7302426199660212e-07, 1.1866516275709186e-06},
       {1.5741028071075971e-06, 6.2646502899497756e-07, 1.1519020011836413e-06},
       {9.1620262670232235e-07, 1.6643927435524194e-06, -7.6648929690040112e-07},
       {-7.8881688658752262e-07, 1.0307831785094832e-06, -2.9077525796516678e-08}});
  LookOptions options;
  options.twoSided = true;
  options.forward = {-0.56470754435707649, 0.77744069268080107, -0.2769320470985559};
  const Visibility::PolygonScene scene = builder.scene();
  const VisibleMap map = SceneIndex(scene).look(Eye, options);
  EXPECT_NEAR(areaError(map), 0.0, 1e-9);
  EXPECT_EQ(faultText(map), "");
  const RayReport report = checkByRays(Judge(scene), map, 600, 3);
  EXPECT_TRUE(report.wrong.empty()) << report.text();
}

// Where the line of two planes is upright, it was found out within a unit beside it which of them
// is in front, and what came out was shown as far as no other line ended.
TEST(AlignedScene, WhatIsInFrontBesideAnUprightCrossingIsNotFoundOutOnIt) {
  const double size = 1e6;
  const auto point = [&](double x, double y, double z) {
    const Vector p = fromCube({x, y, z});
    return Vector{size * p[0], size * p[1], size * p[2]};
  };
  SceneBuilder builder;
  builder.object().add({point(1, -1, 0), point(-1, 0, 0), point(1, 1, -1)});
  builder.object().add({point(1, 1, 0), point(0, -1, -1), point(0, 0, -1)});
  builder.object().add({point(0, 0, -1), point(1, 1, 0), point(0, -1, 1)});
  builder.object().add({point(-1, 1, -1), point(1, -1, 0), point(0, 1, 0)});
  expectRight(builder.scene());
}

// A steep line with nothing between it and the level one below had a mark of its own there, and the
// part of the stop between the two was no border of anything.
TEST(AlignedScene, TheEndOfASteepLineBesideALevelOneLeavesNoGap) {
  const Vector eye{-1.79486, -1.354689, -0.711194};
  const Vector a{0.650046, -0.398973, -2.813940};
  const Vector b{1.083210, -1.082349, -1.550863};
  const Vector c{0.134697, -1.098959, -1.234563};
  const Vector d{1.148268, -0.637330, -1.332401};
  SceneBuilder builder;
  builder.object().add({a, b, c, {-0.298468, -0.415583, -2.497640}});
  builder.add({{0.715103, 0.046046, -2.595478}, d, b, a});
  builder.add({b, d, {0.199754, -0.653940, -1.016100}, c});
  LookOptions options;
  options.twoSided = true;
  options.field = Visibility::Field::Sphere;
  const SceneIndex index(builder.scene());
  const VisibleMap map = index.look(eye, options);
  EXPECT_NEAR(areaError(map), 0.0, 1e-9);
  EXPECT_EQ(faultText(map), "");
  EXPECT_EQ(differencesFromSingle(index, map, 600, 3), 0U);
}

// Where the field ends in an edge of the cube, a third of it was lost.
TEST(AlignedScene, TheFieldMayEndAlongTheBordersOfTheCube) {
  const Visibility::PolygonScene scene =
      SceneBuilder().object().addFacing({{2, -1, -1}, {2, 1, -1}, {2, 0, 2}}, Eye).scene();
  const SceneIndex index(scene);
  for (int x : {-1, 0, 1})
    for (int y : {-1, 0, 1})
      for (int z : {-1, 0, 1}) {
        if (x == 0 && y == 0 && z == 0) continue;
        for (const double off : {0.0, 1e-16, -1e-16, 1e-15}) {
          LookOptions options;
          options.forward = fromCube({x + off, y - off, z + 2.0 * off});
          const VisibleMap map = index.look(Eye, options);
          EXPECT_NEAR(areaError(map), 0.0, 1e-9);
          EXPECT_EQ(faultText(map), "") << x << y << z << ' ' << off;
        }
      }
}

// On the last unit before the lower side of the face it passes the edges there, below which the
// same was shown on both sides of it.
TEST(AlignedScene, AnAllButUprightCrossingIsOneBelowTheLastEdgesToo) {
  SceneBuilder builder;
  builder.object().add({{-0.38471117213533623, -0.8710961801902566, 0.4219021002156321},
                        {-0.21789738759991129, 0.2699777778375673, 0.9820617858491313},
                        {-0.7909246612309961, 1.1485636693196217, -0.13110963819915156},
                        {-1.015260440433809, -0.38598406733848634, -0.8844278361200643}});
  builder.object().add({{-0.36153580031995447, -0.8186205066848193, 0.39648631104601556},
                        {-0.32067917420364306, 0.39732578625151416, 1.4452984772874005},
                        {-0.865540195309392, 1.2569187324629822, -0.14347847199152436},
                        {-0.7094591029537458, -0.26972380609195423, -0.6180339095778762}});
  builder.object().add({{-0.7247948070071937, -0.9172132205517038, 0.9398895657366219},
                        {-0.47211100646647436, 0.5849518519813959, 2.127800536006451},
                        {-0.7748040203310647, -0.29456678823200266, -0.674958085460049}});
  builder.object().add({{-0.4478727078590481, -1.0141119709677613, 0.49116960920625813},
                        {-0.22072722380250742, 0.2734839827445487, 0.994815835016003},
                        {-1.239827847335075, 1.8004511573118394, -0.20552321663650785},
                        {-2.18092983500596, -0.8291509594678597, -1.8998820183319902}});
  builder.object().add({{-0.9679829492437492, -2.1917903888658072, 1.0615601231232035},
                        {-0.414536493482758, 0.5136162602763477, 1.8683126657617621},
                        {-0.5663411154493552, 0.822428306426396, -0.09388097550062707},
                        {-0.8293676837346609, -0.31531092824834095, -0.722490344999489}});
  builder.object().add({{-0.8439954124333287, -0.43037155886945816, -0.1674764542333572},
                        {-0.2786228890621816, 0.34521748641525, 1.2557511360038072},
                        {-1.154609912650214, -0.438962272659455, -1.0058198920581123}});
  expectRight(builder.scene());
}

// Rounding took the places where edges meet the end of the field at a millionth of a radian off it.
TEST(AlignedScene, EdgesThatAllButRunAlongTheEndOfTheFieldMeetItThere) {
  SceneBuilder builder;
  builder.object().add({{0.195733, 0.534749, -0.528581},
                        {0.147367, 1.070277, -0.710803},
                        {0.319918, 1.011789, -0.928493},
                        {0.368284, 0.476261, -0.746271}});
  LookOptions options;
  options.twoSided = true;
  options.forward = {1.3674048282429647, 0.45106357987364915, 0.96267627646231613};
  const VisibleMap map = SceneIndex(builder.scene()).look(Eye, options);
  EXPECT_NEAR(areaError(map), 0.0, 1e-9);
  EXPECT_EQ(faultText(map), "");
}

// Of an eye at a wall, far from the origin: rounding kept the end of a steep crossing off the lower
// side of the face, and so from what lies between it and that.
TEST(AlignedScene, ASteepCrossingEndsOnTheSideOfTheFace) {
  SceneBuilder builder;
  builder.object().add({{-480644.7361985089, 771057.6764176004, 417674.6632925432},
                        {-480643.6290231474, 771056.3474057671, 417674.7521197115},
                        {-480643.08001730236, 771057.6718968801, 417676.4680206042}});
  builder.object().add({{-480644.4474221677, 771057.2208333389, 417675.5053443263},
                        {-480643.65756998473, 771058.583065403, 417674.783917038},
                        {-480642.391733034, 771055.908431621, 417675.27787143464}});
  builder.object().add({{-480642.26161828206, 771056.7984693083, 417675.7147959894},
                        {-480642.6805093752, 771056.3640158825, 417674.43581965147},
                        {-480644.28876057843, 771055.8752113902, 417675.9104715546}});
  LookOptions options;
  options.twoSided = true;
  options.field = Visibility::Field::Sphere;
  const SceneIndex index(builder.scene());
  const VisibleMap map =
      index.look({-480643.49890839547, 771057.23744345433, 417675.1890442663}, options);
  EXPECT_NEAR(areaError(map), 0.0, 1e-9);
  EXPECT_EQ(faultText(map), "");
  EXPECT_EQ(differencesFromSingle(index, map, 6000, 3), 0U);
}

int countOf(const VisibleMap& map, VisibleMap::EdgeKind kind) {
  return static_cast<int>(
      std::count_if(map.edges.begin(), map.edges.end(),
                    [kind](const VisibleMap::Edge& edge) { return edge.kind == kind; }));
}

// They were silhouettes, in as many pieces as there were tiles beside them.
TEST(AlignedScene, EdgesAlongTheBordersOfTheCubeAreCreases) {
  const Vector low = fromCube({1.0, -0.5, 1.0});
  const Vector high = fromCube({1.0, 0.6, 1.0});
  SceneBuilder builder;
  builder.object().addFacing({low, high, fromCube({0.2, 0.1, 1.2})}, Eye);
  builder.addFacing({low, high, fromCube({1.3, 0.05, 0.3})}, Eye);
  LookOptions options;
  options.field = Visibility::Field::Sphere;
  const VisibleMap map = SceneIndex(builder.scene()).look(Eye, options);
  EXPECT_EQ(map.vertices.size(), 4U);
  EXPECT_EQ(countOf(map, VisibleMap::EdgeKind::Crease), 1);
  EXPECT_EQ(countOf(map, VisibleMap::EdgeKind::Silhouette), 4);
  // So do edges behind them, in the same directions.
  for (int i = 0; i < 60; ++i) {
    const double size = 0.3 + 0.004 * i;
    builder.object().addFacing({fromCube({3.0, -size, 3.0}), fromCube({3.0, size, 3.0}),
                                fromCube({3.4 - size, 0.1 * size, 3.0})},
                               Eye);
  }
  const VisibleMap more = SceneIndex(builder.scene()).look(Eye, options);
  EXPECT_EQ(more.vertices, map.vertices);
  EXPECT_EQ(more.edges.size(), map.edges.size());
  EXPECT_EQ(countOf(more, VisibleMap::EdgeKind::Crease), 1);
}

}  // namespace
}  // namespace Lumivane::Truth
