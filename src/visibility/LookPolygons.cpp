#include "visibility/LookPolygons.h"

#include "kernel/Exact.h"
#include "visibility/EdgeOrder.h"
#include "visibility/EyePlane.h"
#include "visibility/WideEdge.h"

#include <algorithm>
#include <cmath>
#include <limits>

// What a look knows of the scene's polygons: their planes seen from the eye, and their edges as
// segments on the faces of the cube. Polygons are prepared when a look first meets them, since from
// most eyes most of a city is never met.
namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

constexpr double Half = static_cast<double>(CubeHalf);

double dotFrame(const FrameVector& a, const FrameVector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double determinant(const FrameVector& a, const FrameVector& b, const FrameVector& c) {
  return (a[1] * b[2] - a[2] * b[1]) * c[0] + (a[2] * b[0] - a[0] * b[2]) * c[1] +
         (a[0] * b[1] - a[1] * b[0]) * c[2];
}

size_t slotOf(std::int32_t number, size_t mask) {
  return (static_cast<std::uint64_t>(static_cast<std::uint32_t>(number)) * 0x9E3779B97F4A7C15ull >>
          20) &
         mask;
}

FrameVector directionOn(const CubeFace& f, double x, double y) {
  FrameVector d{};
  d.c[f.axis] = f.sign;
  d.c[f.u] = x / Half;
  d.c[f.v] = y / Half;
  return d;
}

// How far a point of a face is from a segment, roughly; in units.
double distanceTo(const Segment& s, double x, double y) {
  const double dx = static_cast<double>(s.x1 - s.x0);
  const double dy = static_cast<double>(s.y1 - s.y0);
  const double px = x - static_cast<double>(s.x0);
  const double py = y - static_cast<double>(s.y0);
  const double t = std::clamp((px * dx + py * dy) / (dx * dx + dy * dy), 0.0, 1.0);
  return Kernel::length2({px - t * dx, py - t * dy});
}

}  // namespace

int inFront(const LookPolygon& a, const LookPolygon& b, const CubeFace& f, double x, double y) {
  if (a.layer != b.layer) {
    const double difference = depthAt(a, f, x, y) - depthAt(b, f, x, y);
    if (std::fabs(difference) > depthError(a, b)) return difference > 0.0 ? 1 : -1;
    const double depth = f.sign * Half;
    const double planes[6] = {a.plane[f.u],  a.plane[f.v],  a.plane[f.axis],
                              -b.plane[f.u], -b.plane[f.v], -b.plane[f.axis]};
    const double point[6] = {x, y, depth, x, y, depth};
    if (const int sign = Kernel::signOfSumOfProducts(planes, point, 6)) return sign;
  }
  if (a.region == b.region) return a.number < b.number ? -1 : static_cast<int>(a.number > b.number);
  return paintedAfter(a, b) ? 1 : -1;
}

LookPolygons::LookPolygons(const LookSetup& setup) : theSetup(setup), slots(1024) { addBeyond(); }

std::int32_t LookPolygons::find(std::int32_t number) {
  const size_t mask = slots.size() - 1;
  size_t slot = slotOf(number, mask);
  for (; slots[slot].number >= 0; slot = (slot + 1) & mask)
    if (slots[slot].number == number) return slots[slot].position;
  const std::int32_t position = add(number);
  slots[slot] = {number, position};
  if (2 * ++known > slots.size()) growSlots();
  return position;
}

void LookPolygons::growSlots() {
  std::vector<Slot> larger(2 * slots.size());
  const size_t mask = larger.size() - 1;
  for (const Slot& old : slots) {
    if (old.number < 0) continue;
    size_t free = slotOf(old.number, mask);
    while (larger[free].number >= 0) free = (free + 1) & mask;
    larger[free] = old;
  }
  slots = std::move(larger);
}

void LookPolygons::forgetUnused() {
  std::vector<std::int32_t> needed = {Beyond};
  for (const PolygonUser* user : users) user->addPositions(needed);
  std::sort(needed.begin(), needed.end());
  needed.erase(std::unique(needed.begin(), needed.end()), needed.end());
  std::vector<std::uint32_t> moved;
  for (const std::int32_t position : needed) moved.push_back((*this)[position].firstSegment[0]);
  keepOnly(needed);
  for (size_t i = 0; i < moved.size(); ++i) moved[i] -= polygons[i].firstSegment[0];
  const MovedPolygons movedPolygons(needed, moved);
  for (PolygonUser* const user : users) user->follow(movedPolygons);
  // What is needed still may be most of them.
  mostPolygons = std::max(FewPolygons, 2 * polygons.size());
}

