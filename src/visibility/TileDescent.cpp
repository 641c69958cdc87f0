#include "visibility/TileDescent.h"

#include <algorithm>
#include <cmath>
#include <utility>

// From a face of the cube down to tiles so small that few edges are left in them. On the way down,
// what may be seen in a tile is narrowed: boxes of the hierarchy outside it are dropped, near ones
// opened, and all that lies behind a polygon which covers the tile is left closed. So what is
// hidden costs next to nothing, and the work grows with what is seen.
namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

constexpr double Half = static_cast<double>(CubeHalf);
// A tile with so few segments is swept, and one with more of them if few have their ends in it: a
// bundle of long lines is not divided by dividing the tile.
constexpr size_t FewSegments = 400;
constexpr size_t MostSegments = 800;
constexpr size_t FewEnds = 96;
constexpr size_t FewCovers = 8;
// Boxes are opened that look larger than this many tiles: smaller ones hide no tile.
constexpr double OpenedSize = 0.7;
constexpr Coordinate SmallestTile = 1 << 14;
// What is left in the boxes of a tile is opened together if it is no more than this.
constexpr size_t FewPolygons = 120;
// A screen is asked for where a tile may be swept because of what it hides, and every few levels;
// not in the halves of a tile in which nearly everything is in front.
constexpr size_t MostScreened = 800;
constexpr int UnscreenedLevels = 3;
constexpr size_t FewestScreened = 6;  // polygons
constexpr int StalledLevels = 8;
// A tile with less in it is not offered to other threads.
constexpr size_t SegmentsToGive = 250;
constexpr size_t PolygonsToGive = 250;

// The greatest (or with a negated vector the least) of n.x over a box.
double support(const SeenBox& box, Vec3 n) {
  return std::max(n.x * box.low[0], n.x * box.high[0]) +
         std::max(n.y * box.low[1], n.y * box.high[1]) +
         std::max(n.z * box.low[2], n.z * box.high[2]);
}

double sumOfMagnitudes(Vec3 n) { return std::fabs(n.x) + std::fabs(n.y) + std::fabs(n.z); }

// Whether a segment crosses the walk from the lower left corner of a tile to that of a part of it,
// to the right and then upwards.
bool crossesWalk(const Segment& s, const Tile& tile, const Tile& part) {
  bool crosses = false;
  if (part.x0 != tile.x0 && (s.y0 <= tile.y0) != (s.y1 <= tile.y0))
    crosses = crossesLeftOf(s, tile.x0, tile.y0) != crossesLeftOf(s, part.x0, tile.y0);
  if (part.y0 != tile.y0 && s.x0 <= part.x0 && part.x0 < s.x1)
    crosses ^= sideOf(s, part.x0, tile.y0) != sideOf(s, part.x0, part.y0);
  return crosses;
}

}  // namespace

TileDescent::TileDescent(LookPolygons& lookPolygons, MapParts& mapParts, TileTeam& tileTeam)
    : polygons(lookPolygons),
      parts(mapParts),
      sweep(lookPolygons, mapParts),
      occlusion(lookPolygons),
      state(*lookPolygons.setup().state),
      team(tileTeam) {
  polygons.addUser(*this);
}

Sides TileDescent::run(const TileStart& start) {
  truncate(Content{});
  occlusion.truncate(0);
  const Content content = start.wholeFace ? wholeFace(start.tile) : contentOf(start);
  return descend(start.tile, content, start.progress, start.newSides);
}

void TileDescent::run(TileJob& job, LookPolygons& lookPolygons, TileTeam& tileTeam) {
  job.sides = TileDescent(lookPolygons, job.parts, tileTeam).run(job.start);
  tileTeam.finish(job);
}

Sides TileDescent::resultOf(TileJob& job) {
  while (TileJob* const other = team.waitFor(job)) run(*other, polygons, team);
  return append(parts, std::move(job.parts), job.sides);
}

TileDescent::Content TileDescent::wholeFace(const Tile& tile) {
  Content content{};
  pyramid = pyramidOf(tile);
  if (polygons.setup().hemisphere) {
    // What lies beyond the field is like a polygon of the scene.
    addPolygon(tile, content, -1);
  }
  if (const std::vector<std::int32_t>* only = polygons.setup().only) {
    for (const std::int32_t number : *only) addPolygon(tile, content, number);
  } else if (!state.nodes.empty()) {
    nodes.push_back({0, boxFromEye(0)});
    content.nodesEnd = 1;
  }
  return content;
}

