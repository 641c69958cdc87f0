#include "truth/Invariants.h"

#include "truth/LongVector.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>

namespace Lumivane::Truth {
namespace {

using Visibility::Field;
using Visibility::Label;
using Visibility::VisibleMap;
using EdgeKind = VisibleMap::EdgeKind;

constexpr double AreaTolerance = 1e-9;
constexpr Real UnitTolerance = 1e-15L;

bool isSky(const Label& label) { return label.object == 0 && label.face == 0 && label.region == 0; }

std::string textOf(const Label& label) {
  std::ostringstream out;
  out << label.object << '/' << label.face << '/' << label.region;
  return out.str();
}

/// Signed solid angle of a triangle (A. van Oosterom and J. Strackee, 1983).
Real triangle(const LongVector& a, const LongVector& b, const LongVector& c) {
  const Real la = length(a);
  const Real lb = length(b);
  const Real lc = length(c);
  // A product of differences keeps its digits where the corners are near each other.
  const Real volume = dot(a, cross(b - a, c - a));
  return 2.0L * std::atan2(volume, la * lb * lc + dot(a, b) * lc + dot(b, c) * la + dot(c, a) * lb);
}

template <class Visit>
void eachSide(const VisibleMap& map, std::size_t firstRing, std::size_t ringCount, Visit visit) {
  const auto vertex = [&map](std::size_t i) {
    return wide(map.vertices[static_cast<std::size_t>(map.ringVertices[i])]);
  };
  for (std::size_t ring = firstRing; ring < firstRing + ringCount; ++ring) {
    const std::size_t from = map.ringOffsets[ring];
    const std::size_t to = map.ringOffsets[ring + 1];
    for (std::size_t i = from; i < to; ++i) visit(vertex(i), vertex(i + 1 < to ? i + 1 : from));
  }
}

/// The solid angle on the left of rings, 0 to 4 pi, as the eye sees it.
double leftOf(const VisibleMap& map, std::size_t firstRing, std::size_t ringCount) {
  const std::size_t first = map.ringOffsets[firstRing];
  const LongVector start = wide(map.vertices[static_cast<std::size_t>(map.ringVertices[first])]);
  // In line with nothing, since a triangle with a corner opposite the apex has no certain area.
  const LongVector crooked = unit({0.3717L, 0.5391L, 0.7557L});
  const LongVector apex = dot(crooked, start) < 0.0L ? crooked * -1.0L : crooked;
  Real sum = 0.0L;
  // What is on the left for the eye is on the right from outside the sphere.
  eachSide(map, firstRing, ringCount,
           [&](const LongVector& a, const LongVector& b) { sum -= triangle(apex, a, b); });
  sum = std::fmod(sum, 4.0L * Pi);
  // A cell of nearly no area may come out a little below none.
  if (sum < -1e-13L) sum += 4.0L * Pi;
  return static_cast<double>(sum);
}

class Checker {
 public:
  explicit Checker(const VisibleMap& newMap) : map(newMap) {}

  std::vector<std::string> faults() {
    if (numbersFit()) {
      checkVertices();
      checkCells();
      checkSums();
      checkEdges();
      checkRings();
      checkEuler();
      checkOrder();
    }
    std::vector<std::string> lines;
    for (const auto& [kind, found] : counted) {
      std::ostringstream out;
      out << found.first << " x " << kind << ", e.g. " << found.second;
      lines.push_back(out.str());
    }
    return lines;
  }

 private:
  template <class... Words>
  void fault(const std::string& kind, const Words&... words) {
    auto& entry = counted[kind];
    if (entry.first++ > 0) return;
    std::ostringstream out;
    out.precision(17);
    (out << ... << words);
    entry.second = out.str();
  }

  std::size_t ringCount() const { return map.ringOffsets.empty() ? 0 : map.ringOffsets.size() - 1; }

