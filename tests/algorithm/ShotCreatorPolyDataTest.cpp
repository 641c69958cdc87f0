#include "kernel/Outline.h"
#include "kernel/SamePoint.h"
#include "support/Capture.h"
#include "support/Vectors.h"

#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/geometry/Point2d.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>

#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vtkCell.h>
#include <vtkCellArray.h>
#include <vtkIdList.h>

namespace Lumivane::Test {
namespace {

using Algorithm::ShotCreator;
using Geometry::Point2d;
using Geometry::Point3d;
using Geometry::Points2d;
using Geometry::Points3d;
using Geometry::Region;
using Geometry::Region2d;
using Ids = std::vector<std::vector<vtkIdType>>;
using Coordinates = std::vector<std::vector<double>>;

struct PolyDataProbe : ShotCreator {
  using ShotCreator::copyPoints;
};

template <class AnyRegion>
void fill(AnyRegion& region, const std::vector<int>& points, const std::vector<int>& docking) {
  for (const int number : points) region.addPoint(number);
  for (const int number : docking) region.addDockingEdge(number);
}

// A unit square over 4 points, standing at z 2.
struct Square {
  explicit Square(const std::vector<int>& docking = {}) {
    for (const auto& p : Coordinates{{0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 1, 2}}) {
      points.addPoint(new Point3d(p[0], p[1], p[2]));
      points2d.addPoint(new Point2d(p[0], p[1]));
    }
    fill(region, {1, 2, 3, 4}, docking);
    fill(region2d, {1, 2, 3, 4}, docking);
  }
  Points3d points;
  Points2d points2d;
  Region region;
  Region2d region2d;
};

Ids lineIds(vtkPolyData* data) {
  Ids result;
  if (data->GetLines() == nullptr) return result;
  const vtkNew<vtkIdList> ids;
  data->GetLines()->InitTraversal();
  while (data->GetLines()->GetNextCell(ids) != 0) {
    std::vector<vtkIdType> line;
    for (vtkIdType i = 0; i < ids->GetNumberOfIds(); ++i) line.push_back(ids->GetId(i));
    result.push_back(line);
  }
  return result;
}

Coordinates allPoints(vtkPolyData* data) {
  Coordinates result;
  for (vtkIdType i = 0; i < data->GetNumberOfPoints(); ++i) {
    const double* p = data->GetPoint(i);
    result.push_back({p[0], p[1], p[2]});
  }
  return result;
}

std::vector<int> numbersTo(size_t count) {
  std::vector<int> result;
  for (size_t i = 1; i <= count; ++i) result.push_back(static_cast<int>(i));
  return result;
}

const VectorTests outlineTests("outline", [](const VectorCase& c) {
  checkedRun(c, [&] {
    Points3d points;
    const Coordinates given = toVectors(c.in.at("points"));
    for (const auto& p : given) points.addPoint(new Point3d(p[0], p[1], p[2]));
    Region region;
    fill(region, numbersTo(given.size()), c.in.at("dockingEdges").get<std::vector<int>>());
    const auto lines = ShotCreator::getRegionLinePolyData(&region, &points);
    EXPECT_EQ(c.out.at(0).get<Ids>(), lineIds(lines));
    EXPECT_TRUE(sameBits(toVectors(c.out.at(1)), allPoints(lines)));
  });
});

const VectorTests equals2dTests("isPoints2dEquals", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<bool>(),
              ShotCreator::isPoints2dEquals(toVector(c.in.at("a")), toVector(c.in.at("b"))));
  });
});

const VectorTests equals3dTests("isPoints3dEquals", [](const VectorCase& c) {
  checkedRun(c, [&] {
    EXPECT_EQ(c.out.get<bool>(),
              ShotCreator::isPoints3dEquals(toVector(c.in.at("a")), toVector(c.in.at("b"))));
  });
});

TEST(RegionPolyData, IsOneCellOfTheNumberedPoints) {
  Square square;
  const auto data = ShotCreator::getRegionPolyData(&square.region, &square.points);
  ASSERT_EQ(1, data->GetNumberOfCells());
  EXPECT_EQ((Coordinates{{0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 1, 2}}), allPoints(data));
}