// Polygon `positions[i]` comes to position i, and its segments to those of the polygons before it.
void LookPolygons::keepOnly(const std::vector<std::int32_t>& positions) {
  std::uint32_t keptSegments = 0;
  for (size_t i = 0; i < positions.size(); ++i) {
    LookPolygon polygon = polygons[static_cast<size_t>(positions[i])];
    const std::uint32_t first = polygon.firstSegment[0];
    const std::uint32_t count = polygon.firstSegment[FaceCount] - first;
    std::copy_n(segments.begin() + first, count, segments.begin() + keptSegments);
    for (std::uint32_t& segment : polygon.firstSegment) segment = segment - first + keptSegments;
    keptSegments += count;
    polygons[i] = polygon;
  }
  polygons.resize(positions.size());
  segments.resize(keptSegments);
  std::fill(slots.begin(), slots.end(), Slot{});
  known = 0;
  for (size_t i = 1; i < polygons.size(); ++i) {
    const size_t mask = slots.size() - 1;
    size_t slot = slotOf(polygons[i].number, mask);
    while (slots[slot].number >= 0) slot = (slot + 1) & mask;
    slots[slot] = {polygons[i].number, static_cast<std::int32_t>(i)};
    ++known;
  }
}

// What lies beyond the field is a polygon in front of all others: its outline is the great circle
// at right angles to forward.
void LookPolygons::addBeyond() {
  LookPolygon beyond;
  beyond.region = std::numeric_limits<std::int32_t>::max();
  if (theSetup.hemisphere) {
    beyond.seen = true;
    const FrameVector& n = theSetup.forward;
    const auto first = static_cast<std::uint32_t>(segments.size());
    for (int face = 0; face < FaceCount; ++face) {
      const CubeFace& f = CubeFaces[static_cast<size_t>(face)];
      // In the order of the axes, so that all faces agree on a corner.
      const auto at = [&](int x, int y) {
        int c[3] = {};
        c[f.axis] = f.sign;
        c[f.u] = x;
        c[f.v] = y;
        return n[0] * c[0] + n[1] * c[1] + n[2] * c[2];
      };
      // Where the circle crosses the four sides; on a side shared by two faces in the same point.
      Coordinate ends[4][2];
      int count = 0;
      const auto side = [&](int x0, int y0, int x1, int y1) {
        const double a = at(x0, y0);
        const double b = at(x1, y1);
        if ((a < 0.0) == (b < 0.0)) return;
        const int along = x0 == x1 ? f.v : f.u;
        const double fixed = x0 == x1 ? n[f.u] * x0 : n[f.v] * y0;
        const double t = -(n[f.axis] * f.sign + fixed) / n[along];
        const Coordinate c = std::clamp(nearestWhole(t * Half), -CubeHalf, CubeHalf);
        ends[count][0] = x0 == x1 ? x0 * CubeHalf : c;
        ends[count][1] = x0 == x1 ? c : y0 * CubeHalf;
        ++count;
      };
      side(-1, -1, 1, -1);
      side(-1, -1, -1, 1);
      side(1, -1, 1, 1);
      side(-1, 1, 1, 1);
      for (int i = 0; i + 1 < count; i += 2)
        if (ends[i][0] != ends[i + 1][0] || ends[i][1] != ends[i + 1][1])
          segments.push_back(makeSegment(face, ends[i][0], ends[i][1], ends[i + 1][0],
                                         ends[i + 1][1], FieldEdge, false));
    }
    sortByFace(beyond, first);
    beyond.onlyFace = LookPolygon::NoFace;
    // Corners on the circle itself are on that side of its segments on which these leave them.
    findCornerParity(beyond, [&](const FrameVector& d) { return dotFrame(n, d) < 0.0; });
  }
  polygons.push_back(beyond);
}

std::int32_t LookPolygons::add(std::int32_t number) {
  LookPolygon polygon;
  polygon.number = number;
  placePlanes(polygon);
  if (!polygon.seen) return NotSeen;
  addSegments(polygon);
  polygons.push_back(polygon);
  return static_cast<std::int32_t>(polygons.size()) - 1;
}

