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
constexpr int PlacesInRow = 20;
constexpr size_t PlaceCount = PlacesInRow * PlacesInRow;
// Edges that go no further into a gap do not go into it; units of the cube.
constexpr double Touching = 8.0;
// Corners of gaps are known to within this many units.
constexpr double Doubt = 4.0 * static_cast<double>(Snap);

// Places of a column, bit i for that in row i.
using Column = std::uint32_t;
static_assert(PlacesInRow < 32, "a column has room for a carry");
constexpr Column WholeColumn = (Column{1} << PlacesInRow) - 1;
using Columns = std::array<Column, PlacesInRow>;

Columns allPlaces() {
  Columns columns;
  columns.fill(WholeColumn);
  return columns;
}

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

// The places that an entry covers, by doubles.
Columns placesCovered(const LookPolygons& polygons, const Tile& tile, const Places& places,
                      const TileEntry& entry, const std::uint32_t* segments) {
  Columns columns = entry.coversCorner ? allPlaces() : Columns{};
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
      if (crossing > tileX0)
        for (int column = places.columnAfter(crossing); column < PlacesInRow; ++column)
          columns[static_cast<size_t>(column)] ^= WholeColumn;
    }
    // What is above the edge.
    const int end = places.columnAfter(x1);
    for (int column = places.columnAfter(x0); column < end; ++column) {
      const double height = y0 + s.slope * (places.x[static_cast<size_t>(column)] - x0);
      if (!(height > tileY0)) continue;
      columns[static_cast<size_t>(column)] ^=
          (WholeColumn << places.rowAfter(height)) & WholeColumn;
    }
  }
  return columns;
}

}  // namespace

// \return whether most of the polygons are behind, so that it is worth to ask which are hidden
bool TileOcclusion::chooseInFront(const Tile& tile, const TileContent& content) {
  const CubeFace& face = CubeFaces[static_cast<size_t>(tile.face)];
  const Places places(tile);
  // Of each place: 1 / distance of what is in front there, and its number among entries, then
  // covers, as a double, by which two places are looked at at once.
  std::array<double, PlaceCount> nearest;
  std::array<double, PlaceCount> numbers;
  nearest.fill(-Infinity);
  numbers.fill(-1.0);
  const auto offer = [&](std::int32_t position, size_t number, const Columns& columns) {
    const FaceDepth depth = position == LookPolygons::Beyond ? FaceDepth{0.0, 0.0, Infinity}
                                                             : faceDepth(polygons[position], face);
    const auto own = static_cast<double>(number);
    for (size_t column = 0; column < PlacesInRow; ++column)
      for (Column rest = columns[column]; rest != 0;) {
        const auto first = static_cast<size_t>(__builtin_ctz(rest));
        const Column carried = rest + (Column{1} << first);  // to the end of the lowest run
        const auto end = static_cast<size_t>(__builtin_ctz(carried));
        rest &= carried;
        double* const near = &nearest[PlacesInRow * column];
        double* const best = &numbers[PlacesInRow * column];
        for (size_t row = first; row < end; ++row) {
          const double value = depth.at(places.x[column], places.y[row]);
          best[row] = value > near[row] ? own : best[row];
          near[row] = value > near[row] ? value : near[row];
        }
      }
  };
  for (size_t i = 0; i < content.entryCount; ++i) {
    const TileEntry& entry = content.entries[i];
    offer(entry.polygon, i, placesCovered(polygons, tile, places, entry, content.segments));
  }
  for (size_t i = 0; i < content.coverCount; ++i)
    offer(content.covers[i], content.entryCount + i, allPlaces());
  chosenNumbers.assign(content.entryCount + content.coverCount, 0);
  for (const double number : numbers)
    if (number >= 0.0) chosenNumbers[static_cast<size_t>(number)] = 1;
  chosen.clear();
  for (size_t i = 0; i < content.entryCount; ++i)
    if (isChosen(i)) chosen.push_back(content.entries[i]);
  chosenCovers.clear();
  for (size_t i = 0; i < content.coverCount; ++i)
    if (isChosen(content.entryCount + i)) chosenCovers.push_back(content.covers[i]);
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
  frontSlots.clear();
  bands.clear();
  while (lines.advance()) {
    placeSlots(lines.change());
    changeBands(lines.change(), screen);
  }
}

