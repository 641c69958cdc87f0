#include "visibility/TilePlanes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

// What covers a point is sorted by how near it comes in the tile. Of two polygons it is found out
// once whether one lies behind the other wherever both are: at the corners of the box that they
// share, or at the corners of one of them. Where that is known of all that covers a gap, no point
// of it need be asked; elsewhere planes are compared at a point, in doubles and then exactly.
namespace Lumivane::Visibility {
namespace {

constexpr double Half = static_cast<double>(CubeHalf);
// How far beyond a polygon's edges the gaps may reach that it covers; units of the cube.
constexpr Coordinate Around = 16 * Snap;
constexpr double Infinity = std::numeric_limits<double>::infinity();

}  // namespace

void TilePlanes::gather(const Tile& tile, const TileContent& content) {
  faceNumber = tile.face;
  face = CubeFaces[static_cast<size_t>(faceNumber)];
  const size_t count = content.entryCount + content.coverCount;
  const auto positionOf = [&](size_t i) {
    return i < content.entryCount ? content.entries[i].polygon
                                  : content.covers[i - content.entryCount];
  };
  const auto x0 = static_cast<double>(tile.x0);
  const auto x1 = static_cast<double>(tile.x1);
  const auto y0 = static_cast<double>(tile.y0);
  const auto y1 = static_cast<double>(tile.y1);
  bounds.resize(count);
  order.resize(count);
  for (size_t i = 0; i < count; ++i) {
    const std::int32_t position = positionOf(i);
    const LookPolygon& p = polygons[position];
    const double a = p.plane[face.u];
    const double b = p.plane[face.v];
    // Where two polygons of a layer do not have one plane, the farther may be seen.
    const bool anyDepth = position == LookPolygons::Beyond || p.besideItsLayer;
    bounds[i] = anyDepth ? Infinity
                         : std::max(a * x0, a * x1) + std::max(b * y0, b * y1) +
                               p.plane[face.axis] * (face.sign * Half) + 4e-15 * Half * p.weight;
    size_t at = i;
    for (; at > 0 && bounds[i] > bounds[static_cast<size_t>(order[at - 1])]; --at)
      order[at] = order[at - 1];
    order[at] = static_cast<std::int32_t>(i);
  }
  slots.clear();
  boxes.clear();
  entrySlots.resize(content.entryCount);
  cornerMask.assign(std::max<size_t>(1, (count + 63) / 64), 0);
  for (size_t slot = 0; slot < count; ++slot) {
    const auto i = static_cast<size_t>(order[slot]);
    const std::int32_t position = positionOf(i);
    const LookPolygon& p = polygons[position];
    // What lies beyond the field is in front of everything.
    const double c =
        position == LookPolygons::Beyond ? 1e300 : p.plane[face.axis] * (face.sign * Half);
    slots.push_back({p.plane[face.u], p.plane[face.v], c, 1e-15 * Half * p.weight, bounds[i],
                     position, p.layer, p.region, p.number});
    boxes.push_back(boxOf(tile, p));
    const bool isEntry = i < content.entryCount;
    if (isEntry) entrySlots[i] = static_cast<std::int32_t>(slot);
    if (!isEntry || content.entries[i].coversCorner)
      cornerMask[slot / 64] |= MaskWord{1} << (slot % 64);
  }
  compared.assign(count * words(), {0, 0});
  for (size_t slot = 0; slot < count; ++slot) {
    const MaskWord own = MaskWord{1} << (slot % 64);
    compared[slot * words() + slot / 64] = {own, own};
  }
}

// A little more than where a polygon is in a tile.
TilePlanes::Box TilePlanes::boxOf(const Tile& tile, const LookPolygon& polygon) const {
  Coordinate box[4] = {tile.x0, tile.y0, tile.x1, tile.y1};
  if (polygon.onlyFace == tile.face) {
    for (const size_t i : {0U, 1U}) box[i] = std::max(box[i], polygon.box[i] - Around);
    for (const size_t i : {2U, 3U}) box[i] = std::min(box[i], polygon.box[i] + Around);
  }
  return {static_cast<double>(box[0]), static_cast<double>(box[1]), static_cast<double>(box[2]),
          static_cast<double>(box[3])};
}

// Whether another slot lies behind one wherever in the tile both are, but for places so near to
// their edges that they are none.
bool TilePlanes::isBehindInTile(std::int32_t slot, std::int32_t other) const {
  const Slot& s = (*this)[slot];
  const Slot& t = (*this)[other];
  if (s.layer == t.layer) {
    const bool onePlane = s.bound < Infinity && t.bound < Infinity;
    return onePlane && (s.region != t.region ? s.region > t.region : s.number > t.number);
  }
  const Box& p = boxes[static_cast<size_t>(slot)];
  const Box& q = boxes[static_cast<size_t>(other)];
  const double a = t.a - s.a;
  const double b = t.b - s.b;
  const double c = t.c - s.c;
  const double error = s.error + t.error;
  const double x = a > 0.0 ? std::min(p.x1, q.x1) : std::max(p.x0, q.x0);
  const double y = b > 0.0 ? std::min(p.y1, q.y1) : std::max(p.y0, q.y0);
  if (a * x + b * y + c < -error) return true;
  // The planes may meet in an edge or a corner of either if they part within a few units of it.
  const double slope = std::fabs(a) + std::fabs(b);
  const double most = error <= slope ? 2.0 * slope : -error;
  return isBelow(t, a, b, c, most) || isBelow(s, a, b, c, most);
}

// Whether a x + b y + c is no more than a limit at all corners of a polygon. That is not known of
// one that goes beyond the face.
bool TilePlanes::isBelow(const Slot& slot, double a, double b, double c, double most) const {
  const LookPolygon& polygon = polygons[slot.position];
  if (polygon.onlyFace != faceNumber) return false;
  const std::uint32_t end = polygon.firstSegment[faceNumber + 1];
  for (std::uint32_t i = polygon.firstSegment[faceNumber]; i < end; ++i) {
    const Segment& e = polygons.segment(i);
    if (a * static_cast<double>(e.x0) + b * static_cast<double>(e.y0) + c > most) return false;
    if (a * static_cast<double>(e.x1) + b * static_cast<double>(e.y1) + c > most) return false;
  }
  return true;
}

void TilePlanes::compare(std::int32_t slot, size_t word, MaskWord others) const {
  Compared& c = compared[static_cast<size_t>(slot) * words() + word];
  c.known |= others;
  for (; others != 0; others &= others - 1)
    if (isBehindInTile(slot, bitAt(word, others))) c.behind |= others & -others;
}

bool TilePlanes::isInFront(const Slot& s, const Slot& t, double x, double y) const {
  if (s.layer != t.layer) {
    const double difference = (s.a - t.a) * x + (s.b - t.b) * y + (s.c - t.c);
    if (std::fabs(difference) > s.error + t.error) return difference > 0.0;
    return inFront(polygons[s.position], polygons[t.position], face, x, y) > 0;
  }
  if (s.region != t.region) return s.region > t.region;
  return s.number > t.number;
}

bool TilePlanes::isBehind(std::int32_t slot, std::int32_t other) const {
  const auto bit = MaskWord{1} << (slot % 64);
  return notBehind(other, static_cast<size_t>(slot) / 64, bit) == 0;
}

std::int32_t TilePlanes::compareEverywhere(const MaskWord* mask) const {
  std::int32_t best = -1;
  for (size_t w = 0; w < words(); ++w)
    for (MaskWord rest = best < 0 ? mask[w] : notBehind(best, w, mask[w]); rest != 0;) {
      const std::int32_t slot = bitAt(w, rest);
      if (best >= 0 && !isBehind(best, slot)) return Unclear;
      best = slot;
      rest = notBehind(best, w, rest);
    }
  return best;
}

std::int32_t TilePlanes::seenAt(const MaskWord* mask, double x, double y) const {
  std::int32_t best = -1;
  double behind = -Infinity;
  for (size_t w = 0; w < words(); ++w)
    for (MaskWord rest = best < 0 ? mask[w] : notBehind(best, w, mask[w]); rest != 0;) {
      const std::int32_t slot = bitAt(w, rest);
      rest &= rest - 1;
      const Slot& s = (*this)[slot];
      if (s.bound < behind) return best;
      if (best >= 0 && !isInFront(s, (*this)[best], x, y)) continue;
      best = slot;
      behind = valueAt(s, x, y) - 4.0 * s.error;
      rest = notBehind(best, w, rest);
    }
  return best;
}

}  // namespace Lumivane::Visibility
