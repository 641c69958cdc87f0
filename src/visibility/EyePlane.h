#pragma once

#include "kernel/Vec.h"
#include "visibility/IndexState.h"
#include "visibility/ParallelSight.h"
#include "visibility/WideEdge.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Lumivane::Visibility {

/// A polygon's plane as one eye sees it. Along a direction d of any length the plane is met at the
/// distance t (in lengths of d) with 1/t = nearness.d, so the greater is the nearer.
struct EyePlane {
  bool isSeen = false;       ///< it faces the eye, or either side counts, and it is not edge-on
  double offset = 0.0;       ///< of the plane from the eye along its normal; above 0 faces the eye
  Kernel::Vec3 ownNearness;  ///< of the polygon's own plane
  /// By which polygons are compared: that of the layer's plane, or the polygon's own where the eye
  /// is so near both planes that the layer's has it on the other side.
  Kernel::Vec3 nearness;
  /// A point p, from the eye, lies behind the plane by which polygons are compared if
  /// behind.p > behindOffset.
  Kernel::Vec3 behind;
  double behindOffset = 1.0;
  bool besideItsLayer = false;  ///< `nearness` is that of the polygon's own plane for this reason
};

/// An eye is in the plane of an outline if it is off it by no more than this part of the distance
/// of the outline's farthest corner.
constexpr double EdgeOn = 1e-12;
/// 1 / offset, in units of the cube, must stay below what stands for nothing.
constexpr double LeastOffset = 1e-280;

inline double offsetFrom(const ScenePlane& plane, Kernel::Vec3 eye) {
  return Kernel::dot(plane.normal, plane.point - eye);
}

/// The same for a polygon's own plane. Far from the origin its point, the mean of the corners, is
/// rounded by more than an eye near the plane is off it: there the corners are asked, whose
/// distances from the eye are as exact as they are short.
inline double offsetFrom(const IndexState& state, std::size_t polygon, Kernel::Vec3 eye) {
  constexpr double Rounded = 0x1p-33;  // a million times what rounding takes of a coordinate
  const ScenePlane& plane = state.planes[polygon];
  const double offset = offsetFrom(plane, eye);
  const Kernel::Vec3 p = plane.point;
  if (std::abs(offset) > Rounded * (std::abs(p.x) + std::abs(p.y) + std::abs(p.z))) return offset;
  const auto begin = static_cast<std::size_t>(state.cornerOffsets[polygon]);
  const auto end = static_cast<std::size_t>(state.cornerOffsets[polygon + 1]);
  double sum = 0.0;
  for (std::size_t c = begin; c < end; ++c)
    sum += Kernel::dot(plane.normal,
                       state.vertices[static_cast<std::size_t>(state.cornerVertices[c])] - eye);
  return sum / static_cast<double>(end - begin);
}

inline Kernel::Vec3 nearnessOf(const ScenePlane& plane, double offset) {
  return {plane.normal.x / offset, plane.normal.y / offset, plane.normal.z / offset};
}

/// The length of a vector whose square may be beyond the range of a double.
inline double lengthInRange(Kernel::Vec3 v) {
  const double length = Kernel::length3(v);
  if (length > 0x1p-500 && length < 0x1p500) return length;
  const double greatest = std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
  if (greatest == 0.0) return 0.0;
  return greatest * Kernel::length3({v.x / greatest, v.y / greatest, v.z / greatest});
}

