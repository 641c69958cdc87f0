#include "pictures/LabelPlace.h"

#include "kernel/ArcFlattening.h"

#include <algorithm>
#include <cmath>
#include <queue>

namespace Lumivane::Pictures {
namespace {

using Kernel::Vec2;

// The distance from the border, negative outside.
double insideBy(const std::vector<PlaneLine>& lines, Vec2 p) {
  bool inside = false;
  double nearest = 1e300;
  for (const PlaneLine& line : lines)
    for (std::size_t i = 0; i < line.size(); ++i) {
      const Vec2 a = line[i];
      const Vec2 b = line[i + 1 == line.size() ? 0 : i + 1];
      if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
        inside = !inside;
      nearest = std::min(nearest, Kernel::distanceToSegment(p, a, b));
    }
  return inside ? nearest : -nearest;
}

struct Square {
  Vec2 middle;
  double half;
  double distance;
  double most;  // that a place in it can have

  Square(const std::vector<PlaneLine>& lines, Vec2 at, double halfSide)
      : middle(at),
        half(halfSide),
        distance(insideBy(lines, at)),
        most(distance + halfSide * 1.4142135623730951) {}
  bool operator<(const Square& other) const { return most < other.most; }
};

}  // namespace

InnerPlace poleOfInaccessibility(const std::vector<PlaneLine>& lines, double precision) {
  Vec2 low{1e300, 1e300};
  Vec2 high{-1e300, -1e300};
  for (const PlaneLine& line : lines)
    for (const Vec2& p : line) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
  const double side = std::min(high.x - low.x, high.y - low.y);
  if (!(side > 0.0)) return {low, 0.0};
  // Long thin areas have no more squares at the start than this.
  const double half = 0.5 * std::max(side, std::max(high.x - low.x, high.y - low.y) / 64.0);
  std::priority_queue<Square> squares;
  for (double x = low.x; x < high.x; x += 2.0 * half)
    for (double y = low.y; y < high.y; y += 2.0 * half)
      squares.emplace(lines, Vec2{x + half, y + half}, half);
  Square best(lines, 0.5 * (low + high), 0.0);
  while (!squares.empty()) {
    const Square square = squares.top();
    squares.pop();
    if (square.distance > best.distance) best = square;
    if (square.most - best.distance <= precision) break;
    const double next = 0.5 * square.half;
    for (const double x : {-next, next})
      for (const double y : {-next, next}) squares.emplace(lines, square.middle + Vec2{x, y}, next);
  }
  return {best.middle, best.distance};
}

double areaOf(const std::vector<PlaneLine>& lines) {
  double sum = 0.0;
  for (const PlaneLine& line : lines)
    for (std::size_t i = 0; i < line.size(); ++i) {
      const Vec2 a = line[i];
      const Vec2 b = line[i + 1 == line.size() ? 0 : i + 1];
      sum += 0.5 * (a.x * b.y - b.x * a.y);
    }
  return std::fabs(sum);
}

}  // namespace Lumivane::Pictures
