// The sweep by tiles against a plain look at points, against areas by other means, and against
// itself after changes that must not matter.

#include "measure/HandShot.h"
#include "plain/VisibleShares.h"
#include "plain/VisibleSlabs.h"
#include "support/ShotScene.h"
#include "support/Vectors.h"

#include <lumivane/base/ViewCamera.h>
#include <lumivane/cmd/CmdManager.h>
#include <lumivane/measure/ShotAudit.h>
#include <lumivane/session/Files.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/ShotFile.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

namespace fs = std::filesystem;
using Algorithm::ProjectionType;
using Kernel::Vec2;
using Test::HandShot;
using Test::Outline;

constexpr double Pi = 3.141592653589793;
constexpr double SumTolerance = 1e-9;
constexpr ProjectionType Both[] = {ProjectionType::Radial, ProjectionType::Square};

double uniform(std::mt19937_64& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

// A star around a random middle, its points at random distances: it may cross itself.
Outline star(std::mt19937_64& random, double size, int points) {
  const double x = uniform(random, -0.45, 0.45);
  const double y = uniform(random, -0.45, 0.45);
  Outline outline;
  for (int i = 0; i < points; ++i) {
    const double angle = 2 * Pi * (i + uniform(random, -1.0, 1.0)) / points;
    const double radius = size * uniform(random, 0.1, 1.0);
    outline.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
  }
  return outline;
}

// As a shot merges points: onto others, here those of a grid.
Outline merged(Outline outline, double grid) {
  for (auto& [x, y] : outline) {
    x = std::round(x / grid) * grid;
    y = std::round(y / grid) * grid;
  }
  return outline;
}

Share sumOf(const VisibleShares& shares) {
  Share sum = shares.open();
  for (const RegionShare& region : shares.regions()) {
    sum.area += region.share.area;
    sum.viewFactor += region.share.viewFactor;
    sum.solidAngle += region.share.solidAngle;
  }
  return sum;
}

void expectWholeAndNotNegative(const VisibleShares& shares, const std::string& what) {
  const Share sum = sumOf(shares);
  const Share whole = shares.whole();
  EXPECT_NEAR(1.0, sum.area / whole.area, SumTolerance) << what;
  EXPECT_NEAR(1.0, sum.viewFactor, SumTolerance) << what;
  EXPECT_NEAR(1.0, sum.hemisphereShare(), SumTolerance) << what;
  for (const RegionShare& region : shares.regions()) {
    EXPECT_GE(region.share.area, 0.0) << what;
    EXPECT_GE(region.share.viewFactor, 0.0) << what;
    EXPECT_GE(region.share.solidAngle, 0.0) << what;
  }
  EXPECT_GE(shares.open().area, -1e-12) << what;
  EXPECT_GE(shares.open().solidAngle, 0.0) << what;
}

// Areas by looking at the points of a shifted grid. Of n * n points over the square, about as many
// are misjudged as lie along the outlines, to either side: the error is a few roots of their
// number.
std::vector<double> areasByPoints(const Shot::Shot2d& shot, int n) {
  const std::vector<Plain::Polygon> outlines = Plain::outlines(shot);
  std::vector<double> areas(outlines.size() + 1, 0.0);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      const Vec2 p = {2.0 * (i + 0.317) / n - 1.0, 2.0 * (j + 0.683) / n - 1.0};
      areas[Plain::topmostRegion(outlines, p)] += 4.0 / n / n;
    }
  }
  return areas;
}

void expectAreasOfPoints(const Shot::Shot2d& shot, const VisibleShares& shares, int n,
                         const std::string& what) {
  const std::vector<double> expected = areasByPoints(shot, n);
  const double tolerance = 6.0 * std::pow(n, -1.5) * 4.0;
  for (size_t i = 0; i < shares.regions().size(); ++i)
    EXPECT_NEAR(expected[i + 1], shares.regions()[i].share.area, tolerance)
        << what << ", region " << i + 1;
}

