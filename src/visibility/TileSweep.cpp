#include "visibility/TileSweep.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Lumivane::Visibility {
namespace {

constexpr double Half = static_cast<double>(CubeHalf);
constexpr double SteepestTolerance = 65536.0;

enum class Place { Below, Within, Above };

Place placeOf(Coordinate y, const Tile& tile) {
  if (y <= tile.y0) return Place::Below;
  return y <= tile.y1 ? Place::Within : Place::Above;
}

// Where a segment crosses the upright line at x, seen from the tile.
Place placeAt(const Segment& s, const Tile& tile, Coordinate x) {
  if (sideOf(s, x, tile.y0) > 0) return Place::Below;
  return sideOf(s, x, tile.y1) > 0 ? Place::Within : Place::Above;
}

Place startOf(const Segment& s, const Tile& tile) {
  return s.x0 <= tile.x0 ? placeAt(s, tile, tile.x0) : placeOf(s.y0, tile);
}

Place endOf(const Segment& s, const Tile& tile) {
  return s.x1 > tile.x1 ? placeAt(s, tile, tile.x1) : placeOf(s.y1, tile);
}

bool missesBox(const Segment& s, const Tile& tile) {
  return s.x1 <= tile.x0 || s.x0 > tile.x1 || std::max(s.y0, s.y1) <= tile.y0 ||
         std::min(s.y0, s.y1) > tile.y1;
}

Coordinate rounded(double value) { return static_cast<Coordinate>(std::llrint(value)); }

Coordinate heightOf(const Segment& s, Coordinate x) {
  return s.y0 + rounded(s.slope * static_cast<double>(x - s.x0));
}

Coordinate crossingOf(const Segment& s, Coordinate y) {
  const double run = static_cast<double>(s.x1 - s.x0) / static_cast<double>(s.y1 - s.y0);
  return s.x0 + rounded(run * static_cast<double>(y - s.y0));
}

// The number of the lowest bit that is set in a word of a mask.
std::int32_t bitAt(size_t word, std::uint64_t bits) {
  return static_cast<std::int32_t>(64 * word) + __builtin_ctzll(bits);
}

Coordinate toleranceOf(double slope) {
  return rounded(static_cast<double>(Snap) *
                 std::min(std::sqrt(1.0 + slope * slope), SteepestTolerance));
}

}  // namespace

bool touchesTile(const Segment& s, const Tile& tile) {
  if (missesBox(s, tile)) return false;
  const Place start = startOf(s, tile);
  if (start == Place::Within) return true;
  return endOf(s, tile) != start;
}

Sides TileSweep::run(const Tile& sweptTile, const TileContent& content) {
  tile = sweptTile;
  face = CubeFaces[static_cast<size_t>(tile.face)];
  gatherSlots(content);
  cuts.clear();
  const size_t areas = parts.areas.size();
  const size_t vertices = parts.vertices.size();
  const size_t pieces = parts.pieces.size();
  const size_t stretches = parts.stretches.size();
  gatherLines(content);
  const size_t edgeLines = lines.size();
  size_t knownCuts = 0;
  for (;;) {
    sweep();
    std::sort(
        cuts.begin() + static_cast<std::ptrdiff_t>(knownCuts), cuts.end(),
        [](const PlanePair& a, const PlanePair& b) { return a.a != b.a ? a.a < b.a : a.b < b.b; });
    if (!planesCross) return sides;
    parts.areas.resize(areas);
    parts.areaSets.truncate(areas);
    parts.vertices.resize(vertices);
    parts.vertexSets.truncate(vertices);
    parts.pieces.resize(pieces);
    parts.stretches.resize(stretches);
    lines.resize(edgeLines);
    toggles.resize(edgeLines * words);
    breaks.clear();
    for (const PlanePair& pair : cuts) addCrossingLine(pair);
    knownCuts = cuts.size();
  }
}

void TileSweep::gatherSlots(const TileContent& content) {
  const size_t count = content.entryCount + content.coverCount;
  words = std::max<size_t>(1, (count + 63) / 64);
  slots.clear();
  cornerMask.assign(words, 0);
  const auto add = [&](std::int32_t position, bool covers) {
    const LookPolygon& p = polygons[position];
    const size_t i = slots.size();
    // What lies beyond the field is in front of everything.
    const double c =
        position == LookPolygons::Beyond ? 1e300 : p.plane[face.axis] * (face.sign * Half);
    slots.push_back({p.plane[face.u], p.plane[face.v], c, 1e-15 * Half * p.weight, position,
                     p.layer, p.region, p.number});
    if (covers) cornerMask[i / 64] |= Word{1} << (i % 64);
  };
  for (size_t i = 0; i < content.entryCount; ++i)
    add(content.entries[i].polygon, content.entries[i].coversCorner);
  for (size_t i = 0; i < content.coverCount; ++i) add(content.covers[i], true);
}