/// Whether an eye sees nothing of a polygon because it is in its plane, or on its outline.
inline bool isEdgeOn(const IndexState& state, std::size_t polygon, Kernel::Vec3 eye,
                     double offset) {
  const auto begin = static_cast<std::size_t>(state.cornerOffsets[polygon]);
  const auto end = static_cast<std::size_t>(state.cornerOffsets[polygon + 1]);
  const auto fromEye = [&](std::size_t corner) {
    return state.vertices[static_cast<std::size_t>(state.cornerVertices[corner])] - eye;
  };
  double greatest = 0.0;
  Kernel::Vec3 before = fromEye(end - 1);
  for (std::size_t c = begin; c < end; ++c) {
    const Kernel::Vec3 corner = fromEye(c);
    if (corner == Kernel::Vec3{}) return true;
    if (isOnWide(before, corner)) return true;
    greatest = std::max({greatest, std::abs(corner.x), std::abs(corner.y), std::abs(corner.z)});
    before = corner;
  }
  const double distance = std::abs(offset);
  if (!(distance > LeastOffset)) return true;
  // No corner is farther than sqrt(3) times its greatest coordinate, so lengths are seldom asked
  // for.
  if (distance > 1.8 * EdgeOn * greatest) return false;
  double farthest = 0.0;
  for (std::size_t c = begin; c < end; ++c)
    farthest = std::max(farthest, lengthInRange(fromEye(c)));
  return !(distance > EdgeOn * farthest);
}

/// The one place where it is decided whether an eye sees a polygon's plane, and how near it is.
inline EyePlane eyePlane(const IndexState& state, std::size_t polygon, Kernel::Vec3 eye,
                         bool twoSided) {
  EyePlane result;
  const ScenePlane& own = state.planes[polygon];
  result.offset = offsetFrom(state, polygon, eye);
  if (!(result.offset > 0.0) && !twoSided) return result;
  if (isEdgeOn(state, polygon, eye, result.offset)) return result;
  result.isSeen = true;
  result.ownNearness = nearnessOf(own, result.offset);
  const ScenePlane& layer = state.layerPlanes[static_cast<std::size_t>(state.layers[polygon])];
  double layerOffset = offsetFrom(layer, eye);
  if (layerOffset != result.offset && layer.point == own.point && layer.normal == own.normal)
    layerOffset = result.offset;
  result.nearness = nearnessOf(layer, layerOffset);
  if (!(std::abs(layerOffset) > LeastOffset) ||
      !(Kernel::dot(result.nearness, result.ownNearness) > 0.0)) {
    result.nearness = result.ownNearness;
    result.besideItsLayer = true;
  }
  result.behind = result.nearness;
  return result;
}

/// The nearness of a plane along parallel lines of sight: linear in the place in the picture, the
/// greater is the nearer. `facing` is the cosine of the plane's normal with the lines of sight.
inline Kernel::Vec3 nearnessOf(const ScenePlane& plane, double facing, const ParallelSight& sight) {
  const double size = Kernel::length3(sight.along);  // 1 / that of the scene
  const double across = size * size * facing;
  const double depth = size * offsetFrom(plane, sight.middle) / facing;
  return (Kernel::dot(plane.normal, sight.x) * size / across) * sight.faceX +
         (Kernel::dot(plane.normal, sight.y) * size / across) * sight.faceY +
         (ParallelSight::MiddleNearness - depth) * sight.faceForward;
}

/// The same for parallel lines of sight.
inline EyePlane eyePlane(const IndexState& state, std::size_t polygon, const ParallelSight& sight,
                         bool twoSided) {
  EyePlane result;
  const double size = Kernel::length3(sight.along);
  const auto facing = [&](const ScenePlane& plane) {
    return Kernel::dot(plane.normal, sight.along) / size;
  };
  const ScenePlane& own = state.planes[polygon];
  result.offset = facing(own);
  if (std::abs(result.offset) <= ParallelSight::EdgeOn || (result.offset < 0.0 && !twoSided))
    return result;
  result.isSeen = true;
  result.ownNearness = nearnessOf(own, result.offset, sight);
  const ScenePlane& layer = state.layerPlanes[static_cast<std::size_t>(state.layers[polygon])];
  const double layerFacing = facing(layer);
  const bool fits =
      layerFacing * result.offset > 0.0 && std::abs(layerFacing) > ParallelSight::EdgeOn;
  result.besideItsLayer = !fits;
  const ScenePlane& compared = fits ? layer : own;
  const double comparedFacing = fits ? layerFacing : result.offset;
  result.nearness = nearnessOf(compared, comparedFacing, sight);
  result.behind = (size / comparedFacing) * compared.normal;
  result.behindOffset = size * offsetFrom(compared, sight.middle) / comparedFacing;
  return result;
}

}  // namespace Lumivane::Visibility
