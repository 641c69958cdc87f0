// The inner steps of a shot, on random input of a fixed seed. Steps with a reference implementation
// stand beside it, so that what a faster form gains is the ratio of two lines of one run.

#include "jzon/Json5.h"
#include "jzon/JsonNumber.h"
#include "kernel/Angle.h"
#include "kernel/BoxTree.h"
#include "kernel/Classify.h"
#include "kernel/ConvexArea.h"
#include "kernel/Docking.h"
#include "kernel/Frame.h"
#include "kernel/Hemisphere.h"
#include "kernel/Order.h"
#include "kernel/Outline.h"
#include "kernel/PointPool.h"
#include "kernel/Polygon2.h"
#include "kernel/Split.h"
#include "kernel/Vec.h"
#include "plain/DepthSort.h"
#include "plain/JsonNumber.h"
#include "plain/PointPool.h"
#include "scene/City.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

namespace Kernel = Lumivane::Kernel;
namespace Plain = Lumivane::Plain;
using Kernel::Vec2;
using Kernel::Vec3;

constexpr unsigned Seed = 20260607;

class Random {
 public:
  double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine);
  }
  Vec2 point2() { return {between(-1.0, 1.0), between(-1.0, 1.0)}; }
  Vec3 point3() { return {between(-1.0, 1.0), between(-1.0, 1.0), between(-1.0, 1.0)}; }

 private:
  std::mt19937_64 engine{Seed};
};

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
  const std::vector<Vec2> others[] = {regularPolygon(corners, {0.5, 0.1}, 1.0),
                                      regularPolygon(corners, {0.1, 0.1}, 0.3),
                                      regularPolygon(corners, {1.5, 1.5}, 1.0)};
  Kernel::Rings rings;
  rings.add(regularPolygon(corners, {0.0, 0.0}, 1.0));
  rings.add(others[state.range(1)]);
  Kernel::RingScratch scratch(rings.largest());
  for (auto _ : state) benchmark::DoNotOptimize(Kernel::meetingOf(rings[0], rings[1], scratch));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(meetingOf)->ArgsProduct({{18, 24, 96, 384}, {0, 1, 2}})->ArgNames({"corners", "case"});

// --- The whole relation test of two faces ---

/// Triangles of the scene and of the picture: each is a face of one piece, its edges in 6 pieces
/// each, so of 18 points on the picture.
struct Triangles {
  void add(const std::vector<Vec3>& corners, Vec2 (*project)(Vec3)) {
    std::vector<Vec3> split;
    Kernel::splitPolygon(corners, 6, split);
    sources.push_back(corners);
    outlines.emplace_back();
    for (const Vec3& point : split) outlines.back().push_back(project(point));
  }

  void findPairs() {
    std::vector<Kernel::Box> boxes;
    for (const std::vector<Vec2>& outline : outlines) boxes.push_back(Kernel::boxOf(outline));
    for (std::size_t i = 0; i < boxes.size(); ++i)
      for (std::size_t j = 0; j < i; ++j)
        if (Kernel::boxesMeet(boxes[i], boxes[j])) pairs.emplace_back(i, j);
  }

  std::vector<std::vector<Vec3>> sources;
  std::vector<std::vector<Vec2>> outlines;
  std::vector<std::pair<std::size_t, std::size_t>> pairs;  ///< of faces whose boxes meet
};

/// Triangles of all directions, seen along z, that run through each other: the hardest pairs.
Triangles scatteredTriangles(std::size_t count) {
  Random random;
  const double reach = 1.3 / std::sqrt(static_cast<double>(count));
  Triangles triangles;
  for (std::size_t i = 0; i < count; ++i) {
    const Vec3 centre = random.point3();
    std::vector<Vec3> corners;
    for (int k = 0; k < 3; ++k) corners.push_back(centre + reach * random.point3());
    triangles.add(corners, [](Vec3 point) { return Vec2{point.x, point.y}; });
  }
  triangles.findPairs();
  return triangles;
}