void TileSweep::gatherLines(const TileContent& content) {
  raws.clear();
  for (size_t i = 0; i < content.entryCount; ++i) {
    const TileEntry& entry = content.entries[i];
    for (std::uint32_t k = 0; k < entry.segmentCount; ++k)
      raws.push_back({&polygons.segment(content.segments[entry.firstSegment + k]),
                      static_cast<std::int32_t>(i)});
  }
  std::sort(raws.begin(), raws.end(), [](const Raw& a, const Raw& b) {
    const Segment& s = *a.segment;
    const Segment& t = *b.segment;
    if (s.x0 != t.x0) return s.x0 < t.x0;
    if (s.y0 != t.y0) return s.y0 < t.y0;
    if (s.x1 != t.x1) return s.x1 < t.x1;
    if (s.y1 != t.y1) return s.y1 < t.y1;
    if (a.slot != b.slot) return a.slot < b.slot;
    return s.edge < t.edge;
  });
  lines.clear();
  owners.clear();
  toggles.clear();
  breaks.clear();
  for (size_t i = 0; i < raws.size();) {
    const Segment& s = *raws[i].segment;
    size_t end = i + 1;
    while (end < raws.size() && raws[end].segment->x0 == s.x0 && raws[end].segment->y0 == s.y0 &&
           raws[end].segment->x1 == s.x1 && raws[end].segment->y1 == s.y1)
      ++end;
    addLine(i, end);
    i = end;
  }
}

void TileSweep::addLine(size_t firstRaw, size_t lastRaw) {
  const Segment& s = *raws[firstRaw].segment;
  Line line{};
  bool alive = true;
  clipLine(s, line, alive);
  if (!alive) return;
  const size_t mask = toggles.size();
  toggles.resize(mask + words, 0);
  line.firstOwner = static_cast<std::int32_t>(owners.size());
  for (size_t i = firstRaw; i < lastRaw; ++i) {
    const std::int32_t slot = raws[i].slot;
    toggles[mask + static_cast<size_t>(slot) / 64] ^= Word{1} << (slot % 64);
    owners.push_back({raws[i].segment->edge, slot, raws[i].segment->inner != 0});
  }
  line.ownerCount = static_cast<std::int32_t>(owners.size()) - line.firstOwner;
  line.crossed[0] = line.crossed[1] = -1;
  bool idle = true;
  for (size_t w = 0; w < words; ++w) idle = idle && toggles[mask + w] == 0;
  if (idle) {
    toggles.resize(mask);
    owners.resize(static_cast<size_t>(line.firstOwner));
    return;
  }
  lines.push_back(line);
}

void TileSweep::clipLine(const Segment& s, Line& line, bool& alive) const {
  alive = false;
  if (missesBox(s, tile)) return;
  const Place start = startOf(s, tile);
  const Place end = endOf(s, tile);
  if (start == end && start != Place::Within) return;
  alive = true;
  line.x0 = s.x0;
  line.y0 = s.y0;
  line.slope = s.slope;
  line.tolerance = toleranceOf(s.slope);
  line.fixedA = s.x0 > tile.x0;
  line.fixedB = s.x1 <= tile.x1;
  line.xa = std::max(s.x0, tile.x0);
  line.xb = std::min(s.x1, tile.x1);
  line.ya = line.fixedA ? s.y0 : heightOf(s, tile.x0);
  line.yb = line.fixedB ? s.y1 : heightOf(s, tile.x1);
  const Coordinate low = line.xa;
  const Coordinate high = line.xb;
  const auto cross = [&](Coordinate y) { return std::clamp(crossingOf(s, y), low, high); };
  if (start != Place::Within) {
    line.ya = start == Place::Below ? tile.y0 : tile.y1;
    line.xa = cross(line.ya);
    line.fixedA = false;
  }
  if (end != Place::Within) {
    line.yb = end == Place::Below ? tile.y0 : tile.y1;
    line.xb = cross(line.yb);
    line.fixedB = false;
  }
  line.togglesAtA = start == Place::Below;
  line.togglesAtB = end == Place::Below;
  line.ya = std::clamp(line.ya, tile.y0, tile.y1);
  line.yb = std::clamp(line.yb, tile.y0, tile.y1);
  if (line.xb < line.xa) line.xa = line.xb;
}