// Slivers between chords and arcs can make a solid angle less than nothing: it is taken as nothing,
// and the rest in proportion.
std::vector<double> raisedToZero(std::vector<double> angles) {
  double sum = 0.0;
  for (double& angle : angles) sum += angle = std::max(angle, 0.0);
  for (double& angle : angles) angle *= 2 * Pi / sum;
  return angles;
}

constexpr double Rounding = 1e-11;

void expectAreasOfSlabs(const HandShot& hand, const std::string& what) {
  const Plain::VisibleSums expected = Plain::VisibleSlabs(Plain::outlines(hand.shot)).sums;
  const VisibleShares shares = hand.round();
  EXPECT_NEAR(expected.areas[0], shares.open().area, Rounding) << what;
  for (size_t i = 0; i < shares.regions().size(); ++i)
    EXPECT_NEAR(expected.areas[i + 1], shares.regions()[i].share.area, Rounding)
        << what << ", region " << i + 1;
}

void expectSolidAnglesOfSlabs(const HandShot& hand, const std::string& what) {
  const Plain::VisibleSums expected = Plain::VisibleSlabs(Plain::outlines(hand.shot)).sums;
  const std::vector<double> angles = raisedToZero(expected.solidAngles);
  const VisibleShares shares = hand.round();
  EXPECT_NEAR(angles[0], shares.open().solidAngle, Rounding) << what;
  for (size_t i = 0; i < shares.regions().size(); ++i)
    EXPECT_NEAR(angles[i + 1], shares.regions()[i].share.solidAngle, Rounding)
        << what << ", region " << i + 1;
}

TEST(VisibleSharesProperty, RandomRegionsHaveTheSumsOfPlainSlabs) {
  std::mt19937_64 random(20260111);
  for (int round = 0; round < 150; ++round) {
    HandShot hand;
    const int regions = 1 + static_cast<int>(random() % 25);
    for (int i = 0; i < regions; ++i)
      hand.add(star(random, uniform(random, 0.05, 0.36), 3 + static_cast<int>(random() % 9)));
    expectAreasOfSlabs(hand, "round " + std::to_string(round));
    expectSolidAnglesOfSlabs(hand, "round " + std::to_string(round));
  }
}

// Edges of different lengths lie on each other here: which one's arc counts is left to rounding.
TEST(VisibleSharesProperty, MergedPointsWithSharedEdgesHaveTheAreasOfPlainSlabs) {
  std::mt19937_64 random(20260112);
  for (int round = 0; round < 150; ++round) {
    HandShot hand;
    for (int i = 0; i < 30; ++i) hand.add(merged(star(random, 0.3, 5), 0.0625));
    expectAreasOfSlabs(hand, "round " + std::to_string(round));
  }
}

// Edges that are level in the turned frame to the last bit.
TEST(VisibleSharesProperty, EdgesAlongTheSweepsFrameKeepTheirSolidAngle) {
  const double c = std::cos(0.4142);
  const double s = std::sin(0.4142);
  const auto height = [c, s](Vec2 p) { return s * p.x + c * p.y; };
  std::mt19937_64 random(20260113);
  int found = 0;
  while (found < 40) {
    const Vec2 a = {uniform(random, -0.5, 0.0), uniform(random, -0.5, 0.5)};
    const double length = uniform(random, 0.1, 0.4);
    const Vec2 b = {a.x + length * c, a.y - length * s};
    if (height(a) != height(b)) continue;
    ++found;
    HandShot hand;
    hand.add({{a.x, a.y}, {b.x, b.y}, {0.1, 0.6}});
    expectSolidAnglesOfSlabs(hand, "edge " + std::to_string(found));
  }
}