  bool numbersFit() {
    const auto vertexFits = [this](int v) {
      return v >= 0 && static_cast<std::size_t>(v) < map.vertices.size();
    };
    const auto cellFits = [this](int c) {
      return c >= -1 && c < static_cast<int>(map.cells.size());
    };
    for (const VisibleMap::Edge& edge : map.edges)
      if (!vertexFits(edge.from) || !vertexFits(edge.to) || !cellFits(edge.left) ||
          !cellFits(edge.right))
        fault("edge with a number out of range", edge.from, ' ', edge.to);
    for (const int vertex : map.ringVertices)
      if (!vertexFits(vertex)) fault("ring with a vertex out of range", vertex);
    if (!std::is_sorted(map.ringOffsets.begin(), map.ringOffsets.end()) ||
        (!map.ringOffsets.empty() && map.ringOffsets.back() != map.ringVertices.size()))
      fault("ring offsets that do not fit the ring vertices", map.ringOffsets.size());
    std::size_t rings = 0;
    for (const VisibleMap::Cell& cell : map.cells) {
      if (cell.firstRing != rings && cell.ringCount > 0) fault("first ring out of step", rings);
      rings += cell.ringCount;
    }
    if (rings != ringCount()) fault("rings of no cell", ringCount(), " rings, cells have ", rings);
    if (map.cells.empty()) fault("map without a cell", "");
    return counted.empty();
  }

  void checkVertices() {
    std::vector<bool> used(map.vertices.size());
    for (const int vertex : map.ringVertices) used[static_cast<std::size_t>(vertex)] = true;
    for (std::size_t i = 0; i < map.vertices.size(); ++i) {
      if (!(std::fabs(length(wide(map.vertices[i])) - 1.0L) <= UnitTolerance))
        fault("vertex that is no unit vector", i);
      if (!used[i]) fault("vertex of no ring", i);
    }
  }

  void checkCells() {
    for (std::size_t i = 0; i < map.cells.size(); ++i) {
      const VisibleMap::Cell& cell = map.cells[i];
      if (!(cell.solidAngle > 0.0)) fault("cell without a solid angle", i, ": ", cell.solidAngle);
      const double solidAngle = solidAngleOf(map, i);
      // Rings do not distinguish nothing from all of a sphere.
      const double difference =
          std::remainder(solidAngle - cell.solidAngle, 4.0 * static_cast<double>(Pi));
      if (!(std::fabs(difference) <= AreaTolerance))
        fault("cell whose rings have another solid angle", i, ": ", cell.solidAngle, " and ",
              solidAngle);
      const double factor = map.field == Field::Hemisphere ? viewFactorOf(map, i) : 0.0;
      if (!(std::fabs(factor - cell.viewFactor) <= AreaTolerance))
        fault("cell whose rings have another view factor", i, ": ", cell.viewFactor, " and ",
              factor);
      if (isSky(cell.label)) {
        if (cell.minDistance != 0.0 || cell.maxDistance != 0.0)
          fault("sky with a distance", i, ": ", cell.minDistance);
      } else if (!(cell.minDistance >= 0.0 && cell.maxDistance > 0.0 &&
                   cell.minDistance <= cell.maxDistance)) {
        fault("distances out of order", i, ": ", cell.minDistance, " to ", cell.maxDistance);
      }
      if (map.field == Field::Hemisphere) checkOuterRing(i);
    }
  }

  /// In a hemisphere the outer ring has the smaller part of the sphere on its left, a hole the
  /// larger.
  void checkOuterRing(std::size_t number) {
    const VisibleMap::Cell& cell = map.cells[number];
    for (std::size_t i = 0; i < cell.ringCount; ++i) {
      const double left = leftOf(map, cell.firstRing + i, 1);
      const bool fits = i == 0 ? left <= 2.0 * static_cast<double>(Pi) + AreaTolerance
                               : left >= 2.0 * static_cast<double>(Pi) - AreaTolerance;
      // A ring without area has no orientation.
      const bool none = left < 1e-12 || left > 4.0 * static_cast<double>(Pi) - 1e-12;
      if (!fits && !none)
        fault("ring in the wrong place or turned", "cell ", number, " ring ", i, ": ", left);
    }
  }
  void checkSums() {
    if (!(std::fabs(areaError(map)) <= AreaTolerance))
      fault("solid angles do not add up", "they are off by ", areaError(map));
    if (map.field != Field::Hemisphere) return;
    Real sum = 0.0L;
    for (const VisibleMap::Cell& cell : map.cells) sum += cell.viewFactor;
    if (!(std::fabs(sum - 1.0L) <= AreaTolerance))
      fault("view factors do not add up", "their sum is ", static_cast<double>(sum));
  }

