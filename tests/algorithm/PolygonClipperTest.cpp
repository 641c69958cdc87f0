// The clipper against the filters of VTK: every cell, point and order, to the bit.

#include "algorithm/pipeline/PolygonClipper.h"
#include "plain/ClippedCells.h"
#include "utils/PolygonData.h"

#include <lumivane/utils/VtkUtils.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <vtkCellArray.h>
#include <vtkFloatArray.h>
#include <vtkPointData.h>

namespace Lumivane::Test {
namespace {

using Algorithm::PolygonClipper;
using Algorithm::SinglePoint;
using Kernel::Vec3;

using Polygon = std::vector<SinglePoint>;

struct Plane {
  Vec3 origin;
  Vec3 normal;
};

// A region of fewer points than 3 has empty polygon data.
vtkSmartPointer<vtkPolyData> dataOf(const Polygon& polygon) {
  if (polygon.size() < 3) return vtkSmartPointer<vtkPolyData>::New();
  std::vector<Vec3> points;
  for (const SinglePoint& point : polygon) points.push_back(Algorithm::toVec3(point));
  return Utils::polygonData(points);
}

// The zeros are distinct; what is no number counts as equal.
bool sameBits(double a, double b) {
  if (std::isnan(a) && std::isnan(b)) return true;
  return a == b && std::signbit(a) == std::signbit(b);
}

bool sameBits(Vec3 a, Vec3 b) {
  return sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z);
}

std::string textOf(const Polygon& polygon, const Plane& plane) {
  std::string text = "plane";
  for (const Vec3& v : {plane.origin, plane.normal})
    for (const double c : {v.x, v.y, v.z}) text += " " + std::to_string(c);
  text += " polygon";
  for (const SinglePoint& p : polygon)
    for (const float c : {p.x, p.y, p.z}) text += " " + std::to_string(c);
  return text;
}

void expectCellsOfReferenceImplementation(PolygonClipper& clipper, const Polygon& polygon,
                                          const Plane& plane) {
  clipper.setPlane(plane.origin, plane.normal);
  const auto& cells = clipper.clip(polygon.data(), polygon.size());
  const auto expected =
      Plain::normalCells(Plain::clip(dataOf(polygon), plane.origin, plane.normal));
  ASSERT_EQ(expected.size(), cells.size()) << textOf(polygon, plane);
  for (std::size_t c = 0; c < cells.size(); ++c) {
    ASSERT_EQ(expected[c].polygon.size(), cells[c].polygon.size()) << textOf(polygon, plane);
    for (std::size_t i = 0; i < cells[c].polygon.size(); ++i)
      ASSERT_TRUE(sameBits(expected[c].polygon[i], cells[c].polygon[i])) << textOf(polygon, plane);
    ASSERT_TRUE(sameBits(expected[c].normal, Algorithm::toVec3(cells[c].normal)))
        << textOf(polygon, plane);
  }
}

std::vector<vtkIdType> idsOf(vtkCellArray* cells) {
  std::vector<vtkIdType> result;
  vtkIdType size = 0;
  const vtkIdType* ids = nullptr;
  for (vtkIdType c = 0; c < cells->GetNumberOfCells(); ++c) {
    cells->GetCellAtId(c, size, ids);
    result.push_back(size);
    result.insert(result.end(), ids, ids + size);
  }
  return result;
}

void expectSamePolygonData(vtkPolyData* expected, vtkPolyData* data, const std::string& text) {
  ASSERT_EQ(expected->GetNumberOfPoints(), data->GetNumberOfPoints()) << text;
  for (vtkIdType i = 0; i < data->GetNumberOfPoints(); ++i) {
    double a[3];
    double b[3];
    expected->GetPoint(i, a);
    data->GetPoint(i, b);
    ASSERT_TRUE(sameBits({a[0], a[1], a[2]}, {b[0], b[1], b[2]})) << text;
  }
  ASSERT_EQ(idsOf(expected->GetPolys()), idsOf(data->GetPolys())) << text;
  ASSERT_EQ(expected->GetNumberOfCells(), data->GetNumberOfCells()) << text;
  ASSERT_EQ(expected->GetPointData()->GetNumberOfArrays(),
            data->GetPointData()->GetNumberOfArrays());
  ASSERT_EQ(expected->GetCellData()->GetNumberOfArrays(), data->GetCellData()->GetNumberOfArrays());
  if (expected->GetPoints() == nullptr) {
    ASSERT_EQ(nullptr, data->GetPoints());
    return;
  }
  ASSERT_EQ(expected->GetPoints()->GetDataType(), data->GetPoints()->GetDataType());
}

void expectDataOfReferenceImplementation(const Polygon& polygon, const Plane& plane) {
  const auto [o, n] = plane;
  expectSamePolygonData(Plain::clip(dataOf(polygon), o, n),
                        Utils::VtkUtils::clip(dataOf(polygon), {o.x, o.y, o.z}, {n.x, n.y, n.z}),
                        textOf(polygon, plane));
}

// Makes polygons of every sort: on a grid of few values, so that points touch the plane, repeat or
// lie in line; smooth ones, convex and concave; and ones that are cut close to a corner.
class RandomPolygons {
 public:
  explicit RandomPolygons(unsigned seed) : random(seed) {}