TileDescent::Content TileDescent::contentOf(const TileStart& start) {
  Content content{};
  nodes = start.nodes;
  const auto positionOf = [this](std::int32_t number) {
    return number < 0 ? LookPolygons::Beyond : polygons.find(number);
  };
  for (const std::int32_t number : start.covers) covers.push_back(positionOf(number));
  segments = start.segments;
  for (TileEntry entry : start.entries) {
    entry.polygon = positionOf(entry.polygon);
    const std::uint32_t first = polygons[entry.polygon].firstSegment[start.tile.face];
    for (std::uint32_t k = 0; k < entry.segmentCount; ++k)
      segments[entry.firstSegment + k] += first;
    entries.push_back(entry);
  }
  content.entriesEnd = entries.size();
  content.nodesEnd = nodes.size();
  content.coversEnd = covers.size();
  content.screen = occlusion.add(start.screen);
  return content;
}

TileStart TileDescent::startOf(const Tile& tile, const Content& content) const {
  TileStart start;
  start.tile = tile;
  for (size_t i = content.entries; i < content.entriesEnd; ++i) {
    TileEntry entry = entries[i];
    const LookPolygon& polygon = polygons[entry.polygon];
    const std::uint32_t* const from = segments.data() + entry.firstSegment;
    entry.polygon = polygon.number;
    entry.firstSegment = static_cast<std::uint32_t>(start.segments.size());
    for (std::uint32_t k = 0; k < entry.segmentCount; ++k)
      start.segments.push_back(from[k] - polygon.firstSegment[tile.face]);
    start.entries.push_back(entry);
  }
  for (size_t i = content.covers; i < content.coversEnd; ++i)
    start.covers.push_back(polygons[covers[i]].number);
  const auto node = [this](size_t i) { return nodes.begin() + static_cast<std::ptrdiff_t>(i); };
  start.nodes.assign(node(content.nodes), node(content.nodesEnd));
  start.screen = occlusion.copyOf(content.screen);
  return start;
}

TileDescent::Pyramid TileDescent::pyramidOf(const Tile& tile) const {
  const CubeFace& f = CubeFaces[static_cast<size_t>(tile.face)];
  const Vec3 u = cubeAxis(f.u, 1.0);
  const Vec3 v = cubeAxis(f.v, 1.0);
  const Vec3 forward = cubeAxis(f.axis, f.sign);
  const auto at = [&](Coordinate c) { return static_cast<double>(c) / Half; };
  const ParallelSight* parallel = polygons.setup().parallel;
  const auto side = [&](Vec3 n) {
    return parallel == nullptr ? HalfSpace{n, 0.0}
                               : HalfSpace{parallel->normalInScene(n), parallel->constantOf(n)};
  };
  return {{side(forward), side(u - at(tile.x0) * forward), side(at(tile.x1) * forward - u),
           side(v - at(tile.y0) * forward), side(at(tile.y1) * forward - v)},
          {u, v, forward},
          std::max(at(tile.x1 - tile.x0), at(tile.y1 - tile.y0))};
}

SeenBox TileDescent::boxFromEye(std::int32_t number) const {
  const BoxNode& node = state.nodes[static_cast<size_t>(number)];
  const ParallelSight* parallel = polygons.setup().parallel;
  const Vec3 eye = parallel == nullptr ? polygons.setup().eye : parallel->middle;
  const double eyeAt[3] = {eye.x, eye.y, eye.z};
  SeenBox box{};
  double diagonal = 0.0;
  for (int i = 0; i < 3; ++i) {
    box.low[i] = node.low[i] - eyeAt[i];
    box.high[i] = node.high[i] - eyeAt[i];
    box.reach = std::max({box.reach, -box.low[i], box.high[i]});
    const double gap = std::max({0.0, box.low[i], -box.high[i]});
    const double side = box.high[i] - box.low[i];
    box.squareDistance += gap * gap;
    diagonal += side * side;
  }
  if (parallel != nullptr) {
    const double depth = ParallelSight::MiddleNearness - support(box, -parallel->along);
    box.squareDistance = depth * depth;
    box.squareSize = diagonal * Kernel::dot(parallel->along, parallel->along);
    return box;
  }
  box.squareSize = box.squareDistance > 0.0 ? diagonal / box.squareDistance : 1e300;
  return box;
}

