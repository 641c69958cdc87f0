#include "visibility/TilePlanes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace Lumivane::Visibility {
namespace {

constexpr double Half = static_cast<double>(CubeHalf);
constexpr double Infinity = std::numeric_limits<double>::infinity();

}  // namespace

void TilePlanes::gather(const Tile& tile, const TileContent& content) {
  face = CubeFaces[static_cast<size_t>(tile.face)];
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
    const bool isEntry = i < content.entryCount;
    if (isEntry) entrySlots[i] = static_cast<std::int32_t>(slot);
    if (!isEntry || content.entries[i].coversCorner)
      cornerMask[slot / 64] |= MaskWord{1} << (slot % 64);
  }
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

std::int32_t TilePlanes::seenAt(const MaskWord* mask, double x, double y) const {
  std::int32_t best = -1;
  double behind = -Infinity;
  for (size_t w = 0; w < words(); ++w)
    for (MaskWord rest = mask[w]; rest != 0; rest &= rest - 1) {
      const std::int32_t slot = bitAt(w, rest);
      const Slot& s = (*this)[slot];
      if (s.bound < behind) return best;
      if (best >= 0 && !isInFront(s, (*this)[best], x, y)) continue;
      best = slot;
      behind = valueAt(s, x, y) - 4.0 * s.error;
    }
  return best;
}

}  // namespace Lumivane::Visibility
