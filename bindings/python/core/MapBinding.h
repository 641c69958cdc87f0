#pragma once

#include "SceneData.h"

#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/VisibleMap.h>

#include <memory>
#include <optional>

namespace Lumivane::Python {

/// A visibility map with its sums, made when first asked for, and the scene that it is of. Its
/// members are used by threads that hold Python's lock.
struct Map {
  std::shared_ptr<SceneData> scene;
  Visibility::VisibleMap map;
  std::optional<Visibility::MapShares> sums;

  const Visibility::MapShares& shares() {
    if (!sums) sums.emplace(map);
    return *sums;
  }
};

}  // namespace Lumivane::Python
