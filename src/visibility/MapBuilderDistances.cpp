// The least and the greatest distance of each cell. The greatest of a flat cell is at a corner, the
// least at a corner, on an edge, or at the foot of the perpendicular. Where a cell has several
// planes, its pieces of border know theirs.
#include "kernel/Planar.h"
#include "visibility/EdgeOrder.h"
#include "visibility/EyePlane.h"
#include "visibility/MapBuilder.h"
#include "visibility/SphereMeasure.h"
#include "visibility/WideEdge.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace Lumivane::Visibility {

using Kernel::Pi;
using Kernel::Vec3;

// 1 / distance along a direction d is plane.d.
Vec3 MapBuilder::planeOf(std::int32_t polygon) const {
  const auto i = static_cast<size_t>(polygon);
  return nearnessOf(setup.state->planes[i], offsetFrom(*setup.state, i, setup.eye));
}

// Of the cells of regions of which several polygons are seen: which these are, and how far away
// their pieces of border are, which know their planes.
void MapBuilder::findBentCells() {
  if (setup.parallel != nullptr || setup.state->triangulatedRegions == 0) return;
  std::unordered_map<std::int32_t, std::int32_t> polygonOfRegion;
  constexpr std::int32_t Several = -2;
  for (const Found& f : found) {
    std::int32_t& polygon = polygonOfRegion.emplace(f.region, f.polygon).first->second;
    if (f.several || polygon != f.polygon) polygon = Several;
  }
  bentCells.assign(found.size(), NoCell);
  for (const size_t i : watch.upTo(found.size()))
    if (polygonOfRegion[found[i].region] == Several) {
      bentCells[i] = static_cast<int>(bent.size());
      bent.emplace_back();
    }
  const auto bentOf = [this](int area) -> Bent* {
    const int cell = cellOfArea[static_cast<size_t>(parts.areaSets.find(area))];
    const int number = cell == NoCell ? NoCell : bentCells[static_cast<size_t>(cell)];
    return number == NoCell ? nullptr : &bent[static_cast<size_t>(number)];
  };
  for (const size_t i : watch.upTo(parts.areas.size()))
    if (Bent* const b = bentOf(static_cast<int>(i))) b->polygons.push_back(parts.areas[i].polygon);
  for (Bent& b : bent) {
    std::sort(b.polygons.begin(), b.polygons.end());
    b.polygons.erase(std::unique(b.polygons.begin(), b.polygons.end()), b.polygons.end());
  }
  const auto at = [this](int vertex) {
    return directionOf(parts.vertices[static_cast<size_t>(vertex)]);
  };
  for (const size_t i : watch.upTo(parts.pieces.size()))
    for (const int area : {parts.pieces[i].left, parts.pieces[i].right}) {
      Bent* const b = bentOf(area);
      const std::int32_t polygon = parts.areas[static_cast<size_t>(area)].polygon;
      if (b == nullptr || polygon < 0) continue;
      reach(b->reach, planeOf(polygon), at(parts.pieces[i].from), at(parts.pieces[i].to));
    }
}

// The greatest distance of a flat cell is at a corner, the least at a corner, on an edge, or at
// the foot of the perpendicular. Arcs are taken from their lower vertex, as the other cell has
// them.
void MapBuilder::measureDistances(size_t number, const Arcs& arcs) {
  VisibleMap::Cell& cell = map.cells[number];
  const std::int32_t polygon = cellPolygons[number];
  const bool several = severalPolygons[number] != 0;
  const Bent* const ofSeveral = several ? &bent[static_cast<size_t>(bentNumbers[number])] : nullptr;
  Reach reached;
  if (several) {
    reached = ofSeveral->reach;
  } else if (polygon >= 0) {
    const Vec3 plane = planeOf(polygon);
    for (const Arc& arc : arcs) {
      const bool turned = isBefore(arc.to, arc.from);
      reach(reached, plane, turned ? arc.to : arc.from, turned ? arc.from : arc.to);
    }
    if (!(reached.greatest > 0.0)) reached = reachOfCorners(polygon);
  }
  cell.minDistance = reached.least;
  cell.maxDistance = reached.greatest;
  if (polygon >= 0) lookAtFoot(cell, arcs, polygon);
  if (!several) return;
  for (const std::int32_t other : ofSeveral->polygons) {
    lookAtFoot(cell, arcs, other);
    lookAtEdges(cell, arcs, other);
  }
}

void MapBuilder::reach(Reach& r, Vec3 plane, Vec3 a, Vec3 b) {
  const double atA = Kernel::dot(plane, a);
  const double atB = Kernel::dot(plane, b);
  if (!(atA > 0.0) || !(atB > 0.0)) return;
  const double distanceA = 1.0 / atA;
  const double distanceB = 1.0 / atB;
  const double least = distanceToSegment(distanceA * a, distanceB * b);
  r.least = r.least == 0.0 ? least : std::min(r.least, least);
  r.greatest = std::max({r.greatest, distanceA, distanceB});
}

