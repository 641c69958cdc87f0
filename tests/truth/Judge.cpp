// A direction d lies in an outline if the half circle from d to -d, which is behind the plane,
// crosses its edges an odd number of times: a parity of arcs, which needs no point of the plane.
// An eye on an outline sees nothing of it. The distance is that of the plane. Of the nearest
// piece's layer the latest member that contains the direction is seen.

#include "truth/Judge.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Lumivane::Truth {
namespace {

using Visibility::Vector;

constexpr Real EdgeOn = 1e-12L;  ///< of the distance of an outline's farthest corner
constexpr std::size_t LeafSize = 4;
constexpr Real Far = std::numeric_limits<Real>::infinity();

bool isZero(const LongVector& v) { return v.x == 0.0L && v.y == 0.0L && v.z == 0.0L; }

}  // namespace

struct Judge::Ray {
  const Vector& eye;
  LongVector direction;
  Vector inverse;
  bool twoSided;
};

struct Judge::Hit {
  Real distance = Far;
  int piece = -1;
};

Judge::Judge(Visibility::PolygonScene newScene, const Tolerances& tolerances)
    : theScene(std::move(newScene)), thePieces(piecesOf(theScene, tolerances)) {
  for (const Piece& piece : thePieces.list) {
    const auto layer = static_cast<std::size_t>(piece.layer);
    if (layer >= layerSizes.size()) layerSizes.resize(layer + 1);
    ++layerSizes[layer];
  }
  build();
}

Judge::Box Judge::boxOf(const Piece& piece) const {
  Box box;
  box.low.fill(std::numeric_limits<double>::infinity());
  box.high.fill(-std::numeric_limits<double>::infinity());
  double largest = 0.0;
  for (const int corner : piece.corners) {
    const Vector& point = theScene.points[static_cast<std::size_t>(corner)];
    for (std::size_t axis = 0; axis < 3; ++axis) {
      box.low[axis] = std::min(box.low[axis], point[axis]);
      box.high[axis] = std::max(box.high[axis], point[axis]);
      largest = std::max(largest, std::fabs(point[axis]));
    }
  }
  const double room = 4.0 * static_cast<double>(piece.deviation) + 1e-12 * largest +
                      1e-9 * static_cast<double>(piece.size);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    box.low[axis] -= room;
    box.high[axis] += room;
  }
  return box;
}

void Judge::build() {
  if (thePieces.list.empty()) return;
  for (std::size_t i = 0; i < thePieces.list.size(); ++i) {
    boxes.push_back(boxOf(thePieces.list[i]));
    order.push_back(static_cast<int>(i));
  }
  nodes.emplace_back();
  split(0, 0, order.size());
}

void Judge::split(std::size_t node, std::size_t from, std::size_t to) {
  Box box = boxes[static_cast<std::size_t>(order[from])];
  for (std::size_t i = from + 1; i < to; ++i) {
    const Box& other = boxes[static_cast<std::size_t>(order[i])];
    for (std::size_t axis = 0; axis < 3; ++axis) {
      box.low[axis] = std::min(box.low[axis], other.low[axis]);
      box.high[axis] = std::max(box.high[axis], other.high[axis]);
    }
  }
  nodes[node].box = box;
  if (to - from <= LeafSize) {
    nodes[node].first = static_cast<int>(from);
    nodes[node].count = static_cast<int>(to - from);
    return;
  }
  std::size_t longest = 0;
  for (std::size_t axis = 1; axis < 3; ++axis)
    if (box.high[axis] - box.low[axis] > box.high[longest] - box.low[longest]) longest = axis;
  const std::size_t middle = (from + to) / 2;
  const auto at = [this](std::size_t i) { return order.begin() + static_cast<std::ptrdiff_t>(i); };
  std::nth_element(at(from), at(middle), at(to), [&](int a, int b) {
    const Box& first = boxes[static_cast<std::size_t>(a)];
    const Box& second = boxes[static_cast<std::size_t>(b)];
    return first.low[longest] + first.high[longest] < second.low[longest] + second.high[longest];
  });
  const std::size_t child = nodes.size();
  nodes[node].first = static_cast<int>(child);
  nodes.resize(child + 2);
  split(child, from, middle);
  split(child + 1, middle, to);
}

bool Judge::contains(const Piece& piece, const LongVector& normal, const Ray& ray) const {
  const LongVector& d = ray.direction;
  const LongVector pole = piece.across * dot(normal, d) - normal * dot(piece.across, d);
  const LongVector ahead = cross(pole, d);
  bool inside = false;
  LongVector a = fromEye(theScene.points[static_cast<std::size_t>(piece.corners.back())], ray.eye);
  Real sideOfA = dot(pole, a);
  for (const int corner : piece.corners) {
    const LongVector b = fromEye(theScene.points[static_cast<std::size_t>(corner)], ray.eye);
    const Real sideOfB = dot(pole, b);
    if (isZero(b)) return false;
    if ((sideOfA > 0.0L) != (sideOfB > 0.0L)) {
      if (isZero(cross(a, b)) && dot(a, b) < 0.0L) return false;
      const Real where = dot(ahead, a) * std::fabs(sideOfB) + dot(ahead, b) * std::fabs(sideOfA);
      if (where > 0.0L) inside = !inside;
    }
    a = b;
    sideOfA = sideOfB;
  }
  return inside;
}