TEST(RegionPolyData, FewerThanThreePointsPrintTheMessageAndGiveNothing) {
  Square square;
  Region two;
  fill(two, {1, 2}, {});
  EXPECT_EQ("Error: region points size < 3 \n", capturedStdout([&] {
              const auto data = ShotCreator::getRegionPolyData(&two, &square.points);
              EXPECT_EQ(0, data->GetNumberOfPoints());
              EXPECT_EQ(0, data->GetNumberOfCells());
            }));
  EXPECT_EQ("Error: region points size < 3 \n", capturedStdout([&] {
              const auto data = ShotCreator::getRegionPolyDataTriangulated(&two, &square.points);
              EXPECT_EQ(0, data->GetNumberOfPoints());
            }));
}

TEST(RegionPolyData, MissingRegionOrPointVectorCountsAsEmpty) {
  Square square;
  Region withoutVectors;
  const std::unique_ptr<std::vector<int>> points(withoutVectors.getPoints());
  const std::unique_ptr<std::vector<int>> docking(withoutVectors.getDockingEdges());
  withoutVectors.setPoints(nullptr);
  withoutVectors.setDockingEdges(nullptr);
  capturedStdout([&] {
    for (Region* region : {static_cast<Region*>(nullptr), &withoutVectors}) {
      EXPECT_EQ(0, ShotCreator::getRegionPolyData(region, &square.points)->GetNumberOfPoints());
      EXPECT_EQ(0, ShotCreator::getRegionLinePolyData(region, &square.points)->GetNumberOfPoints());
    }
  });
}

TEST(RegionPolyData, WrongPointNumberThrowsTheTailOfTheIndexText) {
  Square square;
  const auto textOf = [&](int number) -> std::string {
    Region region;
    fill(region, {1, 2, number}, {});
    try {
      ShotCreator::getRegionPolyData(&region, &square.points);
    } catch (const std::out_of_range& error) {
      return error.what();
    }
    return "no exception";
  };
  // Deliberate: the text is moved on by the number minus 1, and not joined with it.
  EXPECT_EQ("x = ", textOf(5));
  EXPECT_EQ(" ", textOf(8));
  EXPECT_EQ("", textOf(9));
  EXPECT_EQ("", textOf(1000));
  EXPECT_EQ("", textOf(0));
  EXPECT_EQ("", textOf(-1));
  EXPECT_EQ("", textOf(std::numeric_limits<int>::min()));
}

TEST(RegionPolyData, EveryFormRefusesAWrongPointNumber) {
  Square square;
  Region region;
  fill(region, {1, 2, 7}, {});
  Region2d region2d;
  fill(region2d, {1, 2, 7}, {});
  EXPECT_THROW(ShotCreator::getRegionPolyDataTriangulated(&region, &square.points),
               std::out_of_range);
  EXPECT_THROW(ShotCreator::getRegionLinePolyData(&region, &square.points), std::out_of_range);
  EXPECT_THROW(ShotCreator::getRegionPolyData(&region2d, &square.points2d, 1), std::out_of_range);
  EXPECT_THROW(ShotCreator::getRegionLinePolyData(&region2d, &square.points2d, 1),
               std::out_of_range);
}

TEST(RegionPolyData, MissingPointsListCountsAsEmpty) {
  Square square;
  EXPECT_THROW(ShotCreator::getRegionPolyData(&square.region, nullptr), std::out_of_range);
  EXPECT_THROW(ShotCreator::getRegionPolyData(&square.region2d, nullptr, 1), std::out_of_range);
}

TEST(RegionPolyData, NullPointInTheListThrows) {
  Points3d points;
  points.addPoint(new Point3d(0, 0, 0));
  points.addPoint(new Point3d(1, 0, 0));
  points.addPoint(nullptr);
  Region region;
  fill(region, {1, 2, 3}, {});
  EXPECT_THAT([&] { ShotCreator::getRegionPolyData(&region, &points); },
              ::testing::ThrowsMessage<std::out_of_range>("invalid vector subscript"));
}

