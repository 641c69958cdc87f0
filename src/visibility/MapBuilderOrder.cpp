// The order of the map and its rings: vertices by their coordinates, cells by region and first
// vertex, edges by their vertices, so that it does not depend on who has found what first. Each
// edge has two halves, one for each side; a ring is what halves of one cell make, each followed by
// the next one of that cell around their common vertex.
#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "visibility/MapBuilder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace Lumivane::Visibility {

using Kernel::Pi;
using Kernel::Vec3;

// A docking edge that joins what is seen on its two sides: both have the edge, or lie in one
// layer, as where pieces of a surface are divided otherwise. With another part of the object
// behind it, it is the end of what is in front.
bool MapBuilder::isDocked(const Link& link) const {
  const auto layerOf = [this](int cell) {
    const std::int32_t polygon = cellPolygons[static_cast<size_t>(cell)];
    return setup.state->layers[static_cast<size_t>(polygon)];
  };
  return link.inner && (link.shared || layerOf(link.left) == layerOf(link.right));
}

VisibleMap::EdgeKind MapBuilder::kindOf(const Link& link) const {
  using Kind = VisibleMap::EdgeKind;
  if (link.left == NoCell || link.right == NoCell) return Kind::Field;
  const Label& a = map.cells[static_cast<size_t>(link.left)].label;
  const Label& b = map.cells[static_cast<size_t>(link.right)].label;
  if (a.object == 0 || b.object == 0) return Kind::Silhouette;
  if (isCrossing(link.source)) return Kind::Crossing;
  const bool oneFace = a.face == b.face && a.face > 0;
  if (a.object == b.object && (oneFace || isDocked(link))) return Kind::Inner;
  return link.shared ? Kind::Crease : Kind::Silhouette;
}

// Vertices by their coordinates, cells by region and first vertex, edges by their vertices.
void MapBuilder::orderMap() {
  std::vector<int> used;
  vertexNumbers.assign(directions.size(), -1);
  for (const Link& edge : edges)
    for (const int vertex : {edge.from, edge.to}) {
      int& number = vertexNumbers[static_cast<size_t>(vertex)];
      if (number < 0) used.push_back(vertex);
      number = 0;
    }
  const auto place = [this](int vertex) {
    const Vec3 d = directions[static_cast<size_t>(vertex)];
    return std::make_tuple(d.x, d.y, d.z, vertex);
  };
  std::sort(used.begin(), used.end(), [&](int a, int b) { return place(a) < place(b); });
  for (size_t i = 0; i < used.size(); ++i) {
    vertexNumbers[static_cast<size_t>(used[i])] = static_cast<int>(i);
    const Vec3 d = directions[static_cast<size_t>(used[i])];
    map.vertices.push_back({d.x, d.y, d.z});
  }
  std::vector<int> firstVertex(found.size(), std::numeric_limits<int>::max());
  for (Link& edge : edges) {
    edge.from = vertexNumbers[static_cast<size_t>(edge.from)];
    edge.to = vertexNumbers[static_cast<size_t>(edge.to)];
    if (edge.to < edge.from) {
      std::swap(edge.from, edge.to);
      std::swap(edge.left, edge.right);
    }
    for (const int cell : {edge.left, edge.right})
      if (cell != NoCell) {
        int& first = firstVertex[static_cast<size_t>(cell)];
        first = std::min(first, edge.from);
      }
  }
  orderCells(firstVertex);
  const auto key = [](const Link& e) { return std::make_tuple(e.from, e.to, e.left, e.right); };
  std::sort(edges.begin(), edges.end(),
            [&](const Link& a, const Link& b) { return key(a) < key(b); });
  for (const Link& edge : edges)
    map.edges.push_back({edge.from, edge.to, edge.left, edge.right, kindOf(edge)});
  if (!options.edgeSources) return;
  for (const Link& edge : edges)
    map.edgeSources.push_back(
        edge.source < 0 || isCrossing(edge.source) ? -1 : static_cast<int>(edge.source));
}