// The line on which two planes are at one distance: a x + b y + c = 0.
void TileSweep::addCrossingLine(const PlanePair& pair) {
  const Slot& s = slots[static_cast<size_t>(pair.a)];
  const Slot& t = slots[static_cast<size_t>(pair.b)];
  const Slot& nearer = s.number < t.number ? s : t;
  const Slot& higher = s.number < t.number ? t : s;
  const double a = nearer.a - higher.a;
  const double b = nearer.b - higher.b;
  const double c = nearer.c - higher.c;
  const auto x0 = static_cast<double>(tile.x0);
  const auto x1 = static_cast<double>(tile.x1);
  const auto y0 = static_cast<double>(tile.y0);
  const auto y1 = static_cast<double>(tile.y1);
  const bool steep = std::fabs(a) > std::fabs(b) * SteepestTolerance;
  if (steep) {
    const double x = -(b * 0.5 * (y0 + y1) + c) / a;
    if (x > x0 && x < x1) breaks.push_back(rounded(x));
    return;
  }
  const double slope = -a / b;
  const auto at = [&](double x) { return -(a * x + c) / b; };
  double from = x0;
  double to = x1;
  if (slope != 0.0) {
    const double atLow = -(b * y0 + c) / a;
    const double atHigh = -(b * y1 + c) / a;
    from = std::max(from, std::min(atLow, atHigh));
    to = std::min(to, std::max(atLow, atHigh));
  }
  if (!(from < to)) return;
  if (slope == 0.0 && (at(x0) < y0 || at(x0) > y1)) return;
  Line line{};
  line.xa = std::clamp(rounded(from), tile.x0, tile.x1);
  line.xb = std::clamp(rounded(to), tile.x0, tile.x1);
  if (line.xa >= line.xb) return;
  line.ya = rounded(std::clamp(at(from), y0, y1));
  line.yb = rounded(std::clamp(at(to), y0, y1));
  line.x0 = line.xa;
  line.y0 = line.ya;
  line.slope = slope;
  line.tolerance = toleranceOf(slope);
  line.crossed[0] = pair.a;
  line.crossed[1] = pair.b;
  lines.push_back(line);
  toggles.resize(toggles.size() + words, 0);
}

void TileSweep::gatherStops() {
  stops.assign({tile.x0, tile.x1});
  lowerToggles.clear();
  starts.clear();
  for (size_t i = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    stops.push_back(line.xa);
    stops.push_back(line.xb);
    if (line.togglesAtA) lowerToggles.emplace_back(line.xa, static_cast<int>(i));
    if (line.togglesAtB) lowerToggles.emplace_back(line.xb, static_cast<int>(i));
    if (line.xa < line.xb) starts.push_back(static_cast<int>(i));
  }
  stops.insert(stops.end(), breaks.begin(), breaks.end());
  std::sort(lowerToggles.begin(), lowerToggles.end());
  std::sort(starts.begin(), starts.end(), [this](int a, int b) {
    const Coordinate xa = lines[static_cast<size_t>(a)].xa;
    const Coordinate xb = lines[static_cast<size_t>(b)].xa;
    return xa != xb ? xa < xb : a < b;
  });
  addMeetings();
  std::sort(stops.begin(), stops.end());
  stops.erase(std::unique(stops.begin(), stops.end()), stops.end());
}

void TileSweep::addMeetings() {
  for (size_t k = 0; k < starts.size(); ++k) {
    const Line& s = lines[static_cast<size_t>(starts[k])];
    const Coordinate low = std::min(s.ya, s.yb);
    const Coordinate high = std::max(s.ya, s.yb);
    for (size_t m = k + 1; m < starts.size(); ++m) {
      const Line& t = lines[static_cast<size_t>(starts[m])];
      if (t.xa >= s.xb) break;
      if (std::max(t.ya, t.yb) < low || std::min(t.ya, t.yb) > high) continue;
      const Coordinate from = t.xa;
      const Coordinate to = std::min(s.xb, t.xb);
      const Coordinate tolerance = std::max(s.tolerance, t.tolerance);
      const Coordinate before = heightAt(starts[k], from) - heightAt(starts[m], from);
      const Coordinate after = heightAt(starts[k], to) - heightAt(starts[m], to);
      if ((before > 0) == (after > 0) || std::abs(before) <= tolerance ||
          std::abs(after) <= tolerance)
        continue;
      const double part = static_cast<double>(before) / static_cast<double>(before - after);
      stops.push_back(std::clamp(from + rounded(part * static_cast<double>(to - from)), from, to));
    }
  }
}

void TileSweep::sweep() {
  gatherStops();
  planesCross = false;
  nextStart = 0;
  nextToggle = 0;
  lowerMask = cornerMask;
  active.clear();
  old.order.clear();
  old.gaps.clear();
  sides = Sides{};
  lower = upper = OpenStretch{};
  for (size_t k = 0; k + 1 < stops.size(); ++k) {
    prepareSlab(stops[k], stops[k + 1]);
    stopAt(stops[k], k == 0, false);
    std::swap(old, now);
  }
  now.order.clear();
  now.gaps.clear();
  stopAt(tile.x1, false, true);
}

