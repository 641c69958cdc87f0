// A picture whose x is the azimuth: it is cut behind the eye, and a pole is a whole side of it.
//
// A ring is unrolled: each of its places has a number of turns, so that it runs on where the
// azimuth jumps. A ring that comes back with another number of turns has gone around a pole, and is
// closed along that pole's side. What is unrolled is cut into windows of one turn, and the windows
// are laid over each other. How often a place is wound around is then right up to the same whole
// number everywhere, and that number is what the ring's area lacks of the cell's solid angle, in
// spheres.

#include "kernel/SphereContour.h"
#include "pictures/MapPlane.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace Lumivane::Pictures {
namespace {

using Kernel::Vec2;
using Kernel::Vec3;
using Visibility::VisibleMap;

constexpr double Turn = 4.0;     // a quarter of a turn is 1
constexpr double AtPole = 1e-9;  // radians: nearer directions have no azimuth worth the name
constexpr double Slack = 1e-9;   // quarters of a turn

// A place with the turns that it is away from the picture.
struct Unrolled {
  double x = 0.0;
  int turns = 0;
  double y = 0.0;

  double at() const { return x + Turn * turns; }
};
using Path = std::vector<Unrolled>;

bool isPole(Vec3 d) { return std::hypot(d.x, d.z) < AtPole; }

// The whole turns to add to x so that it is at most half a turn from another.
int turnsTowards(double x, double other) {
  if (x - other > 0.5 * Turn + Slack) return -1;
  if (other - x > 0.5 * Turn + Slack) return 1;
  return 0;
}

// The closed line's part with x of at least (or at most) a value (I. Sutherland and G. Hodgman,
// Reentrant Polygon Clipping, 1974). The pieces hang together along the cut, without area.
Places clipped(const Places& line, double limit, bool keepsGreater) {
  const auto isKept = [&](Vec2 p) { return keepsGreater ? p.x >= limit : p.x <= limit; };
  Places result;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const Vec2 a = line[i];
    const Vec2 b = line[(i + 1) % line.size()];
    if (isKept(a)) result.push_back(a);
    if (isKept(a) == isKept(b)) continue;
    const Vec2 low = a.x < b.x ? a : b;  // the same from both ends
    const Vec2 high = a.x < b.x ? b : a;
    const double t = (limit - low.x) / (high.x - low.x);
    result.push_back({limit, low.y + t * (high.y - low.y)});
  }
  return result;
}

class BandPlane : public MapPlane {
 public:
  BandPlane(const VisibleMap& theMap, const Kernel::Projection& theRule, double greatestDistance)
      : map(theMap),
        rule(theRule),
        tolerance(greatestDistance),
        isSphere(map.field == Visibility::Field::Sphere),
        half(rule.halfSize(map.field == Visibility::Field::Sphere)),
        directions(eyeDirections(map)) {}

  std::vector<Places> outline(std::size_t number) override {
    const VisibleMap::Cell& cell = map.cells[number];
    std::vector<Places> lines;
    double solidAngle = 0.0;
    bool hasNorth = false;
    for (std::size_t i = cell.firstRing; i < cell.firstRing + cell.ringCount; ++i) {
      Path ring = unrolled(i);
      if (ring.empty()) continue;
      closeAtPole(ring, hasNorth);
      if (isSphere) solidAngle += solidAngleOf(ring);
      addWindows(ring, lines);
    }
    if (isSphere) addWhole(std::lround((cell.solidAngle - solidAngle) / WholeSphere), lines);
    return lines;
  }

