// Splitting, both projections, the settling of the piece counts and the docking edges.

#include "algorithm/pipeline/RegionProjector.h"
#include "support/Capture.h"
#include "support/ShotCreatorProbe.h"
#include "support/ShotScene.h"
#include "support/Thrown.h"
#include "support/Vectors.h"
#include "utils/Shapes.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::PlanePolygon;
using Algorithm::ProjectionType;
using Algorithm::RegionProjector;
using Geometry::EdgeStartPoint2d;
using Polygon = std::vector<std::vector<double>>;
using Numbers = std::vector<std::vector<int>>;
using Project = std::vector<EdgeStartPoint2d*> (*)(std::vector<int>*, Polygon, Polygon,
                                                   std::vector<double>, std::vector<double>,
                                                   std::vector<double>, int);

const Coordinates Origin = {0, 0, 0};
const Coordinates Right = {0, 1, 0};
const Coordinates Forward = {1, 0, 0};

// ---- The cases of the data files -------------------------------------------------------------

std::vector<std::vector<double>> coordinatesOf(const std::vector<EdgeStart>& points) {
  std::vector<std::vector<double>> result;
  result.reserve(points.size());
  for (const EdgeStart& point : points) result.push_back(point.coordinates);
  return result;
}

// Compares with a list of coordinates that end in the flag.
void expectPoints(const Json& expected, const std::vector<EdgeStart>& points) {
  std::vector<std::vector<double>> coordinates;
  ASSERT_EQ(expected.size(), points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    std::vector<double> point;
    for (std::size_t k = 0; k + 1 < expected[i].size(); ++k) {
      point.push_back(toDouble(expected[i][k]));
    }
    coordinates.push_back(point);
    EXPECT_EQ(expected[i].back().get<bool>(), points[i].hasEdge) << "point " << i;
  }
  EXPECT_TRUE(sameBits(coordinates, coordinatesOf(points)));
}

const VectorTests splitVectors("splitPoints", [](const VectorCase& c) {
  checkedRun(c, [&] {
    auto docking = c.in["dockingEdges"].get<std::vector<int>>();
    expectPoints(c.out, taken(ShotCreatorProbe::splitPoints(&docking, toVectors(c.in["polygon"]),
                                                            c.in["segmentCount"])));
  });
});

std::function<void(const VectorCase&)> projectionCheck(Project project) {
  return [project](const VectorCase& c) {
    checkedRun(c, [&] {
      auto docking = c.in["dockingEdges"].get<std::vector<int>>();
      expectPoints(c.out, taken(project(&docking, toVectors(c.in["polygon"]),
                                        toVectors(c.in["regionPoints"]), toVector(c.in["eye"]),
                                        toVector(c.in["right"]), toVector(c.in["forward"]),
                                        c.in["segmentCount"])));
    });
  };
}

const VectorTests radialVectors("projectPointsRadial",
                                projectionCheck(ShotCreatorProbe::projectPointsRadial));
const VectorTests squareVectors("projectPointsSquare",
                                projectionCheck(ShotCreatorProbe::projectPointsSquare));

std::vector<EdgeStart> edgeStarts(const PlanePolygon& polygon) {
  std::vector<EdgeStart> result;
  for (const Kernel::Vec2 point : polygon.points) result.push_back({{point.x, point.y}, true});
  for (const int number : polygon.edgeless)
    result[static_cast<std::size_t>(number) - 1].hasEdge = false;
  return result;
}

std::vector<std::vector<Kernel::Vec3>> plainPolygons(const Json& polygons) {
  std::vector<std::vector<Kernel::Vec3>> result;
  for (const Json& polygon : polygons) result.push_back(Utils::toVec3s(toVectors(polygon)));
  return result;
}