Coordinate TileSweep::heightAt(int number, Coordinate x) const {
  const Line& line = lines[static_cast<size_t>(number)];
  if (x == line.xa) return line.ya;
  if (x == line.xb) return line.yb;
  const Coordinate y = line.y0 + rounded(line.slope * static_cast<double>(x - line.x0));
  return std::clamp(y, std::min(line.ya, line.yb), std::max(line.ya, line.yb));
}

double TileSweep::heightAt(const Line& line, double x) const {
  const double y = static_cast<double>(line.y0) + line.slope * (x - static_cast<double>(line.x0));
  return std::clamp(y, static_cast<double>(std::min(line.ya, line.yb)),
                    static_cast<double>(std::max(line.ya, line.yb)));
}

void TileSweep::prepareSlab(Coordinate from, Coordinate to) {
  for (; nextToggle < lowerToggles.size() && lowerToggles[nextToggle].first <= from; ++nextToggle)
    for (size_t w = 0; w < words; ++w)
      lowerMask[w] ^= toggles[static_cast<size_t>(lowerToggles[nextToggle].second) * words + w];
  active.erase(std::remove_if(active.begin(), active.end(),
                              [&](int i) { return lines[static_cast<size_t>(i)].xb <= from; }),
               active.end());
  for (; nextStart < starts.size() && lines[static_cast<size_t>(starts[nextStart])].xa <= from;
       ++nextStart)
    if (lines[static_cast<size_t>(starts[nextStart])].xb > from)
      active.push_back(starts[nextStart]);
  sortActive(from, to);
  placeGaps(from, to);
}

// By the height in the middle; the order hardly changes from stop to stop.
void TileSweep::sortActive(Coordinate from, Coordinate to) {
  const double middle = 0.5 * (static_cast<double>(from) + static_cast<double>(to));
  keys.clear();
  for (const int i : active) {
    std::pair<double, int> key(heightAt(lines[static_cast<size_t>(i)], middle), i);
    size_t at = keys.size();
    keys.push_back(key);
    for (; at > 0 && key < keys[at - 1]; --at) keys[at] = keys[at - 1];
    keys[at] = key;
  }
  for (size_t k = 0; k < keys.size(); ++k) active[k] = keys[k].second;
}

void TileSweep::placeGaps(Coordinate from, Coordinate to) {
  const size_t count = active.size();
  now.order = active;
  now.low.resize(count);
  now.high.resize(count);
  now.gaps.resize(count + 1);
  now.masks.resize((count + 1) * words);
  std::copy(lowerMask.begin(), lowerMask.end(), now.masks.begin());
  Coordinate low = tile.y0;
  Coordinate high = tile.y0;
  Coordinate tolerance = 0;
  bool allEmpty = true;
  for (size_t k = 0; k <= count; ++k) {
    const bool isLast = k == count;
    const int line = isLast ? UpperBorder : active[k];
    const Coordinate nextLow = isLast ? tile.y1 : std::max(low, heightAt(line, from));
    const Coordinate nextHigh = isLast ? tile.y1 : std::max(high, heightAt(line, to));
    const Coordinate nextTolerance = isLast ? 0 : lines[static_cast<size_t>(line)].tolerance;
    const Coordinate largest = std::max<Coordinate>(std::max(tolerance, nextTolerance), Snap);
    const bool empty = nextLow - low <= largest && nextHigh - high <= largest;
    allEmpty = allEmpty && empty;
    now.gaps[k] = {k == 0 ? LowerBorder : active[k - 1], line, empty, -1, -1, from, -1};
    if (!isLast) {
      now.low[k] = nextLow;
      now.high[k] = nextHigh;
      const Word* mask = &now.masks[k * words];
      Word* next = &now.masks[(k + 1) * words];
      for (size_t w = 0; w < words; ++w)
        next[w] = mask[w] ^ toggles[static_cast<size_t>(line) * words + w];
    }
    low = nextLow;
    high = nextHigh;
    tolerance = nextTolerance;
  }
  if (allEmpty) now.gaps[count].empty = false;  // a tile so low that nothing has a height in it
}