void LookPolygons::placePlanes(LookPolygon& polygon) const {
  const IndexState& state = *theSetup.state;
  const auto i = static_cast<size_t>(polygon.number);
  polygon.layer = state.layers[i];
  polygon.region = state.regions[i];
  const EyePlane seen = theSetup.parallel == nullptr
                            ? eyePlane(state, i, theSetup.eye, theSetup.twoSided)
                            : eyePlane(state, i, *theSetup.parallel, theSetup.twoSided);
  if (!seen.isSeen) return;
  polygon.seen = true;
  polygon.behind = seen.behind;
  polygon.behindOffset = seen.behindOffset;
  polygon.besideItsLayer = seen.besideItsLayer;
  polygon.plane = toFrame(seen.nearness);
  polygon.ownPlane = toFrame(seen.ownNearness);
  polygon.weight =
      std::fabs(polygon.plane[0]) + std::fabs(polygon.plane[1]) + std::fabs(polygon.plane[2]);
}

void LookPolygons::addSegments(LookPolygon& polygon) {
  const IndexState& state = *theSetup.state;
  const auto first = static_cast<std::uint32_t>(segments.size());
  const auto i = static_cast<size_t>(polygon.number);
  const auto begin = static_cast<size_t>(state.cornerOffsets[i]);
  const size_t count = static_cast<size_t>(state.cornerOffsets[i + 1]) - begin;
  const auto vertexAt = [&](size_t k) {
    return state.vertices[static_cast<size_t>(state.cornerVertices[begin + k])];
  };
  cornerEnds.clear();
  for (size_t k = 0; k < count; ++k)
    cornerEnds.push_back(cornerAt(inRange(theSetup.directionTo(vertexAt(k)))));
  corners.clear();
  for (size_t k = 0; k < count; ++k) {
    const size_t next = k + 1 == count ? 0 : k + 1;
    corners.push_back(cornerEnds[k].direction);
    // Where an arc crosses borders of the cube depends, by rounding, on where it begins.
    const bool isOnFace = cornerEnds[k].end.face == cornerEnds[next].end.face;
    if (isOnFace || isBefore(vertexAt(k), vertexAt(next))) {
      addEdge(cornerEnds[k], cornerEnds[next], begin + k);
    } else {
      addEdge(cornerEnds[next], cornerEnds[k], begin + k);
    }
  }
  sortByFace(polygon, first);
  findCornerParity(polygon, [&](const FrameVector& d) { return coversDirection(polygon, d); });
}

LookPolygons::Corner LookPolygons::cornerAt(Vec3 fromEye) const {
  const FrameVector direction = toFrame(fromEye);
  return {fromEye, direction, arcEnd(direction)};
}

// A wide edge is two arcs, which meet where it is nearest to the eye.
void LookPolygons::addEdge(const Corner& from, const Corner& to, size_t corner) {
  const IndexState& state = *theSetup.state;
  const std::int32_t edge = state.cornerEdges[corner];
  const bool inner = state.cornerInner[corner] != 0;
  if (!isWide(from.fromEye, to.fromEye)) {
    appendArc(segments, from.direction, from.end, to.direction, to.end, edge, inner);
    return;
  }
  const Corner middle = cornerAt(nearestOfWide(from.fromEye, to.fromEye));
  appendArc(segments, from.direction, from.end, middle.direction, middle.end, edge, inner);
  appendArc(segments, middle.direction, middle.end, to.direction, to.end, edge, inner);
  corners.push_back(middle.direction);
}

void LookPolygons::sortByFace(LookPolygon& polygon, std::uint32_t first) {
  const auto begin = segments.begin() + first;
  const auto byFace = [](const Segment& a, const Segment& b) { return a.face < b.face; };
  if (!std::is_sorted(begin, segments.end(), byFace))
    std::stable_sort(begin, segments.end(), byFace);
  size_t at = first;
  int touched = 0;
  for (int face = 0; face < FaceCount; ++face) {
    polygon.firstSegment[face] = static_cast<std::uint32_t>(at);
    while (at < segments.size() && segments[at].face == face) ++at;
    if (at > polygon.firstSegment[face]) {
      ++touched;
      polygon.onlyFace = static_cast<std::int8_t>(face);
    }
  }
  polygon.firstSegment[FaceCount] = static_cast<std::uint32_t>(at);
  if (touched != 1) polygon.onlyFace = LookPolygon::NoFace;
  if (touched != 1) return;
  polygon.box[0] = polygon.box[1] = CubeHalf;
  polygon.box[2] = polygon.box[3] = -CubeHalf;
  for (size_t i = first; i < segments.size(); ++i) {
    const Segment& s = segments[i];
    polygon.box[0] = std::min(polygon.box[0], s.x0);
    polygon.box[1] = std::min({polygon.box[1], s.y0, s.y1});
    polygon.box[2] = std::max(polygon.box[2], s.x1);
    polygon.box[3] = std::max({polygon.box[3], s.y0, s.y1});
  }
}

