#include "kernel/Planar.h"
#include "kernel/Vec.h"

#include <lumivane/check/InsideTest.h>
#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

// A point is inside a body if the first polygon that a ray from it meets shows its back. Real
// bodies have gaps and doubled walls, so several rays vote, in directions in which models have no
// edges.
namespace Lumivane::Check {

using Kernel::Vec2;
using Kernel::Vec3;

namespace {

// Straight up, and thirteen more all around: none along an axis or a diagonal, where polygons of
// models have their edges.
const std::vector<Vec3>& directions() {
  static const std::vector<Vec3> all = [] {
    std::vector<Vec3> result = {{0.0, 0.0, 1.0}};
    constexpr int around = 13;
    constexpr double goldenAngle = 2.399963229728653;
    for (int i = 0; i < around; ++i) {
      const double z = 1.0 - (2.0 * i + 1.0) / around;
      const double width = std::sqrt(1.0 - z * z);
      result.push_back(
          {width * std::cos(goldenAngle * i + 0.1), width * std::sin(goldenAngle * i + 0.1), z});
    }
    return result;
  }();
  return all;
}

// Polygons on each other differ by rounding alone.
constexpr double SameDistance = 1e-9;

struct Polygon {
  std::vector<Vec3> corners;
  Vec3 normal;  // points to the side from which the corners run counterclockwise: its back
  Vec3 mean;
  Vec3 low;
  Vec3 high;
  std::size_t object = 0;  // counted from 1
};

// What a ray meets first.
struct FirstMet {
  bool isBack = false;  // the back of a polygon alone
  std::size_t object = 0;
};

// Newell's normal, and the middle of the corners.
Polygon polygonOf(std::vector<Vec3> corners) {
  Polygon polygon;
  const double infinity = std::numeric_limits<double>::infinity();
  polygon.low = {infinity, infinity, infinity};
  polygon.high = -polygon.low;
  const double share = 1.0 / static_cast<double>(corners.size());
  // About the first corner, so that coordinates far from the origin lose nothing.
  const Vec3 origin = corners.front();
  polygon.normal =
      Kernel::twiceAreaVector(corners.size(), origin, [&](std::size_t i) { return corners[i]; });
  for (const Vec3& corner : corners) {
    polygon.mean = polygon.mean + share * (corner - origin);
    polygon.low = {std::min(polygon.low.x, corner.x), std::min(polygon.low.y, corner.y),
                   std::min(polygon.low.z, corner.z)};
    polygon.high = {std::max(polygon.high.x, corner.x), std::max(polygon.high.y, corner.y),
                    std::max(polygon.high.z, corner.z)};
  }
  polygon.mean = polygon.mean + origin;
  polygon.corners = std::move(corners);
  return polygon;
}

// A vector without one of its coordinates.
Vec2 without(Vec3 v, int leftOut) { return {leftOut == 0 ? v.y : v.x, leftOut == 2 ? v.y : v.z}; }

int longestAxis(Vec3 v) {
  const double x = std::abs(v.x);
  const double y = std::abs(v.y);
  const double z = std::abs(v.z);
  if (x >= y && x >= z) return 0;
  return y >= z ? 1 : 2;
}

// Seen along the axis that is left out.
bool contains(const Polygon& polygon, Vec3 point, int leftOut) {
  return Kernel::isInOutline(polygon.corners.size(), without(point, leftOut),
                             [&](std::size_t i) { return without(polygon.corners[i], leftOut); });
}

// How far along a ray a polygon is met; infinity if it is not.
double distanceTo(const Polygon& polygon, Vec3 from, Vec3 direction) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double slope = Kernel::dot(polygon.normal, direction);
  if (slope == 0.0) return infinity;
  const double distance = Kernel::dot(polygon.normal, polygon.mean - from) / slope;
  if (!(distance > 0.0)) return infinity;
  const Vec3 at = from + distance * direction;
  return contains(polygon, at, longestAxis(polygon.normal)) ? distance : infinity;
}

bool mayBeAbove(const Polygon& polygon, Vec3 point) {
  return polygon.high.z > point.z && polygon.low.x <= point.x && polygon.high.x >= point.x &&
         polygon.low.y <= point.y && polygon.high.y >= point.y;
}

}  // namespace

// Arrays stay as they are as long as nothing but the sky is overhead: then a look at their corners
// is all that it takes.
struct InsideTest::Polygons {
  std::vector<Polygon> all;
  Outlines outlines;  // of which `all` is made when it is asked for

  bool hasOutlines() const { return outlines.points != nullptr; }

  Vec3 corner(std::size_t i) const {
    const auto& point = outlines.points[outlines.corners[i]];
    return {point[0], point[1], point[2]};
  }

  std::size_t cornerCount(std::size_t i) const {
    return outlines.offsets[i + 1] - outlines.offsets[i];
  }