void MapBuilder::orderCells(const std::vector<int>& firstVertex) {
  // A cell without edges is the whole sphere, or was nothing.
  const bool whole = edges.empty() && map.field == Field::Sphere;
  std::vector<std::tuple<std::int32_t, int, int>> order;
  for (size_t i = 0; i < found.size(); ++i)
    if (firstVertex[i] != std::numeric_limits<int>::max() || (whole && order.empty()))
      order.emplace_back(orderOf(found[i].region), firstVertex[i], static_cast<int>(i));
  std::sort(order.begin(), order.end());
  cellNumbers.assign(found.size(), NoCell);
  for (const auto& [region, first, number] : order) {
    cellNumbers[static_cast<size_t>(number)] = static_cast<int>(map.cells.size());
    const Found& f = found[static_cast<size_t>(number)];
    VisibleMap::Cell cell;
    if (f.region != SkyRegion)
      cell.label = setup.state->names->regions[static_cast<size_t>(region)];
    map.cells.push_back(cell);
    cellPolygons.push_back(f.polygon);
    severalPolygons.push_back(f.several ? 1 : 0);
  }
  for (Link& edge : edges)
    for (int* cell : {&edge.left, &edge.right})
      if (*cell != NoCell) *cell = cellNumbers[static_cast<size_t>(*cell)];
}

void MapBuilder::makeRings() {
  const int halves = static_cast<int>(2 * map.edges.size());
  Buckets leaving;
  leaving.fill(map.vertices.size(), [&](auto add) {
    for (int h = 0; h < halves; ++h)
      if (cellOfHalf(h) != NoCell) add(startOfHalf(h), h);
  });
  std::vector<char> taken(static_cast<size_t>(halves), 0);
  Buckets byCell;
  byCell.fill(map.cells.size(), [&](auto add) {
    for (int h = 0; h < halves; ++h)
      if (cellOfHalf(h) != NoCell) add(cellOfHalf(h), h);
  });
  map.ringOffsets.push_back(0);
  for (int c = 0; c < static_cast<int>(map.cells.size()); ++c) {
    VisibleMap::Cell& cell = map.cells[static_cast<size_t>(c)];
    cell.firstRing = map.ringOffsets.size() - 1;
    for (const int* h = byCell.begin(c); h != byCell.end(c); ++h) {
      if (taken[static_cast<size_t>(*h)] != 0) continue;
      int half = *h;
      const size_t start = map.ringVertices.size();
      while (half >= 0 && taken[static_cast<size_t>(half)] == 0) {
        taken[static_cast<size_t>(half)] = 1;
        map.ringVertices.push_back(startOfHalf(half));
        half = nextHalf(half, leaving, taken, *h);
      }
      const auto begin = map.ringVertices.begin() + static_cast<std::ptrdiff_t>(start);
      std::rotate(begin, std::min_element(begin, map.ringVertices.end()), map.ringVertices.end());
      map.ringOffsets.push_back(map.ringVertices.size());
    }
    cell.ringCount = map.ringOffsets.size() - 1 - cell.firstRing;
  }
}

// The half of the same cell that leaves where another ends; where the cell meets itself in the
// vertex, the first one clockwise from the way back.
int MapBuilder::nextHalf(int half, const Buckets& leaving, const std::vector<char>& taken,
                         int first) const {
  const int vertex = endOfHalf(half);
  const int cell = cellOfHalf(half);
  int best = -1;
  int count = 0;
  for (const int* h = leaving.begin(vertex); h != leaving.end(vertex); ++h) {
    if (cellOfHalf(*h) != cell || (taken[static_cast<size_t>(*h)] != 0 && *h != first)) continue;
    best = *h;
    ++count;
  }
  if (count <= 1) return best;
  const Vec3 v = vertexAt(vertex);
  const Vec3 helper = std::fabs(v.x) < 0.6 ? Vec3{1.0, 0.0, 0.0} : Vec3{0.0, 1.0, 0.0};
  const Vec3 right = unit(Kernel::cross(helper, v));
  const Vec3 up = Kernel::cross(right, v);  // right x up = -v: as the eye sees it
  const auto angle = [&](int other) {
    const Vec3 w = vertexAt(other);
    return Kernel::arcTangent(Kernel::dot(w, up), Kernel::dot(w, right));
  };
  const double back = angle(startOfHalf(half));
  double least = 1e9;
  for (const int* h = leaving.begin(vertex); h != leaving.end(vertex); ++h) {
    if (cellOfHalf(*h) != cell || (taken[static_cast<size_t>(*h)] != 0 && *h != first)) continue;
    double turn = back - angle(endOfHalf(*h));
    if (turn <= 0.0) turn += 2.0 * Pi;
    if (turn < least) {
      least = turn;
      best = *h;
    }
  }
  return best;
}

}  // namespace Lumivane::Visibility
