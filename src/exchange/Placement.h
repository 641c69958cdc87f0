#pragma once

#include "exchange/SourceModel.h"

#include <lumivane/exchange/ImportOptions.h>
#include <lumivane/exchange/ImportReport.h>

namespace Lumivane::Exchange {

/// Turns, scales and shifts the vertices, rounds them to a grid of 22 bits,
/// makes one of those that are equal then, and takes repeated corners out of the loops.
/// Vertices that no polygon uses have no influence. Fills the report's shift and bounds.
///
/// \return the length of the diagonal of the model's bounds, above 0
/// \throws ImportError if there is no polygon, or the scaled numbers are out of range
double placeModel(SourceModel& model, const ImportOptions& options, ImportReport& report);

}  // namespace Lumivane::Exchange
