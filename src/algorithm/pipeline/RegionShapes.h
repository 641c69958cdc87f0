#pragma once

#include "kernel/Vec.h"
#include "utils/PolygonData.h"

#include <lumivane/utils/VtkUtils.h>

#include <cstddef>
#include <memory>
#include <vector>

/// The polygons of an object's regions, before they are polygon data.
namespace Lumivane::Algorithm {

/// A point as polygon data keeps it: in single precision.
struct SinglePoint {
  float x;
  float y;
  float z;
};

inline SinglePoint toSingle(Kernel::Vec3 point) {
  return {static_cast<float>(point.x), static_cast<float>(point.y), static_cast<float>(point.z)};
}

inline Kernel::Vec3 toVec3(SinglePoint point) { return {point.x, point.y, point.z}; }

/// One polygon for each region, one after the other. A region of too few points has an empty one.
class RegionShapes {
 public:
  void add(const std::vector<Kernel::Vec3>& polygon) {
    for (const Kernel::Vec3& point : polygon) points.push_back(toSingle(point));
    ends.push_back(points.size());
  }

  /// Adds the regions of another list behind its own.
  void append(const RegionShapes& more) {
    const std::size_t offset = points.size();
    points.insert(points.end(), more.points.begin(), more.points.end());
    for (const std::size_t end : more.ends) ends.push_back(offset + end);
  }

  std::size_t size() const { return ends.size(); }
  std::size_t pointCount(std::size_t region) const { return ends[region] - start(region); }
  const SinglePoint* polygon(std::size_t region) const { return points.data() + start(region); }

 private:
  std::size_t start(std::size_t region) const { return region == 0 ? 0 : ends[region - 1]; }

  std::vector<SinglePoint> points;
  std::vector<std::size_t> ends;
};

using PolyDataList = std::vector<vtkSmartPointer<vtkPolyData>>;

inline vtkSmartPointer<vtkPolyData> polyDataOf(const RegionShapes& shapes, std::size_t region) {
  if (shapes.pointCount(region) == 0) return vtkSmartPointer<vtkPolyData>::New();
  std::vector<Kernel::Vec3> polygon;
  for (std::size_t i = 0; i < shapes.pointCount(region); ++i)
    polygon.push_back(toVec3(shapes.polygon(region)[i]));
  return Utils::polygonData(polygon);
}

/// \return owned by the caller
inline PolyDataList* polyDataOf(const RegionShapes& shapes) {
  auto result = std::make_unique<PolyDataList>();
  for (std::size_t r = 0; r < shapes.size(); ++r) result->push_back(polyDataOf(shapes, r));
  return result.release();
}

/// The same, cut by the plane at right angles to `forward` through `eye`.
///
/// \return owned by the caller
inline PolyDataList* clippedPolyDataOf(const RegionShapes& shapes, Kernel::Vec3 eye,
                                       Kernel::Vec3 forward) {
  auto result = std::make_unique<PolyDataList>();
  for (std::size_t r = 0; r < shapes.size(); ++r) {
    result->push_back(Utils::VtkUtils::clip(polyDataOf(shapes, r), {eye.x, eye.y, eye.z},
                                            {forward.x, forward.y, forward.z}));
  }
  return result.release();
}

}  // namespace Lumivane::Algorithm
