#pragma once

#include "truth/LongVector.h"

#include <lumivane/visibility/PolygonScene.h>

#include <cstddef>
#include <functional>
#include <random>
#include <vector>

namespace Lumivane::Truth {

using Outline = std::vector<Visibility::Vector>;

/// The same numbers on every machine, which the distributions of the standard library do not
/// promise.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine(seed) {}
  double between(double low, double high) { return low + (high - low) * unitDouble(); }
  /// From 0 to count - 1.
  int below(int count) { return static_cast<int>(unitDouble() * count); }
  /// A direction, each as likely as any other.
  Visibility::Vector direction();
  Visibility::Vector inBall(double radius);

 private:
  double unitDouble() { return static_cast<double>(engine() >> 11U) * 0x1.0p-53; }

  std::mt19937_64 engine;
};

/// Puts scenes together, polygon by polygon.
class SceneBuilder {
 public:
  /// Begins the next object; polygons before the first belong to object 1 as well.
  SceneBuilder& object();
  /// Adds a polygon as the next face and region of the object, with points of its own.
  SceneBuilder& add(const Outline& outline);
  /// Adds it turned so that the eye sees it, if it has any area to the eye.
  SceneBuilder& addFacing(Outline outline, const Visibility::Vector& eye);
  /// Adds polygons of points that they share.
  SceneBuilder& addMesh(const std::vector<Visibility::Vector>& points,
                        const std::vector<std::vector<int>>& outlines);
  /// Six sides, seen from outside.
  SceneBuilder& addBox(const Visibility::Vector& low, const Visibility::Vector& high);

  Visibility::PolygonScene scene() const { return theScene; }

 private:
  void close();

  Visibility::PolygonScene theScene{{}, {0}, {}, {}, {}, {}, {}, {}};
  int objects = 0;
  int regions = 0;
};

/// The corners of a regular polygon about an axis.
Outline regularPolygon(const Visibility::Vector& centre, const Visibility::Vector& axis,
                       double radius, int corners, double turn = 0.0);

/// A copy of the scene with every point carried to another place.
Visibility::PolygonScene moved(
    const Visibility::PolygonScene& scene,
    const std::function<Visibility::Vector(const Visibility::Vector&)>& place);

/// The outline of each region, as points.
Outline outlineOf(const Visibility::PolygonScene& scene, std::size_t outline);

/// A rotation, made from three random numbers, that is exact to rounding.
class Rotation {
 public:
  explicit Rotation(Random& random);
  Visibility::Vector operator()(const Visibility::Vector& v) const;

 private:
  LongVector x;
  LongVector y;
  LongVector z;
};

/// Turns scene and eye together, or leaves both, as the random numbers have it.
void turnPerhaps(Random& random, Visibility::PolygonScene& scene, Visibility::Vector& eye);

}  // namespace Lumivane::Truth
