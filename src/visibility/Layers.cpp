#include "visibility/Layers.h"

#include <numeric>

namespace Lumivane::Visibility {

void findLayers(double, IndexState& state) {
  state.layers.resize(state.polygonCount());
  std::iota(state.layers.begin(), state.layers.end(), 0);
  state.layerPlanes = state.planes;
}

}  // namespace Lumivane::Visibility