  Polygon polygonAt(std::size_t i) const {
    std::vector<Vec3> corners;
    corners.reserve(cornerCount(i));
    for (std::size_t k = outlines.offsets[i]; k < outlines.offsets[i + 1]; ++k)
      corners.push_back(corner(k));
    Polygon polygon = polygonOf(std::move(corners));
    polygon.object = static_cast<std::size_t>(outlines.objects[i]);
    return polygon;
  }

  bool mayBeAbove(std::size_t i, Vec3 point) const {
    bool isHigher = false;
    bool isLeft = false;
    bool isRight = false;
    bool isInFront = false;
    bool isBehind = false;
    for (std::size_t k = outlines.offsets[i]; k < outlines.offsets[i + 1]; ++k) {
      const Vec3 at = corner(k);
      isHigher |= at.z > point.z;
      isLeft |= at.x <= point.x;
      isRight |= at.x >= point.x;
      isInFront |= at.y <= point.y;
      isBehind |= at.y >= point.y;
    }
    return isHigher && isLeft && isRight && isInFront && isBehind;
  }

  void makeAll() {
    for (std::size_t i = 0; i < outlines.objects.size(); ++i)
      if (cornerCount(i) >= 3) all.push_back(polygonAt(i));
  }

  // What a ray straight up meets first.
  FirstMet above(Vec3 from) const {
    if (!hasOutlines()) return firstMet(from, directions().front(), true, 0);
    Polygons over;
    for (std::size_t i = 0; i < outlines.objects.size(); ++i)
      if (cornerCount(i) >= 3 && mayBeAbove(i, from)) over.all.push_back(polygonAt(i));
    return over.firstMet(from, directions().front(), true, 0);
  }

  // Among the polygons of one object, or of all for 0.
  FirstMet firstMet(Vec3 from, Vec3 direction, bool isUp, std::size_t object) const {
    double front = std::numeric_limits<double>::infinity();
    double back = front;
    FirstMet first;
    for (const Polygon& polygon : all) {
      if (object != 0 && polygon.object != object) continue;
      if (isUp && !Check::mayBeAbove(polygon, from)) continue;
      const double distance = distanceTo(polygon, from, direction);
      const bool isFront = Kernel::dot(polygon.normal, direction) > 0.0;
      if (!isFront && distance < back) first.object = polygon.object;
      double& nearest = isFront ? front : back;
      nearest = std::min(nearest, distance);
    }
    first.isBack = back < front && front - back > SameDistance * back;
    return first;
  }

  // Whether most rays, the one straight up among them, meet backs.
  bool isEnclosed(Vec3 eye, std::size_t object) const {
    const std::vector<Vec3>& rays = directions();
    const auto backs = std::count_if(rays.begin() + 1, rays.end(), [&](Vec3 direction) {
      return firstMet(eye, direction, false, object).isBack;
    });
    return 2 * (static_cast<std::size_t>(backs) + 1) > rays.size();
  }
};

InsideTest::InsideTest(Scene::Scene3D& scene) {
  auto found = std::make_unique<Polygons>();
  if (scene.getPoints() != nullptr && scene.getObjects() != nullptr) {
    const auto& points = *scene.getPoints()->getPoints();
    std::size_t number = 0;
    for (const Scene::Object* object : *scene.getObjects()->getObjects()) {
      ++number;
      if (object == nullptr || object->getRegions() == nullptr) continue;
      for (const Geometry::Region* region : *object->getRegions()->getRegions()) {
        if (region == nullptr || region->getPoints() == nullptr) continue;
        std::vector<Vec3> corners;
        for (const int corner : *region->getPoints()) {
          if (corner < 1 || static_cast<std::size_t>(corner) > points.size()) continue;
          const Geometry::Point3d* point = points[static_cast<std::size_t>(corner) - 1];
          if (point != nullptr) corners.push_back({point->getX(), point->getY(), point->getZ()});
        }
        if (corners.size() < 3) continue;
        found->all.push_back(polygonOf(std::move(corners)));
        found->all.back().object = number;
      }
    }
  }
  polygons = std::move(found);
}

InsideTest::InsideTest(Outlines outlines) {
  auto found = std::make_unique<Polygons>();
  found->outlines = std::move(outlines);
  polygons = std::move(found);
}

InsideTest::~InsideTest() = default;

bool InsideTest::isInside(const std::array<double, 3>& point) const {
  const Vec3 eye{point[0], point[1], point[2]};
  // Nearly every eye is decided by the first ray, and cheaply.
  const FirstMet above = polygons->above(eye);
  if (!above.isBack) return false;
  if (polygons->hasOutlines()) std::call_once(isMade, [this] { polygons->makeAll(); });
  // Where bodies touch, as houses of a row do, the wall of the one stands on that of the other, and
  // both together count as a front: then the body overhead is asked alone.
  return polygons->isEnclosed(eye, 0) || polygons->isEnclosed(eye, above.object);
}

}  // namespace Lumivane::Check