// A polygon is seen within less than a hemisphere, so one that touches a single face covers none of
// its corners, unless its outline runs through the lower left one.
template <class Covers>
void LookPolygons::findCornerParity(LookPolygon& polygon, Covers covers) const {
  const bool hasCorner = polygon.box[0] <= -CubeHalf && polygon.box[1] <= -CubeHalf;
  if (polygon.onlyFace != LookPolygon::NoFace && !hasCorner) return;
  for (int face = 0; face < FaceCount; ++face)
    if (parityOfCorner(polygon, face, covers))
      polygon.cornerParity |= static_cast<std::uint8_t>(1 << face);
}

// From a point of the face that is far from all segments, where doubles decide inside and outside,
// the exact count of crossings leads to the corner.
template <class Covers>
bool LookPolygons::parityOfCorner(const LookPolygon& polygon, int face, Covers covers) const {
  const CubeFace& f = CubeFaces[static_cast<size_t>(face)];
  const std::uint32_t from = polygon.firstSegment[face];
  const std::uint32_t to = polygon.firstSegment[face + 1];
  double bestDistance = -1.0;
  Coordinate bestX = 0;
  Coordinate bestY = 0;
  for (int i = 0; i < 16 && bestDistance < 1e-3 * Half; ++i) {
    // Points spread over the face by multiples of irrational numbers.
    const auto spread = [&](double step) {
      const double t = 0.37 + step * i;
      return static_cast<Coordinate>((2.0 * (t - std::floor(t)) - 1.0) * 0.98 * Half);
    };
    const Coordinate x = spread(0.7548776662466927);
    const Coordinate y = spread(0.5698402909980532);
    double nearest = Half;
    for (std::uint32_t s = from; s < to; ++s)
      nearest = std::min(nearest,
                         distanceTo(segments[s], static_cast<double>(x), static_cast<double>(y)));
    if (nearest > bestDistance) {
      bestDistance = nearest;
      bestX = x;
      bestY = y;
    }
  }
  const bool inside =
      covers(directionOn(f, static_cast<double>(bestX), static_cast<double>(bestY)));
  std::vector<std::uint32_t> all;
  for (std::uint32_t s = from; s < to; ++s) all.push_back(s);
  return inside != crossingParity(
                       all, [this](std::uint32_t s) -> const Segment& { return segments[s]; },
                       -CubeHalf, -CubeHalf, bestX, bestY);
}

// Counts the edges that cross the half circle from the direction d by a helping axis u to -d, which
// no polygon before the eye covers. With m = d x u an edge from a to b crosses the circle if m.a
// and m.b differ in sign, and does so on this half if det(a, b, d) < 0 where m.a >= 0.
bool LookPolygons::coversDirection(const LookPolygon& polygon, const FrameVector& d) const {
  if (!(dotFrame(polygon.ownPlane, d) > 0.0)) return false;
  int axis = 0;
  for (int i = 1; i < 3; ++i)
    if (std::fabs(d[i]) < std::fabs(d[axis])) axis = i;
  FrameVector m{};
  m.c[(axis + 1) % 3] = d[(axis + 2) % 3];
  m.c[(axis + 2) % 3] = -d[(axis + 1) % 3];
  bool inside = false;
  for (size_t k = 0; k < corners.size(); ++k) {
    const FrameVector& a = corners[k];
    const FrameVector& b = corners[k + 1 == corners.size() ? 0 : k + 1];
    const bool above = dotFrame(m, a) >= 0.0;
    if (above == (dotFrame(m, b) >= 0.0)) continue;
    if ((determinant(a, b, d) < 0.0) == above) inside = !inside;
  }
  return inside;
}

}  // namespace Lumivane::Visibility
