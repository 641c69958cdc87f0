#pragma once

#include "exchange/SourceModel.h"

#include <lumivane/exchange/ImportReport.h>

#include <vector>

namespace Lumivane::Exchange {

/// The objects of a placed model, but for pieces of the ground, of which some edges belong to one
/// polygon only, in the order of the file.
std::vector<OpenBody> openBodiesOf(const SourceModel& model);

}  // namespace Lumivane::Exchange
