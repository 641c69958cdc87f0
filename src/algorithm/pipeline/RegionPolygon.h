#pragma once

#include "kernel/Vec.h"

#include <lumivane/geometry/Points2d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>

#include <vector>

#include <vtkCellArray.h>
#include <vtkPoints.h>
#include <vtkPolyData.h>

/// The bridge from regions to polygon data, in steps that serve one region or many in a row.
namespace Lumivane::Algorithm {

/// The distance of two drawing layers along z.
inline constexpr double LayerHeight = 0.1;

/// Reads the points of a region into `polygon`, which is emptied first. A null region has none.
///
/// \throws std::out_of_range for a point number that is not in `points`
void readRegionPoints(Geometry::Region* region, Geometry::Points3d* points,
                      std::vector<Kernel::Vec3>& polygon);

/// The same for a region of a shot, in the drawing layer `depth`.
void readRegionPoints(Geometry::Region2d* region, Geometry::Points2d* points, int depth,
                      std::vector<Kernel::Vec3>& polygon);

/// The same as the first, but after a message `polygon` is empty for fewer points than 3.
void readRegionPolygon(Geometry::Region* region, Geometry::Points3d* points,
                       std::vector<Kernel::Vec3>& polygon);

/// The same as the first, but for the outline: `polygon` is empty for fewer points than 2, and no
/// point number is read then.
void readRegionOutline(Geometry::Region* region, Geometry::Points3d* points,
                       std::vector<Kernel::Vec3>& polygon);

/// Appends the poly-lines of an outline without its docking edges, all points numbered through.
void appendOutline(const std::vector<Kernel::Vec3>& polygon, const std::vector<int>* dockingEdges,
                   vtkPoints* points, vtkCellArray* lines);

/// Makes `target` the polygons of `source` in triangles, polygon by polygon.
void triangulate(vtkPolyData* source, vtkPolyData* target);

}  // namespace Lumivane::Algorithm
