#include "visibility/TileSweep.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Lumivane::Visibility {

Sides TileSweep::run(const Tile& sweptTile, const TileContent& content) {
  tile = sweptTile;
  planes.gather(tile, content);
  lines.gather(tile, content, planes);
  cuts.clear();
  const size_t areas = parts.areas.size();
  const size_t vertices = parts.vertices.size();
  const size_t pieces = parts.pieces.size();
  const size_t stretches = parts.stretches.size();
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
    lines.dropCrossingLines();
    for (const PlanePair& pair : cuts) lines.addCrossingLine(planes, pair.a, pair.b);
    knownCuts = cuts.size();
  }
}

void TileSweep::sweep() {
  lines.start();
  planesCross = false;
  newGaps.clear();
  sides = Sides{};
  lower = upper = OpenStretch{};
  const std::vector<Coordinate>& stops = lines.allStops();
  for (size_t k = 0; k + 1 < stops.size(); ++k) {
    lines.advance(stops[k], stops[k + 1]);
    const size_t suffix = lines.sameSuffix();
    stopAt({stops[k], stops[k + 1], k == 0, false, lines.samePrefix(),
            lines.before().gapCount() - suffix, lines.behind().gapCount() - suffix});
  }
  lines.finish();
  stopAt({tile.x1, tile.x1, false, true, 0, lines.before().gapCount(), 0});
}

void TileSweep::stopAt(const Change& change) {
  if (!change.first && !change.last && change.from == change.oldTo && change.from == change.newTo)
    return;
  std::swap(oldGaps, newGaps);
  for (size_t i = change.from; i < change.oldTo; ++i) closeGap(i, change.x);
  findSeen(change);
  if (passHidden(change)) return;
  openAreas(change);
  placeMarks(change);
  if (change.first) {
    sideStretches(sides[Left], true, change.x);
  } else if (change.last) {
    sideStretches(sides[Right], false, change.x);
  } else {
    joinAcross(change);
  }
  kept.clear();
  if (!change.last) openWalls(change);
  if (!change.first) closeWalls(change);
  extendBorders(change);
}

// The gaps behind a stop, as yet without areas, and what is seen in the middle of each.
void TileSweep::findSeen(const Change& change) {
  const TileLines::Slab& slab = lines.behind();
  newGaps.resize(slab.gapCount());
  std::copy_n(oldGaps.begin(), change.from, newGaps.begin());
  std::copy(oldGaps.begin() + static_cast<std::ptrdiff_t>(change.oldTo), oldGaps.end(),
            newGaps.begin() + static_cast<std::ptrdiff_t>(change.newTo));
  const double x = 0.5 * (static_cast<double>(change.x) + static_cast<double>(change.next));
  for (size_t k = change.from; k < change.newTo; ++k) {
    newGaps[k] = {-1, -1, change.x, -1};
    if (slab.empty[k] != 0) continue;
    const double below = lines.exactHeightAt(slab.below(k), x);
    const double above = lines.exactHeightAt(slab.above(k), x);
    newGaps[k].slot = planes.seenAt(lines.maskBehind(k), x, 0.5 * (below + above));
  }
}

bool TileSweep::showsSlot(int area, std::int32_t slot) const {
  const Area& shown = parts.areas[static_cast<size_t>(area)];
  if (slot < 0) return shown.region == SkyRegion;
  const TilePlanes::Slot& s = planes[slot];
  const bool beyond = s.position == LookPolygons::Beyond;
  return shown.polygon == s.number && shown.region == (beyond ? BeyondRegion : s.region);
}

// Where one area is seen in all gaps on both sides of a stop, what changes there is hidden: the
// area goes on, and so do the walls around it.
bool TileSweep::passHidden(const Change& change) {
  if (change.first || change.last) return false;
  const size_t from = change.from;
  if (from == change.oldTo || from == change.newTo) return false;
  const std::vector<char>& emptyBefore = lines.before().empty;
  const std::vector<char>& emptyBehind = lines.behind().empty;
  if (emptyBefore[from] != 0 || emptyBefore[change.oldTo - 1] != 0 || emptyBehind[from] != 0 ||
      emptyBehind[change.newTo - 1] != 0)
    return false;
  const int area = oldGaps[from].area;
  for (size_t i = from; i < change.oldTo; ++i)
    if (emptyBefore[i] == 0 && oldGaps[i].area != area) return false;
  for (size_t k = from; k < change.newTo; ++k)
    if (emptyBehind[k] == 0 && !showsSlot(area, newGaps[k].slot)) return false;
  for (size_t k = from; k < change.newTo; ++k)
    if (emptyBehind[k] == 0) newGaps[k].area = area;
  newGaps[change.newTo - 1].wallVertex = oldGaps[change.oldTo - 1].wallVertex;
  return true;
}