TEST(VisibleSharesProperty, RandomRegionsHaveTheAreasThatPointsTell) {
  std::mt19937_64 random(20260101);
  for (int round = 0; round < 40; ++round) {
    HandShot hand;
    const int regions = 1 + round % 20;
    for (int i = 0; i < regions; ++i) hand.add(star(random, 0.28, 3 + i % 9));
    const std::string what = "round " + std::to_string(round);
    for (const ProjectionType type : Both) {
      const VisibleShares shares(hand.shot, type);
      expectWholeAndNotNegative(shares, what);
      expectAreasOfPoints(hand.shot, shares, 120, what);
    }
  }
}

TEST(VisibleSharesProperty, MergedPointsWithSharedEdgesHaveTheAreasThatPointsTell) {
  std::mt19937_64 random(20260102);
  for (int round = 0; round < 30; ++round) {
    HandShot hand;
    for (int i = 0; i < 60; ++i) hand.add(merged(star(random, 0.25, 5), 0.05));
    const std::string what = "round " + std::to_string(round);
    const VisibleShares shares = hand.round();
    expectWholeAndNotNegative(shares, what);
    expectAreasOfPoints(hand.shot, shares, 121, what);
  }
}

TEST(VisibleSharesProperty, DenseScenesAddUpToTheWhole) {
  std::mt19937_64 random(20260103);
  for (const double size : {0.01, 0.1, 0.9}) {
    HandShot hand;
    for (int i = 0; i < 1500; ++i) hand.add(star(random, size, 12));
    for (const ProjectionType type : Both)
      expectWholeAndNotNegative(VisibleShares(hand.shot, type), std::to_string(size));
  }
}

// Outlines as no shot should have them, by kind.
Outline oddOutline(std::mt19937_64& random, int kind) {
  const double angle = uniform(random, 0.0, 2 * Pi);
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const double width = std::pow(10.0, uniform(random, -17.0, -3.0));
  const double size = std::pow(10.0, uniform(random, -3.0, 300.0));
  const double values[] = {0.0, 1.0, -1.0, 0.5, NAN, HUGE_VAL, 1e-300, 5e-324};
  const double near = std::ldexp(1.0, -static_cast<int>(random() % 60));
  Outline outline;
  switch (kind) {
    case 0:  // a sliver across the picture
      return {{-c, -s}, {c, s}, {c - width * s, s + width * c}};
    case 1:  // far outside
      for (int i = 0; i < 5; ++i)
        outline.push_back({uniform(random, -size, size), uniform(random, -size, size)});
      return outline;
    case 2:  // no numbers, and the least ones
      for (int i = 0; i < 5; ++i) outline.push_back({values[random() % 8], values[random() % 8]});
      return outline;
    case 3:  // nearly on others of its kind
      return {{-0.8, 0.1}, {0.8, 0.1 + near}, {0.8, -0.1 - near}};
    case 4:  // to and fro along the rim, a little outside
      for (int i = 0; i < 30; ++i) {
        const double along = uniform(random, 0.0, 2 * Pi);
        outline.push_back({1.0000001 * std::cos(along), 1.0000001 * std::sin(along)});
      }
      return outline;
    default:  // points that are repeated
      for (int i = 0; i < 5; ++i)
        outline.insert(outline.end(), 1 + random() % 3,
                       {uniform(random, -0.9, 0.9), uniform(random, -0.9, 0.9)});
      return outline;
  }
}

TEST(VisibleSharesProperty, OddOutlinesAddUpToTheWhole) {
  std::mt19937_64 random(20260114);
  for (int round = 0; round < 60; ++round) {
    HandShot hand;
    for (int i = 0; i < 40; ++i)
      hand.add(oddOutline(random, round < 36 ? round % 6 : static_cast<int>(random() % 6)));
    const std::string what = "round " + std::to_string(round);
    expectWholeAndNotNegative(hand.round(), what);
    expectWholeAndNotNegative(hand.square(), what);
  }
}

