// Two polygons: the fast relation tests say what the plain ones say.

#include "Bytes.h"
#include "plain/DepthSort.h"
#include "support/DepthSortProbe.h"

#include <lumivane/algorithm/DepthSortAlgorithmExecutor.h>
#include <lumivane/algorithm/IntersectionType.h>

#include <string>

namespace {

using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::require;
using Lumivane::Test::DepthSortProbe;
using Polygon = DepthSortProbe::Polygon;

Polygon polygon(Bytes& bytes, std::size_t dimension) {
  Polygon points(3 + bytes.take<std::uint8_t>() % 16);
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
