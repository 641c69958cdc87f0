#include "pictures/Strokes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>

// Long paths for pens. Lines that meet are joined as in an Eulerian walk, from the nodes where an
// odd number of lines meet first: so there are as few paths as can be. Then each path follows the
// one whose end is nearest, forwards or backwards, which keeps the pen's travel short, if not
// shortest.
namespace Lumivane::Pictures {
namespace {

using Line = Drawing::Line;
using Point = Drawing::Point;

constexpr double SamePlace = 1e-4;       // mm
constexpr double StraightWithin = 1e-4;  // mm

double distance(const Point& a, const Point& b) { return std::hypot(b.x - a.x, b.y - a.y); }

std::int64_t stepOf(double value, double step) {
  return static_cast<std::int64_t>(std::floor(value / step));
}

std::uint64_t keyOf(std::int64_t x, std::int64_t y) {
  return static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15ull ^
         (static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4Full << 1U);
}

// Numbers for places; those within rounding of each other have one.
class Nodes {
 public:
  int at(const Point& p) {
    const std::int64_t x = stepOf(p.x, SamePlace);
    const std::int64_t y = stepOf(p.y, SamePlace);
    for (std::int64_t i = -1; i <= 1; ++i)
      for (std::int64_t k = -1; k <= 1; ++k) {
        const auto found = cells.find(keyOf(x + i, y + k));
        if (found == cells.end()) continue;
        for (const int node : found->second)
          if (distance(places[static_cast<std::size_t>(node)], p) <= SamePlace) return node;
      }
    const int node = static_cast<int>(places.size());
    places.push_back(p);
    cells[keyOf(x, y)].push_back(node);
    return node;
  }
  std::size_t size() const { return places.size(); }

 private:
  std::vector<Point> places;
  std::unordered_map<std::uint64_t, std::vector<int>> cells;
};

class Joiner {
 public:
  explicit Joiner(const std::vector<Line>& theLines) : lines(theLines), used(theLines.size(), 0) {
    Nodes nodes;
    for (const Line& line : lines) {
      ends.push_back(nodes.at(line.front()));
      ends.push_back(nodes.at(line.back()));
    }
    atNode.resize(nodes.size());
    // Half 2 i leaves line i's first end, half 2 i + 1 its last one.
    for (std::size_t i = 0; i < ends.size(); ++i)
      atNode[static_cast<std::size_t>(ends[i])].push_back(static_cast<int>(i));
  }

  std::vector<Line> run() {
    std::vector<Line> joined;
    // First from where an odd number of lines meet: there a path must begin or end.
    for (const bool odd : {true, false})
      for (std::size_t i = 0; i < ends.size(); ++i) {
        if (odd && atNode[static_cast<std::size_t>(ends[i])].size() % 2 == 0) continue;
        if (used[i / 2] == 0) joined.push_back(simplified(follow(static_cast<int>(i))));
      }
    return joined;
  }

 private:
  Line follow(int half) {
    Line path;
    while (half >= 0) {
      const auto number = static_cast<std::size_t>(half) / 2;
      used[number] = 1;
      Line line = lines[number];
      if (half % 2 != 0) std::reverse(line.begin(), line.end());
      path.insert(path.end(), line.begin() + (path.empty() ? 0 : 1), line.end());
      half = nextFrom(half ^ 1, path);
    }
    return path;
  }

  // The free half that goes on most nearly straight.
  int nextFrom(int arrived, const Line& path) const {
    const Point& end = path.back();
    const Point& before = path[path.size() - 2];
    int best = -1;
    double bestCosine = -2.0;
    for (const int half :
         atNode[static_cast<std::size_t>(ends[static_cast<std::size_t>(arrived)])]) {
      const auto number = static_cast<std::size_t>(half) / 2;
      if (used[number] != 0) continue;
      const Line& line = lines[number];
      const Point& next = half % 2 == 0 ? line[1] : line[line.size() - 2];
      const double lengths = distance(before, end) * distance(end, next);
      const double cosine =
          lengths > 0.0
              ? ((end.x - before.x) * (next.x - end.x) + (end.y - before.y) * (next.y - end.y)) /
                    lengths
              : -1.0;
      if (cosine > bestCosine) {
        bestCosine = cosine;
        best = half;
      }
    }
    return best;
  }

  // Leaves out points on the straight way from the last one kept to the next.
  static Line simplified(const Line& line) {
    Line kept;
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (i == 0 || i + 1 == line.size() || bends(kept.back(), line[i], line[i + 1]))
        kept.push_back(line[i]);
    }
    return kept;
  }

  static bool bends(const Point& a, const Point& b, const Point& c) {
    const double length = distance(a, c);
    if (length < SamePlace) return distance(a, b) > StraightWithin;
    const double along = ((b.x - a.x) * (c.x - a.x) + (b.y - a.y) * (c.y - a.y)) / length;
    if (along < 0.0 || along > length) return true;
    const double off = ((c.x - a.x) * (b.y - a.y) - (c.y - a.y) * (b.x - a.x)) / length;
    return std::fabs(off) > StraightWithin * 0.1;
  }