  std::vector<Places> arc(int from, int to) override {
    std::vector<Places> lines;
    const Path& path = curve(from, to);
    for (const int window : windowsOf(path)) {
      bool isInside = false;
      for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        const Places piece = clippedPiece({xIn(path[i], window), path[i].y},
                                          {xIn(path[i + 1], window), path[i + 1].y});
        if (piece.empty()) {
          isInside = false;
          continue;
        }
        if (!isInside) lines.push_back({piece[0]});
        lines.back().push_back(piece[1]);
        isInside = true;
      }
    }
    return lines;
  }

 private:
  static constexpr double WholeSphere = 4.0 * Kernel::Pi;

  Vec3 directionOf(int vertex) const { return directions[static_cast<std::size_t>(vertex)]; }
  double xIn(const Unrolled& place, int window) const {
    return place.x + Turn * (place.turns - window);
  }

  const Path& curve(int from, int to) {
    const std::pair<int, int> key = std::minmax(from, to);
    const auto [found, isNew] = curves.try_emplace(key);
    if (isNew) found->second = flattened(directionOf(key.first), directionOf(key.second));
    return found->second;
  }

  Unrolled placeOf(Vec3 d) const {
    const Vec2 place = rule.place(d);
    return {std::clamp(place.x, -half.x, half.x), 0, place.y};
  }

  double poleSide(Vec3 d) const { return d.y > 0.0 ? half.y : -half.y; }

  Path flattened(Vec3 a, Vec3 b) const {
    if (isPole(a) && isPole(b)) return {};
    if (isPole(a)) {
      const Unrolled end = placeOf(b);
      return {{end.x, 0, poleSide(a)}, end};
    }
    if (isPole(b)) {
      const Unrolled start = placeOf(a);
      return {start, {start.x, 0, poleSide(b)}};
    }
    const Vec3 normal = Kernel::cross(a, b);
    const double length = Kernel::length3(normal);
    if (!(length > 0.0)) return {placeOf(a), placeOf(b)};
    const Vec3 n = {normal.x / length, normal.y / length, normal.z / length};
    return flattened(a, b, n);
  }

  // Where the great circle of the normal comes nearest to the pole of y = 1.
  static Vec3 summitOf(Vec3 n) {
    const Vec3 up = {-n.y * n.x, 1.0 - n.y * n.y, -n.y * n.z};
    const double length = Kernel::length3(up);
    return {up.x / length, up.y / length, up.z / length};
  }

  Path flattened(Vec3 a, Vec3 b, Vec3 n) const {
    const bool isAlongEquator = n.x * n.x + n.z * n.z < 1e-24;
    for (const double sign : {1.0, -1.0}) {
      if (isAlongEquator) break;
      const Vec3 summit = sign * summitOf(n);
      const bool isOnArc = Kernel::dot(Kernel::cross(a, summit), n) > 0.0 &&
                           Kernel::dot(Kernel::cross(summit, b), n) > 0.0;
      if (!isOnArc) continue;
      if (isPole(summit)) return overPole(a, b, poleSide(summit));
      Path path = {placeOf(a)};
      addArc(a, summit, path);
      addArc(summit, b, path);
      return path;
    }
    Path path = {placeOf(a)};
    const Vec3 middle = middleOfArc(a, b);
    addArc(a, middle, path);
    addArc(middle, b, path);
    return path;
  }

  // A quarter of a turn along the pole's side has no height: it may go either way around, and in a
  // hemisphere goes through the picture.
  Path overPole(Vec3 a, Vec3 b, double pole) const {
    const Unrolled start = placeOf(a);
    Unrolled end = placeOf(b);
    end.turns = turnsTowards(end.x, start.x);
    return {start, {start.x, 0, pole}, {end.x, end.turns, pole}, end};
  }

  // An arc of less than half a turn of azimuth; appends all places but the first.
  void addArc(Vec3 a, Vec3 b, Path& path) const {
    const Unrolled start = path.back();
    const auto place = [&](Vec3 d) {
      const Unrolled p = placeOf(d);
      return Vec2{p.x + Turn * turnsTowards(p.x, start.x), p.y};
    };
    const Unrolled raw = placeOf(b);
    const int turns = turnsTowards(raw.x, start.x);
    Places places;
    ArcFlattening<decltype(place)>(place, tolerance)
        .add(a, {start.x, start.y}, b, {raw.x + Turn * turns, raw.y}, places);
    places.pop_back();
    for (const Vec2 p : places) path.push_back({p.x, start.turns, p.y});
    path.push_back({raw.x, start.turns + turns, raw.y});
  }

  // The ring's places; the last is the first again, perhaps some turns away.
  Path unrolled(std::size_t number) {
    const std::size_t first = map.ringOffsets[number];
    const std::size_t count = map.ringOffsets[number + 1] - first;
    Path ring;
    for (std::size_t i = 0; i < count; ++i) {
      const int from = map.ringVertices[first + i];
      const int to = map.ringVertices[first + (i + 1) % count];
      Path edge = curve(from, to);
      if (from > to) std::reverse(edge.begin(), edge.end());
      if (!edge.empty()) append(ring, edge, directionOf(from));
    }
    if (ring.empty()) return ring;
    Unrolled last = ring.front();
    last.turns =
        ring.back().turns + turnsAtJoint(ring.back(), last, directionOf(map.ringVertices[first]));
    ring.push_back(last);
    return ring;
  }

  void append(Path& ring, const Path& edge, Vec3 joint) const {
    int shift = -edge.front().turns;
    if (!ring.empty()) shift += ring.back().turns + turnsAtJoint(ring.back(), edge.front(), joint);
    for (Unrolled place : edge) {
      place.turns += shift;
      const bool isRepeated = !ring.empty() && ring.back().x == place.x &&
                              ring.back().turns == place.turns && ring.back().y == place.y;
      if (!isRepeated) ring.push_back(place);
    }
  }

  // The whole turns between the end of an edge and the start of the next. Along the side of a pole
  // the cell lies on the left: westwards at the upper side, eastwards at the lower one.
  int turnsAtJoint(const Unrolled& end, const Unrolled& start, Vec3 joint) const {
    if (!isSphere || !isPole(joint)) return 0;
    if (joint.y > 0.0) return start.x > end.x ? -1 : 0;
    return start.x < end.x ? 1 : 0;
  }

  // A ring that turns eastwards has the cell, and so the upper pole, on its left. A cell between
  // two such rings is closed at one side by both.
  void closeAtPole(Path& ring, bool& hasNorth) const {
    const int turns = ring.back().turns - ring.front().turns;
    if (turns == 0) {
      ring.pop_back();
      return;
    }
    const double side = turns > 0 || hasNorth ? half.y : -half.y;
    hasNorth = hasNorth || turns > 0;
    const Unrolled first = ring.front();
    const Unrolled last = ring.back();
    ring.push_back({last.x, last.turns, side});
    ring.push_back({first.x, first.turns, side});
  }

  // By Green's theorem, since the area element is d(sin elevation) d(azimuth).
  double solidAngleOf(const Path& ring) const {
    const auto sine = [this](const Unrolled& p) {
      return rule.direction({0.0, std::clamp(p.y, -half.y, half.y)})->y;
    };
    double sum = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const Unrolled& a = ring[i];
      const Unrolled& b = ring[(i + 1) % ring.size()];
      sum -= 0.5 * (sine(a) + sine(b)) * (b.at() - a.at()) * (0.5 * Kernel::Pi);
    }
    return sum;
  }

  // The turns at which a path reaches into the picture.
  std::vector<int> windowsOf(const Path& path) const {
    if (!isSphere) return {0};
    double low = path.front().at();
    double high = low;
    for (const Unrolled& place : path) {
      low = std::min(low, place.at());
      high = std::max(high, place.at());
    }
    std::vector<int> windows;
    for (int i = static_cast<int>(std::floor((low - half.x) / Turn));
         i <= static_cast<int>(std::ceil((high + half.x) / Turn)); ++i)
      if (low < Turn * i + half.x && high > Turn * i - half.x) windows.push_back(i);
    return windows;
  }

  void addWindows(const Path& ring, std::vector<Places>& lines) const {
    for (const int window : windowsOf(ring)) {
      Places line;
      line.reserve(ring.size());
      for (const Unrolled& place : ring) line.push_back({xIn(place, window), place.y});
      if (isSphere) line = clipped(clipped(line, -half.x, true), half.x, false);
      if (line.size() >= 3) lines.push_back(std::move(line));
    }
  }

  // A straight piece's part in the picture, or nothing.
  Places clippedPiece(Vec2 a, Vec2 b) const {
    const auto cut = [&](Vec2 p) -> Vec2 {
      const double limit = std::clamp(p.x, -half.x, half.x);
      if (limit == p.x) return p;
      const Vec2 low = a.x < b.x ? a : b;
      const Vec2 high = a.x < b.x ? b : a;
      return {limit, low.y + (limit - low.x) / (high.x - low.x) * (high.y - low.y)};
    };
    if (std::max(a.x, b.x) < -half.x || std::min(a.x, b.x) > half.x) return {};
    return {cut(a), cut(b)};
  }

  void addWhole(long count, std::vector<Places>& lines) const {
    const Places counterclockwise = {
        {-half.x, -half.y}, {half.x, -half.y}, {half.x, half.y}, {-half.x, half.y}};
    const Places clockwise(counterclockwise.rbegin(), counterclockwise.rend());
    for (long i = 0; i < std::abs(count); ++i)
      lines.insert(lines.begin(), count > 0 ? counterclockwise : clockwise);
  }

  const VisibleMap& map;
  const Kernel::Projection& rule;
  double tolerance;
  bool isSphere;
  Vec2 half;
  std::vector<Vec3> directions;
  std::map<std::pair<int, int>, Path> curves;
};

}  // namespace

std::unique_ptr<MapPlane> makeBandPlane(const VisibleMap& map, const Kernel::Projection& rule,
                                        double tolerance) {
  return std::make_unique<BandPlane>(map, rule, tolerance);
}

}  // namespace Lumivane::Pictures
