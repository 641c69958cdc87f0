// Each edge of a map is flattened once, whichever cell asks, so that the cells on its two sides
// have the same points and no gap opens between them.

#include "measure/MapOutlines.h"

#include "algorithm/pipeline/TypeProjection.h"
#include "kernel/ArcFlattening.h"

#include <lumivane/visibility/VisibleMap.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace Lumivane::Measure {
namespace {

using Algorithm::ProjectionType;
using Kernel::Vec2;
using Kernel::Vec3;
using Visibility::VisibleMap;

constexpr double OnRim = 1e-12;  // what rounding leaves of a direction at a right angle to forward
constexpr double AtPole = 1e-9;  // radians: nearer directions have no azimuth worth the name

Vec3 asVec(const Visibility::Vector& v) { return {v[0], v[1], v[2]}; }

// x to the right, y upwards, z forward; nothing is behind.
std::vector<Vec3> directionsOf(const VisibleMap& map) {
  const Vec3 forward = asVec(map.forward);
  const Vec3 up = asVec(map.up);
  const Vec3 right = cross(forward, up);
  std::vector<Vec3> directions;
  directions.reserve(map.vertices.size());
  for (const Visibility::Vector& vertex : map.vertices) {
    const Vec3 v = asVec(vertex);
    const double ahead = dot(v, forward);
    directions.push_back({dot(v, right), dot(v, up), ahead < OnRim ? 0.0 : ahead});
  }
  return directions;
}

// Whether a pole is a whole side of the picture.
bool hasPoleSides(const Kernel::Projection& projection) {
  switch (projection.shape) {
    case Kernel::PlaneShape::Disc:
      return false;
    case Kernel::PlaneShape::Band:
      return true;
  }
  return false;
}

class Flattener {
 public:
  Flattener(const VisibleMap& theMap, ProjectionType projection, double greatestDistance)
      : map(theMap),
        hasPoles(hasPoleSides(Algorithm::projectionOf(projection))),
        place(Algorithm::projectionOf(projection).place),
        tolerance(greatestDistance),
        directions(directionsOf(map)),
        numbers(directions.size(), None) {}

  MapOutlines outlines() {
    for (std::size_t cell = 0; cell < map.cells.size(); ++cell) {
      if (map.cells[cell].label == Visibility::Label()) continue;
      for (std::size_t i = 0; i < map.cells[cell].ringCount; ++i)
        result.rings.push_back({cell, ring(map.cells[cell].firstRing + i)});
    }
    return std::move(result);
  }

 private:
  using Numbers = std::vector<int>;
  static constexpr int None = 0;

  Numbers ring(std::size_t number) {
    const std::size_t first = map.ringOffsets[number];
    const std::size_t count = map.ringOffsets[number + 1] - first;
    Numbers all;
    for (std::size_t i = 0; i < count; ++i)
      append(all, map.ringVertices[first + i], map.ringVertices[first + (i + 1) % count]);
    if (all.size() > 1 && all.front() == all.back()) all.pop_back();
    return all;
  }

  void append(Numbers& all, int from, int to) {
    const Numbers& edge = curve(from, to);
    const auto add = [&all](int number) {
      if (all.empty() || all.back() != number) all.push_back(number);
    };
    if (from < to)
      std::for_each(edge.begin(), edge.end(), add);
    else
      std::for_each(edge.rbegin(), edge.rend(), add);
  }

  // The points of an edge from the vertex of the lower number to the other, ends included.
  const Numbers& curve(int from, int to) {
    const std::pair<int, int> key = std::minmax(from, to);
    const auto [found, isNew] = curves.try_emplace(key);
    if (isNew) found->second = flattened(key.first, key.second);
    return found->second;
  }

  Vec3 directionOf(int vertex) const { return directions[static_cast<std::size_t>(vertex)]; }

  bool isPole(Vec3 d) const { return hasPoles && Kernel::length2({d.x, d.z}) < AtPole; }

  int addPoint(Vec2 p) {
    result.points.push_back(p);
    return static_cast<int>(result.points.size());
  }

  int numberOf(int vertex) {
    int& number = numbers[static_cast<std::size_t>(vertex)];
    if (number == None) number = addPoint(place(directionOf(vertex)));
    return number;
  }

  // A great circle that ends at a pole keeps its azimuth up to there.
  int poleBeside(Vec3 pole, int vertex) {
    return addPoint({place(directionOf(vertex)).x, pole.y > 0.0 ? 1.0 : -1.0});
  }

  Numbers flattened(int from, int to) {
    const Vec3 a = directionOf(from);
    const Vec3 b = directionOf(to);
    if (isPole(a) && isPole(b)) return {};
    if (isPole(a)) return {poleBeside(a, to), numberOf(to)};
    if (isPole(b)) return {numberOf(from), poleBeside(b, from)};
    // Only the rim passes through a pole, for the map ends there.
    if (hasPoles && a.z == 0.0 && b.z == 0.0 && a.x * b.x < 0.0) {
      const Vec3 pole = Kernel::middleOfArc(a, b);
      return {numberOf(from), poleBeside(pole, from), poleBeside(pole, to), numberOf(to)};
    }
    Kernel::Places places;
    Kernel::ArcFlattening<Place>(place, tolerance).add(a, place(a), b, place(b), places);
    places.pop_back();
    Numbers line = {numberOf(from)};
    for (const Vec2 p : places) line.push_back(addPoint(p));
    line.push_back(numberOf(to));
    return line;
  }

  using Place = Vec2 (*)(Vec3);

  const VisibleMap& map;
  bool hasPoles;
  Place place;
  double tolerance;
  std::vector<Vec3> directions;
  Numbers numbers;  // of points, by vertex
  std::map<std::pair<int, int>, Numbers> curves;
  MapOutlines result;
};

}  // namespace

MapOutlines mapOutlines(const VisibleMap& map, ProjectionType projection, double tolerance) {
  return Flattener(map, projection, tolerance).outlines();
}

}  // namespace Lumivane::Measure
