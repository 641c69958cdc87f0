#pragma once

#include "plain/Geometry.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// The depth sort once more, step by step on plain containers: every scan is made in full, nothing
/// is skipped, reused or indexed.
namespace Lumivane::Plain {

// --- How two polygons of the picture lie to each other ---

/// By value, as the public operation takes its points.
inline double turn(Vector a, Vector b, Vector c) {
  return (c[1] - b[1]) * (b[0] - a[0]) - (b[1] - a[1]) * (c[0] - b[0]);
}

inline bool cross2(const Vector& a, const Vector& b, const Vector& c, const Vector& d) {
  const double r1 = turn(a, b, d);
  const double r2 = turn(a, b, c);
  if (!(0 > r2 * r1)) return false;
  const double r3 = turn(c, d, b);
  const double r4 = turn(c, d, a);
  return 0 > r4 * r3;
}

inline bool contains(const Matrix& polygon, const Vector& point) {
  bool inside = false;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Vector& current = polygon[i];
    const Vector& previous = polygon[i == 0 ? polygon.size() - 1 : i - 1];
    const double y = point[1];
    const bool rises = y >= current[1] && previous[1] > y;
    const bool falls = y >= previous[1] && current[1] > y;
    if (!rises && !falls) continue;
    const double c =
        (previous[0] - current[0]) * (y - current[1]) / (previous[1] - current[1]) + current[0];
    if (point[0] >= c) inside = !inside;
  }
  return inside;
}

inline int intersectionType(const Matrix& first, const Matrix& second) {
  std::vector<std::pair<std::size_t, std::size_t>> crossings;
  for (std::size_t i = 0; i < first.size(); ++i) {
    for (std::size_t j = 0; j < second.size(); ++j) {
      if (cross2(first[i], first[(i + 1) % first.size()], second[j],
                 second[(j + 1) % second.size()]))
        crossings.emplace_back(i, j);
    }
  }
  if (!crossings.empty()) return 1;
  std::size_t count = 0;
  for (const Vector& point : first) count += contains(second, point) ? 1 : 0;
  if (count == first.size()) return 3;
  count = 0;
  for (const Vector& point : second) count += contains(first, point) ? 1 : 0;
  return count == second.size() ? 2 : 0;
}

// --- Which of two polygons of the scene is in front ---

inline double side(const Matrix& polygon, const Vector& point, std::string& messages) {
  const Vector n = polygon.size() < 3 ? Vector{0, 0, 0} : normalReversed(polygon, messages);
  const Vector foot = intersection(n, polygon[0], point, {-n[0], -n[1], -n[2]});
  return dot(n, difference(foot, point));
}

inline int location(const Matrix& first, const Matrix& second, std::string& messages) {
  std::set<int> s;
  for (const Vector& q : second) {
    const double d = side(first, q, messages);
    s.insert(d < 0 ? 2 : d > 0 ? 1 : 0);
  }
  if (s.count(1) != 0 && s.count(2) != 0) {
    s.clear();
    for (const Vector& q : first) {
      const double d = side(second, q, messages);
      s.insert(d < 0 ? 1 : d > 0 ? 2 : 0);
    }
  }
  if (s.count(1) != 0 && s.count(2) != 0) return 0;
  for (const int value : s)
    if (value != 0) return value;
  return 0;
}

// --- The cell of two faces ---

struct Face {
  std::vector<Matrix> projected;
  std::vector<Matrix> sources;
};

/// xMin, xMax, yMin, yMax.
inline Vector bounds(const std::vector<Matrix>& polygons) {
  constexpr double largest = 1.7976931348623157e308;
  Vector b{largest, -largest, largest, -largest};
  for (const Matrix& polygon : polygons) {
    for (const Vector& p : polygon) {
      if (b[0] > p[0]) b[0] = p[0];
      if (p[0] > b[1]) b[1] = p[0];
      if (b[2] > p[1]) b[2] = p[1];
      if (p[1] > b[3]) b[3] = p[1];
    }
  }
  return b;
}

inline bool meet(const Vector& a, const Vector& b) {
  return a[1] >= b[0] && b[1] >= a[0] && a[3] >= b[2] && b[3] >= a[2];
}

inline int vote(const std::vector<int>& locations) {
  if (locations.size() == 1) return locations[0];
  std::set<int> distinct(locations.begin(), locations.end());
  distinct.erase(0);
  if (distinct.size() == 1) return *distinct.begin();
  int c1 = 0;
  int c2 = 0;
  for (const int value : locations) {
    if (value == 1) ++c1;
    if (value == 2) ++c2;
  }
  if (c1 == 0 && c2 == 0) return 0;
  return c1 > c2 ? 1 : 2;
}