void TileSweep::stopAt(Coordinate x, bool first, bool last) {
  const size_t oldCount = old.gaps.size();
  const size_t newCount = now.gaps.size();
  const bool cut = std::find(breaks.begin(), breaks.end(), x) != breaks.end();
  const auto same = [&](size_t i, size_t k) {
    const Gap& a = old.gaps[i];
    const Gap& b = now.gaps[k];
    return a.below == b.below && a.above == b.above && a.empty == b.empty &&
           std::equal(old.masks.begin() + static_cast<std::ptrdiff_t>(i * words),
                      old.masks.begin() + static_cast<std::ptrdiff_t>((i + 1) * words),
                      now.masks.begin() + static_cast<std::ptrdiff_t>(k * words));
  };
  const auto keep = [&](size_t i, size_t k) { now.gaps[k] = old.gaps[i]; };
  size_t prefix = 0;
  size_t suffix = 0;
  if (!cut) {
    const size_t most = std::min(oldCount, newCount);
    while (prefix < most && same(prefix, prefix)) {
      keep(prefix, prefix);
      ++prefix;
    }
    while (suffix < most - prefix && same(oldCount - 1 - suffix, newCount - 1 - suffix)) {
      keep(oldCount - 1 - suffix, newCount - 1 - suffix);
      ++suffix;
    }
  }
  const size_t oldTo = oldCount - suffix;
  const size_t newTo = newCount - suffix;
  if (!first && !last && prefix == oldTo && prefix == newTo) return;
  const Coordinate next = last ? x : *std::upper_bound(stops.begin(), stops.end(), x);
  for (size_t i = prefix; i < oldTo; ++i) closeGap(old.gaps[i], &old.masks[i * words], x);
  int areaBelow = -1;
  for (size_t k = prefix; k > 0 && areaBelow < 0; --k) areaBelow = now.gaps[k - 1].area;
  for (size_t k = prefix; k < newTo; ++k) {
    openGap(now.gaps[k], &now.masks[k * words], x, next, areaBelow);
    if (!now.gaps[k].empty) areaBelow = now.gaps[k].area;
  }
  placeMarks(prefix, oldTo, prefix, newTo, x);
  if (first) {
    sideStretches(sides[Left], now, true);
  } else if (last) {
    sideStretches(sides[Right], old, false);
  } else {
    joinAcross(x, prefix, oldTo, prefix, newTo);
  }
  kept.clear();
  if (!last) openWalls(x, prefix, newTo);
  if (!first) closeWalls(x, prefix, oldTo);
  const auto firstArea = [](const Slab& slab) {
    for (const Gap& gap : slab.gaps)
      if (!gap.empty) return gap.area;
    return -1;
  };
  const auto lastArea = [](const Slab& slab) {
    for (size_t i = slab.gaps.size(); i > 0; --i)
      if (!slab.gaps[i - 1].empty) return slab.gaps[i - 1].area;
    return -1;
  };
  const std::vector<int>& heights = last ? oldMarks : newMarks;
  borderStretch(sides[Bottom], lower, last ? -1 : firstArea(now), x, heights.front());
  borderStretch(sides[Top], upper, last ? -1 : lastArea(now), x, heights.back());
}

// Ends the open stretch of the lower or upper side where another area begins to lie along it. The
// ends are those of the borders that meet the side there.
void TileSweep::borderStretch(SideList& side, OpenStretch& open, int area, Coordinate x, int mark) {
  if (area == open.area) return;
  if (area >= 0 && open.area >= 0 && parts.areaSets.find(area) == parts.areaSets.find(open.area))
    return;
  const int here = vertexOf(mark, x);
  if (open.area >= 0) parts.addStretch(side, open.since, x, open.vertex, here, open.area);
  open = {area, x, here};
}

// The heights of all borders of changed gaps at a stop; what is nearly one becomes one.
void TileSweep::placeMarks(size_t oldFrom, size_t oldTo, size_t newFrom, size_t newTo,
                           Coordinate x) {
  marks.clear();
  oldMarks.clear();
  newMarks.clear();
  const auto markBorder = [&](const Slab& slab, size_t border, bool isNew) {
    if (border == 0) return Mark{tile.y0, Snap, 3, -1, 0};
    if (border > slab.order.size()) return Mark{tile.y1, Snap, 3, -1, 0};
    const Line& line = lines[static_cast<size_t>(slab.order[border - 1])];
    const bool end = (line.fixedA && line.xa == x) || (line.fixedB && line.xb == x);
    return Mark{isNew ? slab.low[border - 1] : slab.high[border - 1], line.tolerance, end ? 2 : 1,
                -1, 0};
  };
  size_t oldCount = 0;
  if (!old.gaps.empty())
    for (size_t b = oldFrom; b <= oldTo; ++b, ++oldCount)
      marks.push_back(markBorder(old, b, false));
  if (!now.gaps.empty())
    for (size_t b = newFrom; b <= newTo; ++b) marks.push_back(markBorder(now, b, true));
  std::vector<int>& byHeight = newMarks;  // scratch until the numbers are known
  byHeight.resize(marks.size());
  for (size_t i = 0; i < marks.size(); ++i) {
    size_t at = i;
    for (; at > 0 && marks[i].y < marks[static_cast<size_t>(byHeight[at - 1])].y; --at)
      byHeight[at] = byHeight[at - 1];
    byHeight[at] = static_cast<int>(i);
  }
  size_t begin = 0;
  int cluster = 0;
  while (begin < marks.size()) {
    size_t end = begin + 1;
    int best = byHeight[begin];
    for (; end < marks.size(); ++end) {
      const Mark& before = marks[static_cast<size_t>(byHeight[end - 1])];
      const Mark& mark = marks[static_cast<size_t>(byHeight[end])];
      if (mark.y - before.y > std::max(before.tolerance, mark.tolerance)) break;
      if (mark.rank > marks[static_cast<size_t>(best)].rank) best = byHeight[end];
    }
    const Coordinate height = marks[static_cast<size_t>(best)].y;
    for (size_t i = begin; i < end; ++i) marks[static_cast<size_t>(byHeight[i])].joined = cluster;
    keys.resize(static_cast<size_t>(cluster) + 1);
    keys[static_cast<size_t>(cluster)] = {static_cast<double>(height), -1};
    ++cluster;
    begin = end;
  }
  for (size_t i = 0; i < oldCount; ++i) oldMarks.push_back(marks[i].joined);
  newMarks.clear();
  for (size_t i = oldCount; i < marks.size(); ++i) newMarks.push_back(marks[i].joined);
  marks.clear();
  for (int i = 0; i < cluster; ++i)
    marks.push_back({static_cast<Coordinate>(keys[static_cast<size_t>(i)].first), 0, 0, -1, i});
}

