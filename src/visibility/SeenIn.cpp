// One ray after the other through the hierarchy of boxes. All polygons that a ray meets are
// compared, not only those of near boxes: depth is that of planes, and where an eye is all but in a
// plane of a polygon that is not quite flat, the plane is met far from the polygon's box.
#include "kernel/Exact.h"
#include "visibility/BoxHierarchy.h"
#include "visibility/EyePlane.h"
#include "visibility/IndexState.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

bool isFinite(const Vector& v) {
  return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

Vec3 checkedEye(const Vector& eye) {
  if (!isFinite(eye)) throw std::invalid_argument("the eye is not finite");
  return {eye[0], eye[1], eye[2]};
}

Vec3 checkedDirection(const Vector& direction, std::size_t position) {
  const Vec3 d{direction[0], direction[1], direction[2]};
  if (!isFinite(direction) || d == Vec3{})
    throw std::invalid_argument("the direction at position " + std::to_string(position) +
                                " is zero or not finite");
  return d;
}

class RayQuery {
 public:
  RayQuery(const IndexState& index, Vec3 eyePoint, bool bothSides)
      : state(index), eye(eyePoint), twoSided(bothSides) {}

  Seen nearest(Vec3 ray) {
    setDirection(ray);
    found = false;
    if (!state.nodes.empty()) walk();
    if (!found) return {};
    const auto region = static_cast<std::size_t>(state.regions[best]);
    return {state.names->regions[region], distance()};
  }

 private:
  // The half plane from the direction towards the axis with its smallest component is the one in
  // which edges are counted: the components of its normal are those of the direction.
  void setDirection(Vec3 ray) {
    direction = ray;
    const double x = std::abs(ray.x);
    const double y = std::abs(ray.y);
    const double z = std::abs(ray.z);
    const double largest = std::max({x, y, z});
    scaled = {ray.x / largest, ray.y / largest, ray.z / largest};
    if (x <= y && x <= z)
      across = {0.0, ray.z, -ray.y};
    else if (y <= z)
      across = {-ray.z, 0.0, ray.x};
    else
      across = {ray.y, -ray.x, 0.0};
  }

  void walk() {
    std::int32_t waiting[BoxHierarchy::MostDepth + 1];
    int count = 0;
    waiting[count++] = 0;
    while (count > 0) {
      const BoxNode& node = state.nodes[static_cast<std::size_t>(waiting[--count])];
      if (!meets(node)) continue;
      if (node.isLeaf()) {
        for (std::int32_t i = node.first; i < node.first + node.count; ++i)
          ask(static_cast<std::size_t>(i));
      } else {
        waiting[count++] = node.first + 1;
        waiting[count++] = node.first;
      }
    }
  }

  // Whether the line of the ray meets a box. Rounded differences of corners lie between those of
  // the box, since rounding keeps order; the quotients are allowed for.
  bool meets(const BoxNode& node) const {
    const double from[3] = {eye.x, eye.y, eye.z};
    const double d[3] = {scaled.x, scaled.y, scaled.z};
    double enter = -std::numeric_limits<double>::infinity();
    double leave = std::numeric_limits<double>::infinity();
    for (int k = 0; k < 3; ++k) {
      const double low = static_cast<double>(node.low[k]) - from[k];
      const double high = static_cast<double>(node.high[k]) - from[k];
      if (d[k] == 0.0) {
        if (low > 0.0 || high < 0.0) return false;
        continue;
      }
      enter = std::max(enter, std::min(low / d[k], high / d[k]));
      leave = std::min(leave, std::max(low / d[k], high / d[k]));
    }
    constexpr double Rounding = 1e-15;
    return enter - Rounding * std::abs(enter) <= leave + Rounding * std::abs(leave);
  }

  void ask(std::size_t polygon) {
    const double offset = offsetFrom(state, polygon, eye);
    if (!(offset > 0.0) && !twoSided) return;
    const int forward = Kernel::signOfDot(state.planes[polygon].normal, direction);
    if (forward == 0 || (forward > 0) != (offset > 0.0)) return;
    if (!isInside(polygon)) return;
    const EyePlane plane = eyePlane(state, polygon, eye, twoSided);
    if (plane.isSeen && (!found || isNearer(polygon, plane))) {
      found = true;
      best = polygon;
      bestPlane = plane;
    }
  }

  // Even-odd: how often the outline crosses the half plane.
  bool isInside(std::size_t polygon) const {
    const auto begin = static_cast<std::size_t>(state.cornerOffsets[polygon]);
    const auto end = static_cast<std::size_t>(state.cornerOffsets[polygon + 1]);
    Vec3 from = corner(end - 1);
    bool fromLeft = Kernel::signOfDot(across, from) >= 0;
    bool inside = false;
    for (std::size_t c = begin; c < end; ++c) {
      const Vec3 to = corner(c);
      const bool toLeft = Kernel::signOfDot(across, to) >= 0;
      if (fromLeft != toLeft) {
        const int turn = Kernel::orientation(from, to, direction);
        if (fromLeft ? turn < 0 : turn > 0) inside = !inside;
      }
      from = to;
      fromLeft = toLeft;
    }
    return inside;
  }

  Vec3 corner(std::size_t c) const {
    return state.vertices[static_cast<std::size_t>(state.cornerVertices[c])] - eye;
  }

  bool isNearer(std::size_t polygon, const EyePlane& plane) const {
    if (state.layers[polygon] != state.layers[best]) {
      const int sign = Kernel::signOfDifferenceDot(plane.nearness, bestPlane.nearness, direction);
      if (sign != 0) return sign > 0;
    }
    return std::pair(state.regions[polygon], polygon) > std::pair(state.regions[best], best);
  }

  // On the polygon's own plane.
  double distance() const {
    const double inverse = Kernel::dot(bestPlane.ownNearness, scaled) / Kernel::length3(scaled);
    return inverse > 0.0 ? 1.0 / inverse : std::numeric_limits<double>::max();
  }

  const IndexState& state;
  Vec3 eye;
  bool twoSided;
  Vec3 direction;
  Vec3 scaled;  // the same way, its largest component 1
  Vec3 across;
  bool found = false;
  std::size_t best = 0;
  EyePlane bestPlane;
};

}  // namespace

std::vector<Seen> SceneIndex::seenIn(const Vector& eye, const std::vector<Vector>& directions,
                                     bool twoSided) const {
  RayQuery query(*state, checkedEye(eye), twoSided);
  std::vector<Seen> result;
  result.reserve(directions.size());
  for (std::size_t i = 0; i < directions.size(); ++i)
    result.push_back(query.nearest(checkedDirection(directions[i], i)));
  return result;
}

}  // namespace Lumivane::Visibility
