#include "visibility/Look.h"

#include "visibility/EdgeOrder.h"
#include "visibility/EyePlane.h"
#include "visibility/InParallel.h"
#include "visibility/IndexState.h"
#include "visibility/LookPolygons.h"
#include "visibility/MapBuilder.h"
#include "visibility/MapParts.h"
#include "visibility/PageMemory.h"
#include "visibility/TileDescent.h"
#include "visibility/TileTeam.h"
#include "visibility/Watch.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

// A look divides the faces of the cube into tiles. Threads that have nothing to do are given halves
// of them, each with parts of its own, which are joined in the order of the tiles: so the map does
// not depend on who did what.
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

// So many take more memory than looking at tiles.
constexpr size_t ManyPieces = 500000;

// Threads for so few polygons take longer to make than they save.
constexpr size_t PolygonsForThread = 64;

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

TileStart wholeFace(int face) {
  TileStart start;
  start.tile = {face, -CubeHalf, -CubeHalf, CubeHalf, CubeHalf};
  start.wholeFace = true;
  return start;
}

// Looks at all faces. What the calling thread does itself goes straight into the parts.
class Looker {
 public:
  Looker(const LookSetup& theSetup, const LookOptions& options, MapParts& theParts)
      : setup(theSetup), parts(theParts), team(options.cancelled, options.progress) {
    const size_t polygons =
        setup.only != nullptr ? setup.only->size() : setup.state->polygonCount();
    threads = std::min(threadCount(options.threads), 1 + polygons / PolygonsForThread);
  }

  std::array<Sides, FaceCount> run() {
    // The last face first: the calling thread begins at the other end.
    for (int face = FaceCount - 1; face > 0; --face) offered[face] = &team.offer(wholeFace(face));
    inParallel(threads, [this](bool isCaller) { work(isCaller); });
    team.throwFailure();
    return sides;
  }

 private:
  void work(bool isCaller) try {
    if (isCaller) {
      lookAtFaces();
      team.end();
    } else {
      doJobs();
    }
  } catch (const TileTeam::Stopped&) {
    // By what has failed elsewhere.
  } catch (...) {
    team.fail();
  }

  // Few polygons are seen on several faces, so that those of each are forgotten with it.
  void lookAtFaces() {
    for (int face = 0; face < FaceCount; ++face) {
      LookPolygons polygons(setup);
      TileDescent descent(polygons, parts, team);
      sides[static_cast<size_t>(face)] = face == 0 || team.takeBack(*offered[face])
                                             ? descent.run(wholeFace(face))
                                             : descent.resultOf(*offered[face]);
    }
  }

  void doJobs() {
    std::optional<LookPolygons> polygons;
    int face = -1;
    while (TileJob* const job = team.next()) {
      if (job->start.tile.face != face) polygons.emplace(setup);
      face = job->start.tile.face;
      TileDescent::run(*job, *polygons, team);
    }
  }

  const LookSetup& setup;
  MapParts& parts;
  TileTeam team;
  size_t threads = 1;
  TileJob* offered[FaceCount] = {};
  std::array<Sides, FaceCount> sides;
};

// \return as `buildMap` does
std::vector<std::int32_t> lookOnce(const LookSetup& setup, const LookOptions& options,
                                   VisibleMap& map) {
  MapParts parts;
  joinFaces(parts, Looker(setup, options, parts).run());
  parts.forgetAllStretches();
  // What the looks at the tiles needed, which the map has no use for.
  if (parts.pieces.size() > ManyPieces) trimHeap();
  return buildMap(parts, setup, options, map);
}

