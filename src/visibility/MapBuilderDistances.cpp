// The least and the greatest distance of each cell. The greatest of a flat cell is at a corner, the
// least at a corner, on an edge, or at the foot of the perpendicular. Where a cell has several
// planes, its pieces of border know theirs.
#include "kernel/Planar.h"
#include "visibility/EyePlane.h"
#include "visibility/MapBuilder.h"
#include "visibility/SphereMeasure.h"
#include "visibility/WideEdge.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Lumivane::Visibility {

using Kernel::Pi;
using Kernel::Vec3;

// 1 / distance along a direction d is plane.d.
Vec3 MapBuilder::planeOf(std::int32_t polygon) const {
  const auto i = static_cast<size_t>(polygon);
  return nearnessOf(setup.state->planes[i], offsetFrom(*setup.state, i, setup.eye));
}

// The greatest distance of a flat cell is at a corner, the least at a corner, on an edge, or at
// the foot of the perpendicular, which `measureCells` looks at. Where a cell has several planes,
// its pieces of border know theirs.
void MapBuilder::measureDistances() {
  if (setup.parallel != nullptr) return;  // there is no eye to be distant from
  forEach(map.cells.size(), [this](size_t i) { reachArcs(i); });
  if (std::none_of(severalPolygons.begin(), severalPolygons.end(), [](char c) { return c != 0; }))
    return;
  for (const Piece& piece : watch.over(parts.pieces))
    for (const int area : {piece.left, piece.right}) {
      const int cell = severalAt(area);
      if (cell == NoCell) continue;
      const auto at = [&](int vertex) {
        return directionOf(parts.vertices[static_cast<size_t>(vertex)]);
      };
      const std::int32_t polygon = parts.areas[static_cast<size_t>(area)].polygon;
      if (polygon < 0) continue;
      reach(map.cells[static_cast<size_t>(cell)], planeOf(polygon), at(piece.from), at(piece.to));
    }
  for (const size_t i : watch.upTo(parts.areas.size())) {
    const int cell = severalAt(static_cast<int>(i));
    if (cell != NoCell) morePolygons.emplace_back(cell, parts.areas[i].polygon);
  }
  std::sort(morePolygons.begin(), morePolygons.end());
  morePolygons.erase(std::unique(morePolygons.begin(), morePolygons.end()), morePolygons.end());
}

// The cell of an area, if the cell has several planes and the area is of its region.
int MapBuilder::severalAt(int area) {
  const int first = cellOfArea[static_cast<size_t>(parts.areaSets.find(area))];
  if (first == NoCell || !found[static_cast<size_t>(first)].several) return NoCell;
  return cellNumbers[static_cast<size_t>(first)];
}

// The arcs of a cell with one plane, each from its lower vertex, as its other cell has it.
void MapBuilder::reachArcs(size_t number) {
  const std::int32_t polygon = cellPolygons[number];
  if (polygon < 0 || severalPolygons[number] != 0) return;
  const Vec3 plane = planeOf(polygon);
  VisibleMap::Cell& cell = map.cells[number];
  for (size_t r = cell.firstRing; r < cell.firstRing + cell.ringCount; ++r) {
    int before = map.ringVertices[map.ringOffsets[r + 1] - 1];
    for (size_t i = map.ringOffsets[r]; i < map.ringOffsets[r + 1]; ++i) {
      const int vertex = map.ringVertices[i];
      reach(cell, plane, vertexAt(std::min(before, vertex)), vertexAt(std::max(before, vertex)));
      before = vertex;
    }
  }
}

void MapBuilder::reach(VisibleMap::Cell& c, Vec3 plane, Vec3 a, Vec3 b) {
  const double atA = Kernel::dot(plane, a);
  const double atB = Kernel::dot(plane, b);
  if (!(atA > 0.0) || !(atB > 0.0)) return;
  const double distanceA = 1.0 / atA;
  const double distanceB = 1.0 / atB;
  const double least = distanceToSegment(distanceA * a, distanceB * b);
  c.minDistance = c.minDistance == 0.0 ? least : std::min(c.minDistance, least);
  c.maxDistance = std::max({c.maxDistance, distanceA, distanceB});
}