bool TileDescent::misses(const SeenBox& box, SideRange sides) const {
  // More than rounding does to the sums; boxes reach less than 1 along parallel lines.
  const double margin = -1e-11 * (polygons.setup().parallel == nullptr ? box.reach : 1.0);
  for (int i = sides.from; i < sides.to; ++i) {
    const HalfSpace& h = pyramid.sides[i];
    if (support(box, h.normal) + h.constant < margin) return true;
  }
  return false;
}

bool TileDescent::hiddenByCover(const Content& content, const SeenBox& box) const {
  for (size_t i = content.covers; i < content.coversEnd; ++i) {
    if (covers[i] == LookPolygons::Beyond) return true;
    const LookPolygon& cover = polygons[covers[i]];
    const double margin = 1e-9 * (1.0 + sumOfMagnitudes(cover.behind) * box.reach);
    if (-support(box, -cover.behind) > cover.behindOffset + margin) return true;
  }
  return false;
}

bool TileDescent::hidden(const Content& content, const SeenBox& box) const {
  return hiddenByCover(content, box) ||
         (!content.screen.isEmpty() && occlusion.hides(content.screen, rangeOf(box)));
}

// Where on the face a box may be seen.
SeenRange TileDescent::rangeOf(const SeenBox& box) const {
  const ParallelSight* parallel = polygons.setup().parallel;
  const auto least = [&](Vec3 n) { return -support(box, -n); };
  const auto most = [&](Vec3 n) { return support(box, n); };
  // Margins are more than what rounding does to the sums.
  if (parallel != nullptr) {
    constexpr double Margin = 1e-11;
    const double nearness = ParallelSight::MiddleNearness - least(parallel->along);
    return {(least(parallel->x) - Margin) * Half, (least(parallel->y) - Margin) * Half,
            (most(parallel->x) + Margin) * Half, (most(parallel->y) + Margin) * Half,
            (nearness + Margin) * Half};
  }
  const double margin = 1e-11 * box.reach;
  const double depth = least(pyramid.axes[2]) - margin;
  const double deepest = most(pyramid.axes[2]) + margin;
  if (!(depth > 0.0)) {
    constexpr double All = 1e300;
    return {-All, -All, All, All, All};
  }
  const auto lowest = [&](Vec3 n) {
    const double c = least(n) - margin;
    return Half * (c / (c < 0.0 ? depth : deepest));
  };
  const auto highest = [&](Vec3 n) {
    const double c = most(n) + margin;
    return Half * (c / (c > 0.0 ? depth : deepest));
  };
  return {lowest(pyramid.axes[0]), lowest(pyramid.axes[1]), highest(pyramid.axes[0]),
          highest(pyramid.axes[1]), Half / depth};
}

// Behind a cover everywhere in the tile, or at least where the polygon lies in it.
bool TileDescent::hides(const Tile& tile, const LookPolygon& cover,
                        const LookPolygon& polygon) const {
  if (cover.layer == polygon.layer)
    return cover.region != polygon.region ? paintedAfter(cover, polygon)
                                          : cover.number > polygon.number;
  const CubeFace& f = CubeFaces[static_cast<size_t>(tile.face)];
  Coordinate box[4] = {tile.x0, tile.y0, tile.x1, tile.y1};
  if (polygon.onlyFace == tile.face) {
    for (const int i : {0, 1}) box[i] = std::max(box[i], polygon.box[i]);
    for (const int i : {2, 3}) box[i] = std::min(box[i], polygon.box[i]);
  }
  const double error = depthError(cover, polygon);
  for (const int x : {0, 2})
    for (const int y : {1, 3}) {
      const auto px = static_cast<double>(box[x]);
      const auto py = static_cast<double>(box[y]);
      if (!(depthAt(cover, f, px, py) - depthAt(polygon, f, px, py) > error)) return false;
    }
  return true;
}