int TileSweep::vertexOf(int mark, Coordinate x) {
  Mark& m = marks[static_cast<size_t>(mark)];
  if (m.vertex < 0) m.vertex = parts.addVertex(tile.face, x, m.y);
  return m.vertex;
}

// Walks along the line of the stop: where an old gap and a new one lie opposite, they are one area
// or have a border there.
void TileSweep::joinAcross(Coordinate x, size_t oldFrom, size_t oldTo, size_t newFrom,
                           size_t newTo) {
  size_t i = oldFrom;
  size_t k = newFrom;
  while (i < oldTo && k < newTo) {
    const int oldLow = oldMarks[i - oldFrom];
    const int oldHigh = oldMarks[i - oldFrom + 1];
    const int newLow = newMarks[k - newFrom];
    const int newHigh = newMarks[k - newFrom + 1];
    const int from = std::max(oldLow, newLow);
    const int to = std::min(oldHigh, newHigh);
    if (from < to) {
      const int left = old.gaps[i].area;
      const int right = now.gaps[k].area;
      if (left >= 0 && right >= 0) {
        if (parts.regionOf(left) == parts.regionOf(right)) {
          parts.areaSets.join(left, right);
        } else {
          emitUpright(marks[static_cast<size_t>(from)], marks[static_cast<size_t>(to)], x, left,
                      right);
        }
      }
    }
    if (oldHigh <= newHigh) ++i;
    if (newHigh <= oldHigh) ++k;
  }
}

void TileSweep::emitUpright(Mark& from, Mark& to, Coordinate x, int left, int right) {
  const int start = vertexOf(from.joined, x);
  const int end = vertexOf(to.joined, x);
  Piece piece{start, end, left, right, NoSource, false, false};
  int best = 0;
  for (const Line& line : lines) {
    const bool upright = line.xb - line.xa <= 2 && line.xa - Snap <= x && x <= line.xb + Snap;
    if (!upright || std::max(line.ya, line.yb) < from.y || std::min(line.ya, line.yb) > to.y)
      continue;
    chooseSource(line, parts.regionOf(left), parts.regionOf(right), piece, best);
  }
  parts.pieces.push_back(piece);
}

void TileSweep::sideStretches(SideList& side, const Slab& slab, bool isNew) {
  const std::vector<int>& heights = isNew ? newMarks : oldMarks;
  const Coordinate x = isNew ? tile.x0 : tile.x1;
  const auto add = [&](int from, int to, int area) {
    const int fromVertex = vertexOf(from, x);
    const int toVertex = vertexOf(to, x);
    parts.addStretch(side, marks[static_cast<size_t>(from)].y, marks[static_cast<size_t>(to)].y,
                     fromVertex, toVertex, area);
  };
  int begin = -1;
  int end = -1;
  int area = -1;
  for (size_t i = 0; i < slab.gaps.size(); ++i) {
    if (slab.gaps[i].empty || heights[i] >= heights[i + 1]) continue;
    const int here = slab.gaps[i].area;
    if (area < 0 || parts.regionOf(area) != parts.regionOf(here)) {
      if (area >= 0) add(begin, end, area);
      begin = heights[i];
      area = here;
    }
    end = heights[i + 1];
  }
  if (area >= 0) add(begin, end, area);
}