  Plane plane() {
    switch (random() % 3) {
      case 0:
        return {{gridValue(), gridValue(), gridValue()}, {1, 0, 0}};
      case 1:
        return {{gridValue(), gridValue(), gridValue()}, {gridValue(), gridValue(), 1}};
      default:
        return {{value(), value(), value()}, {value(), value(), value()}};
    }
  }

  Polygon polygon(const Plane& plane) {
    switch (random() % 6) {
      case 0:
        return points(anyCount(), [&] { return gridPoint(); });
      case 1:
        return points(anyCount(), [&] { return anyPoint(); });
      case 2:
        return flat(1.0);
      case 3:
        return flat(0.3);
      case 4:
        return nearPlane(plane);
      default:
        return withRepeats();
    }
  }

 private:
  double value() { return std::uniform_real_distribution<double>(-2.0, 2.0)(random); }
  double gridValue() { return static_cast<double>(random() % 5) - 2.0; }
  std::size_t anyCount() { return random() % 7; }
  SinglePoint gridPoint() { return Algorithm::toSingle({gridValue(), gridValue(), gridValue()}); }
  SinglePoint anyPoint() { return Algorithm::toSingle({value(), value(), value()}); }

  template <class MakePoint>
  Polygon points(std::size_t count, MakePoint makePoint) {
    Polygon result(count);
    for (SinglePoint& point : result) point = makePoint();
    return result;
  }

  // Corners around a centre, in a plane: convex for 1, concave for less.
  Polygon flat(double innerRadius) {
    const Vec3 centre{value(), value(), value()};
    const Vec3 u{value(), value(), value()};
    const Vec3 v{value(), value(), value()};
    const std::size_t count = 3 + random() % 8;
    const double turn = random() % 2 == 0 ? 1.0 : -1.0;
    Polygon result;
    for (std::size_t i = 0; i < count; ++i) {
      const double angle =
          turn * 6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
      const double radius = i % 2 == 0 ? 1.0 : innerRadius;
      result.push_back(Algorithm::toSingle(centre + radius * std::cos(angle) * u +
                                           radius * std::sin(angle) * v));
    }
    return result;
  }

  // Points on the plane, or so near that rounding decides on which side they are.
  Polygon nearPlane(const Plane& plane) {
    const Vec3 n = plane.normal;
    const Vec3 u = Kernel::cross(n, {0.3, -0.7, 1.1});
    const Vec3 v = Kernel::cross(n, u);
    const double steps[] = {0.0, 0.0, 1e-9, -1e-9, 1e-7, -1e-7, 1e-5, 0.5, -0.5};
    return points(3 + random() % 4, [&] {
      const double height = steps[random() % 9];
      return Algorithm::toSingle(plane.origin + gridValue() * u + gridValue() * v + height * n);
    });
  }

