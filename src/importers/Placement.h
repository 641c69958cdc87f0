#pragma once

#include "importers/SourceModel.h"

#include <lumivane/importers/ImportOptions.h>
#include <lumivane/importers/ImportReport.h>

namespace Lumivane::Importers {

/// How far a model reaches, and how finely its coordinates are kept.
struct PlacedSize {
  double diagonal = 0.0;  ///< of the model's bounds, above 0
  double step = 0.0;      ///< every coordinate is a multiple of it
};

/// Turns, scales and shifts the vertices, rounds them to a grid of 22 bits,
/// makes one of those that are equal then, and takes repeated corners out of the loops.
/// Vertices that no polygon uses have no influence. Fills the report's shift and bounds.
///
/// \throws ImportError if there is no polygon, or the scaled numbers are out of range
PlacedSize placeModel(SourceModel& model, const ImportOptions& options, ImportReport& report);

}  // namespace Lumivane::Importers
