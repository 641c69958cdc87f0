#pragma once

#include "algorithm/pipeline/RegionShapes.h"
#include "kernel/Vec.h"

#include <cstddef>
#include <memory>
#include <vector>

#include <vtkType.h>

class vtkPoints;

namespace Lumivane::Algorithm {

/// A polygon of some polygon data, and the normal of its cell.
struct NormalCell {
  std::vector<Kernel::Vec3> polygon;
  SinglePoint normal;
};

/// The normal that polygon data gets for a cell of these points, in single precision. It is not
/// widened here: g++ 12 leaves out narrowing and widening in a row when it vectorises them.
SinglePoint cellNormal(vtkPoints* points, vtkIdType count, const vtkIdType* ids);

/// Cuts polygons by the plane of the eye, one by one, and gives the cells in front of it with their
/// normals: to the bit what VtkUtils::clip and vtkPolyDataNormals give for the polygon as polygon
/// data, without making any.
///
/// How: most polygons lie wholly on one side. Behind, there are no cells. In front, a triangle or
/// quadrangle of different points is its own only cell. The rest goes through the cells of VTK
/// that its filter would use, which are made once.
class PolygonClipper {
 public:
  PolygonClipper();
  ~PolygonClipper();
  PolygonClipper(const PolygonClipper&) = delete;
  PolygonClipper& operator=(const PolygonClipper&) = delete;

  /// The plane through `origin`; what lies on the side of `normal`, of any length, is kept.
  void setPlane(Kernel::Vec3 origin, Kernel::Vec3 normal);

  /// The cells of one polygon, which the caller may take. They last until the next call.
  std::vector<NormalCell>& clip(const SinglePoint* polygon, std::size_t count);

 private:
  struct Filter;

  void measure(const SinglePoint* polygon, std::size_t count);

  Kernel::Vec3 planeOrigin;
  Kernel::Vec3 planeNormal;
  std::vector<float> heights;
  std::vector<NormalCell> result;
  std::unique_ptr<Filter> filter;
};

}  // namespace Lumivane::Algorithm
