#pragma once

#include "importers/Outline.h"
#include "importers/SourceModel.h"

#include <lumivane/importers/ImportOptions.h>
#include <lumivane/importers/ImportReport.h>

#include <optional>
#include <vector>

namespace Lumivane::Importers {

/// One polygon without holes that becomes a region.
struct SurfaceRegion {
  Loop loop;  ///< counter-clockwise as seen from outside
  int material = 0;
  std::vector<int> hiddenEdges;  ///< from 1: edge e runs from corner e to the next
  int polygon = -1;              ///< which of the model's polygons it is, or was cut out of
  /// What a host says that it is: a position in `BuiltScene`'s given names, -1 for nothing. Without
  /// it the model's material and object say what it is.
  std::optional<int> givenClass{};
};

/// Regions in one plane that hang together.
struct SurfaceFace {
  std::vector<SurfaceRegion> regions;
  Kernel::Vec3 normal;  ///< to the outside
};

/// The faces of one object, in the order of their first polygon in the file.
using ObjectSurfaces = std::vector<SurfaceFace>;

/// Makes the faces of all objects: cuts polygons that need it into triangles, puts neighbours in
/// one plane together, and finds the edges that are not drawn.
///
/// \param step  of the grid on which the vertices lie: what is flat is so to within it
/// \return one entry for each object of the model, which may be empty
std::vector<ObjectSurfaces> makeFaces(const SourceModel& model, const ImportOptions& options,
                                      double step, ImportReport& report);

}  // namespace Lumivane::Importers
