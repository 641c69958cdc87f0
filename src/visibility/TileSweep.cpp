#include "visibility/TileSweep.h"

#include <algorithm>
#include <cmath>
#include <utility>

// Takes a tile apart: in every gap between two stops one polygon is in front. Where the planes of
// two polygons cross within a gap, their common line is added and the tile swept again, until none
// cross. Neighbouring gaps that show one region are joined, so areas do not depend on how tiles
// were cut.
namespace Lumivane::Visibility {

Sides TileSweep::run(const Tile& sweptTile, const TileContent& content) {
  tile = sweptTile;
  planes.gather(tile, content);
  lines.gather(tile, content, planes);
  cuts.clear();
  stopsBehind.clear();
  size_t knownCuts = 0;
  for (;;) {
    parts.clear();
    sweep();
    std::sort(
        cuts.begin() + static_cast<std::ptrdiff_t>(knownCuts), cuts.end(),
        [](const PlanePair& a, const PlanePair& b) { return a.a != b.a ? a.a < b.a : a.b < b.b; });
    if (!planesCross) return append(allParts, parts, sides);
    lines.dropCrossingLines();
    for (const PlanePair& pair : cuts) lines.addCrossingLine(planes, pair.a, pair.b);
    for (const Coordinate x : stopsBehind) lines.addBreak(x);
    knownCuts = cuts.size();
  }
}

void TileSweep::sweep() {
  lines.start();
  planesCross = false;
  gaps.clear();
  sides = Sides{};
  lower = upper = OpenStretch{};
  while (lines.advance()) stopAt(lines.change());
}

void TileSweep::stopAt(const Change& change) {
  replaceGaps(change);
  for (size_t i = change.from; i < change.oldTo; ++i) closeGap(i);
  findSeen(change);
  if (passHidden(change)) return;
  openAreas(change);
  placeMarks(change);
  if (change.first) {
    sideStretches(sides[Left], gaps, newPoints, change.x);
  } else if (change.last) {
    sideStretches(sides[Right], oldGaps, oldPoints, change.x);
  } else {
    joinAcross(change);
  }
  kept.clear();
  if (!change.last) openWalls(change);
  if (!change.first) closeWalls(change);
  extendBorders(change);
}

// The gaps behind a stop, as yet without what is seen in them.
void TileSweep::replaceGaps(const Change& change) {
  const auto at = [this](size_t i) { return gaps.begin() + static_cast<std::ptrdiff_t>(i); };
  oldGaps.clear();
  for (size_t i = change.from; i < change.oldTo; ++i) oldGaps.push_back(gaps[i]);
  if (change.newTo > change.oldTo) gaps.insert(at(change.oldTo), change.newTo - change.oldTo, {});
  if (change.newTo < change.oldTo) gaps.erase(at(change.newTo), at(change.oldTo));
  std::fill(at(change.from), at(change.newTo), Gap{-1, -1, change.x, -1});
}

// In the middle between a stop and the next one, where the place matters.
void TileSweep::findSeen(const Change& change) {
  const TileLines::Order& order = lines.behind();
  const double x = 0.5 * (static_cast<double>(change.x) + static_cast<double>(change.next));
  for (size_t k = change.from; k < change.newTo; ++k) {
    if (order.isEmpty(k)) continue;
    const MaskWord* const mask = lines.maskBehind(k);
    std::int32_t& slot = gaps[k].slot;
    slot = planes.seenEverywhere(mask);
    if (slot != TilePlanes::Unclear) continue;
    const double below = lines.exactHeightAt(order.below(k), x);
    const double above = lines.exactHeightAt(order.above(k), x);
    slot = planes.seenAt(mask, x, 0.5 * (below + above));
  }
}

// Where the same areas are seen in the gaps on both sides of a stop, with the same lines between
// them, what changes there is hidden: the areas go on, and so do the walls around them.
bool TileSweep::passHidden(const Change& change) {
  if (change.first || change.last) return false;
  const size_t from = change.from;
  if (from == change.oldTo || from == change.newTo) return false;
  const TileLines::Order& before = lines.before();
  const TileLines::Order& behind = lines.behind();
  if (before.isEmpty(from) || before.isEmpty(change.oldTo - 1) || behind.isEmpty(from) ||
      behind.isEmpty(change.newTo - 1))
    return false;
  size_t i = from;
  const Gap* shown = &oldGaps.front();
  for (size_t k = from; k < change.newTo; ++k) {
    Gap& gap = gaps[k];
    if (behind.isEmpty(k)) continue;
    if (gap.slot != shown->slot) {
      i = endOfArea(change, i);
      if (k == from || i == change.oldTo || before.below(i) != behind.below(k)) return false;
      // What a steep line passes around the stop moves the marks of others.
      if (anySteep(before, from, change.oldTo) || anySteep(behind, from, change.newTo))
        return false;
      if (before.isEmpty(i) || before.isEmpty(i - 1) || behind.isEmpty(k - 1)) return false;
      shown = &oldGaps[i - from];
      if (gap.slot != shown->slot) return false;
      gaps[k - 1].wallVertex = oldGaps[i - 1 - from].wallVertex;
    }
    gap.area = shown->area;
  }
  if (endOfArea(change, i) != change.oldTo) return false;
  gaps[change.newTo - 1].wallVertex = oldGaps.back().wallVertex;
  return true;
}

bool TileSweep::anySteep(const TileLines::Order& order, size_t from, size_t to) const {
  for (size_t border = from; border <= to; ++border)
    if (lines.isSteep(order.border(border))) return true;
  return false;
}

// The first of the changed gaps before the stop, above one that is not empty, that shows another
// area.
size_t TileSweep::endOfArea(const Change& change, size_t gap) const {
  const int area = oldGaps[gap - change.from].area;
  while (gap < change.oldTo &&
         (oldGaps[gap - change.from].area < 0 || oldGaps[gap - change.from].area == area))
    ++gap;
  return gap;
}

// Neighbours with one label are one area.
void TileSweep::openAreas(const Change& change) {
  const Gap* below = nullptr;
  for (size_t k = change.from; k > 0 && below == nullptr; --k)
    if (gaps[k - 1].area >= 0) below = &gaps[k - 1];
  for (size_t k = change.from; k < change.newTo; ++k) {
    if (lines.behind().isEmpty(k)) continue;
    Gap& gap = gaps[k];
    gap.area = below != nullptr && below->slot == gap.slot ? below->area : addArea(gap.slot);
    below = &gap;
  }
}

int TileSweep::addArea(std::int32_t slot) {
  if (slot < 0) return parts.addArea(SkyRegion, -1);
  const TilePlanes::Slot& s = planes[slot];
  return parts.addArea(s.position == LookPolygons::Beyond ? BeyondRegion : s.region, s.number);
}

// What lies along the lower and the upper side of the tile.
void TileSweep::extendBorders(const Change& change) {
  const auto isOpen = [](const Gap& gap) { return gap.area >= 0; };
  const auto first = std::find_if(gaps.begin(), gaps.end(), isOpen);
  const auto last = std::find_if(gaps.rbegin(), gaps.rend(), isOpen);
  const std::vector<int>& borders = change.last ? oldPoints : newPoints;
  borderStretch(sides[Bottom], lower, first == gaps.end() ? -1 : first->area, change.x,
                borders.front());
  borderStretch(sides[Top], upper, last == gaps.rend() ? -1 : last->area, change.x, borders.back());
}

// Ends the open stretch of the lower or upper side where another area begins to lie along it. The
// ends are those of the borders that meet the side there.
void TileSweep::borderStretch(SideList& side, OpenStretch& open, int area, Coordinate x,
                              int point) {
  if (area == open.area) return;
  if (area >= 0 && open.area >= 0 && parts.areaSets.find(area) == parts.areaSets.find(open.area))
    return;
  const int here = vertexOf(point, x);
  if (open.area >= 0) parts.addStretch(side, open.since, x, open.vertex, here, open.area);
  open = {area, x, here};
}

TileSweep::Mark TileSweep::markAt(const TileLines::Order& order, size_t border,
                                  Coordinate x) const {
  if (border == 0) return {tile.y0, Snap, 3};
  if (border == order.gapCount()) return {tile.y1, Snap, 3};
  const int number = order.lines[border - 1];
  const TileLines::Line& line = lines[number];
  const bool end = (line.fixedA && line.xa == x) || (line.fixedB && line.xb == x);
  return {lines.heightAt(number, x), line.tolerance, end ? 2 : 1};
}

// None lower than the one before.
void TileSweep::addMarks(const TileLines::Order& order, size_t from, size_t to, Coordinate x) {
  const size_t first = marks.size();
  for (size_t border = from; border <= to; ++border) marks.push_back(markAt(order, border, x));
  if (anySteep(order, from, to)) placeSteepMarks(order, first, from, x);
  Coordinate least = tile.y0;
  for (size_t i = first; i < marks.size(); ++i) {
    least = std::max(least, marks[i].y);
    marks[i].y = least;
  }
}

// A line so steep that it passes others between a whole number and the next is known by these: its
// mark is at that height of the line's way around the stop that is nearest to its own between the
// marks of its neighbours.
void TileSweep::placeSteepMarks(const TileLines::Order& order, size_t firstMark, size_t firstBorder,
                                Coordinate x) {
  const size_t count = marks.size() - firstMark;
  heights.clear();
  for (size_t i = 0; i < count; ++i) {
    const Coordinate y = marks[firstMark + i].y;
    const int line = order.border(firstBorder + i);
    heights.push_back(lines.isSteep(line) ? lines.wayAround(line, x) : TileLines::Heights{y, y});
  }
  for (size_t i = 1; i < count; ++i) heights[i].low = std::max(heights[i].low, heights[i - 1].low);
  for (size_t i = count - 1; i-- > 0;)
    heights[i].high = std::min(heights[i].high, heights[i + 1].high);
  for (size_t i = 0; i < count; ++i) {
    const auto [low, high] = std::minmax(heights[i].low, heights[i].high);
    Coordinate& y = marks[firstMark + i].y;
    y = std::clamp(y, low, high);
  }
  // What a line passes around the stop it passes at the stop.
  const auto isSteep = [&](size_t i) { return lines.isSteep(order.border(firstBorder + i)); };
  const auto passes = [&](size_t i, Coordinate y) {
    const int line = order.border(firstBorder + i);
    if (lines[line].xa == x || lines[line].xb == x) return false;
    const TileLines::Heights way = lines.wayAround(line, x);
    return way.low <= y && y <= way.high;
  };
  size_t known = count;  // the last one that is not steep
  for (size_t i = 0; i < count; ++i) {
    if (!isSteep(i)) known = i;
    if (known < i && passes(i, marks[firstMark + known].y))
      for (size_t k = known; k < i; ++k) marks[firstMark + k + 1].y = marks[firstMark + known].y;
  }
  known = count;
  for (size_t i = count; i-- > 0;) {
    if (!isSteep(i)) known = i;
    if (known < count && i < known && passes(i, marks[firstMark + known].y))
      for (size_t k = i; k < known; ++k) marks[firstMark + k].y = marks[firstMark + known].y;
  }
}

// The heights of all borders of changed gaps at a stop.
void TileSweep::placeMarks(const Change& change) {
  marks.clear();
  if (!change.first) addMarks(lines.before(), change.from, change.oldTo, change.x);
  const size_t oldCount = marks.size();
  if (!change.last) addMarks(lines.behind(), change.from, change.newTo, change.x);
  if (!change.first && !change.last) {
    // The borders of what changes go on. A steep one has other neighbours before the stop than
    // behind it, and would be at two heights.
    Mark& lowest = marks[oldCount];
    Mark& highest = marks[oldCount - 1];
    lowest.y = marks.front().y = std::min(lowest.y, marks.front().y);
    highest.y = marks.back().y = std::max(highest.y, marks.back().y);
  }
  joinMarks(oldCount);
}

// What is nearly one becomes one. The marks on either side go upwards.
void TileSweep::joinMarks(size_t oldCount) {
  const size_t count = marks.size();
  oldPoints.resize(oldCount);
  newPoints.resize(count - oldCount);
  points.clear();
  size_t nextOld = 0;
  size_t nextNew = oldCount;
  Mark before{};
  int rank = 0;
  // Of the mark whose height the point has; of steep lines heights are known less well.
  Coordinate tolerance = 0;
  constexpr Coordinate MuchSteeper = 4;
  while (nextOld < oldCount || nextNew < count) {
    const bool isOld =
        nextOld < oldCount && (nextNew == count || marks[nextOld].y <= marks[nextNew].y);
    const Mark& mark = marks[isOld ? nextOld : nextNew];
    if (points.empty() || mark.y - before.y > std::max(before.tolerance, mark.tolerance)) {
      points.push_back({mark.y, -1});
      rank = mark.rank;
      tolerance = mark.tolerance;
    } else if (mark.rank > rank ||
               (mark.rank == rank && MuchSteeper * mark.tolerance < tolerance)) {
      points.back().y = mark.y;
      rank = mark.rank;
      tolerance = mark.tolerance;
    }
    before = mark;
    const int point = static_cast<int>(points.size()) - 1;
    if (isOld) {
      oldPoints[nextOld++] = point;
    } else {
      newPoints[nextNew++ - oldCount] = point;
    }
  }
}

int TileSweep::vertexOf(int point, Coordinate x) {
  Point& p = points[static_cast<size_t>(point)];
  if (p.vertex < 0) p.vertex = parts.addVertex(tile.face, x, p.y);
  return p.vertex;
}

// Walks along the line of the stop: where an old gap and a new one lie opposite, they are one area
// or have a border there.
void TileSweep::joinAcross(const Change& change) {
  size_t i = change.from;
  size_t k = change.from;
  while (i < change.oldTo && k < change.newTo) {
    const int oldLow = oldPoints[i - change.from];
    const int oldHigh = oldPoints[i - change.from + 1];
    const int newLow = newPoints[k - change.from];
    const int newHigh = newPoints[k - change.from + 1];
    const int from = std::max(oldLow, newLow);
    const int to = std::min(oldHigh, newHigh);
    if (from < to) {
      const int left =
          areaAcross([this](size_t gap) { return gapBefore(gap).area; }, lines.before(), i);
      const int right =
          areaAcross([this](size_t gap) { return gaps[gap].area; }, lines.behind(), k);
      if (parts.regionOf(left) == parts.regionOf(right)) {
        parts.areaSets.join(left, right);
      } else {
        emitUpright(from, to, change.x, left, right);
      }
    }
    if (oldHigh <= newHigh) ++i;
    if (newHigh <= oldHigh) ++k;
  }
}

// What is seen in a gap. The lines around an empty one may be steep and have marks far apart: then
// it is as above, since the wall of all lines with nothing between them is at the lowest.
template <class AreaOf>
int TileSweep::areaAcross(AreaOf areaOf, const TileLines::Order& order, size_t gap) {
  for (size_t i = gap; i < order.gapCount(); ++i)
    if (areaOf(i) >= 0) return areaOf(i);
  while (gap > 0 && areaOf(gap) < 0) --gap;
  return areaOf(gap);
}

void TileSweep::emitUpright(int from, int to, Coordinate x, int left, int right) {
  const int start = vertexOf(from, x);
  const int end = vertexOf(to, x);
  const Coordinate low = points[static_cast<size_t>(from)].y;
  const Coordinate high = points[static_cast<size_t>(to)].y;
  Piece piece{start, end, left, right, NoSource, false, false};
  int best = 0;
  for (size_t i = 0; i < lines.all().size(); ++i) {
    const TileLines::Line& line = lines.all()[i];
    const bool upright = line.xb - line.xa <= 2 && line.xa - Snap <= x && x <= line.xb + Snap;
    TileLines::Heights way{std::min(line.ya, line.yb), std::max(line.ya, line.yb)};
    if (!upright) {
      if (!lines.isSteep(static_cast<int>(i)) || x < line.xa || x > line.xb) continue;
      way = lines.wayAround(static_cast<int>(i), x);
    }
    // An edge that only ends beside the piece is another one.
    const Coordinate common = std::min(way.high, high) - std::max(way.low, low);
    if (common < 0 || (common == 0 && high - low > Snap)) continue;
    chooseSource(line, parts.regionOf(left), parts.regionOf(right), piece, best);
  }
  parts.pieces.push_back(piece);
}

// All gaps of the first or the last stop.
void TileSweep::sideStretches(SideList& side, const std::vector<Gap>& allGaps,
                              const std::vector<int>& borders, Coordinate x) {
  const auto add = [&](int from, int to, int area) {
    const int fromVertex = vertexOf(from, x);
    const int toVertex = vertexOf(to, x);
    parts.addStretch(side, points[static_cast<size_t>(from)].y, points[static_cast<size_t>(to)].y,
                     fromVertex, toVertex, area);
  };
  int begin = -1;
  int end = -1;
  int area = -1;
  for (size_t i = 0; i < allGaps.size(); ++i) {
    if (allGaps[i].area < 0 || borders[i] >= borders[i + 1]) continue;
    const int here = allGaps[i].area;
    // Areas of one region may meet in a single point of the side.
    if (area < 0 || parts.areaSets.find(area) != parts.areaSets.find(here)) {
      if (area >= 0) add(begin, end, area);
      begin = area >= 0 ? end : borders.front();
      area = here;
    }
    end = borders[i + 1];
  }
  if (area >= 0) add(begin, borders.back(), area);
}

// Visits the pairs of gaps that have nothing but empty ones between them, of which one gap at least
// has changed.
template <class Visit>
void TileSweep::forWalls(const TileLines::Order& order, size_t from, size_t to, Visit visit) const {
  const size_t count = order.gapCount();
  size_t below = from;
  while (below > 0 && order.isEmpty(below - 1)) --below;
  below = below > 0 ? below - 1 : 0;
  while (below < count && order.isEmpty(below)) ++below;
  while (below < to) {
    size_t above = below + 1;
    while (above < count && order.isEmpty(above)) ++above;
    if (above == count) return;
    if (above >= from) visit(below, above);
    below = above;
  }
}

void TileSweep::openWalls(const Change& change) {
  wallFromBelow = -1;
  forWalls(lines.behind(), change.from, change.newTo, [&](size_t below, size_t above) {
    if (!divides(gaps[below], gaps[above])) {
      parts.areaSets.join(gaps[below].area, gaps[above].area);
    } else if (!keepWall(below, above)) {
      const size_t border = std::max(below + 1, change.from);
      if (below < change.from) wallFromBelow = gaps[below].wallVertex;
      gaps[below].wallVertex = vertexOf(newPoints[border - change.from], change.x);
    }
  });
}

void TileSweep::closeWalls(const Change& change) {
  const TileLines::Order& order = lines.before();
  forWalls(order, change.from, change.oldTo, [&](size_t below, size_t above) {
    const bool goesOn = std::find(kept.begin(), kept.end(), order.above(below)) != kept.end();
    if (goesOn || !divides(gapBefore(below), gapBefore(above))) return;
    const size_t border = std::max(below + 1, change.from);
    const bool replaced = below < change.from && wallFromBelow >= 0;
    emitWall(replaced ? wallFromBelow : gapBefore(below).wallVertex,
             vertexOf(oldPoints[border - change.from], change.x), below, above);
  });
}

// Whether a wall of the old slab goes on with the same lines between the same areas: then it is one
// piece.
bool TileSweep::keepWall(size_t below, size_t above) {
  const Change& change = lines.change();
  const TileLines::Order& before = lines.before();
  const TileLines::Order& behind = lines.behind();
  const int line = behind.above(below);
  size_t i = below;
  if (below >= change.from) {
    i = change.from;
    while (i < change.oldTo && (before.isEmpty(i) || before.above(i) != line)) ++i;
    if (i == change.oldTo) return false;
  }
  const size_t k = i + above - below;
  if (k >= before.gapCount() || before.isEmpty(k)) return false;
  for (size_t n = 1; n < above - below; ++n)
    if (!before.isEmpty(i + n) || before.above(i + n) != behind.above(below + n)) return false;
  const auto sameArea = [this](const Gap& a, const Gap& b) {
    return a.slot == b.slot && parts.areaSets.find(a.area) == parts.areaSets.find(b.area);
  };
  if (!sameArea(gapBefore(i), gaps[below]) || !sameArea(gapBefore(k), gaps[above])) return false;
  // Among other neighbours a steep line may have another height.
  const size_t oldBorder = std::max(i + 1, change.from);
  const size_t newBorder = std::max(below + 1, change.from);
  if (oldPoints[oldBorder - change.from] != newPoints[newBorder - change.from]) return false;
  if (below >= change.from) gaps[below].wallVertex = gapBefore(i).wallVertex;
  kept.push_back(line);
  return true;
}

void TileSweep::emitWall(int vertexFrom, int vertexTo, size_t below, size_t above) {
  if (vertexFrom == vertexTo) return;
  const int lowerArea = gapBefore(below).area;
  const int upperArea = gapBefore(above).area;
  Piece piece{vertexFrom, vertexTo, upperArea, lowerArea, NoSource, false, false};
  int best = 0;
  for (size_t i = below; i < above; ++i)
    chooseSource(lines[lines.before().lines[i]], parts.regionOf(lowerArea),
                 parts.regionOf(upperArea), piece, best);
  parts.pieces.push_back(piece);
}

// The border is the edge that the regions on both sides share; else one of an own edge of either;
// else the line where the two run through each other.
void TileSweep::chooseSource(const TileLines::Line& line, std::int32_t regionA,
                             std::int32_t regionB, Piece& piece, int& best) const {
  // Of edges that coincide the same one is taken in all tiles.
  const auto offer = [&](int rank, Source source, bool inner, bool shared) {
    // It is a docking edge if it is one of all polygons at it.
    if (rank == best && source == piece.source) piece.inner = piece.inner && inner;
    if (rank < best || (rank == best && !sources(source, piece.source))) return;
    best = rank;
    piece.source = source;
    piece.inner = inner;
    piece.shared = shared;
    piece.foreign = rank == 1;
  };
  if (line.crossed[0] >= 0) {
    const TilePlanes::Slot& s = planes[line.crossed[0]];
    const TilePlanes::Slot& t = planes[line.crossed[1]];
    if ((s.region == regionA && t.region == regionB) ||
        (s.region == regionB && t.region == regionA))
      offer(2, crossingSource(std::min(s.number, t.number), std::max(s.number, t.number)), false,
            false);
    return;
  }
  const TileLines::Owner* const owners = lines.ownersOf(line);
  for (std::int32_t i = 0; i < line.ownerCount; ++i) {
    const TileLines::Owner& owner = owners[i];
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
      const TileLines::Owner& other = owners[k];
      const std::int32_t otherRegion = regionOf(other.slot);
      shared = shared || (other.edge == owner.edge && otherRegion != region &&
                          (otherRegion == regionA || otherRegion == regionB));
    }
    offer(shared ? 4 : 3, owner.edge, owner.inner, shared);
  }
}