/// The town from the air, each polygon that faces the eye as two triangles, in coordinates of the
/// camera.
Triangles townTriangles(std::size_t boxes) {
  const Lumivane::Bench::BenchScene town = Lumivane::Bench::city(static_cast<int>(boxes));
  const auto vec = [](const Lumivane::Bench::Point& p) { return Vec3{p.x, p.y, p.z}; };
  const Lumivane::Bench::NamedView& air = town.views.front();
  const Vec3 forward = Kernel::normalise(vec(air.forward)).direction;
  const Vec3 right = Kernel::normalise(Kernel::cross(vec(air.up), forward)).direction;
  const Kernel::BackFrame frame = Kernel::backFrame(right, forward);
  Triangles triangles;
  for (const Lumivane::Bench::Thing& thing : town.model.things) {
    for (const Lumivane::Bench::Face& face : thing.faces) {
      std::vector<Vec3> p;
      for (const int number : face.points)
        p.push_back(Kernel::transformedBack(
            vec(town.model.points[static_cast<std::size_t>(number) - 1]) - vec(air.eye), frame));
      if (Kernel::dot(Kernel::cross(p[1] - p[0], p[2] - p[1]), p[0]) <= 0.0) continue;
      triangles.add({p[0], p[1], p[2]}, Kernel::planePointRadial);
      triangles.add({p[0], p[2], p[3]}, Kernel::planePointRadial);
    }
  }
  triangles.findPairs();
  return triangles;
}

Kernel::FaceShapes shapesOf(const Triangles& triangles) {
  Kernel::FaceShapes shapes;
  for (std::size_t i = 0; i < triangles.outlines.size(); ++i) {
    const std::vector<Vec2>& outline = triangles.outlines[i];
    shapes.addFace();
    shapes.addPiece(outline.size(), [&outline](std::size_t k) { return outline[k]; });
    shapes.addSource(triangles.sources[i]);
  }
  return shapes;
}

using MakeTriangles = Triangles (*)(std::size_t);

void relation(benchmark::State& state, MakeTriangles make) {
  const Triangles triangles = make(static_cast<std::size_t>(state.range(0)));
  const Kernel::FaceShapes shapes = shapesOf(triangles);
  Kernel::PairScan scan(shapes);
  for (auto _ : state)
    for (const auto& [i, j] : triangles.pairs)
      benchmark::DoNotOptimize(Kernel::classifyPair(shapes, i, j, scan));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(triangles.pairs.size()));
}
BENCHMARK_CAPTURE(relation, town, townTriangles)->Arg(200)->Arg(1000);
BENCHMARK_CAPTURE(relation, scattered, scatteredTriangles)->Arg(200)->Arg(2000);

template <class Points>
Plain::Matrix plainPoints(const Points& points) {
  Plain::Matrix result;
  for (const auto& point : points) {
    if constexpr (std::is_same_v<decltype(point), const Vec2&>)
      result.push_back({point.x, point.y});
    else
      result.push_back({point.x, point.y, point.z});
  }
  return result;
}

void relationPlain(benchmark::State& state, MakeTriangles make) {
  const Triangles triangles = make(static_cast<std::size_t>(state.range(0)));
  std::vector<Plain::Face> faces;
  for (std::size_t i = 0; i < triangles.outlines.size(); ++i)
    faces.push_back({{plainPoints(triangles.outlines[i])}, {plainPoints(triangles.sources[i])}});
  std::string messages;
  for (auto _ : state)
    for (const auto& [i, j] : triangles.pairs)
      benchmark::DoNotOptimize(Plain::cell(faces[i], faces[j], messages));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(triangles.pairs.size()));
}
BENCHMARK_CAPTURE(relationPlain, town, townTriangles)->Arg(200);
BENCHMARK_CAPTURE(relationPlain, scattered, scatteredTriangles)->Arg(200);

// --- Which boxes meet ---

std::vector<Kernel::Box> randomBoxes(std::size_t count) {
  Random random;
  const double reach = 1.3 / std::sqrt(static_cast<double>(count));
  std::vector<Kernel::Box> boxes;
  for (std::size_t i = 0; i < count; ++i) {
    const Vec2 low = random.point2();
    boxes.push_back(
        {low.x, low.x + random.between(0.0, reach), low.y, low.y + random.between(0.0, reach)});
  }
  return boxes;
}

