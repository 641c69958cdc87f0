// The hemisphere in front on a disc. Of a map of the whole sphere only that is drawn: each edge is
// cut where it crosses the border, and what is left of the cell's rings is closed along the border.
// On the way out of the disc the cell lies to the left, so that its stretch of the border runs
// counterclockwise from there to the next place where a ring of the cell comes in again (after K.
// Weiler and P. Atherton, Hidden Surface Removal Using Polygon Area Sorting, 1977).

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

constexpr double WholeSphere = 4.0 * Kernel::Pi;

// Where the arc crosses the border: the same from both ends, and for all arcs that end there.
Vec3 crossingOf(Vec3 a, Vec3 b) {
  if (a.z == 0.0) return a;
  if (b.z == 0.0) return b;
  const Vec3 p = std::abs(b.z) * a + std::abs(a.z) * b;
  const double length = std::hypot(p.x, p.y);
  return {p.x / length, p.y / length, 0.0};
}

// The solid angle of the triangle from an apex to an arc, signed, counterclockwise as the eye sees
// it positive (A. van Oosterom and J. Strackee, 1983).
double triangleSolidAngle(Vec3 apex, Vec3 a, Vec3 b) {
  // x to the right, y up and z forward are a left-handed system to the eye in its middle.
  const double volume = Kernel::dot(apex, Kernel::cross(a, b));
  const double sum = 1.0 + Kernel::dot(apex, a) + Kernel::dot(a, b) + Kernel::dot(b, apex);
  return 2.0 * std::atan2(volume, sum);
}

// A piece of a ring in the picture: from where it comes in, or its own start, to where it goes out.
struct Piece {
  Places places;
  double in = 0.0;   // angle on the border
  double out = 0.0;  // likewise
};

class DiscPlane : public MapPlane {
 public:
  DiscPlane(const VisibleMap& theMap, const Kernel::Projection& theRule, double tolerance)
      : map(theMap),
        rule(theRule),
        isCut(map.field == Visibility::Field::Sphere),
        flattening(rule.place, tolerance),
        directions(eyeDirections(map)) {
    placesOfVertices.reserve(directions.size());
    for (const Vec3 direction : directions) placesOfVertices.push_back(rule.place(direction));
  }

  std::vector<Places> outline(std::size_t number) override {
    const VisibleMap::Cell& cell = map.cells[number];
    std::vector<Places> lines;
    std::vector<Piece> pieces;
    double solidAngle = 0.0;  // of what whole rings enclose on their own side of the border
    for (std::size_t i = cell.firstRing; i < cell.firstRing + cell.ringCount; ++i) {
      const Ring ring = {map.ringVertices.data() + map.ringOffsets[i],
                         map.ringOffsets[i + 1] - map.ringOffsets[i]};
      if (cutRing(ring, pieces)) continue;
      solidAngle += solidAngleOf(ring);
      if (isInFront(directionOf(ring.vertices[0]))) lines.push_back(wholeRing(ring));
    }
    if (!pieces.empty())
      close(pieces, lines);
    else if (std::lround((cell.solidAngle - solidAngle) / WholeSphere) == 1)
      lines.insert(lines.begin(), border());
    return lines;
  }

  std::vector<Places> arc(int from, int to) override {
    const Places& places = curve(from, to);
    if (places.empty()) return {};
    return {places};
  }

 private:
  struct Ring {
    const int* vertices;
    std::size_t count;

    int start(std::size_t edge) const { return vertices[edge]; }
    int end(std::size_t edge) const { return vertices[(edge + 1) % count]; }
  };

  Vec3 directionOf(int vertex) const { return directions[static_cast<std::size_t>(vertex)]; }
  Vec2 placeOf(int vertex) const { return placesOfVertices[static_cast<std::size_t>(vertex)]; }

  // What lies on the border of a cut picture is behind: the border itself is drawn in its place.
  bool isInFront(Vec3 d) const { return !isCut || d.z > 0.0; }

  // What is in front of the arc from the vertex of the lower number to the other.
  const Places& curve(int from, int to) {
    const std::pair<int, int> key = std::minmax(from, to);
    const auto [found, isNew] = curves.try_emplace(key);
    if (isNew) found->second = flattened(key.first, key.second);
    return found->second;
  }

  Places flattened(int from, int to) const {
    Vec3 a = directionOf(from);
    Vec3 b = directionOf(to);
    Vec2 start = placeOf(from);
    Vec2 end = placeOf(to);
    if (!isInFront(a) && !isInFront(b)) return {};
    if (isInFront(a) != isInFront(b)) {
      Vec3& behind = isInFront(a) ? b : a;
      Vec2& place = isInFront(a) ? end : start;
      behind = crossingOf(a, b);
      place = rule.place(behind);
    }
    Places places = {start};
    flattening.add(a, start, b, end, places);
    return places;
  }

