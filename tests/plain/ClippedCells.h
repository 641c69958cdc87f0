#pragma once

#include "kernel/Vec.h"

#include <cstddef>
#include <vector>

#include <vtkCellData.h>
#include <vtkCellType.h>
#include <vtkClipPolyData.h>
#include <vtkDataArray.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkPlane.h>
#include <vtkPolyData.h>
#include <vtkPolyDataNormals.h>
#include <vtkSmartPointer.h>

/// Clipping and cell normals by the filters of VTK as they come, each made anew for each polygon.
namespace Lumivane::Plain {

inline vtkSmartPointer<vtkPolyData> clip(vtkPolyData* polyData, Kernel::Vec3 origin,
                                         Kernel::Vec3 normal) {
  const vtkNew<vtkPlane> plane;
  plane->SetOrigin(origin.x, origin.y, origin.z);
  plane->SetNormal(normal.x, normal.y, normal.z);
  const vtkNew<vtkClipPolyData> clipper;
  clipper->SetClipFunction(plane);
  clipper->GenerateClippedOutputOn();
  clipper->SetInputData(polyData);
  clipper->Update();
  auto result = vtkSmartPointer<vtkPolyData>::New();
  result->ShallowCopy(clipper->GetOutput());
  return result;
}

/// A polygon of some polygon data, and the normal of its cell.
struct NormalCell {
  std::vector<Kernel::Vec3> polygon;
  Kernel::Vec3 normal;
};

/// Makes `target` a copy of `source` that has cell normals.
inline void copyWithCellNormals(vtkPolyData* source, vtkPolyData* target) {
  if (source->GetCellData()->GetNormals() != nullptr) {
    target->ShallowCopy(source);
    return;
  }
  const vtkNew<vtkPolyDataNormals> normals;
  normals->SetInputData(source);
  normals->ComputeCellNormalsOn();
  normals->ConsistencyOff();
  normals->AutoOrientNormalsOff();
  normals->NonManifoldTraversalOff();
  normals->Update();
  target->ShallowCopy(normals->GetOutput());
}

inline std::vector<Kernel::Vec3> pointsOfIds(vtkPolyData* data, vtkIdList* ids) {
  std::vector<Kernel::Vec3> result;
  result.reserve(static_cast<std::size_t>(ids->GetNumberOfIds()));
  for (vtkIdType i = 0; i < ids->GetNumberOfIds(); ++i) {
    double point[3];
    data->GetPoint(ids->GetId(i), point);
    result.push_back({point[0], point[1], point[2]});
  }
  return result;
}

/// The polygons among the cells, in their order; vertices and lines are left out.
inline std::vector<NormalCell> normalCells(vtkPolyData* source) {
  const vtkNew<vtkPolyData> data;
  copyWithCellNormals(source, data);
  vtkDataArray* normals = data->GetCellData()->GetNormals();
  std::vector<NormalCell> result;
  if (normals == nullptr) return result;

  const vtkNew<vtkIdList> ids;
  for (vtkIdType c = 0; c < data->GetNumberOfCells(); ++c) {
    data->GetCellPoints(c, ids);
    if (data->GetCellType(c) <= VTK_POLY_LINE || ids->GetNumberOfIds() == 0) continue;
    double normal[3];
    normals->GetTuple(c, normal);
    result.push_back({pointsOfIds(data, ids), {normal[0], normal[1], normal[2]}});
  }
  return result;
}

}  // namespace Lumivane::Plain