const VectorTests regionVectors("projectRegion", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const bool isRadial = c.in["type"] == "Radial";
    RegionProjector projector({isRadial ? ProjectionType::Radial : ProjectionType::Square,
                               Utils::toVec3(toVector(c.in["eye"])),
                               Kernel::backFrame(Utils::toVec3(toVector(c.in["right"])),
                                                 Utils::toVec3(toVector(c.in["forward"]))),
                               nullptr,
                               {},
                               1e-07});
    const auto result = projector.settle(plainPolygons(c.in["polygons"]), c.in["first"],
                                         toDouble(c.in["maxSegmentsLength"]));
    ASSERT_TRUE(result);
    EXPECT_EQ(c.out[0].get<std::vector<std::int64_t>>(), result->pieceCounts);
    ASSERT_EQ(c.out[1].size(), result->polygons.size());
    for (std::size_t i = 0; i < result->polygons.size(); ++i) {
      expectPoints(c.out[1][i], edgeStarts(result->polygons[i]));
    }
  });
});

// Points on the plane that free themselves.
class PlanePolygons {
 public:
  explicit PlanePolygons(const std::vector<Polygon>& polygons) {
    for (const Polygon& polygon : polygons) {
      pointers.emplace_back();
      for (const std::vector<double>& point : polygon) {
        owned.push_back(std::make_unique<EdgeStartPoint2d>(point[0], point[1]));
        pointers.back().push_back(owned.back().get());
      }
    }
  }
  std::vector<std::vector<EdgeStartPoint2d*>> pointers;

 private:
  std::vector<std::unique_ptr<EdgeStartPoint2d>> owned;
};

const VectorTests dockingVectors("getDockingEdges", [](const VectorCase& c) {
  checkedRun(c, [&] {
    std::vector<Polygon> polygons;
    for (const Json& polygon : c.in["polygons"]) polygons.push_back(toVectors(polygon));
    EXPECT_EQ(c.out.get<Numbers>(),
              ShotCreatorProbe::getDockingEdges(PlanePolygons(polygons).pointers));
  });
});

// ---- Splitting -------------------------------------------------------------------------------

TEST(SplitPoints, EdgesWithDockingNumbersHaveNoEdge) {
  std::vector<int> docking = {2, 4};
  const auto points = taken(ShotCreatorProbe::splitPoints(&docking, wallAhead(), 2));
  ASSERT_EQ(8u, points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_EQ(i / 2 % 2 == 0, points[i].hasEdge) << "point " << i;
  }
}

TEST(SplitPoints, WithoutAListEveryEdgeExists) {
  for (const EdgeStart& point : taken(ShotCreatorProbe::splitPoints(nullptr, wallAhead(), 3))) {
    EXPECT_TRUE(point.hasEdge);
  }
}

TEST(SplitPoints, OneShortEdgeGivesAnEmptyList) {
  EXPECT_TRUE(
      ShotCreatorProbe::splitPoints(nullptr, {{0, 0, 0}, {1, 0, 0}, {0, 0.00005, 0}}, 6).empty());
}

TEST(SplitPoints, ShortPointIsRefused) {
  EXPECT_EQ("invalid vector subscript", thrownText<std::out_of_range>([] {
              ShotCreatorProbe::splitPoints(nullptr, {{0, 0}, {1, 0, 0}}, 6);
            }));
}

// ---- The two projections ---------------------------------------------------------------------

TEST(ProjectPointsRadial, EmptyPolygonGivesNothingInSilence) {
  EXPECT_EQ("", capturedStdout([] {
              EXPECT_TRUE(ShotCreatorProbe::projectPointsRadial(nullptr, {}, wallAhead(), Origin,
                                                                Right, Forward, 6)
                              .empty());
            }));
}

TEST(ProjectPoints, EmptyPolygonReadsNoOtherArgument) {
  EXPECT_TRUE(ShotCreatorProbe::projectPointsRadial(nullptr, {}, {{1}}, {}, {}, {}, 6).empty());
  EXPECT_TRUE(ShotCreatorProbe::projectPointsSquare(nullptr, {}, {{1}}, {}, {}, {}, 6).empty());
}

TEST(ProjectPointsRadial, DockingNumbersAreReadForAnEmptyPolygonToo) {
  std::vector<int> docking = {0};
  EXPECT_EQ("invalid vector subscript", thrownText<std::out_of_range>([&] {
              ShotCreatorProbe::projectPointsRadial(&docking, {}, wallAhead(), Origin, Right,
                                                    Forward, 6);
            }));
}

