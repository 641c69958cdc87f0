#pragma once

#include "kernel/Vec.h"
#include "visibility/CubeFaces.h"

/// Parallel lines of sight, as an eye at infinity has them.
///
/// The plane of the picture is laid on the first face of the cube: a point of the scene becomes the
/// direction (x, y, 1) of that face, where x and y are its place in the picture. Straight lines
/// stay straight, and the depth of a plane is linear in x and y, as 1 / distance is for an eye. So
/// what looks around from an eye looks along parallel lines too, with the same predicates.
namespace Lumivane::Visibility {

struct ParallelSight {
  Kernel::Vec3 middle;  ///< of the scene
  /// Axes of the picture on the face, at right angles to `along`, divided by the scene's size. They
  /// are turned against those of the picture that is asked for, so that upright and level edges
  /// do not run along the borders of tiles.
  Kernel::Vec3 x;
  Kernel::Vec3 y;
  Kernel::Vec3 along;  ///< in the direction of sight, divided by the scene's size
  // The axes of the face, in those of the scene.
  Kernel::Vec3 faceX;
  Kernel::Vec3 faceY;
  Kernel::Vec3 faceForward;

  static constexpr int Face = 0;
  /// A plane is edge-on if the sine of its angle with the lines of sight is no more than this.
  static constexpr double EdgeOn = 1e-12;
  /// Of the middle; places in the scene are nearer or farther than it by less than 1.
  static constexpr double MiddleNearness = 2.0;

  /// The direction in which a point is seen, in the scene's axes.
  Kernel::Vec3 directionTo(Kernel::Vec3 point) const {
    const Kernel::Vec3 p = point - middle;
    return faceForward + Kernel::dot(x, p) * faceX + Kernel::dot(y, p) * faceY;
  }
  /// The half space n.d + constant > 0 of points p that are seen in directions on one side of a
  /// plane through the eye of the cube: n.directionTo(p), as a function of p - middle.
  Kernel::Vec3 normalInScene(Kernel::Vec3 n) const {
    return Kernel::dot(n, faceX) * x + Kernel::dot(n, faceY) * y;
  }
  double constantOf(Kernel::Vec3 n) const { return Kernel::dot(n, faceForward); }
};

/// The axes of a face of the cube in those of the scene.
inline Kernel::Vec3 cubeAxis(int axis, double sign) {
  FrameVector v{};
  v.c[axis] = sign;
  return toScene(v);
}

}  // namespace Lumivane::Visibility
