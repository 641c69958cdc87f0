#pragma once

#include <vector>

class vtkPolyData;

namespace Lumivane::Exchange {

struct SourceModel;

/// Appends the points of a data set to the vertices of a model.
/// \return the number of its first point among the vertices
/// \throws ImportError over a coordinate that is not finite
int appendVertices(vtkPolyData& data, SourceModel& model);

/// The polygons of a data set, in cell order, its strips last and cut into triangles.
/// \throws ImportError over a number of a point that is not there
std::vector<std::vector<int>> polygonsOf(vtkPolyData& data);

}  // namespace Lumivane::Exchange
