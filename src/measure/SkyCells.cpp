// A direction's cell is that above the first edge which the upright half plane through the
// direction meets below it. Edges are kept by the azimuths that they span.
#include "measure/SkyCells.h"

#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace Lumivane::Measure {
namespace {

using Kernel::Pi;
using Kernel::Vec3;

constexpr double Slack = 1e-9;  // radians that an edge may reach over its azimuths

double azimuthOf(Vec3 v) { return Kernel::arcTangent(v.y, v.x); }

// Where an edge crosses the half plane of a level direction.
struct Crossing {
  bool isAny = false;
  bool isLeftAbove = false;
  double slope = 0.0;  // the tangent of its elevation
};

Crossing crossingOf(Vec3 a, Vec3 b, Vec3 level) {
  // Positive on the left of the half plane as the eye sees it.
  const double sideA = Kernel::flatCross({level.x, level.y}, {a.x, a.y});
  const double sideB = Kernel::flatCross({level.x, level.y}, {b.x, b.y});
  Crossing result;
  if ((sideA >= 0.0) == (sideB >= 0.0)) return result;
  const Vec3 at = std::abs(sideB) * a + std::abs(sideA) * b;
  const double ahead = level.x * at.x + level.y * at.y;
  if (!(ahead > 0.0)) return result;
  result.isAny = true;
  result.isLeftAbove = sideA >= 0.0;
  result.slope = at.z / ahead;
  return result;
}

}  // namespace

SkyCells::SkyCells(const Visibility::VisibleMap& map) : source(&map) {
  if (map.field != Visibility::Field::Hemisphere ||
      map.forward != Visibility::Vector{0.0, 0.0, 1.0})
    throw std::invalid_argument("the map is not of the hemisphere above the eye");
  buckets.resize(std::clamp<size_t>(map.edges.size() / 4, 8, 4096));
  const size_t count = buckets.size();
  for (size_t i = 0; i < map.edges.size(); ++i) {
    const double from = azimuthOf(vertex(map.edges[i].from));
    const double turn = std::remainder(azimuthOf(vertex(map.edges[i].to)) - from, 2.0 * Pi);
    // All but through the zenith an edge may pass on either side.
    const bool isAround = std::abs(turn) > Pi - 1e-6;
    const size_t first = bucketOf(std::min(from, from + turn) - Slack);
    const size_t last = bucketOf(std::max(from, from + turn) + Slack);
    const size_t spanned = isAround ? count : (last + count - first) % count + 1;
    for (size_t k = 0; k < spanned; ++k)
      buckets[(first + k) % count].push_back(static_cast<std::int32_t>(i));
  }
}

size_t SkyCells::bucketOf(double azimuth) const {
  const double turns = azimuth / (2.0 * Pi);
  const auto count = static_cast<double>(buckets.size());
  return std::min(buckets.size() - 1, static_cast<size_t>((turns - std::floor(turns)) * count));
}

const std::vector<std::int32_t>& SkyCells::edgesAround(Vec3 direction) const {
  return buckets[bucketOf(azimuthOf(direction))];
}

int SkyCells::cellAt(Vec3 direction) const {
  if (source->edges.empty()) return source->cells.empty() ? -1 : 0;
  Vec3 level = {direction.x, direction.y, 0.0};
  if (level == Vec3{}) level.x = 1.0;
  const double square = level.x * level.x + level.y * level.y;
  const double ahead = level.x * direction.x + level.y * direction.y;
  const double slope =
      ahead > 0.0 ? direction.z * (square / ahead) : std::numeric_limits<double>::infinity();
  double below = -std::numeric_limits<double>::infinity();
  double above = std::numeric_limits<double>::infinity();
  int cellAbove = -1;
  int cellBelow = -1;
  for (const std::int32_t number : edgesAround(level)) {
    const Edge& edge = source->edges[static_cast<size_t>(number)];
    const Crossing crossing = crossingOf(vertex(edge.from), vertex(edge.to), level);
    if (!crossing.isAny) continue;
    const double at = crossing.slope * square;
    if (at <= slope && at > below) {
      below = at;
      cellBelow = crossing.isLeftAbove ? edge.left : edge.right;
    } else if (at > slope && at < above) {
      above = at;
      cellAbove = crossing.isLeftAbove ? edge.right : edge.left;
    }
  }
  return std::isfinite(below) ? cellBelow : cellAbove;
}

double SkyCells::highestBlocked(Vec3 level) const {
  constexpr double OnHalfPlane = 1e-12;
  if (!isSky(cellAt({0.0, 0.0, 1.0}))) return std::numeric_limits<double>::infinity();
  const double length = std::sqrt(level.x * level.x + level.y * level.y);
  const Vec3 ahead = {level.x / length, level.y / length, 0.0};
  double highest = 0.0;
  for (const std::int32_t number : edgesAround(ahead)) {
    const Edge& edge = source->edges[static_cast<size_t>(number)];
    if (isSky(edge.left) == isSky(edge.right) || edge.left < 0 || edge.right < 0) continue;
    const Vec3 a = vertex(edge.from);
    const Vec3 b = vertex(edge.to);
    const Crossing crossing = crossingOf(a, b, ahead);
    if (crossing.isAny) highest = std::max(highest, crossing.slope);
    // Corners that stand on the half plane, as the ends of upright edges.
    for (const Vec3 end : {a, b}) {
      const double along = ahead.x * end.x + ahead.y * end.y;
      const double aside = ahead.x * end.y - ahead.y * end.x;
      if (along > 0.0 && std::abs(aside) <= OnHalfPlane) highest = std::max(highest, end.z / along);
    }
  }
  return highest;
}

}  // namespace Lumivane::Measure