  // The first points in a line, and points that come twice.
  Polygon withRepeats() {
    Polygon result = flat(1.0);
    const SinglePoint a = result[0];
    const SinglePoint b = result[1];
    const SinglePoint middle = {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
    if (random() % 2 == 0) result.insert(result.begin() + 1, middle);
    if (random() % 2 == 0) result.push_back(result[random() % result.size()]);
    if (random() % 2 == 0) result.insert(result.begin() + 1, result[0]);
    return result;
  }

  std::mt19937_64 random;
};

TEST(PolygonClipperProperty, CellsAndNormalsAreThoseOfTheFilters) {
  RandomPolygons make(20261121);
  PolygonClipper clipper;
  for (int i = 0; i < 10000; ++i) {
    const Plane plane = make.plane();
    const Polygon polygon = make.polygon(plane);
    ASSERT_NO_FATAL_FAILURE(expectCellsOfReferenceImplementation(clipper, polygon, plane))
        << "case " << i;
  }
}

TEST(PolygonClipperProperty, FewPointsAreMergedAsInBuckets) {
  RandomPolygons make(4711);
  for (int i = 0; i < 3000; ++i) {
    const Plane plane = make.plane();
    ASSERT_NO_FATAL_FAILURE(expectDataOfReferenceImplementation(make.polygon(plane), plane))
        << "case " << i;
  }
}

// Halfway through the bounds is a border between two buckets.
TEST(PolygonClipper, PointsThatAreOneInSinglePrecisionStayTwoAcrossABucketsBorder) {
  const double t = 1e-9;
  const Plane plane{{1.0 - t, 0, 0}, {1, 0, 0}};
  const Polygon polygon = {{0, 0, 0}, {1, -1, 0}, {2, 0, 0}, {1, 1, 0}};
  PolygonClipper clipper;
  expectCellsOfReferenceImplementation(clipper, polygon, plane);
  expectDataOfReferenceImplementation(polygon, plane);
}

TEST(PolygonClipper, CoordinatesThatAreNoNumbersGiveTheCellsOfTheFilters) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float infinite = std::numeric_limits<float>::infinity();
  const Plane plane{{0.5, 0, 0}, {1, 0, 0}};
  PolygonClipper clipper;
  for (const float odd : {nan, infinite, -infinite}) {
    for (std::size_t at = 0; at < 4; ++at) {
      Polygon polygon = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
      polygon[at].x = odd;
      expectCellsOfReferenceImplementation(clipper, polygon, plane);
      polygon[at] = {1, odd, 0};
      expectCellsOfReferenceImplementation(clipper, polygon, plane);
    }
  }
}

TEST(PolygonClipper, PlaneWithoutADirectionKeepsNothing) {
  const Polygon polygon = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  PolygonClipper clipper;
  clipper.setPlane({}, {});
  EXPECT_TRUE(clipper.clip(polygon.data(), polygon.size()).empty());
  expectCellsOfReferenceImplementation(clipper, polygon, {});
}

// Many points: the buckets themselves do the work.
TEST(Clip, LargePolygonsAreThoseOfTheFilterToo) {
  for (const int corners : {63, 64, 65, 200}) {
    Polygon polygon;
    for (int i = 0; i < corners; ++i) {
      const double angle = 6.283185307179586 * i / corners;
      polygon.push_back(Algorithm::toSingle({std::cos(angle), std::sin(angle), 0.0}));
    }
    expectDataOfReferenceImplementation(polygon, {{0.25, 0, 0}, {1, 0.1, 0}});
  }
}

}  // namespace
}  // namespace Lumivane::Test