  void checkEdges() {
    std::set<std::pair<int, int>> known;
    for (const VisibleMap::Edge& edge : map.edges) {
      if (!known.insert(std::minmax(edge.from, edge.to)).second)
        fault("edge that stands twice", edge.from, ' ', edge.to);
      if (edge.from == edge.to) fault("edge of one vertex", edge.from);
      const LongVector from = wide(map.vertices[static_cast<std::size_t>(edge.from)]);
      const LongVector to = wide(map.vertices[static_cast<std::size_t>(edge.to)]);
      if (length(from - to) == 0.0L) fault("edge without length", edge.from, ' ', edge.to);
      if (length(from + to) < 1e-12L) fault("edge of half a circle", edge.from, ' ', edge.to);
      checkSides(edge);
    }
  }
  void checkSides(const VisibleMap::Edge& edge) {
    if (edge.left == edge.right) {
      fault("edge with the same cell on both sides", edge.from, ' ', edge.to, ": ", edge.left);
      return;
    }
    const bool end = edge.left < 0 || edge.right < 0;
    if (end != (edge.kind == EdgeKind::Field))
      fault("kind that does not fit the end of the field", edge.from, ' ', edge.to);
    if (end && map.field == Field::Sphere) fault("end of a field that has none", edge.left);
    if (end) {
      const LongVector forward = wide(map.forward);
      for (const int vertex : {edge.from, edge.to})
        if (std::fabs(dot(forward, wide(map.vertices[static_cast<std::size_t>(vertex)]))) > 1e-12L)
          fault("end of the field that is not at 90 degrees", vertex);
      return;
    }
    const Label& left = map.cells[static_cast<std::size_t>(edge.left)].label;
    const Label& right = map.cells[static_cast<std::size_t>(edge.right)].label;
    if (left == right)
      fault("cells of one label that touch", edge.left, ' ', edge.right, ": ", textOf(left));
    if ((isSky(left) || isSky(right)) && edge.kind != EdgeKind::Silhouette)
      fault("edge against the sky that is no silhouette", edge.from, ' ', edge.to);
    if (edge.kind == EdgeKind::Inner && left.object != right.object)
      fault("inner edge between two objects", edge.from, ' ', edge.to);
  }

  void checkRings() {
    std::map<std::tuple<int, int, int>, int> sides;  // from, to, the cell on the left
    for (const VisibleMap::Edge& edge : map.edges) {
      if (edge.left >= 0) --sides[{edge.from, edge.to, edge.left}];
      if (edge.right >= 0) --sides[{edge.to, edge.from, edge.right}];
    }
    for (std::size_t c = 0; c < map.cells.size(); ++c)
      for (std::size_t i = 0; i < map.cells[c].ringCount; ++i) {
        const std::size_t ring = map.cells[c].firstRing + i;
        const std::size_t from = map.ringOffsets[ring];
        const std::size_t count = map.ringOffsets[ring + 1] - from;
        if (count < 3) fault("ring of fewer than three vertices", "cell ", c, " ring ", i);
        for (std::size_t k = 0; k < count; ++k)
          ++sides[{map.ringVertices[from + k], map.ringVertices[from + (k + 1) % count],
                   static_cast<int>(c)}];
      }
    for (const auto& [side, balance] : sides) {
      const auto& [from, to, cell] = side;
      if (balance < 0) fault("edge that is in no ring", from, ' ', to, " of cell ", cell);
      if (balance > 0) fault("ring's edge that is no edge", from, ' ', to, " of cell ", cell);
    }
  }