TEST(ProjectPointsRadial, DockingEdgeIsTheRegionsAndItsEndKeepsItsEdge) {
  // The lower edge of the wall, as a polygon clipped at y = 0 has it.
  std::vector<int> docking = {1};
  const Polygon clipped = {{3, 0, -1}, {3, 1, -1}, {3, 1, 1}, {3, 0, 1}};
  const auto points = taken(ShotCreatorProbe::projectPointsRadial(&docking, clipped, wallAhead(),
                                                                  Origin, Right, Forward, 1));
  ASSERT_EQ(4u, points.size());
  EXPECT_FALSE(points[0].hasEdge);
  EXPECT_TRUE(points[1].hasEdge);
  EXPECT_TRUE(points[2].hasEdge);
  EXPECT_TRUE(points[3].hasEdge);
}

TEST(ProjectPointsRadial, DockingNumbersWrapAround) {
  std::vector<int> docking = {6};  // the second edge once more
  const auto points = taken(ShotCreatorProbe::projectPointsRadial(
      &docking, wallAhead(), wallAhead(), Origin, Right, Forward, 1));
  ASSERT_EQ(4u, points.size());
  EXPECT_TRUE(points[0].hasEdge);
  EXPECT_FALSE(points[1].hasEdge);
  EXPECT_TRUE(points[2].hasEdge);
}

std::string dockingError(std::vector<int> docking, const Polygon& regionPoints) {
  return thrownText<std::out_of_range>([&] {
    for (EdgeStartPoint2d* point : ShotCreatorProbe::projectPointsRadial(
             &docking, wallAhead(), regionPoints, Origin, Right, Forward, 1)) {
      delete point;
    }
  });
}

TEST(ProjectPointsRadial, DockingNumberBelowOneIsTakenWithItsSign) {
  EXPECT_EQ("invalid vector subscript", dockingError({0}, wallAhead()));
  EXPECT_EQ("invalid vector subscript", dockingError({-3}, wallAhead()));  // its end is at -3
  EXPECT_EQ("invalid vector subscript",
            dockingError({std::numeric_limits<int>::min()}, wallAhead()));
  EXPECT_EQ("nothing thrown", dockingError({0}, {{3, 0, 0}}));  // -1 modulo 1 is 0
}

TEST(ProjectPointsRadial, DockingNumbersWithoutRegionPointsAreRefused) {
  EXPECT_EQ("invalid vector subscript", dockingError({1}, {}));
  EXPECT_EQ("nothing thrown", dockingError({}, {}));
}

TEST(ProjectPointsRadial, PointsCloserThanThePrecisionCollapseIntoTheFirst) {
  // Far away, two corners fall together; the second is the start of a docking edge.
  const Polygon far = {{1e6, 0, 0}, {1e6, 0.01, 0}, {1e6, 1e6, 0}, {1e6, 1e6, 1e6}};
  std::vector<int> docking = {2};
  const auto points =
      taken(ShotCreatorProbe::projectPointsRadial(&docking, far, far, Origin, Right, Forward, 1));
  ASSERT_EQ(3u, points.size());
  EXPECT_TRUE(points[0].hasEdge);
}

TEST(ProjectPointsRadial, FirstAndLastPointAreNotCompared) {
  const Polygon far = {{1e6, 0, 0}, {1e6, 1e6, 0}, {1e6, 1e6, 1e6}, {1e6, 0.01, 0}};
  EXPECT_EQ(
      4u, taken(ShotCreatorProbe::projectPointsRadial(nullptr, far, far, Origin, Right, Forward, 1))
              .size());
}

const std::string ZeroLength = "Zero-length vector cannot be normalized\n";
const std::string Singular =
    "Error in get reverse matrix: determinant is 0"
    "Error in multiply vector 1x3 on matrix 3x3: matrix row number is not 3";

TEST(ProjectPointsSquare, NoFrameEndsAtTheFirstPoint) {
  std::string text;
  const std::string printed = capturedStdout([&] {
    text = thrownText<std::out_of_range>([] {
      ShotCreatorProbe::projectPointsSquare(nullptr, wallAhead(), wallAhead(), Origin, Forward,
                                            Forward, 6);
    });
  });
  EXPECT_EQ("invalid vector subscript", text);
  EXPECT_EQ(ZeroLength + Singular, printed);
}