/// The tree, and for every box those before it that it meets.
void meetingBoxes(benchmark::State& state) {
  const std::vector<Kernel::Box> boxes = randomBoxes(static_cast<std::size_t>(state.range(0)));
  std::vector<std::uint32_t> found(boxes.size());
  for (auto _ : state) {
    const Kernel::BoxTree tree(boxes);
    std::size_t count = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i)
      count += tree.findMeeting(boxes[i], static_cast<std::uint32_t>(i), found.data());
    benchmark::DoNotOptimize(count);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(meetingBoxes)->RangeMultiplier(10)->Range(1000, 100000)->Complexity();

void meetingBoxesPlain(benchmark::State& state) {
  const std::vector<Kernel::Box> boxes = randomBoxes(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i)
      for (std::size_t j = 0; j < i; ++j) count += Kernel::boxesMeet(boxes[i], boxes[j]) ? 1 : 0;
    benchmark::DoNotOptimize(count);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(meetingBoxesPlain)->Arg(1000)->Arg(10000);

// --- The order ---

/// Three edges a node, from lower numbers to higher ones.
std::vector<Kernel::Arrow> randomArrows(std::uint32_t nodes) {
  Random random;
  std::vector<Kernel::Arrow> arrows;
  for (std::uint32_t node = 1; node < nodes; ++node)
    for (int k = 0; k < 3; ++k)
      arrows.emplace_back(static_cast<std::uint32_t>(random.between(0.0, node)), node);
  return arrows;
}

void topologicalOrder(benchmark::State& state) {
  const auto nodes = static_cast<std::uint32_t>(state.range(0));
  const std::vector<Kernel::Arrow> arrows = randomArrows(nodes);
  for (auto _ : state) benchmark::DoNotOptimize(Kernel::topologicalOrder(nodes, arrows));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(topologicalOrder)->Arg(300)->Arg(1000)->Arg(100000);

void topologicalOrderPlain(benchmark::State& state) {
  std::vector<Plain::Names> edges;
  for (const auto& [start, end] : randomArrows(static_cast<std::uint32_t>(state.range(0))))
    edges.push_back({std::to_string(start), std::to_string(end)});
  for (auto _ : state) benchmark::DoNotOptimize(Plain::sortGraph(edges));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(topologicalOrderPlain)->Arg(300)->Arg(1000)->Unit(benchmark::kMillisecond);

// --- Onto the plane ---

void planePoint(benchmark::State& state, Vec2 (*project)(Vec3)) {
  Random random;
  std::vector<Vec3> points(4096);
  for (Vec3& point : points) point = random.point3();
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(project(points[i++ % points.size()]));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(planePoint, radial, Kernel::planePointRadial);
BENCHMARK_CAPTURE(planePoint, square, Kernel::planePointSquare);

void transformedBack(benchmark::State& state) {
  Random random;
  const Kernel::BackFrame frame = Kernel::backFrame({0, 1, 0}, {1, 0, 0});
  const Vec3 point = random.point3();
  for (auto _ : state) {
    benchmark::DoNotOptimize(point);
    benchmark::DoNotOptimize(Kernel::transformedBack(point, frame));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(transformedBack);

void transformedBackPlain(benchmark::State& state) {
  std::string messages;
  for (auto _ : state)
    benchmark::DoNotOptimize(
        Plain::transformedBack({0.3, 0.2, 0.1}, {0, 1, 0}, {1, 0, 0}, messages));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(transformedBackPlain);

void splitPolygon(benchmark::State& state) {
  const std::vector<Vec3> square = {{3, -1, -1}, {3, 1, -1}, {3, 1, 1}, {3, -1, 1}};
  std::vector<Vec3> points;
  for (auto _ : state) {
    Kernel::splitPolygon(square, state.range(0), points);
    benchmark::DoNotOptimize(points.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0) * 4);
}
BENCHMARK(splitPolygon)->Arg(6)->Arg(24)->Arg(1800);

void angleDegrees(benchmark::State& state) {
  Random random;
  const Vec3 a = random.point3();
  const Vec3 b = random.point3();
  for (auto _ : state) {
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(Kernel::roundD(Kernel::angleDegrees(a, b), 2));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(angleDegrees);

void isInConvexArea(benchmark::State& state) {
  const std::vector<Vec3> square = {{3, -1, -1}, {3, 1, -1}, {3, 1, 1}, {3, -1, 1}};
  for (auto _ : state) benchmark::DoNotOptimize(Kernel::isInConvexArea({3, 0.2, 0.1}, square));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(isInConvexArea);

// --- The records of the shot ---

std::vector<Vec2> randomPoints(std::size_t count) {
  Random random;
  std::vector<Vec2> points(count);
  for (Vec2& point : points) point = random.point2();
  return points;
}

// Merging the points of a shot into one list.
template <class Pool>
void mergePoints(benchmark::State& state) {
  const std::vector<Vec2> points = randomPoints(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    Pool pool(0.001);
    for (const Vec2& point : points)
      if (pool.find(point) == Kernel::PointPool::None) pool.add(point);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK_TEMPLATE(mergePoints, Kernel::PointPool)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK_TEMPLATE(mergePoints, Plain::PointPool)->Arg(1000)->Arg(10000);

// The edges that the pieces of one region share.
void dockingEdges(benchmark::State& state) {
  const auto corners = static_cast<std::size_t>(state.range(0));
  const std::vector<std::vector<Vec2>> pieces = {regularPolygon(corners, {0.0, 0.0}, 1.0),
                                                 regularPolygon(corners, {2.0, 0.0}, 1.0)};
  for (auto _ : state) benchmark::DoNotOptimize(Kernel::dockingEdges(pieces, 1e-07));
}
BENCHMARK(dockingEdges)->Arg(24)->Arg(384)->Arg(1800);

void outlineChains(benchmark::State& state) {
  const std::vector<int> docking = {3, 9, 10, 17};
  for (auto _ : state) benchmark::DoNotOptimize(Kernel::outlineChains(24, docking));
}
BENCHMARK(outlineChains);

// --- Texts ---

std::vector<double> randomNumbers() {
  Random random;
  std::vector<double> numbers(4096);
  for (double& number : numbers) number = random.between(-1.0, 1.0);
  return numbers;
}

template <class Text>
void writeNumbers(benchmark::State& state, Text text) {
  const std::vector<double> numbers = randomNumbers();
  for (auto _ : state)
    for (const double number : numbers) benchmark::DoNotOptimize(text(number));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(numbers.size()));
}
void writeNumber(benchmark::State& state) {
  std::array<char, Jzon::NumberTextLength> buffer{};
  writeNumbers(state, [&](double number) { return Jzon::writeNumber(number, buffer.data()); });
}
void writeNumberPlain(benchmark::State& state) { writeNumbers(state, Plain::numberText<double>); }
BENCHMARK(writeNumber);
BENCHMARK(writeNumberPlain);

template <class Read>
void readNumbers(benchmark::State& state, Read read) {
  std::vector<std::string> texts;
  for (const double number : randomNumbers()) texts.push_back(Plain::numberText(number));
  for (auto _ : state)
    for (const std::string& text : texts) benchmark::DoNotOptimize(read(text));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(texts.size()));
}
void readNumber(benchmark::State& state) { readNumbers(state, Jzon::readDouble); }
void readNumberPlain(benchmark::State& state) { readNumbers(state, Plain::readNumber<double>); }
BENCHMARK(readNumber);
BENCHMARK(readNumberPlain);

void json5ToJson(benchmark::State& state) {
  std::string text = "{points: [";
  for (const double number : randomNumbers()) text += Plain::numberText(number) + ", // a point\n";
  text += "],}";
  for (auto _ : state) benchmark::DoNotOptimize(Jzon::json5ToJson(text));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(json5ToJson)->Unit(benchmark::kMillisecond);

}  // namespace
