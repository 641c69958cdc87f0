// How two polygons lie to each other, on the picture and in the scene: the formulas stand in the
// kernels Polygon2.h and Polygon3.h.

#include "kernel/Polygon2.h"
#include "kernel/Polygon3.h"
#include "utils/Reports.h"
#include "utils/Shapes.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/utils/LinearGeometryUtils.h>

#include <algorithm>

namespace Lumivane::Algorithm {
namespace {

using Maths = Utils::LinearGeometryUtils;
using Polygon = std::vector<std::vector<double>>;

static_assert(static_cast<int>(IntersectionType::NoIntersection) == Kernel::Meeting::None);
static_assert(static_cast<int>(IntersectionType::EdgesCrossing) == Kernel::Meeting::EdgesCrossing);
static_assert(static_cast<int>(IntersectionType::SecondInFirst) == Kernel::Meeting::SecondInFirst);
static_assert(static_cast<int>(IntersectionType::FirstInSecond) == Kernel::Meeting::FirstInSecond);

// Null counts as empty.
std::vector<Kernel::Vec2> ringOf(const Polygon* polygon) {
  return polygon == nullptr ? std::vector<Kernel::Vec2>() : Utils::toVec2s(*polygon);
}

bool isInSpace(const Polygon& polygon) {
  return std::all_of(polygon.begin(), polygon.end(),
                     [](const std::vector<double>& point) { return point.size() == 3; });
}

// The sides of points against a polygon by the public operations, which print and throw on sizes
// other than 3.
Kernel::Sides checkedSides(const Polygon& points, const Polygon& polygon) {
  return Kernel::sidesOf(points, [&polygon](const std::vector<double>& point) {
    const std::vector<double> normal = Maths::getPolygonNormalReversed3D(polygon);
    if (polygon.empty()) Utils::throwInvalidSubscript();
    const std::vector<double> back = Utils::toVector(-Utils::toVec3(normal));
    const std::vector<double> foot =
        Maths::intersectLineAndPlane(normal, polygon.front(), point, back);
    return Maths::getDotProduct(normal, Maths::getVector3D(point, foot));
  });
}

}  // namespace

double DepthSortAlgorithmExecutor::rotate(Point a, Point b, Point c) {
  return Kernel::rotate(Utils::toVec2(a), Utils::toVec2(b), Utils::toVec2(c));
}

bool DepthSortAlgorithmExecutor::intersect(const Point& a, const Point& b, const Point& c,
                                           const Point& d) {
  return Kernel::segmentsCross(Utils::toVec2(a), Utils::toVec2(b), Utils::toVec2(c),
                               Utils::toVec2(d));
}

bool DepthSortAlgorithmExecutor::isContainsPointArea(const Polygon& polygon, const Point& point) {
  return Kernel::containsPoint(Utils::toVec2s(polygon), Utils::toVec2(point));
}

bool DepthSortAlgorithmExecutor::isPolygonsEquals(Polygon first, Polygon second) {
  return Kernel::eachHasEqual(first, second, ShotCreator::isPoints3dEquals);
}

IntersectionType DepthSortAlgorithmExecutor::getPolygonsIntersectionType(Polygon* first,
                                                                         Polygon* second) {
  const std::vector<Kernel::Vec2> ring = ringOf(first);
  if (ring.empty()) return IntersectionType::FirstInSecond;  // the second is not even read
  return static_cast<IntersectionType>(Kernel::meetingOf(ring, ringOf(second)));
}

int DepthSortAlgorithmExecutor::checkPolygonsLocation(const Polygon& first, const Polygon& second) {
  if (first.empty() || !isInSpace(first) || !isInSpace(second))
    return Kernel::locationBy([&] { return checkedSides(second, first); },
                              [&] { return checkedSides(first, second); });
  const Kernel::Location location =
      Kernel::locationOf(Utils::toVec3s(first), Utils::toVec3s(second));
  for (std::size_t i = 0; i < location.zeroLengthAsked; ++i) Utils::reportZeroLengthVector();
  return location.value;
}

}  // namespace Lumivane::Algorithm