bool TileDescent::hiddenByCover(const Tile& tile, const Content& content,
                                std::int32_t position) const {
  if (position == LookPolygons::Beyond) return false;
  const LookPolygon& polygon = polygons[position];
  for (size_t i = content.covers; i < content.coversEnd; ++i)
    if (covers[i] == LookPolygons::Beyond || hides(tile, polygons[covers[i]], polygon)) return true;
  return false;
}

bool TileDescent::hidden(const Tile& tile, const Content& content, const TileEntry& entry) const {
  return hiddenByCover(tile, content, entry.polygon) ||
         occlusion.hides(content.screen, tile, entry, segments.data());
}

// Keeps the covers of which none hides another.
void TileDescent::addCover(const Tile& tile, Content& content, std::int32_t position) {
  if (hidden(tile, content, TileEntry{position, 0, 0, true})) return;
  const auto begin = covers.begin() + static_cast<std::ptrdiff_t>(content.covers);
  covers.erase(std::remove_if(begin, covers.end(),
                              [&](std::int32_t other) {
                                return position == LookPolygons::Beyond ||
                                       (other != LookPolygons::Beyond &&
                                        hides(tile, polygons[position], polygons[other]));
                              }),
               covers.end());
  covers.push_back(position);
  content.coversEnd = covers.size();
}

void TileDescent::addPolygon(const Tile& tile, Content& content, std::int32_t number) {
  const std::int32_t position = number < 0 ? LookPolygons::Beyond : polygons.find(number);
  if (position == LookPolygons::NotSeen) return;
  const LookPolygon& polygon = polygons[position];
  const std::uint32_t from = polygon.firstSegment[tile.face];
  const std::uint32_t to = polygon.firstSegment[tile.face + 1];
  const bool coversFace = (polygon.cornerParity >> tile.face & 1) != 0;
  if (from == to && !coversFace) return;
  if (polygon.onlyFace == tile.face && (polygon.box[0] > tile.x1 || polygon.box[1] > tile.y1 ||
                                        polygon.box[2] <= tile.x0 || polygon.box[3] <= tile.y0))
    return;
  const size_t first = segments.size();
  bool covered = coversFace;
  for (std::uint32_t i = from; i < to; ++i) {
    const Segment& s = polygons.segment(i);
    if (touchesTile(s, tile)) segments.push_back(i);
    // From the corner of the face to that of the tile.
    if ((s.y0 <= -CubeHalf) != (s.y1 <= -CubeHalf))
      covered ^= crossesLeftOf(s, -CubeHalf, -CubeHalf) != crossesLeftOf(s, tile.x0, -CubeHalf);
    if (s.x0 <= tile.x0 && tile.x0 < s.x1)
      covered ^= sideOf(s, tile.x0, -CubeHalf) != sideOf(s, tile.x0, tile.y0);
  }
  if (segments.size() == first) {
    if (covered) addCover(tile, content, position);
    return;
  }
  const TileEntry entry{position, static_cast<std::uint32_t>(first),
                        static_cast<std::uint32_t>(segments.size() - first), covered};
  if (hidden(tile, content, entry)) {
    segments.resize(first);
    return;
  }
  entries.push_back(entry);
  content.entriesEnd = entries.size();
}

// Opens the boxes that look larger than the limit, the nearer half first, since what is near hides.
// Those that are there already are known to be within all other sides than the given ones.
void TileDescent::refineNodes(const Tile& tile, Content& content, double limit, SideRange sides) {
  waiting.clear();
  for (size_t i = content.nodesEnd; i > content.nodes; --i)
    if (!misses(nodes[i - 1].box, sides)) waiting.push_back(nodes[i - 1]);
  size_t known = waiting.size();
  nodes.resize(content.nodes);
  while (!waiting.empty()) {
    const SeenNode next = waiting.back();
    waiting.pop_back();
    const bool isNew = waiting.size() >= known;
    known = std::min(known, waiting.size());
    if (isNew ? misses(next.box, AllSides) || hidden(content, next.box)
              : hiddenByCover(content, next.box))
      continue;
    if (next.box.squareSize < limit * limit) {
      nodes.push_back(next);
      continue;
    }
    const BoxNode& node = state.nodes[static_cast<size_t>(next.number)];
    if (node.isLeaf()) {
      for (std::int32_t i = 0; i < node.count; ++i) addPolygon(tile, content, node.first + i);
      continue;
    }
    SeenNode near{node.first, boxFromEye(node.first)};
    SeenNode far{node.first + 1, boxFromEye(node.first + 1)};
    if (far.box.squareDistance < near.box.squareDistance) std::swap(near, far);
    waiting.push_back(far);
    waiting.push_back(near);
  }
  content.nodesEnd = nodes.size();
}

