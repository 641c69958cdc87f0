// Coordinates are turned, scaled and shifted, then rounded to a grid that single precision holds,
// since a shot keeps its polygons in it: so equal corners stay equal and faces stay flat.

#include "importers/Placement.h"

#include "importers/ImportError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>

namespace Lumivane::Importers {
namespace {

using Kernel::Vec3;
using Triple = std::array<double, 3>;

// Beyond it, cubes and squares of lengths would leave the range of numbers.
constexpr double LargestCoordinate = 1e15;
constexpr double SmallestDiagonal = 1e-9;
// Single precision has 24, and a shot holds polygons in it.
constexpr int KeptBits = 22;

Triple tripleOf(Vec3 v) { return {v.x, v.y, v.z}; }

struct Bounds {
  Triple lower{};
  Triple upper{};

  double middle(size_t axis) const { return (lower[axis] + upper[axis]) / 2.0; }
  double extent(size_t axis) const { return upper[axis] - lower[axis]; }
  double diagonal() const { return std::hypot(extent(0), extent(1), extent(2)); }
};

// Keeps the vertices that some polygon uses.
void dropUnused(SourceModel& model) {
  std::vector<int> numbers(model.vertices.size(), -1);
  std::vector<Vec3> used;
  for (SourcePolygon& polygon : model.polygons) {
    for (auto& loop : polygon.loops) {
      for (int& vertex : loop) {
        int& number = numbers[static_cast<size_t>(vertex)];
        if (number < 0) {
          number = static_cast<int>(used.size());
          used.push_back(model.vertices[static_cast<size_t>(vertex)]);
        }
        vertex = number;
      }
    }
  }
  model.vertices = std::move(used);
}

void turnAndScale(SourceModel& model, const ImportOptions& options) {
  for (Vec3& v : model.vertices) {
    if (options.yUp || model.yUp) v = {v.x, -v.z, v.y};
    v = options.scale * v;
    for (const double c : tripleOf(v))
      if (!(std::abs(c) <= LargestCoordinate))
        throw ImportError("a coordinate is beyond 1e15; choose a smaller scale");
  }
}

Bounds boundsOf(const std::vector<Vec3>& vertices) {
  Bounds bounds{tripleOf(vertices.front()), tripleOf(vertices.front())};
  for (const Vec3& v : vertices) {
    const Triple triple = tripleOf(v);
    for (size_t axis = 0; axis < 3; ++axis) {
      bounds.lower[axis] = std::min(bounds.lower[axis], triple[axis]);
      bounds.upper[axis] = std::max(bounds.upper[axis], triple[axis]);
    }
  }
  return bounds;
}

Triple shiftFor(const Bounds& bounds, const ImportOptions& options) {
  if (options.center) return {-bounds.middle(0), -bounds.middle(1), -bounds.lower[2]};
  Triple shift{};
  for (size_t axis = 0; axis < 3; ++axis) {
    const double middle = bounds.middle(axis);
    const double distance = std::abs(middle);
    if (distance > ImportOptions::FarCoordinate && distance > bounds.extent(axis))
      shift[axis] = -std::round(middle);
  }
  return shift;
}

// The grid of the coordinates: a power of two, so that every coordinate is exact in single
// precision too. A shot holds its polygons in that precision and looks for the ends of docking
// edges among them to within 1e-7: of an end that is rounded it draws the first piece.
double gridStep(const Bounds& bounds, const Triple& shift) {
  double largest = 0.0;
  for (size_t axis = 0; axis < 3; ++axis)
    largest = std::max({largest, std::abs(bounds.lower[axis] + shift[axis]),
                        std::abs(bounds.upper[axis] + shift[axis])});
  int exponent = 0;
  std::frexp(largest, &exponent);
  return std::ldexp(1.0, exponent - KeptBits);
}

// Adding 0 makes a 0 of -0.
double rounded(double value, double step) { return std::round(value / step) * step + 0.0; }

struct KeyHash {
  size_t operator()(const Triple& key) const {
    std::uint64_t hash = 0;
    for (const double value : key) {
      hash ^= std::hash<double>()(value) + 0x9E3779B97F4A7C15ULL + (hash << 6) + (hash >> 2);
    }
    return hash;
  }
};

// The number of each vertex among the different ones, which take the vertices' place.
std::vector<int> weld(std::vector<Vec3>& vertices) {
  std::unordered_map<Triple, int, KeyHash> numbers;
  numbers.reserve(vertices.size());
  std::vector<Vec3> kept;
  std::vector<int> result;
  result.reserve(vertices.size());
  for (const Vec3& v : vertices) {
    const auto [place, isNew] = numbers.emplace(tripleOf(v), static_cast<int>(kept.size()));
    if (isNew) kept.push_back(v);
    result.push_back(place->second);
  }
  vertices = std::move(kept);
  return result;
}

void renumber(std::vector<int>& loop, const std::vector<int>& numbers) {
  for (int& vertex : loop) vertex = numbers[static_cast<size_t>(vertex)];
  loop.erase(std::unique(loop.begin(), loop.end()), loop.end());
  while (loop.size() > 1 && loop.front() == loop.back()) loop.pop_back();
}

}  // namespace

PlacedSize placeModel(SourceModel& model, const ImportOptions& options, ImportReport& report) {
  dropUnused(model);
  if (model.vertices.empty()) throw ImportError("there is no polygon in it");
  turnAndScale(model, options);
  const Bounds bounds = boundsOf(model.vertices);
  const double diagonal = bounds.diagonal();
  if (diagonal < SmallestDiagonal) throw ImportError("all its polygons lie in one point");

  const Triple shift = shiftFor(bounds, options);
  const double step = gridStep(bounds, shift);
  for (Vec3& v : model.vertices)
    v = {rounded(v.x + shift[0], step), rounded(v.y + shift[1], step),
         rounded(v.z + shift[2], step)};

  const std::vector<int> numbers = weld(model.vertices);
  for (SourcePolygon& polygon : model.polygons)
    for (auto& loop : polygon.loops) renumber(loop, numbers);

  const Bounds placed = boundsOf(model.vertices);
  report.shift = shift;
  report.turned = options.yUp || model.yUp;
  report.lower = placed.lower;
  report.upper = placed.upper;
  return {diagonal, step};
}

}  // namespace Lumivane::Importers