TEST(RegionPolyDataTriangulated, CutsASquareIntoTwoTriangles) {
  Square square;
  const auto data = ShotCreator::getRegionPolyDataTriangulated(&square.region, &square.points);
  ASSERT_EQ(2, data->GetNumberOfCells());
  EXPECT_EQ(VTK_TRIANGLE, data->GetCellType(0));
  EXPECT_EQ(VTK_TRIANGLE, data->GetCellType(1));
}

TEST(RegionPolyData2d, StandsAtItsLayer) {
  Square square;
  const auto data = ShotCreator::getRegionPolyData(&square.region2d, &square.points2d, 3);
  ASSERT_EQ(2, data->GetNumberOfCells());
  EXPECT_EQ(VTK_TRIANGLE, data->GetCellType(0));
  const auto z = static_cast<double>(static_cast<float>(3 * 0.1));
  EXPECT_EQ((Coordinates{{0, 0, z}, {1, 0, z}, {1, 1, z}, {0, 1, z}}), allPoints(data));
}

TEST(RegionPolyData2d, FewPointsGiveNoCellAndNoMessage) {
  Square square;
  for (const std::vector<int>& numbers : {std::vector<int>{}, {1}, {1, 2}}) {
    Region2d region;
    fill(region, numbers, {});
    EXPECT_EQ("", capturedStdout([&] {
                const auto data = ShotCreator::getRegionPolyData(&region, &square.points2d, 1);
                EXPECT_EQ(0, data->GetNumberOfPolys());
              }));
  }
}

TEST(RegionLinePolyData, TriangleWithoutDockingEdgesIsClosedTwice) {
  Square square;
  Region triangle;
  fill(triangle, {1, 2, 3}, {});
  const auto lines = ShotCreator::getRegionLinePolyData(&triangle, &square.points);
  EXPECT_EQ((Ids{{0, 1, 2, 3, 0}}), lineIds(lines));
  EXPECT_EQ((Coordinates{{0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 0, 2}}), allPoints(lines));
}

TEST(RegionLinePolyData, DockingEdge2OfASquareGivesTwoOpenLines) {
  Square square({2});
  const auto lines = ShotCreator::getRegionLinePolyData(&square.region, &square.points);
  EXPECT_EQ((Ids{{0, 1}, {2, 3, 4}}), lineIds(lines));
  EXPECT_EQ((Coordinates{{0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 1, 2}, {0, 0, 2}}), allPoints(lines));
}

TEST(RegionLinePolyData, DockingEdge4OfASquareGivesOneLineThroughItsPoints) {
  Square square({4});
  const auto lines = ShotCreator::getRegionLinePolyData(&square.region, &square.points);
  EXPECT_EQ((Ids{{0, 1, 2, 3}}), lineIds(lines));
  EXPECT_EQ(4, lines->GetNumberOfPoints());
}

TEST(RegionLinePolyData, AllEdgesDockingGiveNoLine) {
  Square square({1, 2, 3, 4});
  const auto lines = ShotCreator::getRegionLinePolyData(&square.region, &square.points);
  EXPECT_EQ(Ids{}, lineIds(lines));
  EXPECT_EQ(0, lines->GetNumberOfPoints());
}

TEST(RegionLinePolyData, DockingNumbersOfNoEdgeOnlySuppressTheSecondClosing) {
  Square square({0, -3, 9});
  const auto lines = ShotCreator::getRegionLinePolyData(&square.region, &square.points);
  EXPECT_EQ((Ids{{0, 1, 2, 3, 4}}), lineIds(lines));
}

TEST(RegionLinePolyData, OnePointGivesNothingAndNoMessage) {
  Square square;
  Region one;
  fill(one, {1}, {});
  EXPECT_EQ("", capturedStdout([&] {
              const auto lines = ShotCreator::getRegionLinePolyData(&one, &square.points);
              EXPECT_EQ(0, lines->GetNumberOfPoints());
              EXPECT_EQ(0, lines->GetNumberOfCells());
            }));
}

TEST(RegionLinePolyData, FlatFormStandsAtItsLayer) {
  Square square({2});
  const auto lines = ShotCreator::getRegionLinePolyData(&square.region2d, &square.points2d, 7);
  EXPECT_EQ((Ids{{0, 1}, {2, 3, 4}}), lineIds(lines));
  const auto z = static_cast<double>(static_cast<float>(7 * 0.1));
  EXPECT_EQ((Coordinates{{0, 0, z}, {1, 0, z}, {1, 1, z}, {0, 1, z}, {0, 0, z}}), allPoints(lines));
}

