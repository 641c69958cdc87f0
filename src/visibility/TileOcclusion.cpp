#include "visibility/TileOcclusion.h"

#include "visibility/MapParts.h"

#include <algorithm>
#include <array>
#include <cmath>

// First a guess, in plain doubles: which polygons are in front at sixteen places of the tile. Then
// a proof: those few are swept by the same lines and planes as the tile will be, and what lies
// behind their gaps by more than all rounding is hidden.
namespace Lumivane::Visibility {
namespace {

constexpr double Half = static_cast<double>(CubeHalf);
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr int Places = 4;  // in a row, and as many rows
// Ranges and gaps that are this near touch; units of the cube.
constexpr double Near = 16.0 * static_cast<double>(Snap);
// Corners of gaps are known to within this many units.
constexpr double Doubt = 4.0 * static_cast<double>(Snap);

struct PlacesOf {
  std::array<double, Places> x;
  std::array<double, Places> y;

  explicit PlacesOf(const Tile& tile) : x(), y() {
    const auto width = static_cast<double>(tile.x1 - tile.x0);
    const auto height = static_cast<double>(tile.y1 - tile.y0);
    for (int i = 0; i < Places; ++i) {
      const double part = (i + 0.5) / Places;
      x[static_cast<size_t>(i)] = static_cast<double>(tile.x0) + part * width;
      y[static_cast<size_t>(i)] = static_cast<double>(tile.y0) + part * height;
    }
  }
};

constexpr std::uint32_t ColumnOfPlaces = (1U << Places) - 1;
constexpr std::uint32_t AllPlaces = (1U << (Places * Places)) - 1;

// Bit Places * column + row of the places that an entry covers, by doubles.
std::uint32_t placesCovered(const LookPolygons& polygons, const Tile& tile, const PlacesOf& places,
                            const TileEntry& entry, const std::uint32_t* segments) {
  std::uint32_t bits = entry.coversCorner ? AllPlaces : 0;
  for (std::uint32_t k = 0; k < entry.segmentCount; ++k) {
    const Segment& s = polygons.segment(segments[entry.firstSegment + k]);
    const auto x0 = static_cast<double>(s.x0);
    const auto x1 = static_cast<double>(s.x1);
    const auto y0 = static_cast<double>(s.y0);
    const bool crossesLower = (s.y0 <= tile.y0) != (s.y1 <= tile.y0);
    const double crossing =
        crossesLower ? x0 + (x1 - x0) * (static_cast<double>(tile.y0 - s.y0) /
                                         static_cast<double>(s.y1 - s.y0))
                     : Infinity;
    for (int i = 0; i < Places; ++i) {
      const double x = places.x[static_cast<size_t>(i)];
      // What is right of where the edge crosses the lower side, then what is above the edge.
      std::uint32_t column = crossing > static_cast<double>(tile.x0) && crossing < x
                                 ? ColumnOfPlaces
                                 : 0;
      if (x0 <= x && x < x1) {
        const double height = y0 + s.slope * (x - x0);
        if (height > static_cast<double>(tile.y0))
          for (int j = 0; j < Places; ++j)
            if (places.y[static_cast<size_t>(j)] > height) column ^= 1U << j;
      }
      bits ^= column << (Places * i);
    }
  }
  return bits;
}

}  // namespace

// \return whether there is anything behind
bool TileOcclusion::chooseInFront(const Tile& tile, const TileContent& content) {
  const CubeFace& face = CubeFaces[static_cast<size_t>(tile.face)];
  const PlacesOf places(tile);
  std::array<double, Places * Places> nearest;
  std::array<std::int32_t, Places * Places> inFront;  // entries, then covers; -1 for none
  nearest.fill(-Infinity);
  inFront.fill(-1);
  const auto offer = [&](std::int32_t position, std::int32_t number, std::uint32_t bits) {
    const LookPolygon& p = polygons[position];
    for (; bits != 0; bits &= bits - 1) {
      const auto place = static_cast<size_t>(__builtin_ctz(bits));
      const double value = position == LookPolygons::Beyond
                               ? Infinity
                               : depthAt(p, face, places.x[place / Places], places.y[place % Places]);
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
  chosenCovers.clear();
  std::sort(inFront.begin(), inFront.end());
  const auto end = std::unique(inFront.begin(), inFront.end());
  for (auto i = inFront.begin(); i != end; ++i) {
    if (*i < 0) continue;
    if (*i < entryCount) {
      chosen.push_back(content.entries[*i]);
    } else {
      chosenCovers.push_back(content.covers[*i - entryCount]);
    }
  }
  return !chosen.empty();
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
  sweep(screen);
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
  for (const int i : {0, 1}) {
    const double x = i == 0 ? g.x0 : g.x1;
    g.below[i] = lines.exactHeightAt(order.below(gap), x);
    g.above[i] = lines.exactHeightAt(order.above(gap), x);
  }
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
    g.floor = std::min({value(g.x0, g.below[0]), value(g.x0, g.above[0]),
                        value(g.x1, g.below[1]), value(g.x1, g.above[1])}) -
              4.0 * s.error - Doubt * (std::fabs(s.a) + std::fabs(s.b));
  }
  screen.floor = std::min(screen.floor, g.floor);
  gaps.push_back(g);
}

bool TileOcclusion::touches(const ScreenGap& gap, const SeenRange& range) {
  const double from = std::max(gap.x0, range.x0);
  const double to = std::min(gap.x1, range.x1);
  if (from > to) return false;
  const auto heightAt = [&](const double (&heights)[2], double x) {
    return heights[0] + (heights[1] - heights[0]) * ((x - gap.x0) / (gap.x1 - gap.x0));
  };
  return range.y1 >= std::min(heightAt(gap.below, from), heightAt(gap.below, to)) &&
         range.y0 <= std::max(heightAt(gap.above, from), heightAt(gap.above, to));
}

// Everywhere in the gap, or everywhere in the range.
bool TileOcclusion::isBehind(const ScreenGap& gap, const SeenRange& range,
                             const LookPolygon& polygon, const CubeFace& face) const {
  if (gap.layer == polygon.layer) return false;
  const double a = polygon.plane[face.u] - gap.a;
  const double b = polygon.plane[face.v] - gap.b;
  const double c = polygon.plane[face.axis] * (face.sign * Half) - gap.c;
  const double margin =
      gap.error + 1e-15 * Half * polygon.weight + Doubt * (std::fabs(a) + std::fabs(b));
  const auto behind = [&](double x, double y) { return a * x + b * y + c < -4.0 * margin; };
  if (behind(gap.x0, gap.below[0]) && behind(gap.x0, gap.above[0]) &&
      behind(gap.x1, gap.below[1]) && behind(gap.x1, gap.above[1]))
    return true;
  return behind(range.x0, range.y0) && behind(range.x0, range.y1) &&
         behind(range.x1, range.y0) && behind(range.x1, range.y1);
}

bool TileOcclusion::hides(const Screen& screen, const Tile& tile,
                          const LookPolygon& polygon) const {
  // Where two polygons of a layer do not have one plane, the farther may be seen.
  if (screen.isEmpty() || polygon.number < 0 || polygon.besideItsLayer) return false;
  const CubeFace& face = CubeFaces[static_cast<size_t>(tile.face)];
  Coordinate box[4] = {tile.x0, tile.y0, tile.x1, tile.y1};
  if (polygon.onlyFace == tile.face) {
    for (const int i : {0, 1}) box[i] = std::max(box[i], polygon.box[i]);
    for (const int i : {2, 3}) box[i] = std::min(box[i], polygon.box[i]);
  }
  SeenRange range{static_cast<double>(box[0]) - Near, static_cast<double>(box[1]) - Near,
                  static_cast<double>(box[2]) + Near, static_cast<double>(box[3]) + Near, 0.0};
  const double a = polygon.plane[face.u];
  const double b = polygon.plane[face.v];
  range.bound = std::max(a * range.x0, a * range.x1) + std::max(b * range.y0, b * range.y1) +
                polygon.plane[face.axis] * (face.sign * Half) + 4e-15 * Half * polygon.weight;
  if (range.bound < screen.floor) return true;
  for (size_t i = screen.first; i < screen.end; ++i) {
    const ScreenGap& gap = gaps[i];
    if (range.bound < gap.floor || !touches(gap, range)) continue;
    if (gap.floor == -Infinity || !isBehind(gap, range, polygon, face)) return false;
  }
  return true;
}

bool TileOcclusion::hides(const Screen& screen, const SeenRange& range) const {
  if (screen.isEmpty()) return false;
  if (range.bound < screen.floor) return true;
  for (size_t i = screen.first; i < screen.end; ++i)
    if (!(range.bound < gaps[i].floor) && touches(gaps[i], range)) return false;
  return true;
}

}  // namespace Lumivane::Visibility
