#pragma once

#include "kernel/Vec.h"

#include <vector>

#include <vtkCellArray.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkPolygon.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Utils {

/// One polygon as polygon data of a single cell. The points keep VTK's default precision, single.
inline vtkSmartPointer<vtkPolyData> polygonData(const std::vector<Kernel::Vec3>& polygon) {
  const vtkNew<vtkPoints> points;
  const vtkNew<vtkPolygon> cell;
  cell->GetPointIds()->SetNumberOfIds(static_cast<vtkIdType>(polygon.size()));
  vtkIdType id = 0;
  for (const Kernel::Vec3& point : polygon) {
    points->InsertNextPoint(point.x, point.y, point.z);
    cell->GetPointIds()->SetId(id, id);
    ++id;
  }

  const vtkNew<vtkCellArray> cells;
  cells->InsertNextCell(cell);
  auto result = vtkSmartPointer<vtkPolyData>::New();
  result->SetPoints(points);
  result->SetPolys(cells);
  return result;
}

}  // namespace Lumivane::Utils
