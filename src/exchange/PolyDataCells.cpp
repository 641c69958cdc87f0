#include "exchange/PolyDataCells.h"

#include "exchange/ImportError.h"
#include "exchange/SourceModel.h"

#include <cmath>
#include <string>

#include <vtkCellArray.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkPolygon.h>
#include <vtkTriangleStrip.h>

namespace Lumivane::Exchange {
namespace {

void append(vtkCellArray& cells, vtkIdType pointCount, std::vector<std::vector<int>>& polygons) {
  const vtkNew<vtkIdList> ids;
  cells.InitTraversal();
  while (cells.GetNextCell(ids) != 0) {
    std::vector<int> polygon;
    for (vtkIdType i = 0; i < ids->GetNumberOfIds(); ++i) {
      const vtkIdType id = ids->GetId(i);
      if (id < 0 || id >= pointCount)
        throw ImportError("a polygon refers to vertex " + std::to_string(id) + ", but there are " +
                          std::to_string(pointCount));
      polygon.push_back(static_cast<int>(id));
    }
    polygons.push_back(std::move(polygon));
  }
}

}  // namespace

int appendVertices(vtkPolyData& data, SourceModel& model) {
  const int first = static_cast<int>(model.vertices.size());
  for (vtkIdType i = 0; i < data.GetNumberOfPoints(); ++i) {
    double p[3];
    data.GetPoint(i, p);
    if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2]))
      throw ImportError("vertex " + std::to_string(i + 1) + " is not finite");
    model.vertices.push_back({p[0], p[1], p[2]});
  }
  return first;
}

std::vector<std::vector<int>> polygonsOf(vtkPolyData& data) {
  std::vector<std::vector<int>> polygons;
  append(*data.GetPolys(), data.GetNumberOfPoints(), polygons);
  const vtkNew<vtkCellArray> triangles;
  if (data.GetNumberOfStrips() > 0) {
    const vtkNew<vtkIdList> ids;
    data.GetStrips()->InitTraversal();
    while (data.GetStrips()->GetNextCell(ids) != 0)
      vtkTriangleStrip::DecomposeStrip(static_cast<int>(ids->GetNumberOfIds()), ids->GetPointer(0),
                                       triangles);
    append(*triangles, data.GetNumberOfPoints(), polygons);
  }
  return polygons;
}

}  // namespace Lumivane::Exchange
