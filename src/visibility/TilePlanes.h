#pragma once

#include "visibility/LookPolygons.h"
#include "visibility/MapParts.h"
#include "visibility/TileContent.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Lumivane::Visibility {

/// A set of the polygons of a tile: bit i of the words stands for slot i.
using MaskWord = std::uint64_t;

/// The polygons of a tile, from near to far as far as that can be said: what covers a point is
/// asked in this order, and the rest need not be asked once it lies behind everywhere.
class TilePlanes {
 public:
  /// A polygon, with 1 / distance as a x + b y + c.
  struct Slot {
    double a, b, c;
    double error;
    double bound;  // more than its 1 / distance anywhere in the tile
    std::int32_t position;
    std::int32_t layer;
    std::int32_t region;
    std::int32_t number;
  };

  explicit TilePlanes(const LookPolygons& lookPolygons) : polygons(lookPolygons) {}

  void gather(const Tile& tile, const TileContent& content);

  const Slot& operator[](std::int32_t slot) const { return slots[static_cast<size_t>(slot)]; }
  std::size_t count() const { return slots.size(); }
  std::int32_t slotOfEntry(std::size_t entry) const { return entrySlots[entry]; }
  /// Words of a mask.
  std::size_t words() const { return (slots.size() + 63) / 64 + (slots.empty() ? 1 : 0); }
  /// What covers the lower left corner.
  const std::vector<MaskWord>& atCorner() const { return cornerMask; }

  /// The slot of a mask that is seen at a point; -1 for none.
  std::int32_t seenAt(const MaskWord* mask, double x, double y) const;

  /// Calls `visit(slot)` for all of a mask that may be in front of the slot `seen` in one of some
  /// points, which are known to within a few units.
  template <class Visit>
  void forCrossing(const MaskWord* mask, std::int32_t seen, const double (*points)[2], int count,
                   Visit visit) const;

  /// The number of the lowest bit that is set in a word of a mask.
  static std::int32_t bitAt(std::size_t word, MaskWord bits) {
    return static_cast<std::int32_t>(64 * word) + __builtin_ctzll(bits);
  }

 private:
  bool isInFront(const Slot& s, const Slot& t, double x, double y) const;
  static double valueAt(const Slot& s, double x, double y) { return s.a * x + s.b * y + s.c; }

  const LookPolygons& polygons;
  CubeFace face{};
  std::vector<Slot> slots;
  std::vector<std::int32_t> order;  // of what is gathered
  std::vector<double> bounds;
  std::vector<std::int32_t> entrySlots;
  std::vector<MaskWord> cornerMask;
};

template <class Visit>
void TilePlanes::forCrossing(const MaskWord* mask, std::int32_t seen, const double (*points)[2],
                             int count, Visit visit) const {
  // Points are known to within this many units.
  constexpr double Doubt = 4.0 * static_cast<double>(Snap);
  const Slot& s = (*this)[seen];
  double least = valueAt(s, points[0][0], points[0][1]);
  for (int k = 1; k < count; ++k) {
    const double value = valueAt(s, points[k][0], points[k][1]);
    least = value < least ? value : least;
  }
  const double behind = least - 4.0 * s.error;
  for (std::size_t w = 0; w < words(); ++w)
    for (MaskWord rest = mask[w]; rest != 0; rest &= rest - 1) {
      const std::int32_t i = bitAt(w, rest);
      const Slot& other = (*this)[i];
      if (other.bound < behind) return;
      if (i == seen || other.layer == s.layer) continue;
      const double a = other.a - s.a;
      const double b = other.b - s.b;
      const double c = other.c - s.c;
      const double margin = s.error + other.error + Doubt * (std::fabs(a) + std::fabs(b));
      bool crosses = false;
      for (int k = 0; k < count; ++k)
        crosses = crosses || a * points[k][0] + b * points[k][1] + c > margin;
      if (crosses) visit(i);
    }
}

}  // namespace Lumivane::Visibility
