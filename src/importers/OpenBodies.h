#pragma once

#include "importers/SourceModel.h"

#include <lumivane/importers/ImportReport.h>

#include <vector>

namespace Lumivane::Importers {

/// The objects of a placed model, but for pieces of the ground, of which some edges belong to one
/// polygon only, in the order of the file.
std::vector<OpenBody> openBodiesOf(const SourceModel& model);

}  // namespace Lumivane::Importers