inline bool anyOverlap(const Face& a, const Face& b) {
  for (const Matrix& p : a.projected)
    for (const Matrix& q : b.projected)
      if (meet(bounds({p}), bounds({q})) && intersectionType(p, q) != 0) return true;
  return false;
}

/// \throws std::out_of_range where a source is missing
inline int cell(const Face& a, const Face& b, std::string& messages) {
  if (!meet(bounds(a.projected), bounds(b.projected)) || !anyOverlap(a, b)) return 3;
  std::vector<int> locations;
  std::vector<bool> hiddenOfA(a.projected.size());
  std::vector<bool> hiddenOfB(b.projected.size());
  for (std::size_t i = 0; i < a.projected.size(); ++i) {
    for (std::size_t j = 0; j < b.projected.size(); ++j) {
      if (!meet(bounds({a.projected[i]}), bounds({b.projected[j]}))) continue;
      const int t = intersectionType(a.projected[i], b.projected[j]);
      if (t == 0) continue;
      const int c = location(a.sources.at(i), b.sources.at(j), messages);
      locations.push_back(c);
      if (c == 1 && t == 2) hiddenOfB[j] = true;
      if (c == 2 && t == 3) hiddenOfA[i] = true;
    }
  }
  if (std::find(hiddenOfA.begin(), hiddenOfA.end(), false) == hiddenOfA.end()) return 5;
  if (std::find(hiddenOfB.begin(), hiddenOfB.end(), false) == hiddenOfB.end()) return 4;
  return vote(locations);
}

// --- The graph ---

using Names = std::vector<std::string>;

inline bool holds(const Names& list, const std::string& name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

inline bool isFree(const std::vector<Names>& edges, const std::string& node) {
  for (const Names& edge : edges)
    if (edge[1] == node) return false;
  return true;
}

struct Sorted {
  Names nodes;
  std::vector<Names> edges;  ///< what is left, in order of insertion
  std::string m;
};

inline Sorted sortGraph(std::vector<Names> edges) {
  Names s;
  for (const Names& edge : edges)
    if (isFree(edges, edge[0]) && !holds(s, edge[0])) s.push_back(edge[0]);
  Sorted result;
  while (!s.empty()) {
    const std::string n = s[0];
    s.erase(std::remove(s.begin(), s.end(), n), s.end());
    result.nodes.push_back(n);
    for (std::size_t i = 0; i < edges.size();) {
      if (edges[i][0] != n) {
        ++i;
        continue;
      }
      result.m = edges[i][1];
      edges.erase(edges.begin() + static_cast<std::ptrdiff_t>(i));
      if (isFree(edges, result.m) && !holds(s, result.m)) s.push_back(result.m);
    }
  }
  result.edges = std::move(edges);
  return result;
}

// --- The order of the objects ---

struct Order {
  Names drawn;
  Names hidden;
  std::vector<Names> edges;
  std::vector<Names> unsorted;  ///< what a cycle has left of them
  std::string m;                ///< see Sorted
};

/// \param rows  row i with i cells at least
inline Order objectsOrder(const Names& ids, const std::vector<std::vector<int>>& rows) {
  Order result;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (rows[i][j] == 4) result.hidden.push_back(ids[j]);
      if (rows[i][j] == 5) result.hidden.push_back(ids[i]);
    }
  }
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (holds(result.hidden, ids[i])) continue;
    for (std::size_t j = 0; j < i; ++j) {
      if (holds(result.hidden, ids[j])) continue;
      if (rows[i][j] == 1 || rows[i][j] == 4) result.edges.push_back({ids[j], ids[i]});
      if (rows[i][j] == 2 || rows[i][j] == 5) result.edges.push_back({ids[i], ids[j]});
    }
  }
  Sorted sorted = sortGraph(result.edges);
  result.unsorted = std::move(sorted.edges);
  result.m = std::move(sorted.m);
  Names l = std::move(sorted.nodes);
  for (const std::string& id : ids)
    if (!holds(l, id)) l.push_back(id);
  for (const std::string& id : result.hidden) l.erase(std::remove(l.begin(), l.end(), id), l.end());
  result.drawn = std::move(l);
  return result;
}

}  // namespace Lumivane::Plain
