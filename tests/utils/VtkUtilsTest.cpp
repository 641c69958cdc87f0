#include "support/Vectors.h"

#include <lumivane/utils/VtkUtils.h>

#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vtkCell.h>

namespace Lumivane::Test {
namespace {

using Utils::VtkUtils;
using Points = std::vector<std::vector<double>>;

const Points UnitSquareAt3 = {{3, -1, -1}, {3, 1, -1}, {3, 1, 1}, {3, -1, 1}};

Points cellPoints(vtkPolyData* data, vtkIdType cell) {
  Points result;
  vtkPoints* points = data->GetCell(cell)->GetPoints();
  for (vtkIdType i = 0; i < points->GetNumberOfPoints(); ++i) {
    const double* p = points->GetPoint(i);
    result.push_back({p[0], p[1], p[2]});
  }
  return result;
}

// The area of a flat polygon that lies across the x axis.
double areaInYz(const Points& polygon) {
  double twice = 0.0;
  for (size_t i = 0; i < polygon.size(); ++i) {
    const auto& a = polygon[i];
    const auto& b = polygon[(i + 1) % polygon.size()];
    twice += a[1] * b[2] - a[2] * b[1];
  }
  return std::abs(twice) / 2.0;
}

double areaOfAllCells(vtkPolyData* data) {
  double area = 0.0;
  for (vtkIdType i = 0; i < data->GetNumberOfCells(); ++i) area += areaInYz(cellPoints(data, i));
  return area;
}

const VectorTests clipTests("clip", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const auto source = VtkUtils::createPolydataFromPolygon(toVectors(c.in.at("polygon")));
    const auto clipped =
        VtkUtils::clip(source, toVector(c.in.at("origin")), toVector(c.in.at("normal")));
    ASSERT_EQ(static_cast<vtkIdType>(c.out.size()), clipped->GetNumberOfCells());
    for (vtkIdType i = 0; i < clipped->GetNumberOfCells(); ++i) {
      const Json& cell = c.out.at(static_cast<size_t>(i));
      EXPECT_EQ(cell.at(0).get<int>(), clipped->GetCellType(i)) << "cell " << i;
      EXPECT_TRUE(sameBits(toVectors(cell.at(1)), cellPoints(clipped, i))) << "cell " << i;
    }
  });
});

TEST(Clip, PolygonWhollyBehindThePlaneGivesNoCell) {
  const auto source = VtkUtils::createPolydataFromPolygon(UnitSquareAt3);
  const auto clipped = VtkUtils::clip(source, {4, 0, 0}, {1, 0, 0});
  ASSERT_NE(nullptr, clipped);
  EXPECT_EQ(0, clipped->GetNumberOfCells());
}

TEST(Clip, PentagonWhollyInFrontGivesTrianglesThatCoverIt) {
  const Points pentagon = {{3, -2, -1}, {3, 2, -1}, {3, 2, 1}, {3, 0, 3}, {3, -2, 1}};
  const auto source = VtkUtils::createPolydataFromPolygon(pentagon);
  const auto clipped = VtkUtils::clip(source, {0, 0, 0}, {1, 0, 0});
  EXPECT_EQ(3, clipped->GetNumberOfCells());
  for (vtkIdType i = 0; i < clipped->GetNumberOfCells(); ++i) {
    EXPECT_EQ(VTK_TRIANGLE, clipped->GetCellType(i));
  }
  EXPECT_DOUBLE_EQ(areaInYz(pentagon), areaOfAllCells(clipped));
}

TEST(Clip, TheSideThatTheNormalPointsToIsKept) {
  const auto source = VtkUtils::createPolydataFromPolygon(UnitSquareAt3);
  const auto clipped = VtkUtils::clip(source, {0, 0.5, 0}, {0, 7, 0});
  EXPECT_DOUBLE_EQ(1.0, areaOfAllCells(clipped));
  ASSERT_EQ(1, clipped->GetNumberOfCells());
  for (const auto& point : cellPoints(clipped, 0)) EXPECT_GE(point[1], 0.5);
}

TEST(Clip, NullGivesAnEmptyResultWhateverThePlane) {
  const auto clipped = VtkUtils::clip(nullptr, {}, {});
  ASSERT_NE(nullptr, clipped);
  EXPECT_EQ(0, clipped->GetNumberOfPoints());
  EXPECT_EQ(0, clipped->GetNumberOfCells());
}

TEST(Clip, SourceStaysAsItWas) {
  const auto source = VtkUtils::createPolydataFromPolygon(UnitSquareAt3);
  const auto clipped = VtkUtils::clip(source, {0, 0.5, 0}, {0, 1, 0});
  EXPECT_NE(source, clipped);
  EXPECT_EQ(UnitSquareAt3, cellPoints(source, 0));
}

TEST(Clip, ShortOriginOrNormalThrows) {
  const auto source = VtkUtils::createPolydataFromPolygon(UnitSquareAt3);
  const auto throwsSubscript =
      ::testing::ThrowsMessage<std::out_of_range>("invalid vector subscript");
  const auto clipBy = [&](const std::vector<double>& origin, const std::vector<double>& normal) {
    return [=] { VtkUtils::clip(source, origin, normal); };
  };
  EXPECT_THAT(clipBy({0, 0}, {1, 0, 0}), throwsSubscript);
  EXPECT_THAT(clipBy({0, 0, 0}, {1, 0}), throwsSubscript);
}

TEST(PolydataFromPolygon, IsOneCellWithItsPointsInOrder) {
  const auto data = VtkUtils::createPolydataFromPolygon(UnitSquareAt3);
  ASSERT_EQ(1, data->GetNumberOfCells());
  EXPECT_EQ(VTK_QUAD, data->GetCellType(0));
  EXPECT_EQ(UnitSquareAt3, cellPoints(data, 0));
  for (int i = 0; i < 4; ++i) EXPECT_EQ(i, data->GetCell(0)->GetPointId(i));
}

TEST(PolydataFromPolygon, KeepsPointsInSinglePrecision) {
  const auto data = VtkUtils::createPolydataFromPolygon({{0.1, 0, 0}, {1, 0, 0}, {0, 1, 0}});
  EXPECT_EQ(static_cast<double>(0.1f), data->GetPoint(0)[0]);
}

TEST(PolydataFromPolygon, WithoutPointsHasNone) {
  EXPECT_EQ(0, VtkUtils::createPolydataFromPolygon({})->GetNumberOfPoints());
}

TEST(PolydataFromPolygon, ShortPointThrows) {
  EXPECT_THAT(
      [] {
        VtkUtils::createPolydataFromPolygon({{1, 2}});
      },
      ::testing::ThrowsMessage<std::out_of_range>("invalid vector subscript"));
}

}  // namespace
}  // namespace Lumivane::Test