  const std::vector<Line>& lines;
  std::vector<char> used;
  std::vector<int> ends;                 // nodes, two for each line
  std::vector<std::vector<int>> atNode;  // halves
};

// Finds the nearest end that is left, in rings of cells around a place.
class NearestEnds {
 public:
  explicit NearestEnds(const std::vector<Line>& theLines) : lines(theLines) {
    low = high = lines.front().front();
    for (const Line& line : lines)
      for (const Point& p : {line.front(), line.back()}) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
      }
    side = static_cast<int>(std::clamp(std::sqrt(static_cast<double>(lines.size())), 1.0, 1024.0));
    size = std::max({high.x - low.x, high.y - low.y, 1e-9}) / side;
    cells.resize(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    for (std::size_t i = 0; i < lines.size(); ++i) {
      at(cellOf(lines[i].front().x - low.x), cellOf(lines[i].front().y - low.y))
          .push_back(static_cast<int>(2 * i));
      at(cellOf(lines[i].back().x - low.x), cellOf(lines[i].back().y - low.y))
          .push_back(static_cast<int>(2 * i + 1));
    }
    taken.assign(lines.size(), 0);
  }

  // The half that begins nearest to a place, which is taken; -1 if none is left.
  int take(const Point& from) {
    int best = -1;
    double least = std::numeric_limits<double>::max();
    const int x = cellOf(from.x - low.x);
    const int y = cellOf(from.y - low.y);
    for (int ring = 0; ring <= side; ++ring) {
      if (best >= 0 && least <= (ring - 1) * size) break;
      for (int i = std::max(0, x - ring); i <= std::min(side - 1, x + ring); ++i) {
        const int step = onRing(i, x, ring) ? 1 : std::max(1, 2 * ring);
        for (int k = y - ring; k <= y + ring; k += step)
          if (k >= 0 && k < side) lookAt(at(i, k), from, best, least);
      }
    }
    if (best >= 0) taken[static_cast<std::size_t>(best) / 2] = 1;
    return best;
  }

  const Point& startOf(int half) const {
    const Line& line = lines[static_cast<std::size_t>(half) / 2];
    return half % 2 == 0 ? line.front() : line.back();
  }

 private:
  static bool onRing(int i, int middle, int ring) {
    return i == middle - ring || i == middle + ring;
  }
  int cellOf(double offset) const {
    return std::clamp(static_cast<int>(offset / size), 0, side - 1);
  }
  std::vector<int>& at(int x, int y) {
    return cells[static_cast<std::size_t>(y) * static_cast<std::size_t>(side) +
                 static_cast<std::size_t>(x)];
  }
  void lookAt(std::vector<int>& cell, const Point& from, int& best, double& least) {
    cell.erase(
        std::remove_if(cell.begin(), cell.end(),
                       [this](int half) { return taken[static_cast<std::size_t>(half) / 2] != 0; }),
        cell.end());
    for (const int half : cell) {
      const double away = distance(from, startOf(half));
      if (away < least || (away == least && half < best)) {
        least = away;
        best = half;
      }
    }
  }

  const std::vector<Line>& lines;
  Point low;
  Point high;
  int side = 1;
  double size = 1.0;
  std::vector<std::vector<int>> cells;
  std::vector<char> taken;
};

}  // namespace

std::vector<Line> joinedLines(const std::vector<Line>& lines) {
  std::vector<Line> proper;
  for (const Line& line : lines)
    if (line.size() > 1 && (line.size() > 2 || distance(line[0], line[1]) > 0.0))
      proper.push_back(line);
  return Joiner(proper).run();
}

std::vector<Line> orderedForPen(const std::vector<Line>& lines) {
  if (lines.empty()) return {};
  NearestEnds ends(lines);
  std::vector<Line> ordered;
  Point pen{0.0, 0.0};
  for (int half = ends.take(pen); half >= 0; half = ends.take(pen)) {
    Line line = lines[static_cast<std::size_t>(half) / 2];
    if (half % 2 != 0) std::reverse(line.begin(), line.end());
    pen = line.back();
    ordered.push_back(std::move(line));
  }
  return ordered;
}

double penTravel(const std::vector<Line>& lines) {
  double sum = 0.0;
  for (std::size_t i = 0; i + 1 < lines.size(); ++i)
    sum += distance(lines[i].back(), lines[i + 1].front());
  return sum;
}

double lengthOf(const std::vector<Line>& lines) {
  double sum = 0.0;
  for (const Line& line : lines)
    for (std::size_t i = 0; i + 1 < line.size(); ++i) sum += distance(line[i], line[i + 1]);
  return sum;
}

}  // namespace Lumivane::Pictures
