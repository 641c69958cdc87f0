#include "visibility/TileLines.h"

#include "visibility/MapParts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

// The borders of a tile's polygons as a sweep meets them from left to right: their order from
// below, and with each gap between two of them a mask of the polygons that cover it. The order
// changes at stops, where a line begins or ends, two meet, or the lower side of the tile is
// crossed; only the changed gaps are renewed there. Lines nearer than `tolerance` are one, so a gap
// between them is empty: what rounding would make of it could otherwise become a cell.
namespace Lumivane::Visibility {
namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

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
  constexpr auto Steepest = static_cast<double>(TileLines::SteepestTolerance);
  return nearestWhole(static_cast<double>(Snap) *
                      std::min(std::sqrt(1.0 + slope * slope), Steepest));
}

}  // namespace

bool touchesTile(const Segment& s, const Tile& tile) {
  if (missesBox(s, tile)) return false;
  const Place start = startOf(s, tile);
  if (start == Place::Within) return true;
  return endOf(s, tile) != start;
}

void TileLines::Order::clear() {
  lines.clear();
  empty.clear();
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
  // What crosses the tile from border to border is upright if all of it lies in one place.
  const bool crosses = start != Place::Within && end != Place::Within;
  if (line.xb < line.xa || (crosses && line.xb - line.xa <= Snap)) line.xa = line.xb;
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
  // All of it within two units.
  const bool upright = 2.0 * std::fabs(a) > std::fabs(b) * (y1 - y0);
  if (upright) {
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
  // On the lower and upper side exactly, where rounding may take a steep line far from it.
  line.ya =
      from > x0 ? (slope > 0.0 ? tile.y0 : tile.y1) : nearestWhole(std::clamp(at(from), y0, y1));
  line.yb = to < x1 ? (slope > 0.0 ? tile.y1 : tile.y0) : nearestWhole(std::clamp(at(to), y0, y1));
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
  lowerToggles.clear();
  starts.clear();
  ends.clear();
  courses.clear();
  for (const Coordinate border : {tile.y1, tile.y0}) {
    const auto y = static_cast<double>(border);
    courses.push_back({0.0, y, 0.0, y, y, static_cast<double>(Snap), static_cast<double>(tile.x1)});
  }
  meetings.clear();
  for (size_t i = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    courses.push_back({static_cast<double>(line.x0), static_cast<double>(line.y0), line.slope,
                       static_cast<double>(std::min(line.ya, line.yb)),
                       static_cast<double>(std::max(line.ya, line.yb)),
                       static_cast<double>(line.tolerance), static_cast<double>(line.xb)});
    if (line.togglesAtA) lowerToggles.emplace_back(line.xa, static_cast<int>(i));
    if (line.togglesAtB) lowerToggles.emplace_back(line.xb, static_cast<int>(i));
    if (line.xa >= line.xb) continue;
    starts.emplace_back(line.xa, static_cast<int>(i));
    if (line.xb < tile.x1) ends.emplace_back(line.xb, static_cast<int>(i));
  }
  std::sort(lowerToggles.begin(), lowerToggles.end());
  std::sort(starts.begin(), starts.end());
  std::sort(ends.begin(), ends.end());
  std::sort(breaks.begin(), breaks.end());
  nextStart = nextEnd = nextToggle = nextBreak = 0;
  lowerMask = cornerMask;
  old.clear();
  now.clear();
  masks.clear();
  narrowFrom.clear();
  here = {tile.x0, tile.x0, true, false, 0, 0, 0};
}

Coordinate TileLines::heightAt(int number, Coordinate x) const {
  const Line& line = (*this)[number];
  if (x == line.xa) return line.ya;
  if (x == line.xb) return line.yb;
  const Coordinate y = line.y0 + nearestWhole(line.slope * static_cast<double>(x - line.x0));
  return std::clamp(y, std::min(line.ya, line.yb), std::max(line.ya, line.yb));
}

TileLines::Heights TileLines::wayAround(int line, Coordinate x) const {
  const auto place = static_cast<double>(x);
  const Coordinate before = nearestWhole(exactHeightAt(line, place - 1.0));
  const Coordinate behind = nearestWhole(exactHeightAt(line, place + 1.0));
  return {std::min(before, behind), std::max(before, behind)};
}

Coordinate TileLines::nextStop() const {
  Coordinate x = tile.x1;
  if (nextStart < starts.size()) x = std::min(x, starts[nextStart].first);
  if (nextEnd < ends.size()) x = std::min(x, ends[nextEnd].first);
  if (nextToggle < lowerToggles.size()) x = std::min(x, lowerToggles[nextToggle].first);
  if (nextBreak < breaks.size()) x = std::min(x, breaks[nextBreak]);
  if (!meetings.empty()) x = std::min(x, meetings.front().x);
  return x;
}

bool TileLines::advance() {
  if (here.last) return false;
  do {
    if (here.next >= tile.x1) return finish();
    enterStop(here.next);
  } while (!here.first && here.from == here.oldTo && here.from == here.newTo);
  return true;
}

// Behind the last stop there is nothing.
bool TileLines::finish() {
  old = now;
  oldMasks = masks;
  now.clear();
  here = {tile.x1, tile.x1, false, true, 0, old.gapCount(), 0};
  return true;
}

void TileLines::enterStop(Coordinate x) {
  followChange();
  here.first = now.empty.empty();
  here.x = x;
  touched = here.first;
  sameBelow = sameAbove = here.first ? 0 : old.lines.size();
  spansFrom = spansTo = 0;
  const bool sameLower = !toggleLower(x);
  removeLines(x);
  insertLines(x);
  crossLines(x);
  if (touched) checkOrder(x);
  for (; nextBreak < breaks.size() && breaks[nextBreak] <= x; ++nextBreak) touch(0, 0);
  here.next = nextStop();
  if (!findChange(sameLower)) return;
  replaceGaps();
}

// Makes room in a list for what changes: `unit` items for each gap, behind the first `shift`.
template <class List>
void TileLines::fitChange(List& list, size_t unit, size_t shift) const {
  const auto at = [&](size_t gap) {
    return list.begin() + static_cast<std::ptrdiff_t>((gap - shift) * unit);
  };
  if (here.newTo > here.oldTo) list.insert(at(here.oldTo), (here.newTo - here.oldTo) * unit, 0);
  if (here.newTo < here.oldTo) list.erase(at(here.newTo), at(here.oldTo));
}

// The order behind the last stop is the one before the next.
void TileLines::followChange() {
  if (old.gapCount() == 0) {
    old = now;
    return;
  }
  if (here.from == here.oldTo && here.from == here.newTo) return;
  fitChange(old.lines, 1, 1);
  fitChange(old.empty, 1, 0);
  for (size_t i = here.from; i < here.newTo; ++i) old.empty[i] = now.empty[i];
  for (size_t i = here.from; i + 1 < here.newTo; ++i) old.lines[i] = now.lines[i];
}

// \return whether what covers the lowest gap has changed
bool TileLines::toggleLower(Coordinate x) {
  for (; nextToggle < lowerToggles.size() && lowerToggles[nextToggle].first <= x; ++nextToggle) {
    const auto line = static_cast<size_t>(lowerToggles[nextToggle].second);
    for (size_t w = 0; w < wordCount; ++w) lowerMask[w] ^= toggles[line * wordCount + w];
  }
  return !here.first && !std::equal(lowerMask.begin(), lowerMask.end(), masks.begin());
}

// Lines in the order that no step has touched.
void TileLines::touch(size_t below, size_t above) {
  touched = true;
  sameBelow = std::min(sameBelow, below);
  sameAbove = std::min(sameAbove, above);
}

// Where a line begins or ends. A steep one may pass others on the last unit before a side of the
// tile: of a line of two planes nothing else says that these gaps show another polygon behind it.
void TileLines::touchEnd(int line, Coordinate y, size_t place) {
  const bool isCrossing = (*this)[line].crossed[0] >= 0;
  const size_t above = now.lines.size() - place;
  touch(isCrossing && y == tile.y0 ? 0 : place, isCrossing && y == tile.y1 ? 0 : above);
}

void TileLines::removeLines(Coordinate x) {
  std::vector<int>& order = now.lines;
  for (; nextEnd < ends.size() && ends[nextEnd].first <= x; ++nextEnd) {
    const int line = ends[nextEnd].second;
    const auto at = std::find(order.begin(), order.end(), line);
    const auto place = static_cast<size_t>(at - order.begin());
    order.erase(at);
    touchEnd(line, (*this)[line].yb, place);
  }
}

void TileLines::insertLines(Coordinate x) {
  std::vector<int>& order = now.lines;
  const auto position = static_cast<double>(x);
  for (; nextStart < starts.size() && starts[nextStart].first <= x; ++nextStart) {
    const int line = starts[nextStart].second;
    const auto at = std::partition_point(
        order.begin(), order.end(), [&](int other) { return goesAbove(line, other, position); });
    const auto place = static_cast<size_t>(at - order.begin());
    touchEnd(line, (*this)[line].ya, place);
    order.insert(at, line);
  }
}

// Behind x, where both are.
bool TileLines::goesAbove(int line, int other, double x) const {
  const Course& c = courseOf(line);
  const Course& d = courseOf(other);
  const double tolerance = std::max(c.tolerance, d.tolerance);
  const double apart = c.at(x) - d.at(x);
  if (std::fabs(apart) > tolerance) return apart > 0.0;
  const double end = std::min(c.end, d.end);
  const double after = c.at(end) - d.at(end);
  if (std::fabs(after) > tolerance) return after > 0.0;
  return line > other;
}

void TileLines::swapLines(size_t below) {
  std::swap(now.lines[below], now.lines[below + 1]);
  touch(below, now.lines.size() - below - 2);
}

// Meetings of lines that are no longer neighbours have been found anew, or do not take place.
void TileLines::crossLines(Coordinate x) {
  const auto later = [](const Meeting& a, const Meeting& b) {
    return a.x != b.x ? a.x > b.x : a.below != b.below ? a.below > b.below : a.above > b.above;
  };
  while (!meetings.empty() && meetings.front().x <= x) {
    const Meeting meeting = meetings.front();
    std::pop_heap(meetings.begin(), meetings.end(), later);
    meetings.pop_back();
    const auto at = std::find(now.lines.begin(), now.lines.end(), meeting.below);
    if (at == now.lines.end() || at + 1 == now.lines.end() || *(at + 1) != meeting.above) continue;
    swapLines(static_cast<size_t>(at - now.lines.begin()));
  }
}

TileLines::Span TileLines::spanBetween(int below, int above, double x) const {
  const Course& c = courseOf(below);
  const Course& d = courseOf(above);
  const double end = std::min(c.end, d.end);
  return {std::max(c.tolerance, d.tolerance), end, d.at(x) - c.at(x), d.at(end) - c.at(end)};
}

// Looks at the neighbours among what was touched: where they meet, and whether their order is the
// one behind the stop. Of two lines at most one order is wrong, so this comes to an end.
void TileLines::checkOrder(Coordinate x) {
  const std::vector<int>& order = now.lines;
  if (spans.size() <= order.size()) spans.resize(order.size() + 1);
  const auto position = static_cast<double>(x);
  size_t at = sameBelow > 0 ? sameBelow - 1 : 0;
  while (at + 1 < order.size() && at + sameAbove < order.size()) {
    Span& span = spans[at + 1];
    span = spanBetween(order[at], order[at + 1], position);
    if (mustSwap(span)) {
      swapLines(at);
      if (at > 0) --at;
    } else {
      ++at;
    }
  }
  spansFrom = sameBelow > 0 ? sameBelow : 1;
  spansTo = std::max(spansFrom, at + 1);
  for (size_t gap = spansFrom; gap < spansTo; ++gap)
    if (spans[gap].last < -spans[gap].tolerance) addMeeting(order[gap - 1], order[gap], x);
}

// Whether a line goes below the one that is below it. Within the tolerance either may be the upper
// one, and where they part decides.
bool TileLines::mustSwap(const Span& span) {
  if (span.width > span.tolerance) return false;
  return span.width < -span.tolerance || span.last < -span.tolerance;
}

// Of two lines that are in the other order at their end.
void TileLines::addMeeting(int below, int above, Coordinate x) {
  const Line& s = (*this)[below];
  const Line& t = (*this)[above];
  const Coordinate from = std::max(s.xa, t.xa);
  const Coordinate to = std::min(s.xb, t.xb);
  const Coordinate apart = heightAt(above, from) - heightAt(below, from);
  const Coordinate after = heightAt(above, to) - heightAt(below, to);
  Coordinate at = x + 1;
  if (isSteep(below) || isSteep(above)) {
    at = steepMeeting(below, above, x);
  } else if (apart > 0 && after < 0) {
    const double part = static_cast<double>(apart) / static_cast<double>(apart - after);
    at = from + nearestWhole(part * static_cast<double>(to - from));
  }
  at = std::clamp(at, x + 1, std::max(x + 1, to));
  meetings.push_back({at, below, above});
  std::push_heap(meetings.begin(), meetings.end(), [](const Meeting& a, const Meeting& b) {
    return a.x != b.x ? a.x > b.x : a.below != b.below ? a.below > b.below : a.above > b.above;
  });
}

// Where two lines meet of which one is steep at least, by their courses: heights at the ends of a
// steep one are those of places up to a unit beside them, and what lies between them as far off.
Coordinate TileLines::steepMeeting(int below, int above, Coordinate x) const {
  const Course& c = courseOf(below);
  const Course& d = courseOf(above);
  Coordinate before = x;
  auto behind = static_cast<Coordinate>(std::min(c.end, d.end));
  while (behind - before > 1) {
    const Coordinate middle = before + (behind - before) / 2;
    const auto at = static_cast<double>(middle);
    (d.at(at) > c.at(at) ? before : behind) = middle;
  }
  return behind;
}

// \return false if nothing has changed
bool TileLines::findChange(bool sameLower) {
  here.from = here.oldTo = here.newTo = 0;
  if (touched) {
    here.from = sameBelow;
    here.oldTo = here.first ? 0 : old.lines.size() - sameAbove + 1;
    here.newTo = now.lines.size() - sameAbove + 1;
  }
  if (!sameLower) {
    here.from = 0;
    if (!touched) extendUpwards();
  }
  changeWidths();
  return here.first || here.from < here.oldTo || here.from < here.newTo;
}

void TileLines::extendUpwards() {
  here.oldTo = old.gapCount();
  here.newTo = now.lines.size() + 1;
}

// How many gaps before the stop are to be looked at.
size_t TileLines::countNarrow(size_t from, size_t to, double x) const {
  const double* const narrowings = narrowFrom.data();
  size_t count = 0;
  for (size_t i = from; i < to; ++i) count += narrowings[i] <= x ? 1 : 0;
  return count;
}

// Gaps that have become wide enough, or too narrow, change, too. As a rule those change already.
void TileLines::changeWidths() {
  const auto x = static_cast<double>(here.x);
  if (countNarrow(0, old.gapCount(), x) == countNarrow(here.from, here.oldTo, x)) return;
  for (size_t i = 0; i < old.gapCount(); ++i) {
    if (x < narrowFrom[i]) continue;
    const char state = old.empty[i];
    if (i >= here.from && i < here.oldTo) continue;
    const bool none = here.oldTo == here.from && here.newTo == here.from;
    const size_t gap = i < here.from || none ? i : i - here.oldTo + here.newTo;
    if (stateOfGap(gap) == state) continue;
    if (none) {
      here.from = i;
      here.oldTo = here.newTo = i + 1;
    } else if (i < here.from) {
      here.from = i;
    } else {
      here.newTo = gap + 1;
      here.oldTo = i + 1;
    }
  }
}

char TileLines::stateOfGap(size_t gap) const {
  const Course& c = courseOf(now.below(gap));
  const Course& d = courseOf(now.above(gap));
  const auto widthAt = [&](double x) { return d.at(x) - c.at(x); };
  const double largest = std::max(c.tolerance, d.tolerance);
  if (widthAt(static_cast<double>(here.x)) > largest ||
      widthAt(static_cast<double>(here.next)) > largest)
    return 0;
  return widthAt(std::min(c.end, d.end)) > largest ? Opening : Empty;
}

// The state of a gap behind the stop, and from where on it may be another: an open gap becomes too
// narrow, one that is opening may be wide enough at any stop, and an empty one stays empty.
void TileLines::addState(size_t gap) {
  const auto x = static_cast<double>(here.x);
  const bool isKnown = gap >= spansFrom && gap < spansTo;
  const Span span = isKnown ? spans[gap] : spanBetween(now.below(gap), now.above(gap), x);
  const double largest = span.tolerance;
  const auto widthAt = [&](double position) {
    return courseOf(now.above(gap)).at(position) - courseOf(now.below(gap)).at(position);
  };
  if (span.width > largest || widthAt(static_cast<double>(here.next)) > largest) {
    newStates.push_back(0);
    newNarrowings.push_back(narrowingOf(span));
    return;
  }
  const bool opens = span.last > largest;
  newStates.push_back(opens ? Opening : Empty);
  newNarrowings.push_back(opens ? -Infinity : Infinity);
}

// From where on an open gap may be too narrow before it ends.
double TileLines::narrowingOf(const Span& span) const {
  if (span.last > span.tolerance || span.width <= span.tolerance) return Infinity;
  const auto x = static_cast<double>(here.x);
  return x + (span.width - span.tolerance) / (span.width - span.last) * (span.end - x);
}

void TileLines::replaceGaps() {
  if (!placeMasks() || !placeGaps()) {
    extendUpwards();
    placeMasks();
    placeGaps();
  }
  oldMasks.resize((here.oldTo - here.from) * wordCount);
  std::copy_n(masks.data() + here.from * wordCount, oldMasks.size(), oldMasks.data());
  fitChange(masks, wordCount, 0);
  fitChange(now.empty, 1, 0);
  fitChange(narrowFrom, 1, 0);
  const size_t count = here.newTo - here.from;
  std::copy_n(newMasks.data(), count * wordCount, masks.data() + here.from * wordCount);
  char* const states = now.empty.data() + here.from;
  double* const narrowings = narrowFrom.data() + here.from;
  for (size_t i = 0; i < count; ++i) narrowings[i] = newNarrowings[i];
  for (size_t i = 0; i < count; ++i) states[i] = newStates[i];
}

// \return false if what covers the gaps above has changed, too
bool TileLines::placeMasks() {
  const size_t gaps = here.newTo - here.from;
  const bool isTop = here.newTo == now.lines.size() + 1;
  newMasks.resize((gaps + 1) * wordCount);
  const auto cross = [this](const MaskWord* mask, size_t line, MaskWord* result) {
    const MaskWord* toggle = &toggles[static_cast<size_t>(now.lines[line]) * wordCount];
    if (wordCount == 1) {
      *result = *mask ^ *toggle;
      return;
    }
    for (size_t w = 0; w < wordCount; ++w) result[w] = mask[w] ^ toggle[w];
  };
  if (here.from == 0) {
    std::copy(lowerMask.begin(), lowerMask.end(), newMasks.begin());
  } else {
    cross(&masks[(here.from - 1) * wordCount], here.from - 1, newMasks.data());
  }
  for (size_t i = 1; i < gaps + (isTop ? 0 : 1); ++i)
    cross(&newMasks[(i - 1) * wordCount], here.from + i - 1, &newMasks[i * wordCount]);
  if (isTop) return true;
  return std::equal(newMasks.begin() + static_cast<std::ptrdiff_t>(gaps * wordCount),
                    newMasks.begin() + static_cast<std::ptrdiff_t>((gaps + 1) * wordCount),
                    masks.begin() + static_cast<std::ptrdiff_t>(here.oldTo * wordCount));
}

// \return false if no gap is left that is not empty
bool TileLines::placeGaps() {
  newStates.clear();
  newNarrowings.clear();
  for (size_t gap = here.from; gap < here.newTo; ++gap) addState(gap);
  const auto isOpen = [](char state) { return state == 0; };
  const auto oldFrom = old.empty.begin() + static_cast<std::ptrdiff_t>(here.from);
  const auto oldTo = old.empty.begin() + static_cast<std::ptrdiff_t>(here.oldTo);
  if (std::any_of(newStates.begin(), newStates.end(), isOpen) ||
      std::any_of(old.empty.begin(), oldFrom, isOpen) ||
      std::any_of(oldTo, old.empty.end(), isOpen))
    return true;
  // A tile so low that nothing has a height in it.
  if (here.newTo < now.lines.size() + 1) return false;
  newStates.back() = 0;
  newNarrowings.back() = Infinity;
  return true;
}

}  // namespace Lumivane::Visibility
