#pragma once

#include <lumivane/visibility/PolygonScene.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace Lumivane::Visibility::Samples {

using Outline = std::vector<Vector>;

/// Puts scenes together polygon by polygon, each with points of its own.
class PolygonBuilder {
 public:
  PolygonBuilder() { scene.offsets.push_back(0); }

  void add(const Outline& outline) {
    for (const Vector& point : outline) {
      scene.corners.push_back(static_cast<int>(scene.points.size()));
      scene.points.push_back(point);
    }
    scene.offsets.push_back(scene.corners.size());
  }
  /// Of a numbered object; regions of an object are numbered as they come.
  void add(const Outline& outline, int object) {
    region = object == lastObject ? region + 1 : 1;
    lastObject = object;
    scene.labels.push_back({object, -1, region});
    add(outline);
  }

  PolygonScene scene;

 private:
  int lastObject = 0;
  int region = 0;
};

inline Vector plus(const Vector& a, const Vector& b) {
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
inline Vector minus(const Vector& a, const Vector& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline Vector times(double s, const Vector& a) { return {s * a[0], s * a[1], s * a[2]}; }
inline double dot(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double length(const Vector& a) { return std::sqrt(dot(a, a)); }
inline Vector unit(const Vector& a) { return times(1.0 / length(a), a); }

/// Random numbers that are the same on every machine.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine(seed) {}
  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(engine() >> 11U) * 0x1p-53;
  }
  int below(int count) { return static_cast<int>(between(0.0, count)); }
  Vector vector(double radius) {
    return {between(-radius, radius), between(-radius, radius), between(-radius, radius)};
  }
  Vector direction() {
    while (true) {
      const Vector v = vector(1.0);
      if (dot(v, v) <= 1.0 && dot(v, v) > 0.01) return unit(v);
    }
  }

 private:
  std::mt19937_64 engine;
};

/// Axes at right angles, to turn scenes with.
struct Axes {
  std::array<Vector, 3> axes = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

  Axes() = default;  ///< Those of the scene.
  explicit Axes(Random& random) {
    axes[0] = random.direction();
    axes[1] = unit(cross(axes[0], random.direction()));
    axes[2] = cross(axes[0], axes[1]);
  }
  Vector operator()(const Vector& v) const {
    return plus(plus(times(v[0], axes[0]), times(v[1], axes[1])), times(v[2], axes[2]));
  }
};

/// The same with every point carried elsewhere.
template <class Place>
PolygonScene moved(PolygonScene scene, Place place) {
  for (Vector& point : scene.points) point = place(point);
  return scene;
}

/// The six sides of a box, clockwise as seen from outside.
inline void addBox(PolygonBuilder& builder, int object, const Vector& low, const Vector& high,
                   const Axes& axes = Axes()) {
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (const bool isHigh : {false, true}) {
      const std::size_t u = (axis + 1) % 3;
      const std::size_t v = (axis + 2) % 3;
      Outline outline(4, low);
      for (Vector& p : outline) p[axis] = isHigh ? high[axis] : low[axis];
      outline[1][u] = outline[2][u] = high[u];
      outline[2][v] = outline[3][v] = high[v];
      if (isHigh) std::reverse(outline.begin(), outline.end());
      for (Vector& p : outline) p = axes(p);
      builder.add(outline, object);
    }
}

inline Outline square(double x, double y, double z, double side) {
  return {{x, y, z}, {x, y + side, z}, {x + side, y + side, z}, {x + side, y, z}};
}

}  // namespace Lumivane::Visibility::Samples
