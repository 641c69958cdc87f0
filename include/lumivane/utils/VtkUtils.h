#pragma once

#include <lumivane/export.h>

#include <vector>

#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

namespace Lumivane::Utils {

/// Polygon data made from plain polygons, and cut by a plane. A point is a vector of 3 doubles in
/// scene units; VTK keeps it in single precision.
class LUMIVANE_EXPORT VtkUtils {
 public:
  /// The part of some polygon data in front of a plane.
  ///
  /// \param polyData  the polygons to cut, unchanged; null gives an empty result
  /// \param origin    a point of the plane, 3 elements
  /// \param normal    its normal, 3 elements of any length; the side it points to is kept
  /// \return new data: one triangle or quad for a polygon of up to 4 points wholly in front,
  ///         triangles for larger or cut ones, no cell for what lies wholly behind
  /// \throws std::out_of_range "invalid vector subscript" if origin or normal is shorter than 3
  static vtkSmartPointer<vtkPolyData> clip(vtkSmartPointer<vtkPolyData> polyData,
                                           std::vector<double> origin, std::vector<double> normal);

  /// One polygon as polygon data of a single cell, its point k under the id k.
  ///
  /// \param polygon  points of 3 elements, the closing edge implied
  /// \throws std::out_of_range "invalid vector subscript" if a point is shorter than 3
  static vtkSmartPointer<vtkPolyData> createPolydataFromPolygon(
      std::vector<std::vector<double>> polygon);
};

}  // namespace Lumivane::Utils