// What is in front in the gaps that change.
void TileOcclusion::placeSlots(const TileLines::Change& change) {
  const auto at = [this](size_t i) { return frontSlots.begin() + static_cast<std::ptrdiff_t>(i); };
  if (change.newTo > change.oldTo)
    frontSlots.insert(at(change.oldTo), change.newTo - change.oldTo, 0);
  if (change.newTo < change.oldTo) frontSlots.erase(at(change.newTo), at(change.oldTo));
  const double middle = 0.5 * (static_cast<double>(change.x) + static_cast<double>(change.next));
  const TileLines::Order& order = lines.behind();
  for (size_t k = change.from; k < change.newTo; ++k) {
    frontSlots[k] = EmptyGap;
    if (order.isEmpty(k)) continue;
    const double y = 0.5 * (lines.exactHeightAt(order.below(k), middle) +
                            lines.exactHeightAt(order.above(k), middle));
    frontSlots[k] = planes.seenAt(lines.maskBehind(k), middle, y);
  }
}

// Bands that touch what changes at a stop end there, unless they go on behind it.
void TileOcclusion::changeBands(const TileLines::Change& change, Screen& screen) {
  const auto x = static_cast<double>(change.x);
  const auto first = std::find_if(bands.begin(), bands.end(),
                                  [&](const Band& band) { return band.to >= change.from; });
  const auto last =
      std::find_if(first, bands.end(), [&](const Band& band) { return band.from > change.oldTo; });
  const auto moved = [&](size_t gap) { return gap - change.oldTo + change.newTo; };
  size_t from = change.from;
  size_t to = change.newTo;
  if (first != last) {
    from = std::min(from, first->from);
    if ((last - 1)->to > change.oldTo) to = moved((last - 1)->to);
  }
  for (auto band = last; band != bands.end(); ++band) {
    band->from = moved(band->from);
    band->to = moved(band->to);
  }
  placeBands(from, to, x);
  auto next = newBands.begin();
  for (auto band = first; band != last; ++band) {
    const auto same =
        std::find_if(next, newBands.end(), [&](const Band& other) { return band->goesOn(other); });
    if (same == newBands.end()) {
      close(*band, x, screen);
      continue;
    }
    same->since = band->since;
    next = same + 1;
  }
  const auto kept = std::min(last - first, newBands.end() - newBands.begin());
  const auto rest = std::copy_n(newBands.begin(), kept, first);
  if (rest != last) {
    bands.erase(rest, last);
  } else {
    bands.insert(last, newBands.begin() + kept, newBands.end());
  }
}

// Of some gaps behind a stop.
void TileOcclusion::placeBands(size_t from, size_t to, double x) {
  const TileLines::Order& order = lines.behind();
  newBands.clear();
  for (size_t k = from; k < to; ++k) {
    if (frontSlots[k] == EmptyGap) continue;
    if (!newBands.empty() && newBands.back().to == k && newBands.back().slot == frontSlots[k]) {
      newBands.back().to = k + 1;
      newBands.back().above = order.above(k);
    } else {
      newBands.push_back({k, k + 1, frontSlots[k], order.below(k), order.above(k), x});
    }
  }
}

