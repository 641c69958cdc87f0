// A look along parallel lines: the picture's plane is laid on a face of the cube of directions, the
// look around is that of an eye, and its directions are turned back into places of the plane.

#include "visibility/InParallel.h"
#include "visibility/IndexState.h"
#include "visibility/Look.h"
#include "visibility/ParallelSight.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace Lumivane::Visibility {
namespace {

using Kernel::Vec3;

// The turn, by 0.41 rad, of the axes on the face against those of the picture.
constexpr double TurnCosine = 0.9171208228166051;
constexpr double TurnSine = 0.3986093279844229;
// Part of half the face that the scene takes.
constexpr double FaceShare = 0.7;

void check(const ParallelOptions& options) {
  if (!isFinite(options.direction)) throw std::invalid_argument("the direction is not finite");
  if (!isFinite(options.up)) throw std::invalid_argument("up is not finite");
  if (options.direction == Vector{0.0, 0.0, 0.0})
    throw std::invalid_argument("the direction is zero");
  if (options.threads < 0) throw std::invalid_argument("the number of threads is negative");
}

// Of the picture.
struct Axes {
  Vec3 right;
  Vec3 up;
  Vec3 along;
};

Axes axesOf(const ParallelOptions& options) {
  Axes axes{};
  axes.along = unitOf(options.direction);
  axes.up = upOf(options.up, axes.along);
  // Of a plan with z for up the upper edge is north.
  if (std::fabs(axes.along.x) < 1e-9 && std::fabs(axes.along.y) < 1e-9 && options.up[0] == 0.0 &&
      options.up[1] == 0.0)
    axes.up = {0.0, 1.0, 0.0};
  axes.right = Kernel::cross(axes.along, axes.up);
  return axes;
}

ParallelSight sightOf(const IndexState& state, const Axes& axes) {
  ParallelSight sight{};
  double radius = 0.0;
  if (!state.nodes.empty()) {
    const BoxNode& root = state.nodes.front();
    const Vec3 low = {root.low[0], root.low[1], root.low[2]};
    const Vec3 high = {root.high[0], root.high[1], root.high[2]};
    sight.middle = 0.5 * (low + high);
    radius = 0.5 * Kernel::distance(low, high);
  }
  const double size = radius > 0.0 ? FaceShare / radius : 1.0;
  sight.x = size * (TurnCosine * axes.right + TurnSine * axes.up);
  sight.y = size * (TurnCosine * axes.up - TurnSine * axes.right);
  sight.along = size * axes.along;
  const CubeFace& face = CubeFaces[ParallelSight::Face];
  sight.faceX = cubeAxis(face.u, 1.0);
  sight.faceY = cubeAxis(face.v, 1.0);
  sight.faceForward = cubeAxis(face.axis, face.sign);
  return sight;
}

// The inverse of ParallelSight::directionTo.
ParallelMap::Point placeOf(const Vector& direction, const ParallelSight& sight, const Axes& axes) {
  const Vec3 d = {direction[0], direction[1], direction[2]};
  const double depth = Kernel::dot(d, sight.faceForward) * Kernel::dot(sight.along, sight.along);
  const double x = Kernel::dot(d, sight.faceX) / depth;
  const double y = Kernel::dot(d, sight.faceY) / depth;
  const Vec3 p = sight.middle + x * sight.x + y * sight.y;
  return {Kernel::dot(p, axes.right), Kernel::dot(p, axes.up)};
}

double areaOf(const ParallelMap& map, const ParallelMap::Cell& cell) {
  double sum = 0.0;
  for (std::size_t r = cell.firstRing; r < cell.firstRing + cell.ringCount; ++r) {
    const std::size_t from = map.ringOffsets[r];
    const std::size_t to = map.ringOffsets[r + 1];
    const auto at = [&](std::size_t i) {
      return map.points[static_cast<std::size_t>(map.ringVertices[i])];
    };
    const ParallelMap::Point origin = at(from);
    for (std::size_t i = from; i < to; ++i) {
      const ParallelMap::Point a = at(i);
      const ParallelMap::Point b = at(i + 1 == to ? from : i + 1);
      sum +=
          0.5 * ((a[0] - origin[0]) * (b[1] - origin[1]) - (b[0] - origin[0]) * (a[1] - origin[1]));
    }
  }
  // What lies around all has holes alone.
  return sum <= 0.0 && cell.label.object == 0 ? std::numeric_limits<double>::infinity()
                                              : std::max(0.0, sum);
}

Vector vectorOf(Vec3 v) { return {v.x, v.y, v.z}; }

}  // namespace

ParallelMap SceneIndex::lookAlong(const ParallelOptions& options) const {
  check(options);
  const Axes axes = axesOf(options);
  const ParallelSight sight = sightOf(*state, axes);
  LookSetup setup;
  setup.state = state.get();
  setup.twoSided = options.twoSided;
  setup.hemisphere = false;
  setup.parallel = &sight;
  VisibleMap around;
  around.field = Field::Sphere;
  around.forward = vectorOf(sight.faceForward);
  around.up = vectorOf(sight.faceY);
  LookOptions how;
  how.threads = options.threads;
  how.cancelled = options.cancelled;
  how.edgeSources = true;
  lookAround(setup, how, around);

  ParallelMap map;
  map.direction = vectorOf(axes.along);
  map.right = vectorOf(axes.right);
  map.up = vectorOf(axes.up);
  map.twoSided = options.twoSided;
  map.names = state->names;
  for (const Vector& vertex : around.vertices) map.points.push_back(placeOf(vertex, sight, axes));
  map.ringOffsets = std::move(around.ringOffsets);
  map.ringVertices = std::move(around.ringVertices);
  map.edges = std::move(around.edges);
  map.edgeSources = std::move(around.edgeSources);
  for (const VisibleMap::Cell& cell : around.cells) {
    map.cells.push_back({cell.label, 0.0, cell.firstRing, cell.ringCount});
    map.cells.back().area = areaOf(map, map.cells.back());
  }
  return map;
}

std::vector<SceneEdge> SceneIndex::edges() const {
  std::vector<SceneEdge> edges(state->edgeVertices.size() / 2);
  const auto at = [this](std::int32_t vertex) {
    return vectorOf(state->vertices[static_cast<std::size_t>(vertex)]);
  };
  for (std::size_t i = 0; i < edges.size(); ++i) {
    edges[i].from = at(state->edgeVertices[2 * i]);
    edges[i].to = at(state->edgeVertices[2 * i + 1]);
    edges[i].inner = true;
  }
  for (std::size_t p = 0; p < state->polygonCount(); ++p)
    for (auto c = state->cornerOffsets[p]; c < state->cornerOffsets[p + 1]; ++c) {
      const auto corner = static_cast<std::size_t>(c);
      const auto number = static_cast<std::size_t>(state->cornerEdges[corner]);
      SceneEdge& edge = edges[number];
      edge.inner = edge.inner && state->cornerInner[corner] != 0;
      const auto side = static_cast<std::size_t>(edge.polygonCount++);
      if (side >= edge.sides.size()) continue;
      edge.sides[side] = {state->regions[p], vectorOf(state->planes[p].normal),
                          state->cornerVertices[corner] == state->edgeVertices[2 * number]};
    }
  return edges;
}

}  // namespace Lumivane::Visibility
