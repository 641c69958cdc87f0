#include "truth/MapLocator.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Lumivane::Truth {
namespace {

using Visibility::Vector;
using Visibility::VisibleMap;

constexpr std::size_t FewEdges = 6;
constexpr int DeepestSquare = 14;
// By how much a map's vertices may lie beside where its edges meet. Edges that are nearer to each
// other than that may stand in the wrong order.
constexpr Real VertexRoom = 4e-12L;

/// Where a path goes from one cell into another.
struct Crossing {
  Real where;   // 0 at its beginning, 1 at its end
  Real across;  // how far the path goes across the edge
  int near;
  int far;
};

/// The cell in which a path begins. Of crossings of edges that may stand in any order, a path comes
/// from the cell that it leaves more often than it enters; if there is none it is in the same cell
/// behind them.
int cellBefore(std::vector<Crossing> crossings, int otherwise) {
  const auto together = [](const Crossing& a, const Crossing& b) {
    return (b.where - a.where) * std::min(a.across, b.across) <= VertexRoom;
  };
  std::sort(crossings.begin(), crossings.end(),
            [](const Crossing& a, const Crossing& b) { return a.where < b.where; });
  for (auto first = crossings.begin(); first != crossings.end();) {
    auto last = first + 1;
    while (last != crossings.end() && together(*(last - 1), *last)) ++last;
    for (auto crossing = first; crossing != last; ++crossing) {
      const int cell = crossing->near;
      const auto leaves = std::count_if(first, last, [&](auto& c) { return c.near == cell; });
      const auto enters = std::count_if(first, last, [&](auto& c) { return c.far == cell; });
      if (leaves > enters) return cell;
    }
    first = last;
  }
  // Towards an edge of a speck of no more than that room.
  if (otherwise < 0 && !crossings.empty()) return crossings.front().near;
  return otherwise;
}

/// Axes that are in line with nothing, so that no arc between middles runs along an edge.
std::array<LongVector, 3> crookedAxes() {
  const LongVector x = unit({0.8164321L, 0.4571239L, 0.3527713L});
  const LongVector y = unit(cross(LongVector{-0.2211173L, 0.1713319L, 0.9600931L}, x));
  return {x, y, cross(x, y)};
}

}  // namespace

MapLocator::MapLocator(const VisibleMap& newMap) : map(newMap), axes(crookedAxes()) {
  for (const VisibleMap::Edge& edge : map.edges) {
    const LongVector from = wide(map.vertices[static_cast<std::size_t>(edge.from)]);
    const LongVector to = wide(map.vertices[static_cast<std::size_t>(edge.to)]);
    // Of nearly equal ends the difference is exact, and their product is not.
    const LongVector pole = cross(from, to - from);
    const Real size = length(pole);
    arcs.push_back({from, to, size > 0.0L ? pole * (1.0L / size) : LongVector{}});
  }
  all.resize(arcs.size());
  std::iota(all.begin(), all.end(), 0);
  if (arcs.empty()) {
    onlyCell = map.cells.empty() ? -1 : 0;
    return;
  }
  const LongVector onEdge = unit(arcs.front().from * 0.613L + arcs.front().to * 0.387L);
  for (int face = 0; face < 6; ++face) {
    Square square;
    square.face = face;
    square.bounds = {-1.0, 1.0, -1.0, 1.0};
    square.centre = onFace(face, 0.0137, -0.0071);
    square.edges = all;
    // The arc ends beyond the edge, so that the edge itself is crossed for certain.
    const LongVector beyond = unit(onEdge * 1.1L - square.centre * 0.1L);
    square.centreCell = firstCrossed(square.centre, beyond, all, -1);
    squares.push_back(square);
  }
  for (std::size_t face = 0; face < 6; ++face) divide(face, 0);
}

LongVector MapLocator::onFace(int face, double u, double v) const {
  const auto axis = static_cast<std::size_t>(face / 2);
  const Real sign = face % 2 == 0 ? 1.0L : -1.0L;
  return unit(axes[axis] * sign + axes[(axis + 1) % 3] * u + axes[(axis + 2) % 3] * v);
}

int MapLocator::firstCrossed(const LongVector& from, const LongVector& to,
                             const std::vector<int>& among, int otherwise) const {
  const LongVector pole = cross(from, to);
  std::vector<Crossing> crossings;
  for (const int number : among) {
    const Arc& arc = arcs[static_cast<std::size_t>(number)];
    const Real start = dot(arc.pole, from);
    const Real end = dot(arc.pole, to);
    if ((start > 0.0L) == (end > 0.0L)) continue;
    const Real a = dot(pole, arc.from);
    const Real b = dot(pole, arc.to);
    if ((a > 0.0L) == (b > 0.0L)) continue;
    // Both arcs are shorter than half a circle: they cross where their circles do, or opposite.
    const LongVector onPath = from * std::fabs(end) + to * std::fabs(start);
    const LongVector onArc = arc.from * std::fabs(b) + arc.to * std::fabs(a);
    if (dot(onPath, onArc) <= 0.0L) continue;
    const VisibleMap::Edge& edge = map.edges[static_cast<std::size_t>(number)];
    const bool fromLeft = start < 0.0L;
    const Real across = std::fabs(start) + std::fabs(end);
    crossings.push_back({std::fabs(start) / across, across, fromLeft ? edge.left : edge.right,
                         fromLeft ? edge.right : edge.left});
  }
  return cellBefore(std::move(crossings), otherwise);
}

