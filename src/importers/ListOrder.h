#pragma once

#include "importers/SourceFaces.h"
#include "importers/SourceModel.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace Lumivane::Importers {

/// In which order the objects of a model are listed in the scene: pieces of the ground first, then
/// the others, in the order of the file or, with an eye, from far to near. With an eye the faces of
/// each object are put from far to near as well.
///
/// The order of a scene's lists decides in a shot where faces overlap cyclically, so that none of
/// them can be drawn first: buildings are then still drawn over the ground, and near ones over far
/// ones.
std::vector<std::size_t> listOrder(const SourceModel& model, std::vector<ObjectSurfaces>& surfaces,
                                   const std::optional<Kernel::Vec3>& eye);

}  // namespace Lumivane::Importers