TEST(RegionLinePolyData, FlatFormOfOnePointGivesNothing) {
  Square square;
  Region2d one;
  fill(one, {1}, {});
  EXPECT_EQ(0, ShotCreator::getRegionLinePolyData(&one, &square.points2d, 1)->GetNumberOfPoints());
}

TEST(PointEquality, VectorsOfDifferentSizesAreNotEqual) {
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({1, 2, 3}, {1, 2}));
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({1, 2}, {1, 2}));
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({1, 2, 3, 4}, {1, 2, 3, 4}));
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({}, {}));
  EXPECT_FALSE(ShotCreator::isPoints2dEquals({1, 2}, {1, 2, 3}));
  EXPECT_FALSE(ShotCreator::isPoints2dEquals({1, 2, 3}, {1, 2, 3}));
}

TEST(PointEquality, DifferenceOfExactlyTheToleranceIsTooMuch) {
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({0, 0, 0}, {0, 0, 1e-07}));
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({0, 0, 0}, {-1e-07, 0, 0}));
  EXPECT_FALSE(ShotCreator::isPoints2dEquals({0, 1e-07}, {0, 0}));
  EXPECT_TRUE(ShotCreator::isPoints3dEquals({0, 0, 0}, {9e-08, -9e-08, 9e-08}));
  EXPECT_TRUE(ShotCreator::isPoints2dEquals({0, 0}, {9e-08, -9e-08}));
}

TEST(PointEquality, EveryAxisCounts) {
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({0, 0, 0}, {1, 0, 0}));
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({0, 0, 0}, {0, 1, 0}));
  EXPECT_FALSE(ShotCreator::isPoints3dEquals({0, 0, 0}, {0, 0, 1}));
}

// (1), (2) and (3) of the kernel.
TEST(SamePointProperty, IsStrictSymmetricAndNeverTrueOfNan) {
  std::mt19937_64 random(20250311);
  std::uniform_real_distribution<double> offset(-2e-07, 2e-07);
  for (int i = 0; i < 2000; ++i) {
    const Kernel::Vec3 a{offset(random), offset(random), offset(random)};
    const Kernel::Vec3 b{offset(random), offset(random), offset(random)};
    ASSERT_EQ(Kernel::samePoint(a, b, 1e-07), Kernel::samePoint(b, a, 1e-07)) << "case " << i;
    ASSERT_FALSE(Kernel::samePoint(a, {a.x, a.y, std::nan("")}, 1e-07));
    ASSERT_FALSE(Kernel::samePoint(a, b, 0.0));
  }
}

// Each edge of the polygon is in a chain exactly once, or docking.
TEST(OutlineChainsProperty, ChainsHoldEveryEdgeThatIsNotDocking) {
  std::mt19937_64 random(20250312);
  for (int i = 0; i < 2000; ++i) {
    const size_t count = 2 + random() % 9;
    std::vector<int> docking;
    std::vector<bool> drawn(count, true);
    for (size_t k = random() % 6; k > 0; --k) {
      const size_t edge = random() % count;
      docking.push_back(static_cast<int>(edge) + 1);
      drawn[edge] = false;
    }
    std::vector<int> seen(count, 0);
    for (const Kernel::Chain& chain : Kernel::outlineChains(count, docking)) {
      ASSERT_GE(chain.size(), 2u) << "case " << i;
      for (size_t k = 0; k + 1 < chain.size(); ++k) {
        ASSERT_EQ((chain[k] + 1) % count, chain[k + 1]) << "case " << i;
        ++seen[chain[k]];
      }
    }
    for (size_t edge = 0; edge < count; ++edge) {
      ASSERT_EQ(drawn[edge] ? 1 : 0, seen[edge]) << "case " << i << ", edge " << edge;
    }
  }
}

TEST(CopyPoints, GivesTheSamePointsInOrder) {
  const Coordinates points = {{1, 2, 3}, {4, 5}, {}};
  EXPECT_EQ(points, PolyDataProbe::copyPoints(points));
}

}  // namespace
}  // namespace Lumivane::Test