bool MapBuilder::contains(const VisibleMap::Cell& cell, Vec3 d) const {
  // The half circle from d over the axis u to -d, which lies behind the cell's plane.
  const double x = std::fabs(d.x);
  const double y = std::fabs(d.y);
  const double z = std::fabs(d.z);
  const Vec3 m = x <= y && x <= z ? Vec3{0.0, d.z, -d.y}
                 : y <= z         ? Vec3{-d.z, 0.0, d.x}
                                  : Vec3{d.y, -d.x, 0.0};
  bool inside = false;
  forArcs(cell, [&](Vec3 a, Vec3 b) {
    const bool above = Kernel::dot(m, a) >= 0.0;
    if (above == (Kernel::dot(m, b) >= 0.0)) return;
    if ((Kernel::dot(Kernel::cross(a, b), d) < 0.0) == above) inside = !inside;
  });
  return inside;
}

// The same for a cell of any size: the first arc on the great circle from d by u has d on its
// left or on its right.
bool MapBuilder::containsAround(const VisibleMap::Cell& cell, Vec3 d) const {
  for (const Vec3 axis : {Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}, Vec3{0.0, 0.0, 1.0}}) {
    const Vec3 m = Kernel::cross(d, axis);
    const Vec3 u = Kernel::cross(m, d);
    double first = 4.0;
    bool inside = false;
    forArcs(cell, [&](Vec3 a, Vec3 b) {
      const double atA = Kernel::dot(m, a);
      const double atB = Kernel::dot(m, b);
      if ((atA >= 0.0) == (atB >= 0.0)) return;
      const Vec3 met = std::fabs(atB) * a + std::fabs(atA) * b;
      const double turn = quarterTurns(Kernel::dot(met, d), Kernel::dot(met, u));
      if (turn >= first) return;
      first = turn;
      inside = atA >= 0.0;
    });
    if (first < 4.0) return inside;
  }
  return cell.solidAngle > 2.0 * Pi;
}

// Rises with the angle of a direction from the x axis, from 0 to 4.
double MapBuilder::quarterTurns(double x, double y) {
  const double part = x / (std::fabs(x) + std::fabs(y));
  return y >= 0.0 ? 1.0 - part : 3.0 + part;
}

bool MapBuilder::isIn(const VisibleMap::Cell& cell, Vec3 d) const {
  const auto number = static_cast<size_t>(&cell - map.cells.data());
  return severalPolygons[number] != 0 ? containsAround(cell, d) : contains(cell, d);
}

void MapBuilder::lookAtFoot(VisibleMap::Cell& cell, std::int32_t polygon) const {
  const Vec3 plane = planeOf(polygon);
  const double distance = 1.0 / lengthInRange(plane);
  if (!(distance < cell.minDistance) || !isIn(cell, unit(inRange(plane)))) return;
  cell.minDistance = distance;
}

// The nearest points of the edges between the pieces of a region that is not flat.
void MapBuilder::lookAtEdges(VisibleMap::Cell& cell, std::int32_t polygon) const {
  const IndexState& state = *setup.state;
  const auto begin = state.cornerOffsets[static_cast<size_t>(polygon)];
  const auto end = state.cornerOffsets[static_cast<size_t>(polygon) + 1];
  for (auto i = begin; i < end; ++i) {
    const auto next = i + 1 == end ? begin : i + 1;
    const Vec3 nearest =
        nearestOfSegment(offsetFromEye(state.cornerVertices[static_cast<size_t>(i)]),
                         offsetFromEye(state.cornerVertices[static_cast<size_t>(next)]));
    const double distance = lengthInRange(nearest);
    if (distance < cell.minDistance && distance > 0.0 && isIn(cell, unit(inRange(nearest))))
      cell.minDistance = distance;
  }
}

}  // namespace Lumivane::Visibility