// What came in before its hider did.
void TileDescent::dropHidden(const Tile& tile, Content& content, Screening screening) {
  const bool isNew = screening == Screening::New;
  if (content.covers == content.coversEnd && !isNew) return;
  size_t kept = content.entries;
  size_t keptSegments = content.segments;
  for (size_t i = content.entries; i < content.entriesEnd; ++i) {
    TileEntry entry = entries[i];
    // What is in front at a place is not hidden.
    if (isNew ? !occlusion.isChosen(i - content.entries) && hidden(tile, content, entry)
              : hiddenByCover(tile, content, entry.polygon))
      continue;
    std::copy_n(segments.begin() + entry.firstSegment, entry.segmentCount,
                segments.begin() + static_cast<std::ptrdiff_t>(keptSegments));
    entry.firstSegment = static_cast<std::uint32_t>(keptSegments);
    keptSegments += entry.segmentCount;
    entries[kept++] = entry;
  }
  entries.resize(kept);
  segments.resize(keptSegments);
  content.entriesEnd = kept;
  const auto isHidden = [&](const SeenNode& node) {
    return isNew ? hidden(content, node.box) : hiddenByCover(content, node.box);
  };
  nodes.erase(std::remove_if(nodes.begin() + static_cast<std::ptrdiff_t>(content.nodes),
                             nodes.end(), isHidden),
              nodes.end());
  content.nodesEnd = nodes.size();
}

// Of what several polygons hide together. \return whether there is any
bool TileDescent::placeScreen(const Tile& tile, Content& content) {
  if (content.entriesEnd - content.entries < FewestScreened) return false;
  const size_t mark = occlusion.size();
  const TileOcclusion::Screen screen = occlusion.screenOf(
      tile, {entries.data() + content.entries, content.entriesEnd - content.entries,
             segments.data(), covers.data() + content.covers, content.coversEnd - content.covers});
  if (screen.isEmpty()) {
    occlusion.truncate(mark);
    return false;
  }
  content.screen = screen;
  dropHidden(tile, content, Screening::New);
  return true;
}

size_t TileDescent::polygonsIn(const Content& content, size_t limit) {
  size_t count = 0;
  openNodes.clear();
  for (size_t i = content.nodes; i < content.nodesEnd; ++i) openNodes.push_back(nodes[i].number);
  while (!openNodes.empty() && count <= limit) {
    const BoxNode& node = state.nodes[static_cast<size_t>(openNodes.back())];
    openNodes.pop_back();
    if (node.isLeaf()) {
      count += static_cast<size_t>(node.count);
      continue;
    }
    openNodes.push_back(node.first);
    openNodes.push_back(node.first + 1);
  }
  return count;
}

bool TileDescent::isBundle(const Tile& tile, const Content& content) const {
  if (segments.size() - content.segments > MostSegments) return false;
  size_t ends = 0;
  for (size_t i = content.segments; i < segments.size() && ends <= FewEnds; ++i) {
    const Segment& s = polygons.segment(segments[i]);
    if (s.x0 > tile.x0 && s.y0 > tile.y0 && s.y0 <= tile.y1) ++ends;
    if (s.x1 <= tile.x1 && s.y1 > tile.y0 && s.y1 <= tile.y1) ++ends;
  }
  return ends <= FewEnds;
}