// Two tiny directions, nearly parallel: a third without length, and yet a determinant.
TEST(ProjectPointsSquare, MessageOfAThirdWithoutLengthComesForEveryPoint) {
  const Coordinates right = {0x1.70887af69a4e2p-246, 0, 0x1.48365721697aep-246};
  const Coordinates forward = {0x1.46284b3a6770dp-246, 0, 0x1.22790b2d959aep-246};
  const auto frame = Kernel::backFrame(Utils::toVec3(right), Utils::toVec3(forward));
  ASSERT_TRUE(frame.thirdHasNoLength);
  ASSERT_FALSE(frame.singular);
  EXPECT_EQ(ZeroLength + ZeroLength + ZeroLength + ZeroLength, capturedStdout([&] {
              taken(ShotCreatorProbe::projectPointsSquare(nullptr, wallAhead(), wallAhead(), Origin,
                                                          right, forward, 1));
            }));
}

// ---- The regions of an object ----------------------------------------------------------------

// One object of a scene, and the creator that projects its regions.
class Projected {
 public:
  Projected() : object(shotScene.addObject("house")) {
    creator.setView(&shotScene.view);
    creator.setPoints(shotScene.scene.getPoints());
  }
  ~Projected() { shotScene.forget(); }

  // The points of every polygon of every region.
  std::vector<std::vector<std::vector<EdgeStart>>> project(ProjectionType type) {
    auto* regions = creator.projectPoints(&object, &polygons, type);
    std::vector<std::vector<std::vector<EdgeStart>>> result;
    for (const auto& region : *regions) {
      result.emplace_back();
      for (const auto& polygon : region) result.back().push_back(taken(polygon));
    }
    delete regions;
    return result;
  }

  ShotScene shotScene;
  Scene::Object& object;
  ShotCreatorProbe creator;
  ShotCreatorProbe::RegionPolygons polygons;
};

TEST(ProjectPoints, WithoutALimitEveryEdgeIsCutOnce) {
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.polygons = {{wallAhead()}};
  for (const double noLimit : {0.0, 1.5}) {
    const SegmentSettings settings(4, noLimit);
    EXPECT_EQ(16u, p.project(ProjectionType::Radial)[0][0].size());
  }
}

TEST(ProjectPoints, TheRegionThatHoldsTheCameraIsCut300TimesFiner) {
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.shotScene.addRegion(p.object, wallAhead(), 2);
  p.polygons = {{wallAhead()}, {wallAhead()}};
  p.object.setCameraInRegionIndex(1);
  const auto projected = p.project(ProjectionType::Radial);
  EXPECT_LT(projected[0][0].size(), 30u);
  EXPECT_GE(projected[1][0].size(), 7200u);
  EXPECT_LE(projected[1][0].size(), 7204u);
}

TEST(ProjectPoints, ALimitOfOneCounts) {
  // From rim to rim: one piece would be nearly 2 long.
  const Polygon wide = {{0.01, -9, -9}, {0.01, 9, -9}, {0.01, 9, 9}, {0.01, -9, 9}};
  Projected p;
  p.shotScene.addRegion(p.object, wide);
  p.polygons = {{wide}};
  const auto sizeWith = [&](double limit) {
    const SegmentSettings settings(1, limit);
    return p.project(ProjectionType::Radial)[0][0].size();
  };
  EXPECT_EQ(4u, sizeWith(1.0000001));
  EXPECT_EQ(8u, sizeWith(1.0));
}

// Beside the centre line; the upright sides are about 0.4 long.
TEST(ProjectPoints, TheLimitOfTheSquareIsTwiceTheLength) {
  const Polygon aside = {{3, 0.5, -1}, {3, 1.5, -1}, {3, 1.5, 1}, {3, 0.5, 1}};
  Projected p;
  p.shotScene.addRegion(p.object, aside);
  p.polygons = {{aside}};
  const auto sizeWith = [&](double limit) {
    const SegmentSettings settings(1, limit);
    return p.project(ProjectionType::Square)[0][0].size();
  };
  EXPECT_EQ(4u, sizeWith(0.25));
  EXPECT_EQ(8u, sizeWith(0.15));
}

