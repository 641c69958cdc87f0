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
  std::size_t words() const { return cornerMask.size(); }
  /// What covers the lower left corner.
  const std::vector<MaskWord>& atCorner() const { return cornerMask; }

  /// The slot of a mask that is seen at a point; -1 for none.
  std::int32_t seenAt(const MaskWord* mask, double x, double y) const;
  /// The slot of a mask that is seen wherever in the tile the mask covers; -1 for none. `Unclear`
  /// if that is not known at once: ask at a point.
  static constexpr std::int32_t Unclear = -2;
  std::int32_t seenEverywhere(const MaskWord* mask) const {
    if (words() == 1 && mask[0] != 0) {
      // As a rule what comes nearest in the tile, and has been compared with the others before.
      const std::int32_t nearest = bitAt(0, mask[0]);
      if (knownBehind(nearest, 0, mask[0])) return nearest;
    }
    return compareEverywhere(mask);
  }

  /// Whether all others of a mask are known to lie behind a slot of it in the whole tile.
  bool isClear(const MaskWord* mask, std::int32_t seen) const {
    for (std::size_t w = 0; w < words(); ++w)
      if (!knownBehind(seen, w, mask[w]) && notBehind(seen, w, mask[w]) != 0) return false;
    return true;
  }
  /// How near to the line in which two planes meet either may be found in front; in units, and
  /// infinite for planes that do not meet.
  double doubtAround(std::int32_t slotA, std::int32_t slotB) const {
    const Slot& s = (*this)[slotA];
    const Slot& t = (*this)[slotB];
    return Doubt + (s.error + t.error) / (std::fabs(s.a - t.a) + std::fabs(s.b - t.b));
  }

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
  // Points are known to within this many units.
  static constexpr double Doubt = 4.0 * static_cast<double>(Snap);
  struct Box {
    double x0, y0, x1, y1;
  };

  Box boxOf(const Tile& tile, const LookPolygon& polygon) const;
  bool isInFront(const Slot& s, const Slot& t, double x, double y) const;
  bool knownBehind(std::int32_t slot, std::size_t word, MaskWord others) const {
    return (others & ~compared[static_cast<std::size_t>(slot) * words() + word].behind) == 0;
  }
  // Those of a word of a mask that are not known to lie behind a slot in the whole tile.
  MaskWord notBehind(std::int32_t slot, std::size_t word, MaskWord others) const {
    const Compared& c = compared[static_cast<std::size_t>(slot) * words() + word];
    if ((others & ~c.known) != 0) compare(slot, word, others & ~c.known);
    return others & ~c.behind;
  }
  std::int32_t compareEverywhere(const MaskWord* mask) const;
  void compare(std::int32_t slot, std::size_t word, MaskWord others) const;
  bool isBehind(std::int32_t slot, std::int32_t other) const;
  bool isBelow(const Slot& slot, double a, double b, double c, double most) const;
  bool isBehindInTile(std::int32_t slot, std::int32_t other) const;
  static double valueAt(const Slot& s, double x, double y) { return s.a * x + s.b * y + s.c; }

  const LookPolygons& polygons;
  int faceNumber = 0;
  CubeFace face{};
  std::vector<Slot> slots;
  std::vector<Box> boxes;           // in which each lies
  std::vector<std::int32_t> order;  // of what is gathered
  std::vector<double> bounds;
  std::vector<std::int32_t> entrySlots;
  std::vector<MaskWord> cornerMask;
  // Pairs of words, as many as masks have, for each slot: with what it has been compared, itself
  // included, and what of that lies behind it in the whole tile. Filled as slots are asked for.
  struct Compared {
    MaskWord known;
    MaskWord behind;
  };
  mutable std::vector<Compared> compared;
};

template <class Visit>
void TilePlanes::forCrossing(const MaskWord* mask, std::int32_t seen, const double (*points)[2],
                             int count, Visit visit) const {
  const Slot& s = (*this)[seen];
  double least = valueAt(s, points[0][0], points[0][1]);
  for (int k = 1; k < count; ++k) {
    const double value = valueAt(s, points[k][0], points[k][1]);
    least = value < least ? value : least;
  }
  const double behind = least - 4.0 * s.error;
  for (std::size_t w = 0; w < words(); ++w)
    for (MaskWord rest = notBehind(seen, w, mask[w]); rest != 0; rest &= rest - 1) {
      const std::int32_t i = bitAt(w, rest);
      const Slot& other = (*this)[i];
      if (other.bound < behind) return;
      if (other.layer == s.layer) continue;
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