Sides TileDescent::descend(const Tile& tile, Content content, Progress progress,
                           SideRange newSides) {
  team.check();
  pyramid = pyramidOf(tile);
  const Coordinate width = std::max(tile.x1 - tile.x0, tile.y1 - tile.y0);
  const bool smallest = width <= SmallestTile;
  refineNodes(tile, content, smallest ? 0.0 : OpenedSize * pyramid.size, newSides);
  dropHidden(tile, content, Screening::Known);
  size_t count = segments.size() - content.segments;
  ++progress.unscreened;
  bool opened = content.nodes == content.nodesEnd;
  if (!opened && count < FewSegments && polygonsIn(content, FewPolygons) <= FewPolygons) {
    refineNodes(tile, content, 0.0, NoSides);
    dropHidden(tile, content, Screening::Known);
    count = segments.size() - content.segments;
    opened = true;
  }
  if ((opened && count <= MostScreened && progress.unscreened > 0) ||
      progress.unscreened > UnscreenedLevels) {
    progress.unscreened = placeScreen(tile, content) ? 0 : -1;
    count = segments.size() - content.segments;
  }
  if (content.nodes == content.nodesEnd) {
    if (count == 0 && content.coversEnd - content.covers <= 1) {
      team.countTile(progress.level);
      return uniformTile(tile, content.covers < content.coversEnd ? covers[content.covers] : -1);
    }
    const size_t covering = content.coversEnd - content.covers;
    // Planes that run through each other in a tile cost as edges do.
    count += covering > FewCovers ? FewSegments / FewCovers * covering : 0;
    if (2 * count <= progress.segments) {
      progress.segments = count;
      progress.stalled = 0;
    } else {
      ++progress.stalled;
    }
    // Hundreds of edges on one line never part, so the limit grows with every level.
    const int doublings = std::min(progress.stalled - StalledLevels, 32);
    const bool stalled = doublings >= 0 && count <= MostSegments << doublings;
    if (count <= FewSegments || stalled || smallest || isBundle(tile, content)) {
      team.countTile(progress.level);
      return sweepTile(tile, content);
    }
  }
  ++progress.level;
  return split(tile, content, progress);
}

Sides TileDescent::uniformTile(const Tile& tile, std::int32_t cover) {
  const bool beyond = cover == LookPolygons::Beyond;
  const int area = cover < 0 ? parts.addArea(SkyRegion, -1)
                   : beyond  ? parts.addArea(BeyondRegion, -1)
                             : parts.addArea(polygons[cover].region, polygons[cover].number);
  Sides sides;
  for (const Side side : {Left, Right})
    parts.addStretch(sides[side], {tile.y0, tile.y1, -1, -1, area, -1});
  for (const Side side : {Bottom, Top})
    parts.addStretch(sides[side], {tile.x0, tile.x1, -1, -1, area, -1});
  return sides;
}

Sides TileDescent::sweepTile(const Tile& tile, const Content& content) {
  return sweep.run(
      tile, {entries.data() + content.entries, content.entriesEnd - content.entries,
             segments.data(), covers.data() + content.covers, content.coversEnd - content.covers});
}

TileDescent::Content TileDescent::narrowed(const Tile& parent, const Tile& tile,
                                           const Content& content) {
  Content narrow{entries.size(), entries.size(), nodes.size(),    nodes.size(),
                 covers.size(),  covers.size(),  segments.size(), content.screen};
  for (size_t i = content.covers; i < content.coversEnd; ++i) {
    const std::int32_t cover = covers[i];
    covers.push_back(cover);
  }
  narrow.coversEnd = covers.size();
  for (size_t i = content.nodes; i < content.nodesEnd; ++i) {
    const SeenNode node = nodes[i];
    nodes.push_back(node);
  }
  narrow.nodesEnd = nodes.size();
  for (size_t i = content.entries; i < content.entriesEnd; ++i) {
    const TileEntry entry = entries[i];
    const size_t first = segments.size();
    bool covered = entry.coversCorner;
    for (std::uint32_t k = 0; k < entry.segmentCount; ++k) {
      const std::uint32_t number = segments[entry.firstSegment + k];
      const Segment& s = polygons.segment(number);
      if (touchesTile(s, tile)) segments.push_back(number);
      covered ^= crossesWalk(s, parent, tile);
    }
    if (segments.size() == first) {
      if (covered) addCover(tile, narrow, entry.polygon);
      continue;
    }
    entries.push_back({entry.polygon, static_cast<std::uint32_t>(first),
                       static_cast<std::uint32_t>(segments.size() - first), covered});
  }
  narrow.entriesEnd = entries.size();
  return narrow;
}