void TileSweep::closeWalls(Coordinate x, size_t from, size_t to) {
  const std::vector<Gap>& gaps = old.gaps;
  size_t below = from;
  while (below > 0 && gaps[below - 1].empty) --below;
  below = below > 0 ? below - 1 : 0;
  while (below < gaps.size() && gaps[below].empty) ++below;
  while (below < to) {
    size_t above = below + 1;
    while (above < gaps.size() && gaps[above].empty) ++above;
    if (above == gaps.size()) return;
    const bool goesOn = std::find(kept.begin(), kept.end(), gaps[below].above) != kept.end();
    if (above >= from && !goesOn && divides(gaps[below], gaps[above])) {
      const size_t border = std::max(below + 1, from);
      const int end = vertexOf(oldMarks[border - from], x);
      emitWall(gaps[below].wallVertex, end, gaps[below], gaps[above], below, above);
    }
    below = above;
  }
}

void TileSweep::openWalls(Coordinate x, size_t from, size_t to) {
  std::vector<Gap>& gaps = now.gaps;
  size_t below = from;
  while (below > 0 && gaps[below - 1].empty) --below;
  below = below > 0 ? below - 1 : 0;
  while (below < gaps.size() && gaps[below].empty) ++below;
  while (below < to) {
    size_t above = below + 1;
    while (above < gaps.size() && gaps[above].empty) ++above;
    if (above == gaps.size()) return;
    if (above >= from) {
      if (!divides(gaps[below], gaps[above])) {
        parts.areaSets.join(gaps[below].area, gaps[above].area);
      } else if (!keepWall(below, above)) {
        const size_t border = std::max(below + 1, from);
        gaps[below].wallVertex = vertexOf(newMarks[border - from], x);
      }
    }
    below = above;
  }
}

// Whether a wall of the old slab goes on with the same lines between the same areas: then it is one
// piece.
bool TileSweep::keepWall(size_t below, size_t above) {
  const int line = now.gaps[below].above;
  size_t i = 0;
  while (i < old.gaps.size() && (old.gaps[i].empty || old.gaps[i].above != line)) ++i;
  const size_t k = i + above - below;
  if (k >= old.gaps.size() || old.gaps[k].empty) return false;
  for (size_t n = 1; n < above - below; ++n)
    if (!old.gaps[i + n].empty || old.gaps[i + n].above != now.gaps[below + n].above) return false;
  const auto sameArea = [this](const Gap& a, const Gap& b) {
    return parts.areas[static_cast<size_t>(a.area)].polygon ==
               parts.areas[static_cast<size_t>(b.area)].polygon &&
           parts.areaSets.find(a.area) == parts.areaSets.find(b.area);
  };
  if (!sameArea(old.gaps[i], now.gaps[below]) || !sameArea(old.gaps[k], now.gaps[above]))
    return false;
  now.gaps[below].wallVertex = old.gaps[i].wallVertex;
  kept.push_back(line);
  return true;
}

void TileSweep::emitWall(int from, int to, const Gap& below, const Gap& above, size_t firstLine,
                         size_t lastLine) {
  if (from == to) return;
  const std::int32_t lowerRegion = parts.regionOf(below.area);
  const std::int32_t upperRegion = parts.regionOf(above.area);
  Piece piece{from, to, above.area, below.area, NoSource, false, false};
  int best = 0;
  for (size_t i = firstLine; i < lastLine; ++i)
    chooseSource(lines[static_cast<size_t>(old.order[i])], lowerRegion, upperRegion, piece, best);
  parts.pieces.push_back(piece);
}

// The border is the edge that the regions on both sides share; else one of an own edge of either;
// else the line where the two run through each other.
void TileSweep::chooseSource(const Line& line, std::int32_t regionA, std::int32_t regionB,
                             Piece& piece, int& best) const {
  const auto offer = [&](int rank, Source source, bool inner, bool shared) {
    if (rank <= best) return;
    best = rank;
    piece.source = source;
    piece.inner = inner;
    piece.shared = shared;
  };
  if (line.crossed[0] >= 0) {
    const Slot& s = slots[static_cast<size_t>(line.crossed[0])];
    const Slot& t = slots[static_cast<size_t>(line.crossed[1])];
    if ((s.region == regionA && t.region == regionB) ||
        (s.region == regionB && t.region == regionA))
      offer(2, crossingSource(std::min(s.number, t.number), std::max(s.number, t.number)), false,
            false);
    return;
  }
  for (std::int32_t i = 0; i < line.ownerCount; ++i) {
    const Owner& owner = owners[static_cast<size_t>(line.firstOwner + i)];
    const std::int32_t region = regionOf(owner.slot);
    if (owner.edge == FieldEdge) {
      offer(5, FieldSource, false, false);
      continue;
    }
    if (region != regionA && region != regionB) {
      offer(1, owner.edge, owner.inner, false);
      continue;
    }
    bool shared = false;
    for (std::int32_t k = 0; k < line.ownerCount; ++k) {
      const Owner& other = owners[static_cast<size_t>(line.firstOwner + k)];
      const std::int32_t otherRegion = regionOf(other.slot);
      shared = shared || (other.edge == owner.edge && otherRegion != region &&
                          (otherRegion == regionA || otherRegion == regionB));
    }
    offer(shared ? 4 : 3, owner.edge, owner.inner, shared);
  }
}