// For an eye that is nearer to the plane than the corners are off it, which lie on both sides of it
// for the eye, so that it is met nowhere along the border.
MapBuilder::Reach MapBuilder::reachOfCorners(std::int32_t polygon) const {
  const IndexState& state = *setup.state;
  const auto begin = state.cornerOffsets[static_cast<size_t>(polygon)];
  const auto end = state.cornerOffsets[static_cast<size_t>(polygon) + 1];
  Reach r;
  for (auto i = begin; i < end; ++i) {
    const double distance =
        lengthInRange(offsetFromEye(state.cornerVertices[static_cast<size_t>(i)]));
    r.least = i == begin ? distance : std::min(r.least, distance);
    r.greatest = std::max(r.greatest, distance);
  }
  return r;
}

bool MapBuilder::contains(const Arcs& arcs, Vec3 d) {
  // The half circle from d over the axis u to -d, which lies behind the cell's plane.
  const double x = std::fabs(d.x);
  const double y = std::fabs(d.y);
  const double z = std::fabs(d.z);
  const Vec3 m = x <= y && x <= z ? Vec3{0.0, d.z, -d.y}
                 : y <= z         ? Vec3{-d.z, 0.0, d.x}
                                  : Vec3{d.y, -d.x, 0.0};
  bool inside = false;
  for (const auto& [a, b] : arcs) {
    const bool above = Kernel::dot(m, a) >= 0.0;
    if (above == (Kernel::dot(m, b) >= 0.0)) continue;
    if ((Kernel::dot(Kernel::cross(a, b), d) < 0.0) == above) inside = !inside;
  }
  return inside;
}

// The same for a cell of any size: the first arc on the great circle from d by u has d on its
// left or on its right.
bool MapBuilder::containsAround(const VisibleMap::Cell& cell, const Arcs& arcs, Vec3 d) const {
  for (const Vec3 axis : {Vec3{1.0, 0.0, 0.0}, Vec3{0.0, 1.0, 0.0}, Vec3{0.0, 0.0, 1.0}}) {
    const Vec3 m = Kernel::cross(d, axis);
    const Vec3 u = Kernel::cross(m, d);
    double first = 4.0;
    bool inside = false;
    for (const auto& [a, b] : arcs) {
      const double atA = Kernel::dot(m, a);
      const double atB = Kernel::dot(m, b);
      if ((atA >= 0.0) == (atB >= 0.0)) continue;
      const Vec3 met = std::fabs(atB) * a + std::fabs(atA) * b;
      const double turn = quarterTurns(Kernel::dot(met, d), Kernel::dot(met, u));
      if (turn >= first) continue;
      first = turn;
      inside = atA >= 0.0;
    }
    if (first < 4.0) return inside;
  }
  return cell.solidAngle > 2.0 * Pi;
}

// Rises with the angle of a direction from the x axis, from 0 to 4.
double MapBuilder::quarterTurns(double x, double y) {
  const double part = x / (std::fabs(x) + std::fabs(y));
  return y >= 0.0 ? 1.0 - part : 3.0 + part;
}

bool MapBuilder::isIn(const VisibleMap::Cell& cell, const Arcs& arcs, Vec3 d) const {
  const auto number = static_cast<size_t>(&cell - map.cells.data());
  return severalPolygons[number] != 0 ? containsAround(cell, arcs, d) : contains(arcs, d);
}

void MapBuilder::lookAtFoot(VisibleMap::Cell& cell, const Arcs& arcs, std::int32_t polygon) const {
  const Vec3 plane = planeOf(polygon);
  const double distance = 1.0 / lengthInRange(plane);
  if (!(distance < cell.minDistance) || !isIn(cell, arcs, unit(inRange(plane)))) return;
  cell.minDistance = distance;
}

// The nearest points of the edges between the pieces of a region that is not flat.
void MapBuilder::lookAtEdges(VisibleMap::Cell& cell, const Arcs& arcs, std::int32_t polygon) const {
  const IndexState& state = *setup.state;
  const auto begin = state.cornerOffsets[static_cast<size_t>(polygon)];
  const auto end = state.cornerOffsets[static_cast<size_t>(polygon) + 1];
  for (auto i = begin; i < end; ++i) {
    const auto next = i + 1 == end ? begin : i + 1;
    const Vec3 nearest =
        nearestOfSegment(offsetFromEye(state.cornerVertices[static_cast<size_t>(i)]),
                         offsetFromEye(state.cornerVertices[static_cast<size_t>(next)]));
    const double distance = lengthInRange(nearest);
    if (distance < cell.minDistance && distance > 0.0 && isIn(cell, arcs, unit(inRange(nearest))))
      cell.minDistance = distance;
  }
}

}  // namespace Lumivane::Visibility