// Each polygon of a wheel has a corner in the hub and an edge in common with the next one.
TEST(VisibleSharesProperty, AWheelOfManySpokesIsSharedOutEvenly) {
  constexpr int Spokes = 3000;
  HandShot hand;
  const auto rim = [](int i) {
    const double angle = 2 * Pi * i / Spokes;
    return std::make_pair(0.123 + 0.6 * std::cos(angle), 0.077 + 0.6 * std::sin(angle));
  };
  for (int i = 0; i < Spokes; ++i) hand.add({{0.123, 0.077}, rim(i), rim(i + 1)});
  const VisibleShares shares = hand.round();
  const double expected = 0.5 * 0.36 * std::sin(2 * Pi / Spokes);
  for (const RegionShare& region : shares.regions())
    ASSERT_NEAR(expected, region.share.area, 1e-13) << region.regionNumber;
  expectWholeAndNotNegative(shares, "wheel");
}

// Lines that all cross in nearly one point, and lines that nearly lie on each other.
TEST(VisibleSharesProperty, BundlesOfEdgesAddUpToTheWhole) {
  std::mt19937_64 random(20260104);
  for (const double spread : {1e-3, 1e-6, 1e-9, 1e-13, 1e-16, 0.0}) {
    HandShot crossing;
    HandShot lying;
    for (int i = 0; i < 300; ++i) {
      const double angle = uniform(random, 0.0, 2 * Pi);
      const double x = uniform(random, -spread, spread) + 0.21;
      const double y = uniform(random, -spread, spread) - 0.13;
      const double u = 0.5 * std::cos(angle);
      const double v = 0.5 * std::sin(angle);
      crossing.add({{x + u, y + v}, {x - u, y - v}, {x - u - 0.01 * v, y - v + 0.01 * u}});
      lying.add({{-0.6 + uniform(random, -spread, spread), y},
                 {0.6, y + uniform(random, -spread, spread)},
                 {0.6, 0.5 + x}});
    }
    expectWholeAndNotNegative(crossing.round(), "crossing " + std::to_string(spread));
    expectWholeAndNotNegative(lying.round(), "lying " + std::to_string(spread));
    expectWholeAndNotNegative(lying.square(), "lying, square " + std::to_string(spread));
  }
}

// The topmost of many equal regions takes all, the others nothing.
TEST(VisibleSharesProperty, OfEqualRegionsTheLastOneIsVisible) {
  std::mt19937_64 random(20260105);
  const Outline outline = star(random, 0.2, 40);
  HandShot single;
  HandShot stack;
  single.add(outline);
  for (int i = 0; i < 400; ++i) stack.add(outline);
  const VisibleShares shares = stack.round();
  EXPECT_NEAR(single.round().regions()[0].share.area, shares.regions()[399].share.area, 1e-13);
  for (int i = 0; i < 399; ++i) ASSERT_EQ(0.0, shares.regions()[static_cast<size_t>(i)].share.area);
}

// Sutherland and Hodgman's clipping, for convex polygons that run counterclockwise.
Plain::Polygon clipped(Plain::Polygon subject, const Plain::Polygon& window) {
  for (size_t i = 0; i < window.size(); ++i) {
    const Vec2 a = window[i];
    const Vec2 b = window[(i + 1) % window.size()];
    const auto side = [a, b](Vec2 p) {
      return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
    };
    Plain::Polygon result;
    for (size_t k = 0; k < subject.size(); ++k) {
      const Vec2 p = subject[k];
      const Vec2 q = subject[(k + 1) % subject.size()];
      if (side(p) >= 0) result.push_back(p);
      if ((side(p) >= 0) != (side(q) >= 0))
        result.push_back(p + side(p) / (side(p) - side(q)) * (q - p));
    }
    subject = result;
  }
  return subject;
}

Plain::Polygon convex(std::mt19937_64& random) {
  std::vector<double> angles;
  for (int i = 0; i < 7; ++i) angles.push_back(uniform(random, 0, 2 * Pi));
  std::sort(angles.begin(), angles.end());
  const double x = uniform(random, -0.3, 0.3);
  const double y = uniform(random, -0.3, 0.3);
  Plain::Polygon polygon;
  for (const double angle : angles)
    polygon.push_back({x + 0.4 * std::cos(angle), y + 0.3 * std::sin(angle)});
  return polygon;
}

