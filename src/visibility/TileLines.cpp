#include "visibility/TileLines.h"

#include "visibility/MapParts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Lumivane::Visibility {
namespace {

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

Coordinate heightOf(const Segment& s, Coordinate x) {
  return s.y0 + nearestWhole(s.slope * static_cast<double>(x - s.x0));
}

Coordinate crossingOf(const Segment& s, Coordinate y) {
  const double run = static_cast<double>(s.x1 - s.x0) / static_cast<double>(s.y1 - s.y0);
  return s.x0 + nearestWhole(run * static_cast<double>(y - s.y0));
}

Coordinate toleranceOf(double slope) {
  return nearestWhole(static_cast<double>(Snap) *
                      std::min(std::sqrt(1.0 + slope * slope), SteepestTolerance));
}

}  // namespace

bool touchesTile(const Segment& s, const Tile& tile) {
  if (missesBox(s, tile)) return false;
  const Place start = startOf(s, tile);
  if (start == Place::Within) return true;
  return endOf(s, tile) != start;
}

void TileLines::Slab::clear() {
  order.clear();
  low.clear();
  high.clear();
  empty.clear();
  masks.clear();
}

void TileLines::gather(const Tile& sweptTile, const TileContent& content,
                       const TilePlanes& planes) {
  tile = sweptTile;
  wordCount = planes.words();
  cornerMask = planes.atCorner();
  raws.clear();
  for (size_t i = 0; i < content.entryCount; ++i) {
    const TileEntry& entry = content.entries[i];
    for (std::uint32_t k = 0; k < entry.segmentCount; ++k) {
      const Segment& s = polygons.segment(content.segments[entry.firstSegment + k]);
      raws.push_back({s.x0, &s, planes.slotOfEntry(i)});
    }
  }
  std::sort(raws.begin(), raws.end(), [](const Raw& a, const Raw& b) {
    if (a.x0 != b.x0) return a.x0 < b.x0;
    const Segment& s = *a.segment;
    const Segment& t = *b.segment;
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
    while (end < raws.size() && raws[end].x0 == s.x0 && raws[end].segment->y0 == s.y0 &&
           raws[end].segment->x1 == s.x1 && raws[end].segment->y1 == s.y1)
      ++end;
    addLine(i, end);
    i = end;
  }
  edgeLines = lines.size();
}

void TileLines::addLine(size_t firstRaw, size_t lastRaw) {
  Line line{};
  if (!clipLine(*raws[firstRaw].segment, line)) return;
  const size_t mask = toggles.size();
  toggles.resize(mask + wordCount, 0);
  line.firstOwner = static_cast<std::int32_t>(owners.size());
  for (size_t i = firstRaw; i < lastRaw; ++i) {
    const std::int32_t slot = raws[i].slot;
    toggles[mask + static_cast<size_t>(slot) / 64] ^= MaskWord{1} << (slot % 64);
    owners.push_back({raws[i].segment->edge, slot, raws[i].segment->inner != 0});
  }
  line.ownerCount = static_cast<std::int32_t>(owners.size()) - line.firstOwner;
  line.crossed[0] = line.crossed[1] = -1;
  bool idle = true;
  for (size_t w = 0; w < wordCount; ++w) idle = idle && toggles[mask + w] == 0;
  if (idle) {
    toggles.resize(mask);
    owners.resize(static_cast<size_t>(line.firstOwner));
    return;
  }
  lines.push_back(line);
}

// \return false if the segment is not in the tile
bool TileLines::clipLine(const Segment& s, Line& line) const {
  if (missesBox(s, tile)) return false;
  const Place start = startOf(s, tile);
  const Place end = endOf(s, tile);
  if (start == end && start != Place::Within) return false;
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
  return true;
}

void TileLines::dropCrossingLines() {
  lines.resize(edgeLines);
  toggles.resize(edgeLines * wordCount);
  breaks.clear();
}

// a x + b y + c = 0
void TileLines::addCrossingLine(const TilePlanes& planes, std::int32_t slotA, std::int32_t slotB) {
  const TilePlanes::Slot& s = planes[slotA];
  const TilePlanes::Slot& t = planes[slotB];
  const TilePlanes::Slot& nearer = s.number < t.number ? s : t;
  const TilePlanes::Slot& higher = s.number < t.number ? t : s;
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
    if (x > x0 && x < x1) breaks.push_back(nearestWhole(x));
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
  line.xa = std::clamp(nearestWhole(from), tile.x0, tile.x1);
  line.xb = std::clamp(nearestWhole(to), tile.x0, tile.x1);
  if (line.xa >= line.xb) return;
  line.ya = nearestWhole(std::clamp(at(from), y0, y1));
  line.yb = nearestWhole(std::clamp(at(to), y0, y1));
  line.x0 = line.xa;
  line.y0 = line.ya;
  line.slope = slope;
  line.tolerance = toleranceOf(slope);
  line.crossed[0] = slotA;
  line.crossed[1] = slotB;
  lines.push_back(line);
  toggles.resize(toggles.size() + wordCount, 0);
}

void TileLines::start() {
  stops.assign({tile.x0, tile.x1});
  lowerToggles.clear();
  starts.clear();
  courses.clear();
  for (size_t i = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    courses.push_back({static_cast<double>(line.x0), static_cast<double>(line.y0), line.slope,
                       static_cast<double>(std::min(line.ya, line.yb)),
                       static_cast<double>(std::max(line.ya, line.yb)), line.ya, line.xb});
    stops.push_back(line.xa);
    stops.push_back(line.xb);
    if (line.togglesAtA) lowerToggles.emplace_back(line.xa, static_cast<int>(i));
    if (line.togglesAtB) lowerToggles.emplace_back(line.xb, static_cast<int>(i));
    if (line.xa < line.xb) starts.emplace_back(line.xa, static_cast<int>(i));
  }
  stops.insert(stops.end(), breaks.begin(), breaks.end());
  std::sort(lowerToggles.begin(), lowerToggles.end());
  std::sort(starts.begin(), starts.end());
  addMeetings();
  std::sort(stops.begin(), stops.end());
  stops.erase(std::unique(stops.begin(), stops.end()), stops.end());
  nextStart = 0;
  nextToggle = 0;
  lowerMask = cornerMask;
  old.clear();
  now.clear();
}

void TileLines::addMeetings() {
  for (size_t k = 0; k < starts.size(); ++k) {
    const int first = starts[k].second;
    const Line& s = (*this)[first];
    const Coordinate low = std::min(s.ya, s.yb);
    const Coordinate high = std::max(s.ya, s.yb);
    for (size_t m = k + 1; m < starts.size(); ++m) {
      if (starts[m].first >= s.xb) break;
      const int second = starts[m].second;
      const Line& t = (*this)[second];
      if (std::max(t.ya, t.yb) < low || std::min(t.ya, t.yb) > high) continue;
      const Coordinate from = t.xa;
      const Coordinate to = std::min(s.xb, t.xb);
      const Coordinate tolerance = std::max(s.tolerance, t.tolerance);
      const Coordinate apart = heightAt(first, from) - heightAt(second, from);
      const Coordinate after = heightAt(first, to) - heightAt(second, to);
      if ((apart > 0) == (after > 0) || std::abs(apart) <= tolerance ||
          std::abs(after) <= tolerance)
        continue;
      const double part = static_cast<double>(apart) / static_cast<double>(apart - after);
      stops.push_back(
          std::clamp(from + nearestWhole(part * static_cast<double>(to - from)), from, to));
    }
  }
}

Coordinate TileLines::heightAt(int number, Coordinate x) const {
  const Line& line = (*this)[number];
  if (x == line.xa) return line.ya;
  if (x == line.xb) return line.yb;
  const Coordinate y = line.y0 + nearestWhole(line.slope * static_cast<double>(x - line.x0));
  return std::clamp(y, std::min(line.ya, line.yb), std::max(line.ya, line.yb));
}

double TileLines::exactHeightAt(int line, double x) const {
  if (line == LowerBorder) return static_cast<double>(tile.y0);
  if (line == UpperBorder) return static_cast<double>(tile.y1);
  const Course& c = courses[static_cast<size_t>(line)];
  return std::clamp(c.y0 + c.slope * (x - c.x0), c.least, c.most);
}

void TileLines::advance(Coordinate from, Coordinate to) {
  std::swap(old, now);
  for (; nextToggle < lowerToggles.size() && lowerToggles[nextToggle].first <= from; ++nextToggle) {
    const auto line = static_cast<size_t>(lowerToggles[nextToggle].second);
    for (size_t w = 0; w < wordCount; ++w) lowerMask[w] ^= toggles[line * wordCount + w];
  }
  orderLines(from, to);
  placeGaps(to);
  const bool cut = !breaks.empty() && std::find(breaks.begin(), breaks.end(), from) != breaks.end();
  findSame(cut);
  placeMasks();
}

void TileLines::finish() {
  std::swap(old, now);
  now.clear();
  prefix = suffix = 0;
}

// By the height in the middle; the order hardly changes from stop to stop.
void TileLines::orderLines(Coordinate from, Coordinate to) {
  const double middle = 0.5 * (static_cast<double>(from) + static_cast<double>(to));
  keys.clear();
  const auto add = [&](int line) {
    const std::pair<double, int> key(exactHeightAt(line, middle), line);
    size_t at = keys.size();
    keys.push_back(key);
    for (; at > 0 && key < keys[at - 1]; --at) keys[at] = keys[at - 1];
    keys[at] = key;
  };
  for (const int line : old.order)
    if (courses[static_cast<size_t>(line)].xb > from) add(line);
  for (; nextStart < starts.size() && starts[nextStart].first <= from; ++nextStart)
    if (courses[static_cast<size_t>(starts[nextStart].second)].xb > from)
      add(starts[nextStart].second);
  now.order.resize(keys.size());
  for (size_t k = 0; k < keys.size(); ++k) now.order[k] = keys[k].second;
}

void TileLines::placeGaps(Coordinate to) {
  const size_t count = now.order.size();
  now.low.resize(count);
  now.high.resize(count);
  now.empty.resize(count + 1);
  Coordinate low = tile.y0;
  Coordinate high = tile.y0;
  Coordinate tolerance = Snap;
  bool allEmpty = true;
  const auto close = [&](size_t k, Coordinate nextLow, Coordinate nextHigh,
                         Coordinate nextTolerance) {
    const Coordinate largest = std::max(tolerance, nextTolerance);
    const bool empty = nextLow - low <= largest && nextHigh - high <= largest;
    allEmpty = allEmpty && empty;
    now.empty[k] = empty ? 1 : 0;
    low = nextLow;
    high = nextHigh;
    tolerance = nextTolerance;
  };
  for (size_t k = 0; k < count; ++k) {
    const int line = now.order[k];
    Course& course = courses[static_cast<size_t>(line)];
    const Coordinate nextLow = std::max(low, course.here);
    course.here = heightAt(line, to);
    const Coordinate nextHigh = std::max(high, course.here);
    close(k, nextLow, nextHigh, (*this)[line].tolerance);
    now.low[k] = nextLow;
    now.high[k] = nextHigh;
  }
  close(count, tile.y1, tile.y1, Snap);
  if (allEmpty) now.empty[count] = 0;  // a tile so low that nothing has a height in it
}

void TileLines::findSame(bool cut) {
  prefix = suffix = 0;
  if (cut) return;
  const size_t oldCount = old.gapCount();
  const size_t newCount = now.gapCount();
  const size_t most = std::min(oldCount, newCount);
  const bool sameLower =
      oldCount > 0 && std::equal(lowerMask.begin(), lowerMask.end(), old.masks.begin());
  const auto same = [this](size_t i, size_t k) {
    return old.below(i) == now.below(k) && old.above(i) == now.above(k) &&
           old.empty[i] == now.empty[k];
  };
  if (sameLower)
    while (prefix < most && same(prefix, prefix)) ++prefix;
  while (suffix < most - prefix && same(oldCount - 1 - suffix, newCount - 1 - suffix)) ++suffix;
}

// Those of the prefix and, if the last one is, of the suffix are the same.
void TileLines::placeMasks() {
  const size_t count = now.gapCount();
  now.masks.resize(count * wordCount);
  std::copy_n(old.masks.begin(), prefix * wordCount, now.masks.begin());
  if (prefix == 0) std::copy(lowerMask.begin(), lowerMask.end(), now.masks.begin());
  const auto place = [this](size_t gap) {
    const MaskWord* mask = &now.masks[(gap - 1) * wordCount];
    const MaskWord* toggle = &toggles[static_cast<size_t>(now.order[gap - 1]) * wordCount];
    for (size_t w = 0; w < wordCount; ++w) now.masks[gap * wordCount + w] = mask[w] ^ toggle[w];
  };
  const size_t from = std::max<size_t>(prefix, 1);
  size_t gap = from;
  for (; gap < count - suffix; ++gap) place(gap);
  if (suffix == 0) return;
  if (gap < count && gap == count - suffix) place(gap);
  const size_t before = old.gapCount() - suffix;
  const size_t behind = count - suffix;
  if (std::equal(maskBefore(before), maskBefore(before) + wordCount, maskBehind(behind))) {
    std::copy_n(maskBefore(before), suffix * wordCount, &now.masks[behind * wordCount]);
    return;
  }
  suffix = 0;
  for (gap = std::max(behind, from); gap < count; ++gap) place(gap);
}

}  // namespace Lumivane::Visibility
