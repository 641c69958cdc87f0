// From pieces to the map: the order of the steps, each of which stands in a chapter of its own.
#include "visibility/MapBuilder.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace Lumivane::Visibility {

void MapBuilder::run() {
  constexpr void (MapBuilder::*Steps[])() = {
      &MapBuilder::joinVertices,  &MapBuilder::findSources,       &MapBuilder::numberCells,
      &MapBuilder::findBentCells, &MapBuilder::makeLinks,         &MapBuilder::numberVertices,
      &MapBuilder::closeRings,    &MapBuilder::dropSliverLinks,   &MapBuilder::chainLinks,
      &MapBuilder::placeVertices, &MapBuilder::contractEdges,     &MapBuilder::dropSliverEdges,
      &MapBuilder::chainEdges,    &MapBuilder::orderMap,          &MapBuilder::makeRings,
      &MapBuilder::measureCells,  &MapBuilder::settleWholeSpheres};
  double done = 0.0;
  for (const auto step : Steps) {
    watch.setPart(PartsShare + (1.0 - PartsShare) * done / static_cast<double>(std::size(Steps)));
    watch.check();
    (this->*step)();
    ++done;
  }
}

std::vector<std::int32_t> MapBuilder::seenRegions() const {
  std::vector<std::int32_t> regions;
  for (const std::int32_t polygon : cellPolygons)
    if (polygon >= 0) regions.push_back(setup.state->regions[static_cast<size_t>(polygon)]);
  std::sort(regions.begin(), regions.end());
  regions.erase(std::unique(regions.begin(), regions.end()), regions.end());
  return regions;
}

std::vector<std::int32_t> buildMap(MapParts& parts, const LookSetup& setup,
                                   const LookOptions& options, VisibleMap& map) {
  MapBuilder builder(parts, setup, options, map);
  builder.run();
  return builder.hasDoubt() ? builder.seenRegions() : std::vector<std::int32_t>();
}

}  // namespace Lumivane::Visibility
