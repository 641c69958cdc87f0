#pragma once

#include "Options.h"

#include <string>
#include <vector>

namespace Lumivane::Session {
class LoadedScene;
}

namespace Lumivane::Host {

/// One view of a grid, its numbers as they stand in the table.
struct GridView {
  std::string name;
  Vector eye;
  Vector forward;
  Vector up;
};

/// What each eye really sees, as one table whose first column is the view's name. Shows on a
/// terminal how far it has come. Empty in a program without the components.
/// \throws HostError
std::string exactShares(const GridOptions& options, const Session::LoadedScene& scene,
                        const std::vector<GridView>& views);

}  // namespace Lumivane::Host