Outline outlineOf(const Plain::Polygon& polygon) {
  Outline outline;
  for (const Vec2 p : polygon) outline.push_back({p.x, p.y});
  return outline;
}

TEST(VisibleSharesProperty, OfTwoConvexRegionsTheFirstLosesWhatTheyHaveInCommon) {
  std::mt19937_64 random(20260106);
  for (int round = 0; round < 500; ++round) {
    const Plain::Polygon first = convex(random);
    const Plain::Polygon second = convex(random);
    HandShot hand;
    hand.add(outlineOf(first));
    hand.add(outlineOf(second));
    const VisibleShares shares = hand.round();
    const double common = 0.5 * Plain::twiceArea(clipped(first, second));
    EXPECT_NEAR(0.5 * Plain::twiceArea(first) - common, shares.regions()[0].share.area, 1e-12);
    EXPECT_NEAR(0.5 * Plain::twiceArea(second), shares.regions()[1].share.area, 1e-12);
  }
}

TEST(VisibleSharesProperty, PointsAddedOnEdgesAndTurnedOutlinesChangeNoArea) {
  std::mt19937_64 random(20260107);
  for (int round = 0; round < 40; ++round) {
    HandShot plain;
    HandShot changed;
    for (int i = 0; i < 30; ++i) {
      const Outline outline = star(random, 0.3, 6);
      plain.add(outline);
      Outline more;
      for (size_t k = 0; k < outline.size(); ++k) {
        const auto& [x, y] = outline[k];
        const auto& [u, v] = outline[(k + 1) % outline.size()];
        more.push_back({x, y});
        more.push_back({0.5 * (x + u), 0.5 * (y + v)});
      }
      if (i % 2 == 0) std::reverse(more.begin(), more.end());
      changed.add(more);
    }
    const VisibleShares before = plain.round();
    const VisibleShares after = changed.round();
    for (size_t i = 0; i < before.regions().size(); ++i)
      EXPECT_NEAR(before.regions()[i].share.area, after.regions()[i].share.area, 1e-12);
  }
}

// Where no outline cuts another, the solid angle of a region is that of the spherical polygon.
TEST(VisibleSharesProperty, TheSolidAngleOfALonelyRegionIsItsSphericalPolygons) {
  std::mt19937_64 random(20260108);
  for (int round = 0; round < 300; ++round) {
    const Plain::Polygon polygon = convex(random);
    std::vector<Kernel::Vec3> directions;
    for (const Vec2 p : polygon)
      directions.push_back({p.x, p.y, std::sqrt(1 - p.x * p.x - p.y * p.y)});
    // By the triangles around the first corner (van Oosterom and Strackee).
    double expected = 0.0;
    for (size_t i = 1; i + 1 < directions.size(); ++i) {
      const Kernel::Vec3 a = directions[0];
      const Kernel::Vec3 b = directions[i];
      const Kernel::Vec3 c = directions[i + 1];
      expected += 2 * std::atan2(dot(a, cross(b, c)), 1 + dot(a, b) + dot(b, c) + dot(c, a));
    }
    HandShot hand;
    hand.add(outlineOf(polygon));
    EXPECT_NEAR(expected, hand.round().regions()[0].share.solidAngle, 1e-12);
  }
}

// The share of a picture in which another region is drawn than is seen.
double wrongShare(const Shot::Shot2d& shot, ProjectionType projection, Scene::Scene3D& scene) {
  Visibility::LookOptions options;
  options.forward = {1, 0, 0};
  const Visibility::VisibleMap map = Visibility::SceneIndex(scene).look({0, 0, 0}, options);
  return ShotAudit(shot, projection, map).wrongShare();
}

