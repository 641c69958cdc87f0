// Solid angles and view factors of cells, from their arcs. Angles are known up to whole spheres;
// which of the possible ones is meant follows from what a cell can be.
#include "kernel/Planar.h"
#include "visibility/MapBuilder.h"
#include "visibility/SphereMeasure.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Visibility {

using Kernel::Pi;
using Kernel::Vec3;

void MapBuilder::addArcs(size_t ring, Arcs& arcs) const {
  const size_t begin = map.ringOffsets[ring];
  const size_t end = map.ringOffsets[ring + 1];
  const Vec3 first = vertexAt(map.ringVertices[begin]);
  Vec3 from = first;
  for (size_t i = begin + 1; i < end; ++i) {
    const Vec3 to = vertexAt(map.ringVertices[i]);
    arcs.push_back({from, to});
    from = to;
  }
  arcs.push_back({from, first});
}

void MapBuilder::arcsOf(const VisibleMap::Cell& cell, Arcs& arcs) const {
  arcs.clear();
  for (size_t r = 0; r < cell.ringCount; ++r) addArcs(cell.firstRing + r, arcs);
}

// Fans of triangles from one direction give the solid angle up to whole spheres; the direction
// opposite to it must be far from all arcs.
Vec3 MapBuilder::farFromArcs(const Arcs& arcs) {
  Vec3 best{};
  double bestCosine = 2.0;
  for (int i = 0; i < 27; ++i) {
    if (i == 13) continue;
    const int x = i % 3 - 1;
    const int y = i / 3 % 3 - 1;
    const int z = i / 9 - 1;
    const Vec3 candidate = {x + 0.013, y + 0.027, z - 0.011};
    const Vec3 opposite = -unit(candidate);
    double nearest = -1.0;
    for (const Arc& arc : arcs)
      nearest = std::max(nearest, cosineToArc(opposite, arc.from, arc.to));
    if (nearest < bestCosine) {
      bestCosine = nearest;
      best = -opposite;
    }
  }
  return best;
}

double MapBuilder::cosineToArc(Vec3 d, Vec3 a, Vec3 b) {
  const double ends = std::max(Kernel::dot(d, a), Kernel::dot(d, b));
  const Vec3 normal = Kernel::cross(a, b);
  const double length = Kernel::length3(normal);
  if (length == 0.0) return ends;
  const Vec3 n = {normal.x / length, normal.y / length, normal.z / length};
  if (Kernel::dot(Kernel::cross(n, a), d) <= 0.0 || Kernel::dot(Kernel::cross(b, n), d) <= 0.0)
    return ends;
  const double sine = Kernel::dot(n, d);
  return std::sqrt(std::max(0.0, 1.0 - sine * sine));
}

// The solid angle on the left of some rings, up to whole spheres: from -2 pi to 2 pi.
double MapBuilder::turnOf(const Arcs& arcs) {
  Vec3 middle{};
  for (const Arc& arc : arcs) middle = middle + arc.from;
  double least = -1.0;
  if (Kernel::length3(middle) > 0.0) {
    middle = unit(middle);
    least = 1.0;
    for (const Arc& arc : arcs) least = std::min(least, Kernel::dot(arc.from, middle));
  }
  // Within less than a hemisphere no triangle comes near the direction opposite to the first.
  const Vec3 from = least > 0.1 ? middle : farFromArcs(arcs);
  double sum = 0.0;
  for (const Arc& arc : arcs) sum += triangleSolidAngle(from, arc.from, arc.to);
  return std::remainder(sum, 4.0 * Pi);
}

// A flat region, and all that is within a hemisphere, takes at most half of the sphere; so what
// is below nothing is rounding's. The sky of a sphere, and a region that is bent around the eye,
// may take more; when it is nearly all, `settleWholeSpheres` says so.
bool MapBuilder::mayBeLarge(size_t cell) const {
  return map.field == Field::Sphere &&
         (map.cells[cell].label.object == 0 || severalPolygons[cell] != 0);
}

double MapBuilder::solidAngleOf(size_t cell, double turn) const {
  const bool large = mayBeLarge(cell);
  if (turn < (large ? -NearlyNothing : -Pi)) return turn + 4.0 * Pi;
  return std::max(0.0, turn);
}

// The solid angle on the left of one ring.
double MapBuilder::insideOfRing(size_t ring) const {
  Arcs arcs;
  addArcs(ring, arcs);
  const double turn = turnOf(arcs);
  return turn < 0.0 ? turn + 4.0 * Pi : turn;
}

// If nearly a whole sphere is missing from the sum, it is that of the cell around all.
void MapBuilder::settleWholeSpheres() {
  double sum = 0.0;
  int around = NoCell;
  for (size_t i = 0; i < map.cells.size(); ++i) {
    sum += map.cells[i].solidAngle;
    if (mayBeLarge(i) && turns[i] <= 0.0 &&
        (around == NoCell || turns[i] < turns[static_cast<size_t>(around)]))
      around = static_cast<int>(i);
  }
  if (map.field != Field::Sphere || around == NoCell || sum > 3.0 * Pi) return;
  map.cells[static_cast<size_t>(around)].solidAngle = turns[static_cast<size_t>(around)] + 4.0 * Pi;
}

void MapBuilder::outerRingFirst(VisibleMap::Cell& cell) {
  if (cell.ringCount < 2) return;
  size_t outer = 0;
  double least = 1e9;
  for (size_t r = 0; r < cell.ringCount; ++r) {
    const double inside = insideOfRing(cell.firstRing + r);
    if (inside < least) {
      least = inside;
      outer = r;
    }
  }
  if (outer == 0) return;
  const auto begin = map.ringVertices.begin();
  const size_t first = cell.firstRing;
  const auto at = [&](size_t ring) {
    return begin + static_cast<std::ptrdiff_t>(map.ringOffsets[ring]);
  };
  const size_t length = map.ringOffsets[first + outer + 1] - map.ringOffsets[first + outer];
  std::rotate(at(first), at(first + outer), at(first + outer + 1));
  for (size_t r = first + outer; r > first; --r)
    map.ringOffsets[r] = map.ringOffsets[r - 1] + length;
}

void MapBuilder::measureCells() {
  turns.assign(map.cells.size(), 0.0);
  constexpr size_t WorthAThread = 256;
  forEachWith<Arcs>(
      map.cells.size(), [this](size_t i, Arcs& arcs) { measureCell(i, arcs); }, WorthAThread);
}

void MapBuilder::measureCell(size_t number, Arcs& arcs) {
  const Vec3 forward = {map.forward[0], map.forward[1], map.forward[2]};
  VisibleMap::Cell& cell = map.cells[number];
  outerRingFirst(cell);
  arcsOf(cell, arcs);
  turns[number] = turnOf(arcs);
  cell.solidAngle = cell.ringCount == 0 ? 4.0 * Pi : solidAngleOf(number, turns[number]);
  if (map.field == Field::Hemisphere) {
    double sum = 0.0;
    for (const Arc& arc : arcs) sum += arcViewFactor(arc.from, arc.to, forward);
    cell.viewFactor = std::max(0.0, sum);
  }
  if (setup.parallel == nullptr) measureDistances(number, arcs);
}

}  // namespace Lumivane::Visibility
