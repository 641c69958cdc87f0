#pragma once

#include <lumivane/algorithm/ShotCreator.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>

#include <map>
#include <vector>

#include <vtkAppendPolyData.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

/// What the actors of a view draw, as documented: polygon data for each region, appended by a
/// filter.
namespace Lumivane::Plain {

using PolyDataList = std::vector<vtkSmartPointer<vtkPolyData>>;

/// The polygon data of each group that has any, by brush or pen number.
class Groups {
 public:
  void add(int number, vtkPolyData* polyData) {
    if (polyData->GetNumberOfPoints() > 0) lists[number].emplace_back(polyData);
  }

  PolyDataList appended() const {
    PolyDataList result;
    for (const auto& [number, list] : lists) {
      const vtkNew<vtkAppendPolyData> filter;
      for (const auto& polyData : list) filter->AddInputData(polyData);
      filter->Update();
      result.emplace_back(filter->GetOutput());
    }
    return result;
  }

 private:
  std::map<int, PolyDataList> lists;
};

/// Polygons by brush, then lines by pen.
inline PolyDataList shotGroups(const std::vector<Geometry::Region2d*>& regions,
                               Geometry::Points2d* points) {
  using Algorithm::ShotCreator;
  Groups polygons;
  Groups lines;
  int depth = 0;
  for (Geometry::Region2d* region : regions) {
    ++depth;
    polygons.add(region->getBrushNumber(), ShotCreator::getRegionPolyData(region, points, depth));
    lines.add(region->getPenNumber(), ShotCreator::getRegionLinePolyData(region, points, depth));
  }
  PolyDataList result = polygons.appended();
  for (const auto& data : lines.appended()) result.push_back(data);
  return result;
}

/// The same for one object of a scene, whose lines share a pen.
inline PolyDataList objectGroups(const std::vector<Geometry::Region*>& regions,
                                 Geometry::Points3d* points) {
  using Algorithm::ShotCreator;
  Groups polygons;
  Groups lines;
  for (Geometry::Region* region : regions) {
    polygons.add(region->getBrushNumber(),
                 ShotCreator::getRegionPolyDataTriangulated(region, points));
    lines.add(1, ShotCreator::getRegionLinePolyData(region, points));
  }
  PolyDataList result = polygons.appended();
  for (const auto& data : lines.appended()) result.push_back(data);
  return result;
}

}  // namespace Lumivane::Plain