// What is seen in the middle must be in front in all corners too; where it is not, two regions run
// through each other there.
void TileSweep::closeGap(size_t gap) {
  const Gap& closed = gapBefore(gap);
  const std::int32_t seen = closed.slot;
  if (seen < 0 || planes[seen].position == LookPolygons::Beyond) return;
  if (planes.isClear(lines.maskBefore(gap), seen)) return;
  const TileLines::Order& order = lines.before();
  double corners[4][2];
  int count = 0;
  for (const Coordinate x : {closed.since, lines.change().x})
    for (const int line : {order.below(gap), order.above(gap)}) {
      corners[count][0] = static_cast<double>(x);
      corners[count][1] = lines.exactHeightAt(line, corners[count][0]);
      ++count;
    }
  planes.forCrossing(lines.maskBefore(gap), seen, corners, count, [&](std::int32_t other) {
    const PlanePair pair{std::min(other, seen), std::max(other, seen)};
    if (!addCut(pair)) addStopBehind(pair, closed.since);
  });
}

// \return false if it is known
bool TileSweep::addCut(const PlanePair& pair) {
  const bool known = std::any_of(cuts.begin(), cuts.end(), [&](const PlanePair& cut) {
    return cut.a == pair.a && cut.b == pair.b;
  });
  if (known) return false;
  cuts.push_back(pair);
  planesCross = true;
  return true;
}

// Where a gap begins as near to the line of two planes as rounding, either may be found in front,
// and is shown up to where the gap ends. Behind that place it is found out again.
void TileSweep::addStopBehind(const PlanePair& pair, Coordinate since) {
  constexpr size_t MostStops = 16;
  const double doubt = planes.doubtAround(pair.a, pair.b);
  if (stopsBehind.size() == MostStops || !(doubt < static_cast<double>(lines.change().x - since)))
    return;
  const Coordinate stop = since + nearestWhole(doubt);
  if (std::find(stopsBehind.begin(), stopsBehind.end(), stop) != stopsBehind.end()) return;
  stopsBehind.push_back(stop);
  planesCross = true;
}

}  // namespace Lumivane::Visibility
