// The inner steps of a shot, on random input of a fixed seed.

#include "kernel/Docking.h"
#include "kernel/Hemisphere.h"
#include "kernel/PointPool.h"
#include "kernel/Polygon2.h"
#include "kernel/Vec.h"

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using Lumivane::Kernel::Vec2;
using Lumivane::Kernel::Vec3;

constexpr unsigned Seed = 20260607;

std::vector<Vec2> regularPolygon(std::size_t corners, Vec2 centre, double radius) {
  std::vector<Vec2> result;
  for (std::size_t i = 0; i < corners; ++i) {
    const double angle =
        2.0 * std::acos(-1.0) * static_cast<double>(i) / static_cast<double>(corners);
    result.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
  }
  return result;
}

// How two polygons meet: crossing (0), one in the other (1), apart with meeting boxes (2).
void meetingOf(benchmark::State& state) {
  const auto corners = static_cast<std::size_t>(state.range(0));
  const std::vector<Vec2> first = regularPolygon(corners, {0.0, 0.0}, 1.0);
  const std::vector<Vec2> others[] = {regularPolygon(corners, {0.5, 0.1}, 1.0),
                                      regularPolygon(corners, {0.1, 0.1}, 0.3),
                                      regularPolygon(corners, {1.5, 1.5}, 1.0)};
  const std::vector<Vec2>& second = others[state.range(1)];
  for (auto _ : state) benchmark::DoNotOptimize(Lumivane::Kernel::meetingOf(first, second));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(meetingOf)->ArgsProduct({{24, 96, 384}, {0, 1, 2}})->ArgNames({"corners", "case"});

void planePoint(benchmark::State& state, Vec2 (*project)(Vec3)) {
  std::mt19937_64 random(Seed);
  std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
  std::vector<Vec3> points(4096);
  for (Vec3& point : points) point = {coordinate(random), coordinate(random), coordinate(random)};
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(project(points[i++ % points.size()]));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(planePoint, radial, Lumivane::Kernel::planePointRadial);
BENCHMARK_CAPTURE(planePoint, square, Lumivane::Kernel::planePointSquare);

// Merging the points of a shot into one list.
void pointPool(benchmark::State& state) {
  std::mt19937_64 random(Seed);
  std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
  std::vector<Vec2> points(static_cast<std::size_t>(state.range(0)));
  for (Vec2& point : points) point = {coordinate(random), coordinate(random)};
  for (auto _ : state) {
    Lumivane::Kernel::PointPool pool(0.001);
    for (const Vec2& point : points)
      if (pool.find(point) == Lumivane::Kernel::PointPool::None) pool.add(point);
    benchmark::DoNotOptimize(pool.size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(pointPool)->Arg(1000)->Arg(10000)->Arg(100000);

// The edges that the pieces of one region share.
void dockingEdges(benchmark::State& state) {
  const auto corners = static_cast<std::size_t>(state.range(0));
  const std::vector<std::vector<Vec2>> pieces = {regularPolygon(corners, {0.0, 0.0}, 1.0),
                                                 regularPolygon(corners, {2.0, 0.0}, 1.0)};
  for (auto _ : state) benchmark::DoNotOptimize(Lumivane::Kernel::dockingEdges(pieces, 1e-07));
}
BENCHMARK(dockingEdges)->Arg(24)->Arg(384)->Arg(1800);

}  // namespace
