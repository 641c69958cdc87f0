#include "utils/FewPointsLocator.h"
#include "utils/PolygonData.h"
#include "utils/Shapes.h"

#include <lumivane/utils/VtkUtils.h>

#include <vtkClipPolyData.h>
#include <vtkPlane.h>

namespace Lumivane::Utils {

vtkSmartPointer<vtkPolyData> VtkUtils::clip(vtkSmartPointer<vtkPolyData> polyData,
                                            std::vector<double> origin,
                                            std::vector<double> normal) {
  auto result = vtkSmartPointer<vtkPolyData>::New();
  if (polyData == nullptr) return result;

  const Kernel::Vec3 planeOrigin = toVec3(origin);
  const Kernel::Vec3 planeNormal = toVec3(normal);
  const vtkNew<vtkPlane> plane;
  plane->SetOrigin(planeOrigin.x, planeOrigin.y, planeOrigin.z);
  plane->SetNormal(planeNormal.x, planeNormal.y, planeNormal.z);

  const vtkNew<vtkClipPolyData> clipper;
  clipper->SetClipFunction(plane);
  clipper->GenerateClippedOutputOn();
  clipper->SetInputData(polyData);
  if (polyData->GetNumberOfPoints() <= FewPointsLocator::MostPoints) {
    clipper->SetLocator(vtkNew<FewPointsLocator>());
  }
  clipper->Update();
  result->ShallowCopy(clipper->GetOutput());
  return result;
}

vtkSmartPointer<vtkPolyData> VtkUtils::createPolydataFromPolygon(
    std::vector<std::vector<double>> polygon) {
  auto result = vtkSmartPointer<vtkPolyData>::New();
  result->ShallowCopy(polygonData(toVec3s(polygon)));
  return result;
}

}  // namespace Lumivane::Utils