void TileOcclusion::close(const Band& band, double to, Screen& screen) {
  ScreenGap g{};
  g.x0 = band.since;
  g.x1 = to;
  if (!(g.x0 < g.x1)) return;
  for (const int i : {0, 1}) {
    const double x = i == 0 ? g.x0 : g.x1;
    g.below[i] = lines.exactHeightAt(band.below, x);
    g.above[i] = lines.exactHeightAt(band.above, x);
  }
  g.slopes[0] = (g.below[1] - g.below[0]) / (g.x1 - g.x0);
  g.slopes[1] = (g.above[1] - g.above[0]) / (g.x1 - g.x0);
  g.middle[0] = 0.5 * (g.x0 + g.x1);
  g.middle[1] = 0.5 * (g.belowAt(g.middle[0]) + g.aboveAt(g.middle[0]));
  g.floor = -Infinity;
  g.layer = -1;
  // Of a polygon beside its layer, what is painted later may be farther.
  if (band.slot >= 0 && !polygons[planes[band.slot].position].besideItsLayer) {
    const TilePlanes::Slot& s = planes[band.slot];
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
bool TileOcclusion::reaches(const ScreenGap& gap, double tileX, double tileY,
                            bool coversCorner) const {
  const double middleX = gap.middle[0];
  const double middleY = gap.middle[1];
  bool covers = coversCorner;
  const auto isDoubtful = [](double apart) { return std::fabs(apart) <= Touching; };
  for (const Edge& e : edges) {
    if (e.x1 > gap.x0 + Touching && e.x0 < gap.x1 - Touching) {
      const bool startsBefore = e.x0 < gap.x0;
      const bool endsBehind = e.x1 > gap.x1;
      const double from = startsBefore ? gap.x0 : e.x0;
      const double to = endsBehind ? gap.x1 : e.x1;
      const double start = startsBefore ? e.y0 + e.slope * (from - e.x0) : e.y0;
      const double end = endsBehind ? e.y0 + e.slope * (to - e.x0) : e.y1;
      const bool isBelow =
          start <= gap.belowAt(from) + Touching && end <= gap.belowAt(to) + Touching;
      if (!isBelow && !(start >= gap.aboveAt(from) - Touching && end >= gap.aboveAt(to) - Touching))
        return true;
    }
    if (e.crosses) {
      if (isDoubtful(e.crossing - tileX) || isDoubtful(e.crossing - middleX)) return true;
      covers ^= e.crossing > tileX && e.crossing < middleX;
    }
    if (e.x0 <= middleX && middleX < e.x1) {
      const double height = middleX <= e.x0 ? e.y0 : e.y0 + e.slope * (middleX - e.x0);
      if (isDoubtful(height - tileY)) return true;
      covers ^= height > tileY && height < middleY;
    }
  }
  return covers;
}

void TileOcclusion::readEdges(const Tile& tile, const TileEntry& entry,
                              const std::uint32_t* segments) const {
  const auto lower = static_cast<double>(tile.y0);
  edges.resize(entry.segmentCount);
  for (std::uint32_t k = 0; k < entry.segmentCount; ++k) {
    const Segment& s = polygons.segment(segments[entry.firstSegment + k]);
    Edge& e = edges[k];
    e.x0 = static_cast<double>(s.x0);
    e.y0 = static_cast<double>(s.y0);
    e.x1 = static_cast<double>(s.x1);
    e.y1 = static_cast<double>(s.y1);
    e.slope = s.slope;
    e.crosses = (s.y0 <= tile.y0) != (s.y1 <= tile.y0);
    e.crossing = e.crosses ? e.x0 + (e.x1 - e.x0) * ((lower - e.y0) / (e.y1 - e.y0)) : 0.0;
  }
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

// What is seen is often seen where the polygon before it was, so that gap is asked first. Gaps are
// in the order in which they end.
template <class IsBehind>
bool TileOcclusion::behindAll(const Screen& screen, const Frame& turned, IsBehind behind) const {
  const Frame* const all = frames.data();
  const size_t shown = lastShown;
  if (shown >= screen.first && shown < screen.end && all[shown].meets(turned) &&
      !behind(gaps[shown]))
    return false;
  const Frame* const end = all + screen.end;
  const Frame* frame = std::partition_point(all + screen.first, end,
                                            [&](const Frame& f) { return f.isBefore(turned); });
  for (; frame != end; ++frame) {
    if (!frame->meets(turned)) continue;
    const auto i = static_cast<size_t>(frame - all);
    if (i == shown || behind(gaps[i])) continue;
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
  const auto tileX = static_cast<double>(tile.x0);
  const auto tileY = static_cast<double>(tile.y0);
  edges.clear();
  return behindAll(screen, turned, [&](const ScreenGap& gap) {
    if (range.bound < gap.floor || !touches(gap, range)) return true;
    if (gap.floor > -Infinity && isBehind(gap, range, polygon, face)) return true;
    if (!isOwn) return false;
    if (edges.empty()) readEdges(tile, entry, segments);
    return !reaches(gap, tileX, tileY, entry.coversCorner);
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
