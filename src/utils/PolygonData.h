#pragma once

#include "kernel/Vec.h"

#include <vector>

#include <vtkCellArray.h>
#include <vtkNew.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Utils {

/// Appends one polygon to polygon data in the making: its points, and the cell on them.
inline void appendPolygon(const std::vector<Kernel::Vec3>& polygon, vtkPoints* points,
                          vtkCellArray* cells) {
  cells->InsertNextCell(static_cast<int>(polygon.size()));
  for (const Kernel::Vec3& point : polygon)
    cells->InsertCellPoint(points->InsertNextPoint(point.x, point.y, point.z));
}

/// One polygon as polygon data of a single cell. The points keep VTK's default precision, single.
inline vtkSmartPointer<vtkPolyData> polygonData(const std::vector<Kernel::Vec3>& polygon) {
  const vtkNew<vtkPoints> points;
  const vtkNew<vtkCellArray> cells;
  appendPolygon(polygon, points, cells);
  auto result = vtkSmartPointer<vtkPolyData>::New();
  result->SetPoints(points);
  result->SetPolys(cells);
  return result;
}

}  // namespace Lumivane::Utils