  int root(std::vector<int>& parent, int i) {
    while (parent[static_cast<std::size_t>(i)] != i)
      i = parent[static_cast<std::size_t>(i)] =
          parent[static_cast<std::size_t>(parent[static_cast<std::size_t>(i)])];
    return i;
  }

  /// V - E + F = 1 + C, with what is outside the field as a face: cells are connected, so it holds
  /// if and only if each component is closed. Of each component by itself: V - E + its rings >= 2,
  /// where more than 2 come from rings that meet themselves in a vertex and stand as several.
  void checkEuler() {
    std::vector<int> parent(map.vertices.size());
    std::iota(parent.begin(), parent.end(), 0);
    for (const VisibleMap::Edge& edge : map.edges)
      parent[static_cast<std::size_t>(root(parent, edge.from))] = root(parent, edge.to);
    std::map<int, long> sums;
    for (std::size_t i = 0; i < map.vertices.size(); ++i) ++sums[root(parent, static_cast<int>(i))];
    bool outside = false;
    for (const VisibleMap::Edge& edge : map.edges) {
      --sums[root(parent, edge.from)];
      outside = outside || edge.left < 0 || edge.right < 0;
    }
    const auto components = static_cast<long>(sums.size());
    const long euler = static_cast<long>(map.vertices.size()) -
                       static_cast<long>(map.edges.size()) + static_cast<long>(map.cells.size()) +
                       (outside ? 1 : 0);
    if (euler != 1 + components)
      fault("Euler's formula", "V - E + F = ", euler, ", components ", components);
    for (std::size_t ring = 0; ring < ringCount(); ++ring)
      ++sums[root(parent, map.ringVertices[map.ringOffsets[ring]])];
    if (outside)
      for (const VisibleMap::Edge& edge : map.edges)
        if (edge.left < 0 || edge.right < 0) {
          ++sums[root(parent, edge.from)];
          break;
        }
    for (const auto& [component, sum] : sums)
      if (sum < 2) fault("Euler's formula of a component", "vertex ", component, ": ", sum);
  }

  void checkOrder() {
    const auto key = [](const Label& label) {
      return std::make_tuple(isSky(label) ? 1 : 0, label.object, label.region);
    };
    for (std::size_t i = 1; i < map.cells.size(); ++i)
      if (key(map.cells[i].label) < key(map.cells[i - 1].label))
        fault("cells out of order", i, ": ", textOf(map.cells[i].label));
  }

  const VisibleMap& map;
  std::map<std::string, std::pair<std::size_t, std::string>> counted;
};

}  // namespace

double solidAngleOf(const VisibleMap& map, std::size_t cell) {
  const VisibleMap::Cell& the = map.cells[cell];
  return the.ringCount == 0 ? static_cast<double>(4.0L * Pi)
                            : leftOf(map, the.firstRing, the.ringCount);
}

double viewFactorOf(const VisibleMap& map, std::size_t cell) {
  const LongVector forward = wide(map.forward);
  Real sum = 0.0L;
  const VisibleMap::Cell& the = map.cells[cell];
  eachSide(map, the.firstRing, the.ringCount, [&](const LongVector& a, const LongVector& b) {
    const LongVector pole = cross(a, b - a);
    const Real size = length(pole);
    if (size > 0.0L) sum -= std::atan2(size, dot(a, b)) * dot(pole, forward) / size;
  });
  return static_cast<double>(sum / (2.0L * Pi));
}

double areaError(const VisibleMap& map) {
  Real sum = map.field == Field::Hemisphere ? -2.0L * Pi : -4.0L * Pi;
  for (const VisibleMap::Cell& cell : map.cells) sum += cell.solidAngle;
  return static_cast<double>(sum);
}

std::vector<std::string> faultsOf(const VisibleMap& map) { return Checker(map).faults(); }

std::string faultText(const VisibleMap& map) {
  std::string text;
  for (const std::string& line : faultsOf(map)) text += line + '\n';
  return text;
}

}  // namespace Lumivane::Truth
