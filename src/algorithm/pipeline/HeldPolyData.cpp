// Polygon data that an object holds without regions to make it from: any cells, any point type. So
// the filters of VTK do here what PolygonClipper does for the one polygon of a region.

#include "algorithm/pipeline/HeldPolyData.h"

#include <vtkCellData.h>
#include <vtkCellType.h>
#include <vtkDataArray.h>
#include <vtkIdList.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkPolyDataNormals.h>

namespace Lumivane::Algorithm {
namespace {

// Makes `target` a copy of `source` that has cell normals.
void copyWithCellNormals(vtkPolyData* source, vtkPolyData* target) {
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

NormalCell cellOf(vtkPolyData* data, vtkIdList* ids, const double* normal) {
  NormalCell cell{{}, toSingle({normal[0], normal[1], normal[2]})};
  cell.polygon.reserve(static_cast<std::size_t>(ids->GetNumberOfIds()));
  for (vtkIdType i = 0; i < ids->GetNumberOfIds(); ++i) {
    double point[3];
    data->GetPoint(ids->GetId(i), point);
    cell.polygon.push_back({point[0], point[1], point[2]});
  }
  return cell;
}

}  // namespace

std::vector<NormalCell> normalCellsOf(vtkPolyData* data) {
  const vtkNew<vtkPolyData> copy;
  copyWithCellNormals(data, copy);
  vtkDataArray* const normals = copy->GetCellData()->GetNormals();
  std::vector<NormalCell> result;
  if (normals == nullptr) return result;
  const vtkNew<vtkIdList> ids;
  for (vtkIdType c = 0; c < copy->GetNumberOfCells(); ++c) {
    copy->GetCellPoints(c, ids);
    if (copy->GetCellType(c) <= VTK_POLY_LINE || ids->GetNumberOfIds() == 0) continue;
    double normal[3];
    normals->GetTuple(c, normal);
    result.push_back(cellOf(copy, ids, normal));
  }
  return result;
}

}  // namespace Lumivane::Algorithm
