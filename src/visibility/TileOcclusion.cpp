#include "visibility/TileOcclusion.h"

#include "visibility/MapParts.h"

#include <algorithm>
#include <array>
#include <cmath>

// First a guess, in plain doubles: which polygons are in front at some places of the tile. Then
// a proof: those few are swept by the same lines and planes as the tile will be, and what lies
// behind their gaps by more than all rounding is hidden.
namespace Lumivane::Visibility {
namespace {

constexpr double Half = static_cast<double>(CubeHalf);
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr int PlacesInRow = 8;
constexpr size_t PlaceCount = PlacesInRow * PlacesInRow;
// Edges that go no further into a gap do not go into it; units of the cube.
constexpr double Touching = 8.0;
// Corners of gaps are known to within this many units.
constexpr double Doubt = 4.0 * static_cast<double>(Snap);

using Bits = std::uint64_t;
constexpr Bits ColumnOfPlaces = (Bits{1} << PlacesInRow) - 1;
constexpr Bits AllPlaces = ~Bits{0} >> (64 - PlaceCount);

// Rows and columns of places, spread evenly over a tile.
struct Places {
  std::array<double, PlacesInRow> x;
  std::array<double, PlacesInRow> y;
  double perWidth;
  double perHeight;

  explicit Places(const Tile& tile) : x(), y() {
    const double width = static_cast<double>(tile.x1 - tile.x0) / PlacesInRow;
    const double height = static_cast<double>(tile.y1 - tile.y0) / PlacesInRow;
    perWidth = 1.0 / width;
    perHeight = 1.0 / height;
    for (int i = 0; i < PlacesInRow; ++i) {
      x[static_cast<size_t>(i)] = static_cast<double>(tile.x0) + (i + 0.5) * width;
      y[static_cast<size_t>(i)] = static_cast<double>(tile.y0) + (i + 0.5) * height;
    }
  }
  // The first column or row behind a coordinate; PlacesInRow if there is none.
  int columnAfter(double c) const { return after((c - x[0]) * perWidth); }
  int rowAfter(double c) const { return after((c - y[0]) * perHeight); }
  static int after(double steps) {
    return static_cast<int>(std::clamp(steps + 1.0, 0.0, static_cast<double>(PlacesInRow)));
  }
};

// Bit Places * column + row of the places that an entry covers, by doubles.
Bits placesCovered(const LookPolygons& polygons, const Tile& tile, const Places& places,
                   const TileEntry& entry, const std::uint32_t* segments) {
  Bits bits = entry.coversCorner ? AllPlaces : 0;
  const auto tileX0 = static_cast<double>(tile.x0);
  const auto tileY0 = static_cast<double>(tile.y0);
  for (std::uint32_t k = 0; k < entry.segmentCount; ++k) {
    const Segment& s = polygons.segment(segments[entry.firstSegment + k]);
    const auto x0 = static_cast<double>(s.x0);
    const auto x1 = static_cast<double>(s.x1);
    const auto y0 = static_cast<double>(s.y0);
    // What is right of where the edge crosses the lower side.
    if ((s.y0 <= tile.y0) != (s.y1 <= tile.y0)) {
      const double run = (x1 - x0) / static_cast<double>(s.y1 - s.y0);
      const double crossing = x0 + run * (tileY0 - y0);
      const int column = places.columnAfter(crossing);
      if (crossing > tileX0 && column < PlacesInRow) bits ^= AllPlaces << (PlacesInRow * column);
    }
    // What is above the edge.
    const int end = places.columnAfter(x1);
    for (int column = places.columnAfter(x0); column < end; ++column) {
      const double height = y0 + s.slope * (places.x[static_cast<size_t>(column)] - x0);
      if (!(height > tileY0)) continue;
      const Bits above = (ColumnOfPlaces << places.rowAfter(height)) & ColumnOfPlaces;
      bits ^= above << (PlacesInRow * column);
    }
  }
  return bits;
}

}  // namespace

// \return whether most of the polygons are behind, so that it is worth to ask which are hidden
bool TileOcclusion::chooseInFront(const Tile& tile, const TileContent& content) {
  const CubeFace& face = CubeFaces[static_cast<size_t>(tile.face)];
  const Places places(tile);
  std::array<double, PlaceCount> nearest;
  std::array<std::int32_t, PlaceCount> inFront;  // entries, then covers; -1 for none
  nearest.fill(-Infinity);
  inFront.fill(-1);
  const auto offer = [&](std::int32_t position, std::int32_t number, Bits bits) {
    const LookPolygon& p = polygons[position];
    for (; bits != 0; bits &= bits - 1) {
      const auto place = static_cast<size_t>(__builtin_ctzll(bits));
      const double value =
          position == LookPolygons::Beyond
              ? Infinity
              : depthAt(p, face, places.x[place / PlacesInRow], places.y[place % PlacesInRow]);
      if (!(value > nearest[place])) continue;
      nearest[place] = value;
      inFront[place] = number;
    }
  };
  const auto entryCount = static_cast<std::int32_t>(content.entryCount);
  for (std::int32_t i = 0; i < entryCount; ++i) {
    const TileEntry& entry = content.entries[i];
    offer(entry.polygon, i, placesCovered(polygons, tile, places, entry, content.segments));
  }
  for (size_t i = 0; i < content.coverCount; ++i)
    offer(content.covers[i], entryCount + static_cast<std::int32_t>(i), AllPlaces);
  chosen.clear();
  chosenEntries.assign(content.entryCount, 0);
  chosenCovers.clear();
  std::sort(inFront.begin(), inFront.end());
  const auto end = std::unique(inFront.begin(), inFront.end());
  for (auto i = inFront.begin(); i != end; ++i) {
    if (*i < 0) continue;
    if (*i < entryCount) {
      chosen.push_back(content.entries[*i]);
      chosenEntries[static_cast<size_t>(*i)] = 1;
    } else {
      chosenCovers.push_back(content.covers[*i - entryCount]);
    }
  }
  return !chosen.empty() && 2 * chosen.size() <= content.entryCount;
}

TileOcclusion::Screen TileOcclusion::screenOf(const Tile& tile, const TileContent& content) {
  Screen screen;
  screen.first = screen.end = gaps.size();
  if (!chooseInFront(tile, content)) return screen;
  const TileContent front{chosen.data(), chosen.size(), content.segments, chosenCovers.data(),
                          chosenCovers.size()};
  planes.gather(tile, front);
  lines.gather(tile, front, planes);
  screen.floor = Infinity;
  screen.tile = tile;
  sweep(screen);
  screen.end = gaps.size();
  return screen;
}

TileOcclusion::LoneScreen TileOcclusion::copyOf(const Screen& screen) const {
  LoneScreen copy;
  copy.screen = screen;
  const auto from = static_cast<std::ptrdiff_t>(screen.first);
  const auto to = static_cast<std::ptrdiff_t>(screen.end);
  copy.gaps.assign(gaps.begin() + from, gaps.begin() + to);
  copy.frames.assign(frames.begin() + from, frames.begin() + to);
  return copy;
}

TileOcclusion::Screen TileOcclusion::add(const LoneScreen& other) {
  Screen screen = other.screen;
  screen.first = gaps.size();
  gaps.insert(gaps.end(), other.gaps.begin(), other.gaps.end());
  frames.insert(frames.end(), other.frames.begin(), other.frames.end());
  screen.end = gaps.size();
  return screen;
}

void TileOcclusion::sweep(Screen& screen) {
  lines.start();
  open.clear();
  while (lines.advance()) {
    const TileLines::Change& change = lines.change();
    const auto x = static_cast<double>(change.x);
    for (size_t i = change.from; i < change.oldTo; ++i) close(i, open[i], x, screen);
    const auto at = [this](size_t i) { return open.begin() + static_cast<std::ptrdiff_t>(i); };
    if (change.newTo > change.oldTo)
      open.insert(at(change.oldTo), change.newTo - change.oldTo, OpenGap{});
    if (change.newTo < change.oldTo) open.erase(at(change.newTo), at(change.oldTo));
    const double middle = 0.5 * (x + static_cast<double>(change.next));
    const TileLines::Order& order = lines.behind();
    for (size_t k = change.from; k < change.newTo; ++k) {
      open[k] = {x, -1};
      if (order.isEmpty(k)) continue;
      const double y = 0.5 * (lines.exactHeightAt(order.below(k), middle) +
                              lines.exactHeightAt(order.above(k), middle));
      open[k].slot = planes.seenAt(lines.maskBehind(k), middle, y);
    }
  }
}

void TileOcclusion::close(size_t gap, const OpenGap& opened, double to, Screen& screen) {
  const TileLines::Order& order = lines.before();
  if (order.isEmpty(gap)) return;
  ScreenGap g{};
  g.x0 = opened.since;
  g.x1 = to;
  if (!(g.x0 < g.x1)) return;
  for (const int i : {0, 1}) {
    const double x = i == 0 ? g.x0 : g.x1;
    g.below[i] = lines.exactHeightAt(order.below(gap), x);
    g.above[i] = lines.exactHeightAt(order.above(gap), x);
  }
  g.slopes[0] = (g.below[1] - g.below[0]) / (g.x1 - g.x0);
  g.slopes[1] = (g.above[1] - g.above[0]) / (g.x1 - g.x0);
  g.floor = -Infinity;
  g.layer = -1;
  // Of a polygon beside its layer, what is painted later may be farther.
  if (opened.slot >= 0 && !polygons[planes[opened.slot].position].besideItsLayer) {
    const TilePlanes::Slot& s = planes[opened.slot];
    g.a = s.a;
    g.b = s.b;
    g.c = s.c;
    g.error = s.error;
    g.layer = s.layer;
    const auto value = [&](double x, double y) { return s.a * x + s.b * y + s.c; };
    g.floor = std::min({value(g.x0, g.below[0]), value(g.x0, g.above[0]), value(g.x1, g.below[1]),
                        value(g.x1, g.above[1])}) -
              4.0 * s.error - Doubt * (std::fabs(s.a) + std::fabs(s.b));
  }
  screen.floor = std::min(screen.floor, g.floor);
  gaps.push_back(g);
  frames.emplace_back(g.x0, std::min(g.below[0], g.below[1]), g.x1,
                      std::max(g.above[0], g.above[1]));
}

TileOcclusion::Frame::Frame(double x0, double y0, double x1, double y1) : least() {
  const double values[4] = {x0, y0, -x1, -y1};
  for (int i = 0; i < 4; ++i)
    least[i] = static_cast<float>(values[i] - 2e-7 * std::fabs(values[i]));
}

TileOcclusion::Frame TileOcclusion::turnedFrame(const SeenRange& range) {
  Frame frame(-range.x1, -range.y1, -range.x0, -range.y0);
  for (float& value : frame.least) value = -value;
  return frame;
}

bool TileOcclusion::touches(const ScreenGap& gap, const SeenRange& range) {
  const double from = std::max(gap.x0, range.x0);
  const double to = std::min(gap.x1, range.x1);
  if (from > to) return false;
  return range.y1 >= std::min(gap.belowAt(from), gap.belowAt(to)) &&
         range.y0 <= std::max(gap.aboveAt(from), gap.aboveAt(to));
}

// Whether a part of the polygon lies in a gap, by more than rounding. Where no edge goes through
// the gap all of it is covered, or nothing: a walk from the tile's corner to the middle of the gap
// counts edges. Of those that pass its ends or its corner as near as rounding it cannot be said
// whether they count, and then a part may lie in the gap.
bool TileOcclusion::reaches(const ScreenGap& gap, const Tile& tile, const TileEntry& entry,
                            const std::uint32_t* segments) const {
  const double middleX = 0.5 * (gap.x0 + gap.x1);
  const double middleY = 0.5 * (gap.belowAt(middleX) + gap.aboveAt(middleX));
  bool covers = entry.coversCorner;
  const auto isDoubtful = [](double apart) { return std::fabs(apart) <= Touching; };
  const auto lower = static_cast<double>(tile.y0);
  for (std::uint32_t k = 0; k < entry.segmentCount; ++k) {
    const Segment& s = polygons.segment(segments[entry.firstSegment + k]);
    const auto x0 = static_cast<double>(s.x0);
    const auto x1 = static_cast<double>(s.x1);
    const auto y0 = static_cast<double>(s.y0);
    const auto y1 = static_cast<double>(s.y1);
    const auto heightAt = [&](double x) {
      return x <= x0 ? y0 : x >= x1 ? y1 : y0 + s.slope * (x - x0);
    };
    if (x1 > gap.x0 + Touching && x0 < gap.x1 - Touching) {
      const double from = std::max(x0, gap.x0);
      const double to = std::min(x1, gap.x1);
      const double start = from == x0 ? y0 : heightAt(from);
      const double end = to == x1 ? y1 : heightAt(to);
      const double slack = Touching;
      const bool isBelow = start <= gap.belowAt(from) + slack && end <= gap.belowAt(to) + slack;
      const bool isAbove = start >= gap.aboveAt(from) - slack && end >= gap.aboveAt(to) - slack;
      if (!isBelow && !isAbove) return true;
    }
    if ((s.y0 <= tile.y0) != (s.y1 <= tile.y0)) {
      const double crossing = x0 + (x1 - x0) * ((lower - y0) / (y1 - y0));
      if (isDoubtful(crossing - static_cast<double>(tile.x0)) || isDoubtful(crossing - middleX))
        return true;
      covers ^= crossing > static_cast<double>(tile.x0) && crossing < middleX;
    }
    if (x0 <= middleX && middleX < x1) {
      const double height = heightAt(middleX);
      if (isDoubtful(height - lower)) return true;
      covers ^= height > lower && height < middleY;
    }
  }
  return covers;
}

// Everywhere in the gap, but for places so near to its border that they are none.
bool TileOcclusion::isBehind(const ScreenGap& gap, const SeenRange& range,
                             const LookPolygon& polygon, const CubeFace& face) const {
  if (gap.layer == polygon.layer) return false;
  const double a = polygon.plane[face.u] - gap.a;
  const double b = polygon.plane[face.v] - gap.b;
  const double c = polygon.plane[face.axis] * (face.sign * Half) - gap.c;
  const double slope = std::max(std::fabs(a), std::fabs(b));
  const double margin = gap.error + 1e-15 * Half * polygon.weight + 4.0 * slope;
  // The planes may meet at the border if they part within a few units of it.
  const double most = margin <= 16.0 * slope ? margin : -margin;
  const auto behind = [&](double x, double y) { return a * x + b * y + c < most; };
  if (behind(gap.x0, gap.below[0]) && behind(gap.x0, gap.above[0]) &&
      behind(gap.x1, gap.below[1]) && behind(gap.x1, gap.above[1]))
    return true;
  const double x0 = std::max(gap.x0, range.x0);
  const double x1 = std::min(gap.x1, range.x1);
  const double y0 = std::max(range.y0, std::min(gap.belowAt(x0), gap.belowAt(x1)));
  const double y1 = std::min(range.y1, std::max(gap.aboveAt(x0), gap.aboveAt(x1)));
  return behind(x0, y0) && behind(x0, y1) && behind(x1, y0) && behind(x1, y1);
}

// What is seen is often seen where the polygon before it was, so that gap is asked first.
template <class IsBehind>
bool TileOcclusion::behindAll(const Screen& screen, const Frame& turned, IsBehind behind) const {
  const auto shows = [&](size_t i) { return frames[i].meets(turned) && !behind(gaps[i]); };
  if (lastShown >= screen.first && lastShown < screen.end && shows(lastShown)) return false;
  for (size_t i = screen.first; i < screen.end; ++i) {
    if (!shows(i)) continue;
    lastShown = i;
    return false;
  }
  return true;
}

bool TileOcclusion::hides(const Screen& screen, const Tile& tile, const TileEntry& entry,
                          const std::uint32_t* segments) const {
  const LookPolygon& polygon = polygons[entry.polygon];
  // Where two polygons of a layer do not have one plane, the farther may be seen.
  if (screen.isEmpty() || polygon.number < 0 || polygon.besideItsLayer) return false;
  const CubeFace& face = CubeFaces[static_cast<size_t>(tile.face)];
  Coordinate box[4] = {tile.x0, tile.y0, tile.x1, tile.y1};
  if (polygon.onlyFace == tile.face) {
    for (const int i : {0, 1}) box[i] = std::max(box[i], polygon.box[i]);
    for (const int i : {2, 3}) box[i] = std::min(box[i], polygon.box[i]);
  }
  SeenRange range{static_cast<double>(box[0]), static_cast<double>(box[1]),
                  static_cast<double>(box[2]), static_cast<double>(box[3]), 0.0};
  const double a = polygon.plane[face.u];
  const double b = polygon.plane[face.v];
  range.bound = std::max(a * range.x0, a * range.x1) + std::max(b * range.y0, b * range.y1) +
                polygon.plane[face.axis] * (face.sign * Half) + 4e-15 * Half * polygon.weight;
  if (range.bound < screen.floor) return true;
  const Frame turned = turnedFrame(range);
  const bool isOwn = screen.tile.x0 == tile.x0 && screen.tile.y0 == tile.y0 &&
                     screen.tile.x1 == tile.x1 && screen.tile.y1 == tile.y1;
  return behindAll(screen, turned, [&](const ScreenGap& gap) {
    if (range.bound < gap.floor || !touches(gap, range)) return true;
    if (gap.floor > -Infinity && isBehind(gap, range, polygon, face)) return true;
    return isOwn && !reaches(gap, tile, entry, segments);
  });
}

bool TileOcclusion::hides(const Screen& screen, const SeenRange& range) const {
  if (screen.isEmpty()) return false;
  if (range.bound < screen.floor) return true;
  return behindAll(screen, turnedFrame(range), [&](const ScreenGap& gap) {
    return range.bound < gap.floor || !touches(gap, range);
  });
}

}  // namespace Lumivane::Visibility