Real Judge::farthestCorner(const Piece& piece, const Ray& ray) const {
  Real farthest = 0.0L;
  for (const int corner : piece.corners)
    farthest = std::max(
        farthest, length(fromEye(theScene.points[static_cast<std::size_t>(corner)], ray.eye)));
  return farthest;
}

bool Judge::meets(const Piece& piece, const Ray& ray, Real& distance) const {
  const LongVector toMiddle = piece.middle - wide(ray.eye);
  const Real height = dot(piece.normal, toMiddle);
  if (std::fabs(height) <= EdgeOn * (length(toMiddle) + piece.size) &&
      std::fabs(height) <= EdgeOn * farthestCorner(piece, ray))
    return false;
  if (height < 0.0L && !ray.twoSided) return false;
  const LongVector normal = height < 0.0L ? piece.normal * -1.0L : piece.normal;
  const Real along = dot(normal, ray.direction);
  if (!(along > 0.0L)) return false;
  distance = std::fabs(height) / along;
  return contains(piece, normal, ray);
}

template <class Visit>
void Judge::walk(const Ray& ray, const Real& limit, Visit visit) const {
  if (nodes.empty()) return;
  const auto entry = [&](const Box& box) {
    double from = 0.0;
    double to = std::numeric_limits<double>::infinity();
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double one = (box.low[axis] - ray.eye[axis]) * ray.inverse[axis];
      const double two = (box.high[axis] - ray.eye[axis]) * ray.inverse[axis];
      from = std::max(from, std::min(one, two));
      to = std::min(to, std::max(one, two));
    }
    return from <= to * (1.0 + 1e-12) ? from : std::numeric_limits<double>::infinity();
  };
  struct Open {
    double from;
    std::size_t node;
  };
  std::array<Open, 128> stack;
  std::size_t used = 0;
  const auto push = [&](std::size_t node) {
    const double from = entry(nodes[node].box);
    if (from < std::numeric_limits<double>::infinity()) stack.at(used++) = {from, node};
  };
  push(0);
  while (used > 0) {
    const Open open = stack.at(--used);
    if (static_cast<Real>(open.from) * (1.0L - 1e-9L) > limit) continue;
    const Node& node = nodes[open.node];
    const auto first = static_cast<std::size_t>(node.first);
    if (node.count > 0) {
      for (std::size_t i = 0; i < static_cast<std::size_t>(node.count); ++i)
        visit(order[first + i]);
      continue;
    }
    const std::size_t before = used;
    push(first);
    push(first + 1);
    if (used == before + 2 && stack.at(used - 1).from > stack.at(used - 2).from)
      std::swap(stack.at(used - 1), stack.at(used - 2));
  }
}

Verdict Judge::verdictOf(const Hit& hit) const {
  Verdict verdict;
  if (hit.piece < 0) return verdict;
  const std::size_t outline = thePieces.list[static_cast<std::size_t>(hit.piece)].outline;
  verdict.outline = static_cast<int>(outline);
  verdict.distance = static_cast<double>(hit.distance);
  verdict.label = theScene.labels.empty() ? Visibility::Label{1, -1, static_cast<int>(outline) + 1}
                                          : theScene.labels[outline];
  return verdict;
}

Verdict Judge::seen(const Vector& eye, const Vector& direction, bool twoSided) const {
  const LongVector d = unit(wide(direction));
  const auto inverse = [](Real value) {
    return static_cast<double>(1.0L / (value == 0.0L ? 1e-300L : value));
  };
  const Ray ray{eye, d, {inverse(d.x), inverse(d.y), inverse(d.z)}, twoSided};
  Hit best;
  walk(ray, best.distance, [&](int number) {
    Real distance = 0.0L;
    if (!meets(thePieces.list[static_cast<std::size_t>(number)], ray, distance)) return;
    if (distance < best.distance || (distance == best.distance && number > best.piece))
      best = {distance, number};
  });
  if (best.piece < 0) return {};
  const int layer = thePieces.list[static_cast<std::size_t>(best.piece)].layer;
  if (layerSizes[static_cast<std::size_t>(layer)] == 1) return verdictOf(best);
  walk(ray, Far, [&](int number) {
    const Piece& piece = thePieces.list[static_cast<std::size_t>(number)];
    Real distance = 0.0L;
    if (piece.layer == layer && number > best.piece && meets(piece, ray, distance))
      best = {distance, number};
  });
  return verdictOf(best);
}

Verdict Judge::seenOfAll(const Vector& eye, const Vector& direction, bool twoSided) const {
  const Ray ray{eye, unit(wide(direction)), {}, twoSided};
  std::vector<Hit> hits;
  Hit best;
  for (std::size_t i = 0; i < thePieces.list.size(); ++i) {
    Real distance = 0.0L;
    if (!meets(thePieces.list[i], ray, distance)) continue;
    hits.push_back({distance, static_cast<int>(i)});
    if (distance <= best.distance) best = hits.back();
  }
  for (const Hit& hit : hits)
    if (thePieces.list[static_cast<std::size_t>(hit.piece)].layer ==
            thePieces.list[static_cast<std::size_t>(best.piece)].layer &&
        hit.piece > best.piece)
      best = hit;
  return verdictOf(best);
}

}  // namespace Lumivane::Truth