// One place in space, seen by both cameras: the same shares but for the pictures' pieces. Where
// outlines meet in merged points alone, a shot does not notice that they overlap; such pictures are
// left out.
TEST(VisibleSharesProperty, BothPicturesOfASceneTellTheSameShares) {
  std::mt19937_64 random(20260109);
  int compared = 0;
  for (int round = 0; round < 20; ++round) {
    Lumivane::Test::ShotScene scene;
    for (int i = 0; i < 6; ++i) {
      const double x = 2.0 + 0.5 * ((i * 5 + round) % 6);  // no two at the same distance
      const double y = uniform(random, -3, 3);
      const double z = uniform(random, -3, 3);
      scene.addRegion(scene.addObject("wall " + std::to_string(i)),
                      {{x, y - 1, z - 1}, {x, y + 1, z - 1}, {x, y + 1, z + 1}, {x, y - 1, z + 1}});
    }
    Cmd::CmdManager::maxSegmentsLength = 0.01;
    const auto roundShot = scene.makeShot();
    const VisibleShares roundShares(*roundShot);
    scene.forget();
    scene.view.setCamera(&scene.normal);
    const auto squareShot = scene.makeShot();
    const VisibleShares squareShares(*squareShot);
    Cmd::CmdManager::maxSegmentsLength = 0.0;
    if (wrongShare(*roundShot, ProjectionType::Radial, scene.scene) > 1e-3 ||
        wrongShare(*squareShot, ProjectionType::Square, scene.scene) > 1e-3)
      continue;
    ++compared;
    for (size_t i = 0; i < roundShares.objects().size(); ++i) {
      const Share& a = roundShares.objects()[i].share;
      const Share& b = squareShares.objects()[i].share;
      EXPECT_NEAR(a.viewFactor, b.viewFactor, 2e-4) << round << " " << i;
      EXPECT_NEAR(a.solidAngle, b.solidAngle, 1e-3) << round << " " << i;
    }
  }
  EXPECT_GE(compared, 15);
}

std::vector<fs::path> goldenShots() {
  std::vector<fs::path> shots;
  for (const auto& entry : fs::directory_iterator(Test::goldenDir()))
    if (entry.path().string().find(".shot.json") != std::string::npos)
      shots.push_back(entry.path());
  std::sort(shots.begin(), shots.end());
  return shots;
}

ProjectionType projectionOfCase(const fs::path& shot) {
  std::string view = shot.string();
  view.replace(view.find(".shot.json"), std::string::npos, ".view.json");
  const Test::Json json = Test::Json::parse(Session::readBytes(view));
  return json.value("camera", "spherical") == "normal" ? ProjectionType::Square
                                                       : ProjectionType::Radial;
}

TEST(VisibleSharesProperty, GoldenShotsAddUpToTheWholeAndHaveTheAreasThatPointsTell) {
  const std::vector<fs::path> shots = goldenShots();
  ASSERT_FALSE(shots.empty());
  for (const fs::path& path : shots) {
    const auto shot = Session::readShot(path.string());
    if (shot->getRegions() == nullptr) continue;
    const VisibleShares shares(*shot, projectionOfCase(path));
    expectWholeAndNotNegative(shares, path.filename().string());
    expectAreasOfPoints(*shot, shares, 60, path.filename().string());
  }
}

TEST(VisibleSharesProperty, SampleScenesAddUpToTheWhole) {
  for (const auto& [scene, eye] :
       std::vector<std::pair<std::string, Session::Vector>>{{"small", {-2.6, 0.35, 1.9}},
                                                            {"room", {0.35, 2.137, 1.6}},
                                                            {"street", {-5.3, -1.37, 3.4}}}) {
    Session::LoadedScene loaded =
        Session::LoadedScene::fromFile(LUMIVANE_SCENES "/" + scene + ".json");
    for (const Base::ViewCameraKind camera :
         {Base::ViewCameraKind::Spherical, Base::ViewCameraKind::Normal}) {
      Session::ViewSettings view;
      view.eye = eye;
      view.camera = camera;
      expectWholeAndNotNegative(VisibleShares(loaded.take(view).shot()), scene);
    }
  }
}

}  // namespace
}  // namespace Lumivane::Measure
