#include "check/RayPolygon.h"
#include "kernel/RayTree.h"
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
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

// A point is inside a body if the first polygon that a ray from it meets shows its back. Real
// bodies have gaps and doubled walls, so several rays vote, in directions in which models have no
// edges.
//
// The first points are compared with all polygons, since one alone is not worth a tree; from then
// on a tree of boxes says which polygons a ray may meet. Both come to the same answer, because the
// tree leaves out nothing that the arithmetic of RayPolygon.h finds met, with all its rounding.
// Straight up that is so by the boxes of corners, which are compared there, too. Along other rays a
// polygon is met where the ray meets its plane, if the outline, seen along an axis, holds that
// place: so its box has the plane over that outline in it, and is taken wider than rounding can
// bring the place off the plane. Polygons of such numbers that this does not hold are asked always.
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

// So many points are compared with all polygons before a tree is made of them.
constexpr int PointsWithoutTree = 8;

// What a ray meets first.
struct FirstMet {
  double front = std::numeric_limits<double>::infinity();
  double back = std::numeric_limits<double>::infinity();
  std::size_t polygon = 0;  // the first one at the distance of `back`
  // The back of a polygon alone.
  bool isBack() const { return back < front && front - back > SameDistance * back; }
  // Farther than this, nothing changes what is met.
  double limit() const { return std::min(front, back) * (1.0 + 1e3 * SameDistance); }
};

}  // namespace

class InsideTest::Polygons {
 public:
  explicit Polygons(Outlines theOutlines) : outlines(std::move(theOutlines)) {}
  explicit Polygons(Scene::Scene3D& scene) {
    auto own = std::make_shared<Arrays>();
    own->offsets.push_back(0);
    if (scene.getPoints() != nullptr && scene.getObjects() != nullptr) addAll(scene, *own);
    outlines.points = own->points.data();
    outlines.offsets = own->offsets.data();
    outlines.corners = own->corners.data();
    outlines.owner = own;
  }

  bool isInside(Vec3 eye) const {
    if (asked < PointsWithoutTree)
      ++asked;
    else
      needTree();
    // Nearly every eye is decided by the first ray, and cheaply.
    const FirstMet above = metAbove(eye);
    if (!above.isBack()) return false;
    needTree();
    // Where bodies touch, as houses of a row do, the wall of the one stands on that of the other,
    // and both together count as a front: then the body overhead is asked alone.
    return isEnclosed(eye, 0) || isEnclosed(eye, outlines.objects[above.polygon]);
  }

 private:
  struct Arrays {
    std::vector<std::array<double, 3>> points;
    std::vector<std::size_t> offsets;
    std::vector<int> corners;
  };

  void addAll(Scene::Scene3D& scene, Arrays& own) {
    const auto& points = *scene.getPoints()->getPoints();
    own.points.reserve(points.size());
    for (const Geometry::Point3d* const point : points)
      own.points.push_back(
          point == nullptr ? std::array<double, 3>{}
                           : std::array<double, 3>{point->getX(), point->getY(), point->getZ()});
    int number = 0;
    for (const Scene::Object* object : *scene.getObjects()->getObjects()) {
      ++number;
      if (object == nullptr || object->getRegions() == nullptr) continue;
      for (const Geometry::Region* region : *object->getRegions()->getRegions()) {
        if (region == nullptr || region->getPoints() == nullptr) continue;
        for (const int corner : *region->getPoints())
          if (corner >= 1 && static_cast<std::size_t>(corner) <= points.size() &&
              points[static_cast<std::size_t>(corner) - 1] != nullptr)
            own.corners.push_back(corner - 1);
        own.offsets.push_back(own.corners.size());
        outlines.objects.push_back(number);
      }
    }
  }

  std::size_t size() const { return outlines.objects.size(); }

  Outline outline(std::size_t i) const {
    return {outlines.points, outlines.corners + outlines.offsets[i],
            outlines.offsets[i + 1] - outlines.offsets[i]};
  }

  static bool isPolygon(const Outline& corners) { return corners.count() >= 3; }