// The polygons of some regions that are looked at, in an order that follows from the regions: what
// is hidden changes polygons' numbers.
std::vector<std::int32_t> polygonsOf(const LookSetup& setup,
                                     const std::vector<std::int32_t>& regions) {
  const IndexState& state = *setup.state;
  std::vector<std::int32_t> polygons;
  const auto add = [&](std::int32_t polygon) {
    const std::int32_t region = state.regions[static_cast<size_t>(polygon)];
    if (std::binary_search(regions.begin(), regions.end(), region)) polygons.push_back(polygon);
  };
  if (setup.only != nullptr) {
    for (const std::int32_t polygon : *setup.only) add(polygon);
  } else {
    for (size_t i = 0; i < state.polygonCount(); ++i) add(static_cast<std::int32_t>(i));
  }
  std::sort(polygons.begin(), polygons.end(), [&](std::int32_t a, std::int32_t b) {
    const auto i = static_cast<size_t>(a);
    const auto k = static_cast<size_t>(b);
    return state.regions[i] != state.regions[k]
               ? state.regions[i] < state.regions[k]
               : isBefore(state.planes[i].point, state.planes[k].point);
  });
  return polygons;
}

// Of looks at what has been seen in the one before.
constexpr int MostRounds = 3;
// How far a look is reported to be before it looks again.
constexpr double FirstShare = 0.995;

}  // namespace

// Where many lines all but coincide, the tiles and stops of hidden ones decide which of those that
// are seen is found first. Then what is seen is looked at again as if nothing else were there,
// until it is what is seen then, too, so that what is hidden has no part in the map.
void lookAround(const LookSetup& setup, const LookOptions& options, VisibleMap& map) {
  if (options.progress) options.progress(0.0);
  const VisibleMap view = map;
  std::vector<std::int32_t> regions = lookOnce(setup, options, map);
  if (regions.empty()) return;
  LookOptions quiet = options;
  double reached = FirstShare;
  if (options.progress)
    quiet.progress = [&](double part) {
      reached = std::max(reached, FirstShare + (1.0 - FirstShare) * part);
      options.progress(reached);
    };
  for (int round = 0; round < MostRounds && !regions.empty(); ++round) {
    const std::vector<std::int32_t> only = polygonsOf(setup, regions);
    LookSetup again = setup;
    again.only = &only;
    map = VisibleMap(view);  // gives the memory of the one before back
    std::vector<std::int32_t> seen = lookOnce(again, quiet, map);
    if (seen == regions) return;
    regions = std::move(seen);
  }
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

// How much of a look that measures objects alone, too, the view itself is reported to be.
constexpr double ViewShare = 0.5;

// \return what reports the progress of the view itself
std::function<void(double)> progressOfView(const LookOptions& options) {
  if (!options.progress || !options.alone) return options.progress;
  return [&options](double part) { options.progress(ViewShare * part); };
}

std::vector<double> aloneSolidAngles(const LookSetup& setup, const LookOptions& options,
                                     const VisibleMap& view) {
  const size_t offsets = setup.state->objectOffsets.size();
  const size_t objects = offsets == 0 ? 0 : offsets - 1;
  std::vector<double> angles(std::max(objects, setup.state->names->objectIds.size()), 0.0);
  ProgressReport report(options.progress);
  std::atomic<size_t> next{0};
  inParallel(std::min(threadCount(options.threads), std::max<size_t>(1, objects)), [&](bool) {
    LookOptions own = options;
    own.threads = 1;
    size_t i = 0;
    const auto reported = [&](double part) {
      report.at(ViewShare +
                (1.0 - ViewShare) * (static_cast<double>(i) + part) / static_cast<double>(objects));
    };
    own.progress = nullptr;
    if (options.progress) own.progress = reported;
    for (i = next.fetch_add(1); i < objects; i = next.fetch_add(1))
      angles[i] = aloneSolidAngle(setup, own, view, i);
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
  LookOptions itself = options;
  itself.progress = progressOfView(options);
  lookAround(setup, itself, map);
  if (options.alone) map.alone = aloneSolidAngles(setup, options, view);
  if (options.progress) options.progress(1.0);
  return map;
}

}  // namespace Lumivane::Visibility
