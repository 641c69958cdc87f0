// The order of the map and its rings: vertices by their coordinates, cells by region and first
// edge, edges by their vertices, so that it does not depend on who has found what first. Each
// edge has two halves, one for each side; a ring is what halves of one cell make, each followed by
// the next one of that cell around their common vertex.
#include "kernel/Planar.h"
#include "kernel/Trigonometry.h"
#include "visibility/MapBuilder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <tuple>
#include <utility>

namespace Lumivane::Visibility {

using Kernel::Pi;
using Kernel::Vec3;

namespace {

constexpr std::uint64_t NoEdge = std::numeric_limits<std::uint64_t>::max();

}  // namespace

// A docking edge that joins what is seen on its two sides: both have the edge, or lie in one
// layer, as where pieces of a surface are divided otherwise. With another part of the object
// behind it, it is the end of what is in front.
bool MapBuilder::isDocked(const Link& link) const {
  const auto layerOf = [this](int cell) {
    const std::int32_t polygon = cellPolygons[static_cast<size_t>(cell)];
    return setup.state->layers[static_cast<size_t>(polygon)];
  };
  return link.inner() && (link.shared() || layerOf(link.left) == layerOf(link.right));
}

// Whether the regions that cross are those of the cells: of a sliver that has become a part of
// another cell they are not.
bool MapBuilder::isOfCells(const Link& crossing) const {
  constexpr Source Low = (Source{1} << 31) - 1;
  const auto regionOf = [this](Source polygon) {
    return setup.state->regions[static_cast<size_t>(polygon)];
  };
  const auto regionOfCell = [&](int cell) {
    return regionOf(cellPolygons[static_cast<size_t>(cell)]);
  };
  const auto sorted = [](std::int32_t a, std::int32_t b) { return std::minmax({a, b}); };
  return sorted(regionOf(crossing.source() >> 31 & Low), regionOf(crossing.source() & Low)) ==
         sorted(regionOfCell(crossing.left), regionOfCell(crossing.right));
}

VisibleMap::EdgeKind MapBuilder::kindOf(const Link& link) const {
  using Kind = VisibleMap::EdgeKind;
  if (link.left == NoCell || link.right == NoCell) return Kind::Field;
  const Label& a = map.cells[static_cast<size_t>(link.left)].label;
  const Label& b = map.cells[static_cast<size_t>(link.right)].label;
  if (a.object == 0 || b.object == 0) return Kind::Silhouette;
  if (isCrossing(link.source()) && isOfCells(link)) return Kind::Crossing;
  const bool oneFace = a.face == b.face && a.face > 0;
  if (a.object == b.object && (oneFace || isDocked(link))) return Kind::Inner;
  return link.shared() ? Kind::Crease : Kind::Silhouette;
}

// Vertices by their coordinates, cells by region and first edge, edges by their vertices.
void MapBuilder::orderMap() {
  orderVertices();
  orderCells(firstEdges());
  orderEdges();
}

// Vertices are about evenly spread along the first axis, so that each sorts among the few of its
// own slice of directions.
void MapBuilder::orderVertices() {
  struct Placed {
    Vec3 at;
    int vertex;
  };
  vertexNumbers.assign(directions.size(), -1);
  size_t count = 0;
  for (const size_t i : watch.upTo(edges.size()))
    for (const int vertex : {edges[i].from, edges[i].to}) {
      int& number = vertexNumbers[static_cast<size_t>(vertex)];
      if (number < 0) ++count;
      number = 0;
    }
  const size_t sliceCount = 1 + count / 2;
  // The same as or after that of a lesser coordinate, since no step of it swaps two values.
  const auto sliceOf = [&](const Vec3& at) {
    const double place = std::clamp((at.x + 1.0) / 2.0, 0.0, 1.0) * static_cast<double>(sliceCount);
    return static_cast<int>(std::min(static_cast<size_t>(place), sliceCount - 1));
  };
  BasicBuckets<Placed> slices;
  slices.fill(sliceCount, [&](auto add) {
    for (const size_t i : watch.upTo(directions.size()))
      if (vertexNumbers[i] >= 0)
        add(sliceOf(directions[i]), Placed{directions[i], static_cast<int>(i)});
  });
  release(directions);
  map.vertices.resize(count);
  forEach(sliceCount, [&](size_t i) {
    const int slice = static_cast<int>(i);
    Placed* const first = slices.begin(slice);
    Placed* const last = first + slices.size(slice);
    std::sort(first, last, [](const Placed& a, const Placed& b) {
      if (a.at.x != b.at.x) return a.at.x < b.at.x;
      return std::tie(a.at.y, a.at.z, a.vertex) < std::tie(b.at.y, b.at.z, b.vertex);
    });
    size_t number = slices.placeOf(slice);
    for (const Placed* placed = first; placed != last; ++placed, ++number) {
      vertexNumbers[static_cast<size_t>(placed->vertex)] = static_cast<int>(number);
      map.vertices[number] = {placed->at.x, placed->at.y, placed->at.z};
    }
  });
}

// Gives edges the numbers of the map's vertices, the lower one first. \return the first edge of
// each cell: its vertices and its side with the cell. The vertex alone would not do, as cells of
// one region may meet in it.
LargeVector<std::uint64_t> MapBuilder::firstEdges() {
  LargeVector<std::uint64_t> firstEdge(found.size(), NoEdge);
  for (const size_t i : watch.upTo(edges.size())) {
    Link& edge = edges[i];
    edge.from = vertexNumbers[static_cast<size_t>(edge.from)];
    edge.to = vertexNumbers[static_cast<size_t>(edge.to)];
    if (edge.to < edge.from) {
      std::swap(edge.from, edge.to);
      std::swap(edge.left, edge.right);
    }
    const std::uint64_t vertices =
        static_cast<std::uint64_t>(edge.from) << 32 | static_cast<std::uint64_t>(edge.to) << 1;
    const auto lower = [&](int cell, std::uint64_t side) {
      if (cell == NoCell) return;
      std::uint64_t& first = firstEdge[static_cast<size_t>(cell)];
      first = std::min(first, vertices | side);
    };
    lower(edge.left, 0);
    lower(edge.right, 1);
  }
  release(vertexNumbers);
  return firstEdge;
}

// Few edges leave a vertex, so that sorting those of each is quicker than sorting all.
void MapBuilder::orderEdges() {
  Buckets leaving;
  leaving.fill(map.vertices.size(), [this](auto add) {
    for (const size_t i : watch.upTo(edges.size())) add(edges[i].from, static_cast<int>(i));
  });
  const auto key = [this](int number) {
    const Link& e = edges[static_cast<size_t>(number)];
    return std::make_tuple(e.to, e.left, e.right);
  };
  map.edges.resize(edges.size());
  if (options.edgeSources) map.edgeSources.resize(edges.size());
  forEach(map.vertices.size(), [&](size_t i) {
    const int vertex = static_cast<int>(i);
    int* const first = leaving.begin(vertex);
    int* const last = first + leaving.size(vertex);
    std::sort(first, last, [&](int a, int b) { return key(a) < key(b); });
    size_t place = leaving.placeOf(vertex);
    for (const int* number = first; number != last; ++number, ++place)
      placeEdge(edges[static_cast<size_t>(*number)], place);
  });
  release(edges);
}

void MapBuilder::placeEdge(const Link& edge, size_t place) {
  map.edges[place] = {edge.from, edge.to, edge.left, edge.right, kindOf(edge)};
  if (!options.edgeSources) return;
  const Source source = edge.source();
  map.edgeSources[place] = source < 0 || isCrossing(source) ? -1 : static_cast<int>(source);
}

void MapBuilder::orderCells(const LargeVector<std::uint64_t>& firstEdge) {
  // A cell without edges is the whole sphere, or was nothing.
  const bool whole = edges.empty() && map.field == Field::Sphere;
  LargeVector<std::tuple<std::int32_t, std::uint64_t, int>> order;
  for (const size_t i : watch.upTo(found.size()))
    if (firstEdge[i] != NoEdge || (whole && order.empty()))
      order.emplace_back(orderOf(found[i].region), firstEdge[i], static_cast<int>(i));
  auto ascending = watch.order(std::less<>());
  std::sort(order.begin(), order.end(), std::ref(ascending));
  LargeVector<int> cellNumbers(found.size(), NoCell);
  map.cells.reserve(order.size());
  cellPolygons.reserve(order.size());
  severalPolygons.reserve(order.size());
  for (const auto& [region, first, number] : watch.over(order)) {
    cellNumbers[static_cast<size_t>(number)] = static_cast<int>(map.cells.size());
    const Found& f = found[static_cast<size_t>(number)];
    VisibleMap::Cell cell;
    if (f.region != SkyRegion)
      cell.label = setup.state->names->regions[static_cast<size_t>(region)];
    map.cells.push_back(cell);
    cellPolygons.push_back(f.polygon);
    severalPolygons.push_back(f.several ? 1 : 0);
    if (!bentCells.empty()) bentNumbers.push_back(bentCells[static_cast<size_t>(number)]);
  }
  release(found);
  for (const size_t i : watch.upTo(edges.size()))
    for (int* cell : {&edges[i].left, &edges[i].right})
      if (*cell != NoCell) *cell = cellNumbers[static_cast<size_t>(*cell)];
}

void MapBuilder::makeRings() {
  const size_t halves = 2 * map.edges.size();
  HalvesAt leaving;
  leaving.fill(map.vertices.size(), [&](auto add) {
    for (const size_t i : watch.upTo(halves)) {
      const int h = static_cast<int>(i);
      if (const int cell = cellOfHalf(h); cell != NoCell) add(startOfHalf(h), Half{h, cell});
    }
  });
  BasicBuckets<int, std::vector<int>> byCell;
  byCell.fill(map.cells.size(), [&](auto add) {
    for (const size_t i : watch.upTo(halves)) {
      const int h = static_cast<int>(i);
      if (const int cell = cellOfHalf(h); cell != NoCell) add(cell, h);
    }
  });
  // Every half is in one ring, so the place of each cell's rings is known before they are: that of
  // its halves.
  map.ringVertices = byCell.takeItems();
  LargeVector<char> taken(halves, 0);
  LargeVector<char> isFirst(map.ringVertices.size(), 0);
  forEachWith<std::vector<int>>(map.cells.size(), [&](size_t c, std::vector<int>& ofCell) {
    const int cell = static_cast<int>(c);
    const auto first = map.ringVertices.begin() + static_cast<std::ptrdiff_t>(byCell.placeOf(cell));
    ofCell.assign(first, first + static_cast<std::ptrdiff_t>(byCell.size(cell)));
    ringsOf(byCell.placeOf(cell), ofCell, leaving, taken, isFirst);
  });
  map.ringOffsets.reserve(1 + static_cast<size_t>(std::count(isFirst.begin(), isFirst.end(), 1)));
  for (const size_t c : watch.upTo(map.cells.size())) {
    VisibleMap::Cell& cell = map.cells[c];
    cell.firstRing = map.ringOffsets.size();
    const size_t first = byCell.placeOf(static_cast<int>(c));
    for (size_t i = first; i < first + byCell.size(static_cast<int>(c)); ++i)
      if (isFirst[i] != 0) map.ringOffsets.push_back(i);
    cell.ringCount = map.ringOffsets.size() - cell.firstRing;
  }
  map.ringOffsets.push_back(map.ringVertices.size());
}

// The vertices of a cell's rings, and which of them begin one.
void MapBuilder::ringsOf(size_t place, const std::vector<int>& halves, const HalvesAt& leaving,
                         LargeVector<char>& taken, LargeVector<char>& isFirst) {
  size_t end = place;
  for (const int first : halves) {
    if (taken[static_cast<size_t>(first)] != 0) continue;
    int half = first;
    const size_t start = end;
    while (half >= 0 && taken[static_cast<size_t>(half)] == 0) {
      taken[static_cast<size_t>(half)] = 1;
      map.ringVertices[end++] = startOfHalf(half);
      half = nextHalf(half, leaving, taken, first);
    }
    const auto at = [this](size_t i) {
      return map.ringVertices.begin() + static_cast<std::ptrdiff_t>(i);
    };
    std::rotate(at(start), std::min_element(at(start), at(end)), at(end));
    isFirst[start] = 1;
  }
}

// The half of the same cell that leaves where another ends; where the cell meets itself in the
// vertex, the first one clockwise from the way back.
int MapBuilder::nextHalf(int half, const HalvesAt& leaving, const LargeVector<char>& taken,
                         int first) const {
  const int vertex = endOfHalf(half);
  const int cell = cellOfHalf(half);
  const auto mayFollow = [&](const Half& other) {
    return other.cell == cell &&
           (taken[static_cast<size_t>(other.number)] == 0 || other.number == first);
  };
  int best = -1;
  int count = 0;
  for (const Half* h = leaving.begin(vertex); h != leaving.end(vertex); ++h) {
    if (!mayFollow(*h)) continue;
    best = h->number;
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
  for (const Half* h = leaving.begin(vertex); h != leaving.end(vertex); ++h) {
    if (!mayFollow(*h)) continue;
    double turn = back - angle(endOfHalf(h->number));
    if (turn <= 0.0) turn += 2.0 * Pi;
    if (turn < least) {
      least = turn;
      best = h->number;
    }
  }
  return best;
}

}  // namespace Lumivane::Visibility