  void needTree() const {
    std::call_once(once, [this] {
      tree = Kernel::RayTree(size(), [this](std::size_t i) { return boxForTree(i); });
      for (std::size_t i = 0; i < size(); ++i)
        if (isAskedAlways(i)) always.push_back(static_cast<std::uint32_t>(i));
      hasTree = true;
    });
  }

  // Empty of what no ray meets, and of what is asked always.
  Kernel::SpaceBox boxForTree(std::size_t i) const {
    const Outline corners = outline(i);
    if (!isPolygon(corners)) return {};
    const Polygon polygon = polygonOf(corners);
    return isOrdinary(polygon) ? boxWithPlane(polygon) : Kernel::SpaceBox{};
  }

  bool isAskedAlways(std::size_t i) const {
    const Outline corners = outline(i);
    if (!isPolygon(corners)) return false;
    const Polygon polygon = polygonOf(corners);
    return !isOrdinary(polygon) && polygon.normal != Vec3{};  // without a normal none is met
  }

  void meet(std::size_t i, Vec3 from, Vec3 direction, FirstMet& first) const {
    const Polygon polygon = polygonOf(outline(i));
    const double distance = distanceTo(polygon, from, direction);
    if (Kernel::dot(polygon.normal, direction) > 0.0) {
      first.front = std::min(first.front, distance);
    } else if (distance < first.back || (distance == first.back && i < first.polygon)) {
      first.back = distance;
      first.polygon = i;
    }
  }

  // By a ray straight up.
  FirstMet metAbove(Vec3 from) const {
    FirstMet first;
    const auto meetAbove = [&](std::size_t i) {
      const Outline corners = outline(i);
      if (isPolygon(corners) && mayBeAbove(corners, from))
        meet(i, from, directions().front(), first);
    };
    if (hasTree) {
      tree.visitAbove(from, meetAbove);
      for (const std::uint32_t i : always) meetAbove(i);
    } else {
      for (std::size_t i = 0; i < size(); ++i) meetAbove(i);
    }
    return first;
  }

  // Among the polygons of one object, or of all for 0.
  FirstMet metAlong(Vec3 from, std::size_t ray, int object) const {
    FirstMet first;
    const Vec3 direction = directions()[ray];
    const auto meetAlong = [&](std::size_t i) {
      if (object == 0 || outlines.objects[i] == object) meet(i, from, direction, first);
      return first.limit();
    };
    for (const std::uint32_t i : always) meetAlong(i);
    tree.visitAlong(from, direction, marginFrom(from), meetAlong);
    return first;
  }

  double marginFrom(Vec3 from) const {
    const Kernel::SpaceBox& box = tree.bounds();
    const double reach = std::max(longest(box.low - from), longest(box.high - from));
    const double coordinate = std::max({longest(box.low), longest(box.high), longest(from)});
    return Margin * (reach + coordinate);
  }

  // Whether most rays, the one straight up among them, meet backs.
  bool isEnclosed(Vec3 eye, int object) const {
    std::size_t backs = 1;
    for (std::size_t ray = 1; ray < directions().size(); ++ray)
      backs += metAlong(eye, ray, object).isBack() ? 1 : 0;
    return 2 * backs > directions().size();
  }

  Outlines outlines;
  mutable std::atomic<int> asked{0};
  mutable std::once_flag once;
  mutable std::atomic<bool> hasTree{false};
  mutable Kernel::RayTree tree;
  mutable std::vector<std::uint32_t> always;  // what the tree leaves out, though it may be met
};

InsideTest::InsideTest(Scene::Scene3D& scene) : polygons(std::make_unique<Polygons>(scene)) {}

InsideTest::InsideTest(Outlines outlines)
    : polygons(std::make_unique<Polygons>(std::move(outlines))) {}

InsideTest::~InsideTest() = default;

bool InsideTest::isInside(const std::array<double, 3>& point) const {
  return polygons->isInside({point[0], point[1], point[2]});
}

}  // namespace Lumivane::Check