bool TileSweep::isInFront(const Slot& s, const Slot& t, double x, double y) const {
  if (s.layer != t.layer) {
    const double difference = (s.a - t.a) * x + (s.b - t.b) * y + (s.c - t.c);
    if (std::fabs(difference) > s.error + t.error) return difference > 0.0;
    return inFront(polygons[s.position], polygons[t.position], face, x, y) > 0;
  }
  if (s.region != t.region) return s.region > t.region;
  return s.number > t.number;
}

std::int32_t TileSweep::seenAt(const Word* mask, double x, double y) const {
  std::int32_t best = -1;
  for (size_t w = 0; w < words; ++w)
    for (Word rest = mask[w]; rest != 0; rest &= rest - 1) {
      const auto slot = bitAt(w, rest);
      if (best < 0 ||
          isInFront(slots[static_cast<size_t>(slot)], slots[static_cast<size_t>(best)], x, y))
        best = slot;
    }
  return best;
}

// Neighbours with one label are one area.
void TileSweep::openGap(Gap& gap, const Word* mask, Coordinate from, Coordinate to, int areaBelow) {
  gap.since = from;
  if (gap.empty) return;
  const double x = 0.5 * (static_cast<double>(from) + static_cast<double>(to));
  const auto height = [&](int line) {
    if (line == LowerBorder) return static_cast<double>(tile.y0);
    if (line == UpperBorder) return static_cast<double>(tile.y1);
    return heightAt(lines[static_cast<size_t>(line)], x);
  };
  gap.slot = seenAt(mask, x, 0.5 * (height(gap.below) + height(gap.above)));
  Area area{SkyRegion, -1};
  if (gap.slot >= 0) {
    const Slot& slot = slots[static_cast<size_t>(gap.slot)];
    area = {slot.position == LookPolygons::Beyond ? BeyondRegion : slot.region, slot.number};
  }
  const bool same = areaBelow >= 0 && parts.regionOf(areaBelow) == area.region &&
                    parts.areas[static_cast<size_t>(areaBelow)].polygon == area.polygon;
  gap.area = same ? areaBelow : parts.addArea(area.region, area.polygon);
}

// What is seen in the middle must be in front in all corners too; where it is not, two regions run
// through each other there.
void TileSweep::closeGap(const Gap& gap, const Word* mask, Coordinate to) {
  if (gap.empty || gap.slot < 0) return;
  const Slot& seen = slots[static_cast<size_t>(gap.slot)];
  if (seen.position == LookPolygons::Beyond) return;
  double corners[4][2];
  int count = 0;
  for (const Coordinate x : {gap.since, to})
    for (const int line : {gap.below, gap.above}) {
      const Coordinate y = line == LowerBorder   ? tile.y0
                           : line == UpperBorder ? tile.y1
                                                 : heightAt(line, x);
      corners[count][0] = static_cast<double>(x);
      corners[count][1] = static_cast<double>(y);
      ++count;
    }
  for (size_t w = 0; w < words; ++w)
    for (Word rest = mask[w]; rest != 0; rest &= rest - 1) {
      const auto i = bitAt(w, rest);
      const Slot& other = slots[static_cast<size_t>(i)];
      if (i == gap.slot || other.layer == seen.layer) continue;
      const double a = other.a - seen.a;
      const double b = other.b - seen.b;
      const double c = other.c - seen.c;
      // Corners are known to within a few units.
      const double margin = seen.error + other.error + 4.0 * Snap * (std::fabs(a) + std::fabs(b));
      bool crosses = false;
      for (int k = 0; k < 4; ++k)
        crosses = crosses || a * corners[k][0] + b * corners[k][1] + c > margin;
      if (!crosses) continue;
      const PlanePair pair{std::min(i, gap.slot), std::max(i, gap.slot)};
      const bool known = std::any_of(cuts.begin(), cuts.end(), [&](const PlanePair& cut) {
        return cut.a == pair.a && cut.b == pair.b;
      });
      if (known) continue;
      cuts.push_back(pair);
      planesCross = true;
    }
}

}  // namespace Lumivane::Visibility