// Neighbours with one label are one area.
void TileSweep::openAreas(const Change& change) {
  int below = -1;
  for (size_t k = change.from; k > 0 && below < 0; --k) below = newGaps[k - 1].area;
  for (size_t k = change.from; k < change.newTo; ++k) {
    if (lines.behind().empty[k] != 0) continue;
    Gap& gap = newGaps[k];
    if (below < 0 || !showsSlot(below, gap.slot)) {
      Area area{SkyRegion, -1};
      if (gap.slot >= 0) {
        const TilePlanes::Slot& slot = planes[gap.slot];
        area = {slot.position == LookPolygons::Beyond ? BeyondRegion : slot.region, slot.number};
      }
      below = parts.addArea(area.region, area.polygon);
    }
    gap.area = below;
  }
}

// What lies along the lower and the upper side of the tile.
void TileSweep::extendBorders(const Change& change) {
  const auto isOpen = [](const Gap& gap) { return gap.area >= 0; };
  const auto first = std::find_if(newGaps.begin(), newGaps.end(), isOpen);
  const auto last = std::find_if(newGaps.rbegin(), newGaps.rend(), isOpen);
  const std::vector<int>& heights = change.last ? oldPoints : newPoints;
  borderStretch(sides[Bottom], lower, first == newGaps.end() ? -1 : first->area, change.x,
                heights.front());
  borderStretch(sides[Top], upper, last == newGaps.rend() ? -1 : last->area, change.x,
                heights.back());
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

TileSweep::Mark TileSweep::markAt(const TileLines::Slab& slab, size_t border, bool isNew,
                                  Coordinate x) const {
  if (border == 0) return {tile.y0, Snap, 3};
  if (border > slab.order.size()) return {tile.y1, Snap, 3};
  const TileLines::Line& line = lines[slab.order[border - 1]];
  const bool end = (line.fixedA && line.xa == x) || (line.fixedB && line.xb == x);
  return {isNew ? slab.low[border - 1] : slab.high[border - 1], line.tolerance, end ? 2 : 1};
}

// The heights of all borders of changed gaps at a stop.
void TileSweep::placeMarks(const Change& change) {
  marks.clear();
  if (!change.first)
    for (size_t b = change.from; b <= change.oldTo; ++b)
      marks.push_back(markAt(lines.before(), b, false, change.x));
  const size_t oldCount = marks.size();
  if (!change.last)
    for (size_t b = change.from; b <= change.newTo; ++b)
      marks.push_back(markAt(lines.behind(), b, true, change.x));
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
  while (nextOld < oldCount || nextNew < count) {
    const bool isOld =
        nextOld < oldCount && (nextNew == count || marks[nextOld].y <= marks[nextNew].y);
    const Mark& mark = marks[isOld ? nextOld : nextNew];
    if (points.empty() || mark.y - before.y > std::max(before.tolerance, mark.tolerance)) {
      points.push_back({mark.y, -1});
      rank = mark.rank;
    } else if (mark.rank > rank) {
      points.back().y = mark.y;
      rank = mark.rank;
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
    const int left = oldGaps[i].area;
    const int right = newGaps[k].area;
    if (from < to && left >= 0 && right >= 0) {
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

void TileSweep::emitUpright(int from, int to, Coordinate x, int left, int right) {
  const int start = vertexOf(from, x);
  const int end = vertexOf(to, x);
  const Coordinate low = points[static_cast<size_t>(from)].y;
  const Coordinate high = points[static_cast<size_t>(to)].y;
  Piece piece{start, end, left, right, NoSource, false, false};
  int best = 0;
  for (const TileLines::Line& line : lines.all()) {
    const bool upright = line.xb - line.xa <= 2 && line.xa - Snap <= x && x <= line.xb + Snap;
    if (!upright || std::max(line.ya, line.yb) < low || std::min(line.ya, line.yb) > high) continue;
    chooseSource(line, parts.regionOf(left), parts.regionOf(right), piece, best);
  }
  parts.pieces.push_back(piece);
}

void TileSweep::sideStretches(SideList& side, bool isNew, Coordinate x) {
  const std::vector<int>& heights = isNew ? newPoints : oldPoints;
  const std::vector<Gap>& gaps = isNew ? newGaps : oldGaps;
  const auto add = [&](int from, int to, int area) {
    const int fromVertex = vertexOf(from, x);
    const int toVertex = vertexOf(to, x);
    parts.addStretch(side, points[static_cast<size_t>(from)].y, points[static_cast<size_t>(to)].y,
                     fromVertex, toVertex, area);
  };
  int begin = -1;
  int end = -1;
  int area = -1;
  for (size_t i = 0; i < gaps.size(); ++i) {
    if (gaps[i].area < 0 || heights[i] >= heights[i + 1]) continue;
    const int here = gaps[i].area;
    if (area < 0 || parts.regionOf(area) != parts.regionOf(here)) {
      if (area >= 0) add(begin, end, area);
      begin = heights[i];
      area = here;
    }
    end = heights[i + 1];
  }
  if (area >= 0) add(begin, end, area);
}

// Visits the pairs of gaps that have nothing but empty ones between them, of which one gap at least
// has changed.
template <class Visit>
void TileSweep::forWalls(const TileLines::Slab& slab, size_t from, size_t to, Visit visit) const {
  const std::vector<char>& empty = slab.empty;
  size_t below = from;
  while (below > 0 && empty[below - 1] != 0) --below;
  below = below > 0 ? below - 1 : 0;
  while (below < empty.size() && empty[below] != 0) ++below;
  while (below < to) {
    size_t above = below + 1;
    while (above < empty.size() && empty[above] != 0) ++above;
    if (above == empty.size()) return;
    if (above >= from) visit(below, above);
    below = above;
  }
}

void TileSweep::openWalls(const Change& change) {
  forWalls(lines.behind(), change.from, change.newTo, [&](size_t below, size_t above) {
    if (!divides(newGaps[below], newGaps[above])) {
      parts.areaSets.join(newGaps[below].area, newGaps[above].area);
    } else if (!keepWall(below, above)) {
      const size_t border = std::max(below + 1, change.from);
      newGaps[below].wallVertex = vertexOf(newPoints[border - change.from], change.x);
    }
  });
}

void TileSweep::closeWalls(const Change& change) {
  const TileLines::Slab& slab = lines.before();
  forWalls(slab, change.from, change.oldTo, [&](size_t below, size_t above) {
    const bool goesOn = std::find(kept.begin(), kept.end(), slab.above(below)) != kept.end();
    if (goesOn || !divides(oldGaps[below], oldGaps[above])) return;
    const size_t border = std::max(below + 1, change.from);
    emitWall(oldGaps[below].wallVertex, vertexOf(oldPoints[border - change.from], change.x), below,
             above);
  });
}

// Whether a wall of the old slab goes on with the same lines between the same areas: then it is one
// piece.
bool TileSweep::keepWall(size_t below, size_t above) {
  const TileLines::Slab& before = lines.before();
  const TileLines::Slab& behind = lines.behind();
  const int line = behind.above(below);
  size_t i = 0;
  while (i < oldGaps.size() && (before.empty[i] != 0 || before.above(i) != line)) ++i;
  const size_t k = i + above - below;
  if (k >= oldGaps.size() || before.empty[k] != 0) return false;
  for (size_t n = 1; n < above - below; ++n)
    if (before.empty[i + n] == 0 || before.above(i + n) != behind.above(below + n)) return false;
  const auto sameArea = [this](const Gap& a, const Gap& b) {
    return parts.areas[static_cast<size_t>(a.area)].polygon ==
               parts.areas[static_cast<size_t>(b.area)].polygon &&
           parts.areaSets.find(a.area) == parts.areaSets.find(b.area);
  };
  if (!sameArea(oldGaps[i], newGaps[below]) || !sameArea(oldGaps[k], newGaps[above])) return false;
  newGaps[below].wallVertex = oldGaps[i].wallVertex;
  kept.push_back(line);
  return true;
}

void TileSweep::emitWall(int vertexFrom, int vertexTo, size_t below, size_t above) {
  if (vertexFrom == vertexTo) return;
  const int lowerArea = oldGaps[below].area;
  const int upperArea = oldGaps[above].area;
  Piece piece{vertexFrom, vertexTo, upperArea, lowerArea, NoSource, false, false};
  int best = 0;
  for (size_t i = below; i < above; ++i)
    chooseSource(lines[lines.before().order[i]], parts.regionOf(lowerArea),
                 parts.regionOf(upperArea), piece, best);
  parts.pieces.push_back(piece);
}

// The border is the edge that the regions on both sides share; else one of an own edge of either;
// else the line where the two run through each other.
void TileSweep::chooseSource(const TileLines::Line& line, std::int32_t regionA,
                             std::int32_t regionB, Piece& piece, int& best) const {
  const auto offer = [&](int rank, Source source, bool inner, bool shared) {
    if (rank <= best) return;
    best = rank;
    piece.source = source;
    piece.inner = inner;
    piece.shared = shared;
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
void TileSweep::closeGap(size_t gap, Coordinate to) {
  const std::int32_t seen = oldGaps[gap].slot;
  if (seen < 0 || planes[seen].position == LookPolygons::Beyond) return;
  const TileLines::Slab& slab = lines.before();
  const auto height = [&](int line, Coordinate x) {
    if (line == TileLines::LowerBorder) return static_cast<double>(tile.y0);
    if (line == TileLines::UpperBorder) return static_cast<double>(tile.y1);
    return static_cast<double>(lines.heightAt(line, x));
  };
  double corners[4][2];
  int count = 0;
  for (const Coordinate x : {oldGaps[gap].since, to})
    for (const int line : {slab.below(gap), slab.above(gap)}) {
      corners[count][0] = static_cast<double>(x);
      corners[count][1] = height(line, x);
      ++count;
    }
  planes.forCrossing(lines.maskBefore(gap), seen, corners, count, [&](std::int32_t other) {
    addCut(std::min(other, seen), std::max(other, seen));
  });
}

void TileSweep::addCut(std::int32_t slotA, std::int32_t slotB) {
  const bool known = std::any_of(cuts.begin(), cuts.end(), [&](const PlanePair& cut) {
    return cut.a == slotA && cut.b == slotB;
  });
  if (known) return;
  cuts.push_back({slotA, slotB});
  planesCross = true;
}

}  // namespace Lumivane::Visibility