TEST(ProjectPoints, SquareStopsAtTheFirstCountAbove1000) {
  const SegmentSettings settings(6, 1e-9);
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.polygons = {{wallAhead()}};
  const std::size_t size = p.project(ProjectionType::Square)[0][0].size();
  EXPECT_GE(size, 4 * 1536u);
  EXPECT_LE(size, 4 * 1536u + 4);
}

TEST(ProjectPoints, RadialWithoutEndNamesObjectAndRegion) {
  // The eye stands on the edge: the pieces to its left and right are on opposite sides of the rim.
  const Polygon through = {{0, -1, 0}, {0, 2, 0}, {2, 2, 0}};
  const SegmentSettings settings(6, 0.5);
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.shotScene.addRegion(p.object, through, 2);
  p.polygons = {{wallAhead()}, {through}};
  const std::string text =
      thrownText<std::length_error>([&] { p.project(ProjectionType::Radial); });
  EXPECT_NE(std::string::npos, text.find("\"house\"")) << text;
  EXPECT_NE(std::string::npos, text.find("region 2:")) << text;
}

TEST(ProjectPoints, CountThatCannotGrowNamesObjectAndRegion) {
  const SegmentSettings settings(0, 0.01);
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.polygons = {{wallAhead()}};
  for (const auto type : {ProjectionType::Radial, ProjectionType::Square}) {
    EXPECT_NE("nothing thrown", thrownText<std::length_error>([&] { p.project(type); }));
  }
}

TEST(ProjectPoints, PolygonsOfARegionEndAtTheLargestCount) {
  const Polygon near = {{0.5, -1, -1}, {0.5, 1, -1}, {0.5, 1, 1}};
  const Polygon far = {{500, -1, -1}, {500, 1, -1}, {500, 1, 1}};
  const SegmentSettings settings(6, 0.1);
  Projected p;
  p.shotScene.addRegion(p.object, near);
  p.shotScene.addRegion(p.object, near, 2);
  p.polygons = {{far, near, {}}, {far}};
  const auto projected = p.project(ProjectionType::Radial);
  ASSERT_EQ(3u, projected[0].size());
  EXPECT_EQ(projected[0][0].size(), projected[0][1].size());
  EXPECT_GT(projected[0][0].size(), 40u);
  EXPECT_TRUE(projected[0][2].empty());
  EXPECT_LT(projected[1][0].size(), 20u);  // a region by itself is left alone
}

// From the origin along the x axis.
RegionProjector radialProjector() {
  return RegionProjector({ProjectionType::Radial,
                          {0, 0, 0},
                          Kernel::backFrame({0, 1, 0}, {1, 0, 0}),
                          nullptr,
                          {},
                          1e-07});
}

TEST(RegionProjector, ThePieceBackToTheFirstPointCounts) {
  // On the plane the third side alone is longer than 0.5.
  const auto flat = Utils::toVec3s({{10, -3, 0}, {10, 0, 1}, {10, 3, 0}});
  const auto result = radialProjector().settle({flat}, 1, 0.5);
  ASSERT_TRUE(result);
  EXPECT_EQ(2, result->pieceCounts[0]);
}