bool MapLocator::mayMeet(const Square& square, const Arc& arc) const {
  const auto axis = static_cast<std::size_t>(square.face / 2);
  const Real sign = square.face % 2 == 0 ? 1.0L : -1.0L;
  constexpr Real Room = 1e-12L;
  const auto put = [&](const LongVector& p) {
    return LongVector{dot(axes[axis], p) * sign, dot(axes[(axis + 1) % 3], p),
                      dot(axes[(axis + 2) % 3], p)};
  };
  const LongVector a = put(arc.from);
  const LongVector b = put(arc.to);
  const double lowU = square.bounds[0];
  const double highU = square.bounds[1];
  const double lowV = square.bounds[2];
  const double highV = square.bounds[3];
  const auto outside = [&](auto side) { return side(a) > Room && side(b) > Room; };
  if (outside([&](const LongVector& p) { return lowU * p.x - p.y; }) ||
      outside([&](const LongVector& p) { return p.y - highU * p.x; }) ||
      outside([&](const LongVector& p) { return lowV * p.x - p.z; }) ||
      outside([&](const LongVector& p) { return p.z - highV * p.x; }) ||
      outside([&](const LongVector& p) { return -p.x; }))
    return false;
  int above = 0;
  int below = 0;
  for (const double u : {lowU, highU})
    for (const double v : {lowV, highV}) {
      const Real side = dot(arc.pole, onFace(square.face, u, v));
      above += side > Room ? 1 : 0;
      below += side < -Room ? 1 : 0;
    }
  return above < 4 && below < 4;
}

void MapLocator::divide(std::size_t number, int depth) {
  if (squares[number].edges.size() <= FewEdges || depth >= DeepestSquare) return;
  const auto first = squares.size();
  squares.resize(first + 4);
  const std::vector<int> edges = std::move(squares[number].edges);
  squares[number].edges.clear();
  squares[number].children = static_cast<int>(first);
  const Square parent = squares[number];
  const double middleU = 0.5 * (parent.bounds[0] + parent.bounds[1]);
  const double middleV = 0.5 * (parent.bounds[2] + parent.bounds[3]);
  for (std::size_t i = 0; i < 4; ++i) {
    Square& child = squares[first + i];
    child.face = parent.face;
    child.bounds = {i % 2 == 0 ? parent.bounds[0] : middleU,
                    i % 2 == 0 ? middleU : parent.bounds[1], i < 2 ? parent.bounds[2] : middleV,
                    i < 2 ? middleV : parent.bounds[3]};
    const double width = child.bounds[1] - child.bounds[0];
    child.centre =
        onFace(child.face, child.bounds[0] + 0.5137 * width, child.bounds[2] + 0.4871 * width);
    child.centreCell = firstCrossed(child.centre, parent.centre, edges, parent.centreCell);
    std::copy_if(edges.begin(), edges.end(), std::back_inserter(child.edges),
                 [&](int edge) { return mayMeet(child, arcs[static_cast<std::size_t>(edge)]); });
  }
  for (std::size_t i = 0; i < 4; ++i) divide(first + i, depth + 1);
}

int MapLocator::cellOf(const Vector& direction) const {
  if (arcs.empty()) return onlyCell;
  const LongVector d = unit(wide(direction));
  const std::array<Real, 3> parts{dot(axes[0], d), dot(axes[1], d), dot(axes[2], d)};
  std::size_t axis = 0;
  for (std::size_t i = 1; i < 3; ++i)
    if (std::fabs(parts[i]) > std::fabs(parts[axis])) axis = i;
  std::size_t square = 2 * axis + (parts[axis] > 0.0L ? 0U : 1U);
  const Real u = parts[(axis + 1) % 3] / std::fabs(parts[axis]);
  const Real v = parts[(axis + 2) % 3] / std::fabs(parts[axis]);
  while (squares[square].children >= 0) {
    const Square& open = squares[square];
    const bool right = u >= 0.5 * (open.bounds[0] + open.bounds[1]);
    const bool upper = v >= 0.5 * (open.bounds[2] + open.bounds[3]);
    square = static_cast<std::size_t>(open.children) + (right ? 1U : 0U) + (upper ? 2U : 0U);
  }
  return firstCrossed(d, squares[square].centre, squares[square].edges, squares[square].centreCell);
}

int MapLocator::cellOfAll(const Vector& direction) const {
  if (arcs.empty()) return onlyCell;
  const LongVector d = unit(wide(direction));
  const Arc& arc = arcs[arcs.size() / 2];
  const LongVector onEdge = unit(arc.from * 0.377L + arc.to * 0.623L);
  return firstCrossed(d, unit(onEdge * 1.1L - d * 0.1L), all, -2);
}

double MapLocator::angleToEdge(const Vector& direction) const {
  const LongVector d = unit(wide(direction));
  Real least = Pi;
  for (const Arc& arc : arcs) {
    const LongVector ahead = cross(arc.pole, d);
    // The foot of the perpendicular lies on the arc if the ends are on either side of it.
    const bool onArc = dot(ahead, arc.from) <= 0.0L && dot(ahead, arc.to) >= 0.0L &&
                       dot(d, arc.from + arc.to) > 0.0L;
    const Real angle = onArc ? std::fabs(std::asin(std::clamp(dot(arc.pole, d), -1.0L, 1.0L)))
                             : std::min(angleBetween(d, arc.from), angleBetween(d, arc.to));
    least = std::min(least, angle);
  }
  return static_cast<double>(least);
}

}  // namespace Lumivane::Truth
