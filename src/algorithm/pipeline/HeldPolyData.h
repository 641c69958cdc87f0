#pragma once

#include "algorithm/pipeline/PolygonClipper.h"

#include <vector>

class vtkPolyData;

namespace Lumivane::Algorithm {

/// The polygons among the cells of any polygon data, in their order, with the normals that the data
/// has for its cells or, without any, gets from VTK's filter. Vertices, lines and cells without
/// points are left out.
std::vector<NormalCell> normalCellsOf(vtkPolyData* data);

}  // namespace Lumivane::Algorithm
