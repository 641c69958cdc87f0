#include "visibility/Look.h"

#include "visibility/EyePlane.h"
#include "visibility/InParallel.h"
#include "visibility/IndexState.h"
#include "visibility/LookPolygons.h"
#include "visibility/MapBuilder.h"
#include "visibility/MapParts.h"
#include "visibility/TileDescent.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

// A look divides the faces of the cube into tiles, which are worked on in any order by any number
// of threads, each into parts of its own. The parts are then joined in the order of the tiles, so
// that the map does not depend on who did what.
namespace Lumivane::Visibility {

using Kernel::Vec3;

namespace {

double lengthOf(Vec3 v) { return Kernel::length3(v); }

}  // namespace

bool isFinite(const Vector& v) {
  return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

// Of any length: the greatest coordinate becomes 1 first.
Vec3 unitOf(const Vector& v) {
  const double greatest = std::max({std::fabs(v[0]), std::fabs(v[1]), std::fabs(v[2])});
  const Vec3 scaled = {v[0] / greatest, v[1] / greatest, v[2] / greatest};
  const double length = lengthOf(scaled);
  return {scaled.x / length, scaled.y / length, scaled.z / length};
}

Vec3 upOf(const Vector& wanted, Vec3 forward) {
  const auto across = [&](Vec3 v) { return v - Kernel::dot(v, forward) * forward; };
  Vec3 up{};
  if (wanted != Vector{0.0, 0.0, 0.0}) up = across(unitOf(wanted));
  if (!(lengthOf(up) > 1e-9)) {
    // The axis that is farthest from forward, z first.
    const double x = std::fabs(forward.x);
    const double y = std::fabs(forward.y);
    const double z = std::fabs(forward.z);
    up = across(z <= x && z <= y ? Vec3{0.0, 0.0, 1.0}
                : y <= x         ? Vec3{0.0, 1.0, 0.0}
                                 : Vec3{1.0, 0.0, 0.0});
  }
  const double length = lengthOf(up);
  return {up.x / length, up.y / length, up.z / length};
}

namespace {

void check(const Vector& eye, const LookOptions& options) {
  if (!isFinite(eye)) throw std::invalid_argument("the eye is not finite");
  if (!isFinite(options.forward)) throw std::invalid_argument("forward is not finite");
  if (!isFinite(options.up)) throw std::invalid_argument("up is not finite");
  if (options.forward == Vector{0.0, 0.0, 0.0}) throw std::invalid_argument("forward is zero");
  if (options.threads < 0) throw std::invalid_argument("the number of threads is negative");
}

// How often each face is halved before the work is given out. It depends on the scene alone.
int levelsFor(size_t polygons) { return polygons < 200 ? 0 : polygons < 4000 ? 2 : 4; }

bool halvedAlongX(const Tile& tile) { return tile.x1 - tile.x0 >= tile.y1 - tile.y0; }

std::pair<Tile, Tile> halves(const Tile& tile) {
  Tile low = tile;
  Tile high = tile;
  if (halvedAlongX(tile)) {
    low.x1 = high.x0 = tile.x0 + (tile.x1 - tile.x0) / 2;
  } else {
    low.y1 = high.y0 = tile.y0 + (tile.y1 - tile.y0) / 2;
  }
  return {low, high};
}

struct Task {
  Tile tile{};
  MapParts parts;
  Sides sides;
};

void addTasks(std::vector<Task>& tasks, const Tile& tile, int levels) {
  if (levels == 0) {
    tasks.emplace_back();
    tasks.back().tile = tile;
    return;
  }
  const auto [low, high] = halves(tile);
  addTasks(tasks, low, levels - 1);
  addTasks(tasks, high, levels - 1);
}

// Runs the tasks, and reports from the calling thread.
class Workers {
 public:
  Workers(std::vector<Task>& theTasks, const LookSetup& theSetup, const LookOptions& theOptions)
      : tasks(theTasks), setup(theSetup), options(theOptions) {}

  void run() {
    if (options.progress) options.progress(0.0);
    const size_t threads = std::min(threadCount(options.threads), tasks.size());
    inParallel(threads, [this](bool isCaller) { work(isCaller); });
  }

 private:
  void work(bool reports) try {
    LookPolygons polygons(setup);
    for (;;) {
      const size_t i = next.fetch_add(1);
      if (i >= tasks.size() || stopped.load(std::memory_order_relaxed)) return;
      Task& task = tasks[i];
      TileDescent descent(polygons, task.parts, options.cancelled);
      task.sides = descent.run(task.tile);
      done.fetch_add(1);
      if (reports) report();
    }
  } catch (...) {
    stopped.store(true);
    throw;
  }

  void report() {
    if (!options.progress) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - lastReport < std::chrono::milliseconds(100)) return;
    lastReport = now;
    // The last tenth is for making the map of the parts.
    options.progress(0.9 * static_cast<double>(done.load()) / static_cast<double>(tasks.size()));
  }

  std::vector<Task>& tasks;
  const LookSetup& setup;
  const LookOptions& options;
  std::atomic<size_t> next{0};
  std::atomic<size_t> done{0};
  std::atomic<bool> stopped{false};
  std::chrono::steady_clock::time_point lastReport = std::chrono::steady_clock::now();
};

void shiftSides(Sides& sides, int by) {
  for (SideList& side : sides) {
    if (side.head >= 0) side.head += by;
    if (side.tail >= 0) side.tail += by;
  }
}

void reserve(MapParts& parts, const std::vector<Task>& tasks) {
  size_t areas = 0;
  size_t vertices = 0;
  size_t pieces = 0;
  size_t stretches = 0;
  for (const Task& task : tasks) {
    areas += task.parts.areas.size();
    vertices += task.parts.vertices.size();
    pieces += task.parts.pieces.size();
    stretches += task.parts.stretches.size();
  }
  parts.areas.reserve(areas);
  parts.areaSets.reserve(areas);
  parts.vertices.reserve(vertices);
  parts.vertexSets.reserve(vertices);
  parts.pieces.reserve(pieces);
  parts.stretches.reserve(stretches);
}

Sides joinTasks(MapParts& parts, std::vector<Task>& tasks, size_t& next, const Tile& tile,
                int levels) {
  if (levels == 0) {
    Task& task = tasks[next++];
    shiftSides(task.sides, append(parts, task.parts));
    task.parts = MapParts{};
    return task.sides;
  }
  const auto [low, high] = halves(tile);
  const Sides lowSides = joinTasks(parts, tasks, next, low, levels - 1);
  const Sides highSides = joinTasks(parts, tasks, next, high, levels - 1);
  return joinTiles(parts, low, lowSides, highSides, halvedAlongX(tile));
}

// The side of a face towards a neighbour that lies across an axis.
Side sideTowards(const CubeFace& f, int axis, int sign) {
  if (axis == f.u) return sign > 0 ? Right : Left;
  return sign > 0 ? Top : Bottom;
}

void joinFaces(MapParts& parts, const std::array<Sides, FaceCount>& sides) {
  for (int a = 0; a < FaceCount; ++a)
    for (int b = a + 1; b < FaceCount; ++b) {
      const CubeFace& f = CubeFaces[static_cast<size_t>(a)];
      const CubeFace& g = CubeFaces[static_cast<size_t>(b)];
      if (f.axis == g.axis) continue;
      const Side sideA = sideTowards(f, g.axis, g.sign);
      const Side sideB = sideTowards(g, f.axis, f.sign);
      SharedLine line{};
      line.axis = 3 - f.axis - g.axis;
      line.point.c[f.axis] = f.sign * CubeHalf;
      line.point.c[g.axis] = g.sign * CubeHalf;
      line.firstIsLeft = sideA == Right || sideA == Bottom;
      stitch(parts, sides[static_cast<size_t>(a)][sideA], sides[static_cast<size_t>(b)][sideB],
             line);
    }
}

Tile wholeFace(int face) { return {face, -CubeHalf, -CubeHalf, CubeHalf, CubeHalf}; }

}  // namespace

void lookAround(const LookSetup& setup, const LookOptions& options, VisibleMap& map) {
  const size_t polygons = setup.only != nullptr ? setup.only->size() : setup.state->polygonCount();
  const int levels = levelsFor(polygons);
  std::vector<Task> tasks;
  for (int face = 0; face < FaceCount; ++face) addTasks(tasks, wholeFace(face), levels);
  Workers(tasks, setup, options).run();
  MapParts parts;
  reserve(parts, tasks);
  size_t next = 0;
  std::array<Sides, FaceCount> sides;
  for (int face = 0; face < FaceCount; ++face)
    sides[static_cast<size_t>(face)] = joinTasks(parts, tasks, next, wholeFace(face), levels);
  joinFaces(parts, sides);
  buildMap(parts, setup, {threadCount(options.threads), options.cancelled, options.edgeSources},
           map);
}

namespace {

bool anySeen(const LookSetup& setup, const std::vector<std::int32_t>& numbers) {
  return std::any_of(numbers.begin(), numbers.end(), [&](std::int32_t number) {
    return eyePlane(*setup.state, static_cast<size_t>(number), setup.eye, setup.twoSided).isSeen;
  });
}

// What an object would take if it were alone: the union of what faces the eye.
double aloneSolidAngle(const LookSetup& whole, const LookOptions& options, const VisibleMap& view,
                       size_t object) {
  const IndexState& state = *whole.state;
  const std::vector<std::int32_t> only(
      state.objectPolygons.begin() + state.objectOffsets[object],
      state.objectPolygons.begin() + state.objectOffsets[object + 1]);
  if (!anySeen(whole, only)) return 0.0;
  LookSetup setup = whole;
  setup.only = &only;
  VisibleMap map = view;
  lookAround(setup, options, map);
  double sum = 0.0;
  for (const VisibleMap::Cell& cell : map.cells)
    if (cell.label.object != 0) sum += cell.solidAngle;
  return sum;
}

std::vector<double> aloneSolidAngles(const LookSetup& setup, const LookOptions& options,
                                     const VisibleMap& view) {
  const size_t offsets = setup.state->objectOffsets.size();
  const size_t objects = offsets == 0 ? 0 : offsets - 1;
  std::vector<double> angles(std::max(objects, setup.state->names->objectIds.size()), 0.0);
  LookOptions quiet = options;
  quiet.progress = nullptr;
  quiet.threads = 1;
  std::atomic<size_t> next{0};
  inParallel(std::min(threadCount(options.threads), std::max<size_t>(1, objects)), [&](bool) {
    for (size_t i = next.fetch_add(1); i < objects; i = next.fetch_add(1))
      angles[i] = aloneSolidAngle(setup, quiet, view, i);
  });
  return angles;
}

}  // namespace

VisibleMap SceneIndex::look(const Vector& eye, const LookOptions& options) const {
  check(eye, options);
  const Vec3 forward = unitOf(options.forward);
  const Vec3 up = upOf(options.up, forward);
  LookSetup setup;
  setup.state = state.get();
  setup.eye = {eye[0], eye[1], eye[2]};
  setup.twoSided = options.twoSided;
  setup.hemisphere = options.field == Field::Hemisphere;
  setup.forward = toFrame(forward);
  VisibleMap map;
  map.eye = eye;
  map.forward = {forward.x, forward.y, forward.z};
  map.up = {up.x, up.y, up.z};
  map.field = options.field;
  map.twoSided = options.twoSided;
  map.names = state->names;
  const VisibleMap view = map;
  lookAround(setup, options, map);
  if (options.alone) map.alone = aloneSolidAngles(setup, options, view);
  if (options.progress) options.progress(1.0);
  return map;
}

}  // namespace Lumivane::Visibility