TEST(RegionProjector, DoublingMayReachTheMostPiecesAndNotPassThem) {
  // A side of 0.6 on the plane: its pieces are a little longer than 1e-6, then shorter.
  const auto needle = Utils::toVec3s({{1, 0, 0}, {1, 0.75, 0}});
  const auto result = radialProjector().settle({needle}, 524'288, 1e-06);
  ASSERT_TRUE(result);
  EXPECT_EQ(1'048'576, result->pieceCounts[0]);
  EXPECT_FALSE(radialProjector().settle({needle}, 524'289, 1e-06));
}

TEST(RegionProjector, MoreThanTwiceThePointsAllowedAreRefusedBeforeTheyAreMade) {
  const auto wall = Utils::toVec3s({{3, -1, -1}, {3, 1, -1}, {3, 1, 1}});
  EXPECT_NO_THROW(radialProjector().settle({wall}, 100, 0.0, 300));
  EXPECT_THROW(radialProjector().settle({wall}, 100, 0.0, 299), RegionProjector::TooManyPoints);
  // So many could not be made in any time, nor held.
  EXPECT_THROW(radialProjector().settle({wall}, 1'000'000'000'000, 0.0, 299),
               RegionProjector::TooManyPoints);
}

TEST(RegionProjector, PointsThatFallTogetherCountOnce) {
  // Wide and thin: from the eye all points of an edge at the end fall together.
  const auto far = Utils::toVec3s({{9e6, 0, 0}, {9e6, 0.5, 0}, {9e6, 0.5, 0.5}});
  const auto result = radialProjector().settle({far}, 100, 0.0, 200);
  ASSERT_TRUE(result);
  EXPECT_LT(result->polygons[0].size(), 10u);
  EXPECT_EQ(100, result->pieceCounts[0]);
}

TEST(RegionProjector, FinePolygonCountsForAllOfItsRegion) {
  const auto near = Utils::toVec3s({{0.5, -1, -1}, {0.5, 1, -1}, {0.5, 1, 1}});
  const auto far = Utils::toVec3s({{300, -1, -1}, {300, 1, -1}, {300, 1, 1}});
  const auto alone = radialProjector().settle({near}, 6, 0.02);
  ASSERT_TRUE(alone);
  const std::int64_t most = 3 * alone->pieceCounts[0] / 2;
  EXPECT_NO_THROW(radialProjector().settle({near}, 6, 0.02, 2 * most));
  EXPECT_THROW(radialProjector().settle({far, near}, 6, 0.02, most - 1),
               RegionProjector::TooManyPoints);
}

TEST(RegionProjector, EmptyPolygonCountsWithItsFirstCountAndIsEqualised) {
  RegionProjector projector = radialProjector();
  const auto wall = Utils::toVec3s({{0.5, -1, -1}, {0.5, 1, -1}, {0.5, 1, 1}});
  const auto result = projector.settle({{}, wall}, 6, 0.1);
  ASSERT_TRUE(result);
  EXPECT_GT(result->pieceCounts[0], 6);
  EXPECT_EQ(result->pieceCounts[0], result->pieceCounts[1]);
  EXPECT_TRUE(result->polygons[0].empty());
}

TEST(ProjectPoints, CulledPolygonsStayEmptyInTheirPlaces) {
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.polygons = {{{}, {}, {}}};
  const auto projected = p.project(ProjectionType::Radial);
  ASSERT_EQ(3u, projected[0].size());
  for (const auto& polygon : projected[0]) EXPECT_TRUE(polygon.empty());
}

TEST(ProjectPoints, TwoActsAsRadialAndThreeAsSquare) {
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.polygons = {{wallAhead()}};
  const auto points = [&](int type) {
    return coordinatesOf(p.project(static_cast<ProjectionType>(type))[0][0]);
  };
  EXPECT_EQ(points(0), points(2));
  EXPECT_EQ(points(1), points(3));
  EXPECT_NE(points(0), points(1));
}

TEST(ProjectPoints, GreaterTypeProjectsNothing) {
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.polygons = {{wallAhead()}};
  const auto projected = p.project(static_cast<ProjectionType>(4));
  ASSERT_EQ(1u, projected.size());
  EXPECT_TRUE(projected[0].empty());
}

TEST(ProjectPoints, GreaterTypeMakesItsFrameAllTheSame) {
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.shotScene.setUp({2, 0, 0});
  p.polygons = {{wallAhead()}};
  EXPECT_EQ(ZeroLength, capturedStdout([&] { p.project(static_cast<ProjectionType>(4)); }));
}

TEST(ProjectPoints, WrongPointNumberIsFoundWithoutAnyPolygon) {
  const auto errorWith = [](int number) {
    Projected p;
    p.shotScene.addRegion(p.object, wallAhead()).addPoint(number);
    p.polygons = {{}};
    return thrownText<std::out_of_range>([&] { p.project(ProjectionType::Radial); });
  };
  EXPECT_EQ("= ", errorWith(7));  // the tail of "index = " from position 6
  EXPECT_EQ("", errorWith(100));
  EXPECT_EQ("", errorWith(0));
  EXPECT_EQ("", errorWith(std::numeric_limits<int>::min()));
}

TEST(ProjectPoints, MoreRegionsOfPolygonsThanTheObjectHasAreRefused) {
  Projected p;
  p.polygons = {{wallAhead()}};
  EXPECT_EQ("index = ", thrownText<std::out_of_range>([&] { p.project(ProjectionType::Radial); }));
}

TEST(ProjectPoints, ObjectWithoutARegionsListHasNone) {
  Projected p;
  delete p.object.getRegions();
  p.object.setRegions(nullptr);
  EXPECT_TRUE(p.project(ProjectionType::Radial).empty());
  p.polygons = {{wallAhead()}};
  EXPECT_EQ("index = ", thrownText<std::out_of_range>([&] { p.project(ProjectionType::Radial); }));
}

TEST(ProjectPoints, ParallelDirectionsPrintForEveryRegionAndEndAtTheFirstPoint) {
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.shotScene.addRegion(p.object, wallAhead(), 2);
  p.shotScene.setUp({2, 0, 0});
  p.polygons = {{{}}, {wallAhead()}};
  std::string text;
  const std::string printed = capturedStdout(
      [&] { text = thrownText<std::out_of_range>([&] { p.project(ProjectionType::Radial); }); });
  EXPECT_EQ("invalid vector subscript", text);
  EXPECT_EQ(ZeroLength + ZeroLength + ZeroLength + Singular, printed);
}

TEST(ProjectPoints, EveryDirectionWithoutLengthPrints) {
  const auto printedWith = [](const Coordinates& forward, const Coordinates& up) {
    Projected p;
    p.shotScene.addRegion(p.object, wallAhead());
    p.shotScene.setForward(forward);
    p.shotScene.setUp(up);
    p.polygons = {{{}}};
    return capturedStdout([&] { p.project(ProjectionType::Radial); });
  };
  EXPECT_EQ("", printedWith({2, 0, 0}, {0, 0, 3}));
  EXPECT_EQ(ZeroLength + ZeroLength, printedWith({2, 0, 0}, {0, 0, 0}));
  EXPECT_EQ(ZeroLength + ZeroLength, printedWith({0, 0, 0}, {0, 0, 3}));
  EXPECT_EQ(ZeroLength + ZeroLength + ZeroLength, printedWith({0, 0, 0}, {0, 0, 0}));
}

// ---- Docking edges ---------------------------------------------------------------------------

TEST(GetDockingEdges, PiecesOfASharedEdgeAreAllFound) {
  Projected p;
  p.shotScene.addRegion(p.object, wallAhead());
  p.polygons = {{{{3, -1, -1}, {3, 2, -1}, {3, 2, 2}}, {{3, -1, -1}, {3, 2, 2}, {3, -1, 2}}}};
  auto* regions = p.creator.projectPoints(&p.object, &p.polygons, ProjectionType::Radial);
  const Numbers numbers = ShotCreatorProbe::getDockingEdges((*regions)[0]);
  ASSERT_EQ(2u, numbers.size());
  // The third edge of the first triangle is the first of the second.
  EXPECT_EQ((std::vector<int>{13, 14, 15, 16, 17, 18}), numbers[0]);
  EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 6}), numbers[1]);
  for (const auto& polygon : (*regions)[0]) taken(polygon);
  delete regions;
}

TEST(GetDockingEdges, OnePolygonHasAnEmptyList) {
  EXPECT_EQ((Numbers{{}}),
            ShotCreatorProbe::getDockingEdges(PlanePolygons({{{0, 0}, {1, 0}, {0, 1}}}).pointers));
}

// ---- The debug aid ---------------------------------------------------------------------------

TEST(PrintPoints, PrintsALineForEachPoint) {
  EXPECT_EQ("[\n[1 2.5 -3 ]\n[4 ]\n]\n", capturedStdout([] {
              ShotCreatorProbe::printPoints({{1, 2.5, -3}, {4}});
            }));
}

TEST(PrintPoints, AnEmptyPolygonPrintsNothing) {
  EXPECT_EQ("", capturedStdout([] { ShotCreatorProbe::printPoints({}); }));
}

}  // namespace
}  // namespace Lumivane::Test
