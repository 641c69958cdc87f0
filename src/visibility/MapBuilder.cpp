// From pieces to the map: the order of the steps, each of which stands in a chapter of its own.
#include "visibility/MapBuilder.h"

#include <cstddef>
#include <iterator>

namespace Lumivane::Visibility {

void MapBuilder::run() {
  constexpr void (MapBuilder::*Steps[])() = {
      &MapBuilder::joinVertices,      &MapBuilder::findSources,     &MapBuilder::numberCells,
      &MapBuilder::findBentCells,     &MapBuilder::makeLinks,       &MapBuilder::numberVertices,
      &MapBuilder::closeRings,        &MapBuilder::dropSliverLinks, &MapBuilder::chainLinks,
      &MapBuilder::placeVertices,     &MapBuilder::contractEdges,   &MapBuilder::dropSliverEdges,
      &MapBuilder::orderMap,          &MapBuilder::makeRings,       &MapBuilder::measureCells,
      &MapBuilder::settleWholeSpheres};
  double done = 0.0;
  for (const auto step : Steps) {
    watch.setPart(PartsShare + (1.0 - PartsShare) * done / static_cast<double>(std::size(Steps)));
    watch.check();
    (this->*step)();
    ++done;
  }
}

void buildMap(MapParts& parts, const LookSetup& setup, const LookOptions& options,
              VisibleMap& map) {
  MapBuilder(parts, setup, options, map).run();
}

}  // namespace Lumivane::Visibility