  // Appends an edge of a ring in the ring's direction, without its first place if that is there.
  void append(Places& places, int from, int to) {
    const Places& edge = curve(from, to);
    const std::size_t skipped = places.empty() ? 0 : 1;
    if (from < to)
      places.insert(places.end(), edge.begin() + static_cast<std::ptrdiff_t>(skipped), edge.end());
    else
      places.insert(places.end(), edge.rbegin() + static_cast<std::ptrdiff_t>(skipped),
                    edge.rend());
  }

  Places wholeRing(const Ring& ring) {
    Places places;
    for (std::size_t i = 0; i < ring.count; ++i) append(places, ring.start(i), ring.end(i));
    places.pop_back();
    return places;
  }

  double solidAngleOf(const Ring& ring) const {
    const Vec3 apex = {0.0, 0.0, isInFront(directionOf(ring.vertices[0])) ? 1.0 : -1.0};
    double sum = 0.0;
    for (std::size_t i = 0; i < ring.count; ++i)
      sum += triangleSolidAngle(apex, directionOf(ring.start(i)), directionOf(ring.end(i)));
    return sum;
  }

  static double angleOf(Vec3 direction) { return std::atan2(direction.y, direction.x); }

  // The pieces of a ring that crosses the border; false if it does not.
  bool cutRing(const Ring& ring, std::vector<Piece>& pieces) {
    std::size_t entry = 0;
    const auto comesIn = [&](std::size_t i) {
      return !isInFront(directionOf(ring.start(i))) && isInFront(directionOf(ring.end(i)));
    };
    while (entry < ring.count && !comesIn(entry)) ++entry;
    if (entry == ring.count) return false;
    for (std::size_t n = 0; n < ring.count; ++n) {
      const std::size_t i = (entry + n) % ring.count;
      const Vec3 a = directionOf(ring.start(i));
      const Vec3 b = directionOf(ring.end(i));
      if (!isInFront(a) && !isInFront(b)) continue;
      if (comesIn(i)) pieces.push_back({{}, angleOf(crossingOf(a, b)), 0.0});
      append(pieces.back().places, ring.start(i), ring.end(i));
      if (!isInFront(b)) pieces.back().out = angleOf(crossingOf(a, b));
    }
    return true;
  }

  static double turnTo(double from, double to) {
    const double turn = std::fmod(to - from, 2.0 * Kernel::Pi);
    return turn < 0.0 ? turn + 2.0 * Kernel::Pi : turn;
  }

  // Joins the pieces along the border.
  void close(std::vector<Piece>& pieces, std::vector<Places>& lines) const {
    std::vector<bool> isUsed(pieces.size(), false);
    for (std::size_t first = 0; first < pieces.size(); ++first) {
      if (isUsed[first]) continue;
      Places line;
      for (std::size_t at = first; !isUsed[at];) {
        isUsed[at] = true;
        line.insert(line.end(), pieces[at].places.begin(), pieces[at].places.end());
        const std::size_t next = nextEntry(pieces, pieces[at].out, isUsed, first);
        addBorder(line, pieces[at].out, turnTo(pieces[at].out, pieces[next].in));
        at = next;
      }
      line.pop_back();
      lines.push_back(std::move(line));
    }
  }

  // The next one counterclockwise: of a piece that is not used, or of the line's own first.
  static std::size_t nextEntry(const std::vector<Piece>& pieces, double out,
                               const std::vector<bool>& isUsed, std::size_t first) {
    std::size_t best = first;
    double least = turnTo(out, pieces[first].in);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      const double turn = turnTo(out, pieces[i].in);
      if (isUsed[i] || !(turn < least)) continue;
      least = turn;
      best = i;
    }
    return best;
  }

  // Counterclockwise, the last place included.
  void addBorder(Places& line, double from, double turn) const {
    const auto steps = static_cast<int>(std::floor(turn)) + 1;  // each less than half a turn
    Vec3 a = {std::cos(from), std::sin(from), 0.0};
    for (int i = 1; i <= steps; ++i) {
      const double angle = from + turn * i / steps;
      const Vec3 b = {std::cos(angle), std::sin(angle), 0.0};
      flattening.add(a, rule.place(a), b, rule.place(b), line);
      a = b;
    }
  }

  Places border() const {
    Places line;
    addBorder(line, 0.0, 2.0 * Kernel::Pi);
    return line;
  }

  const VisibleMap& map;
  const Kernel::Projection& rule;
  bool isCut;  // whether there are directions behind the eye
  ArcFlattening<Vec2 (*)(Vec3)> flattening;
  std::vector<Vec3> directions;
  Places placesOfVertices;
  std::map<std::pair<int, int>, Places> curves;
};

}  // namespace

std::unique_ptr<MapPlane> makeDiscPlane(const VisibleMap& map, const Kernel::Projection& rule,
                                        double tolerance) {
  return std::make_unique<DiscPlane>(map, rule, tolerance);
}

}  // namespace Lumivane::Pictures