Sides TileDescent::split(const Tile& tile, const Content& content, Progress progress) {
  const bool alongX = tile.x1 - tile.x0 >= tile.y1 - tile.y0;
  Tile low = tile;
  Tile high = tile;
  if (alongX) {
    low.x1 = high.x0 = tile.x0 + (tile.x1 - tile.x0) / 2;
  } else {
    low.y1 = high.y0 = tile.y0 + (tile.y1 - tile.y0) / 2;
  }
  const int side = alongX ? RightSide : UpperSide;
  HighHalf half{
      tile, content, segments.size() - content.segments, progress, high, {side - 1, side}, nullptr};
  waitingHalves.push_back(&half);
  offerLargestHalf();
  const Sides lowSides = descendHalf(half, low, {side, side + 1});
  waitingHalves.pop_back();
  offeredHalves = std::min(offeredHalves, waitingHalves.size());
  const bool isTaken = half.job != nullptr && !team.takeBack(*half.job);
  const Sides highSides =
      isTaken ? resultOf(*half.job) : descendHalf(half, half.tile, half.newSides);
  return joinTiles(parts, low, lowSides, highSides, alongX);
}

Sides TileDescent::descendHalf(const HighHalf& half, const Tile& tile, SideRange newSides) {
  if (polygons.isFull()) polygons.forgetUnused();
  const size_t screenMark = occlusion.size();
  const Content narrow = narrowed(half.parent, tile, half.content);
  const Sides sides = descend(tile, narrow, half.progress, newSides);
  truncate(narrow);
  occlusion.truncate(screenMark);
  return sides;
}

// To a thread that has nothing to do.
void TileDescent::offerLargestHalf() {
  if (!team.wantsWork() || offeredHalves == waitingHalves.size()) return;
  HighHalf& half = *waitingHalves[offeredHalves];
  if (!isWorthGiving(half)) return;
  const Content narrow = narrowed(half.parent, half.tile, half.content);
  TileStart start = startOf(half.tile, narrow);
  start.progress = half.progress;
  start.newSides = half.newSides;
  truncate(narrow);
  half.job = &team.offer(std::move(start));
  ++offeredHalves;
}

bool TileDescent::isWorthGiving(const HighHalf& half) {
  return half.segments >= SegmentsToGive ||
         polygonsIn(half.content, PolygonsToGive) > PolygonsToGive;
}

// What is not in the stacks has been seen in tiles that are done.
void TileDescent::addPositions(std::vector<std::int32_t>& positions) const {
  positions.insert(positions.end(), covers.begin(), covers.end());
  for (const TileEntry& entry : entries) positions.push_back(entry.polygon);
}

void TileDescent::follow(const MovedPolygons& moved) {
  for (std::int32_t& cover : covers) cover = moved.positionOf(cover);
  for (TileEntry& entry : entries) {
    entry.polygon = moved.positionOf(entry.polygon);
    const std::uint32_t before = moved.segmentsMoved(entry.polygon);
    for (std::uint32_t k = 0; k < entry.segmentCount; ++k)
      segments[entry.firstSegment + k] -= before;
  }
}

void TileDescent::truncate(const Content& content) {
  entries.resize(content.entries);
  nodes.resize(content.nodes);
  covers.resize(content.covers);
  segments.resize(content.segments);
}

Sides joinTiles(MapParts& parts, const Tile& low, const Sides& lowSides, const Sides& highSides,
                bool alongX) {
  const CubeFace& f = CubeFaces[static_cast<size_t>(low.face)];
  const Side nearSide = alongX ? Left : Bottom;
  const Side farSide = alongX ? Right : Top;
  const SharedLine line{alongX ? f.v : f.u, cubePoint(low.face, low.x1, low.y1), alongX};
  stitch(parts, lowSides[farSide], highSides[nearSide], line);
  Sides sides;
  sides[nearSide] = lowSides[nearSide];
  sides[farSide] = highSides[farSide];
  for (const Side side : {alongX ? Bottom : Left, alongX ? Top : Right}) {
    sides[side] = lowSides[side];
    parts.concatenate(sides[side], highSides[side]);
  }
  return sides;
}

}  // namespace Lumivane::Visibility
