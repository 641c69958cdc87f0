// The bytes are pairs of polygons, in the plane and in space: the fast relation tests say what the
// plain ones say.

#include "Bytes.h"
#include "plain/DepthSort.h"
#include "support/DepthSortProbe.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/IntersectionType.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::require;
using Lumivane::Test::DepthSortProbe;
using Polygon = DepthSortProbe::Polygon;

// Points on a circle, every other one drawn towards its middle: a few bytes make many edges.
Polygon star(Bytes& bytes, std::size_t dimension) {
  Polygon points(3 + bytes.take<std::uint8_t>() % 126);
  const double radius = bytes.coordinate(), depth = bytes.coordinate();
  std::vector<double> middle(dimension);
  for (double& coordinate : middle) coordinate = bytes.coordinate();
  for (std::size_t i = 0; i < points.size(); ++i) {
    const double angle =
        6.283185307179586 * static_cast<double>(i) / static_cast<double>(points.size());
    const double length = i % 2 == 0 ? radius : radius * depth;
    points[i] = middle;
    points[i][0] += length * std::cos(angle);
    points[i][1] += length * std::sin(angle);
  }
  return points;
}

Polygon polygon(Bytes& bytes, std::size_t dimension) {
  const auto kind = bytes.take<std::uint8_t>();
  if (kind >= 224) return star(bytes, dimension);
  Polygon points(3 + kind % 16);
  for (auto& point : points)
    for (std::size_t i = 0; i < dimension; ++i) point.push_back(bytes.coordinate());
  return points;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  Bytes bytes(data, size);
  Lumivane::Algorithm::DepthSortAlgorithmExecutor executor;
  DepthSortProbe probe(executor);

  Polygon a = polygon(bytes, 2), b = polygon(bytes, 2);
  require(static_cast<int>(probe.getPolygonsIntersectionType(&a, &b)) ==
          Lumivane::Plain::intersectionType(a, b));
  require(static_cast<int>(probe.getPolygonsIntersectionType(&b, &a)) ==
          Lumivane::Plain::intersectionType(b, a));

  const Polygon c = polygon(bytes, 3), d = polygon(bytes, 3);
  std::string messages;
  require(probe.checkPolygonsLocation(c, d) == Lumivane::Plain::location(c, d, messages));
  return 0;
}
