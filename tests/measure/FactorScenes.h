#pragma once

#include <lumivane/measure/FaceFactors.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace Lumivane::Measure::FactorScenes {

/// Scenes of outlines for tests of view factors, and what rows hold.

using Visibility::PolygonScene;
using Visibility::SceneIndex;
using Visibility::Vector;

inline constexpr double Pi = 3.141592653589793;

inline Vector operator-(const Vector& a, const Vector& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline double dot(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double length(const Vector& v) { return std::sqrt(dot(v, v)); }

using Outline = std::vector<Vector>;

inline Vector areaVector(const Outline& outline) {
  Vector sum{};
  for (std::size_t i = 1; i + 1 < outline.size(); ++i) {
    const Vector n = cross(outline[i] - outline[0], outline[i + 1] - outline[0]);
    for (std::size_t k = 0; k < 3; ++k) sum[k] += 0.5 * n[k];
  }
  return sum;
}

inline Vector meanOf(const Outline& outline) {
  Vector mean{};
  for (const Vector& p : outline)
    for (std::size_t k = 0; k < 3; ++k) mean[k] += p[k] / static_cast<double>(outline.size());
  return mean;
}

// Each outline is an object of its own, seen from the side that `towards` is on.
class Faces {
 public:
  Faces() { scene.offsets.push_back(0); }
  void add(Outline outline, const Vector& towards) {
    if (dot(areaVector(outline), towards - meanOf(outline)) > 0.0)
      std::reverse(outline.begin(), outline.end());
    for (const Vector& p : outline) {
      scene.corners.push_back(static_cast<int>(scene.points.size()));
      scene.points.push_back(p);
    }
    scene.offsets.push_back(scene.corners.size());
    scene.labels.push_back({static_cast<int>(scene.labels.size()) + 1, 1, 1});
    outlines.push_back(std::move(outline));
  }

  PolygonScene scene;
  std::vector<Outline> outlines;  // clockwise from the seen side
};

// The faces of a convex body from given outlines, seen from inside.
inline Faces inside(const std::vector<Outline>& outlines) {
  Vector middle{};
  for (const Outline& outline : outlines)
    for (std::size_t k = 0; k < 3; ++k)
      middle[k] += meanOf(outline)[k] / static_cast<double>(outlines.size());
  Faces faces;
  for (const Outline& outline : outlines) faces.add(outline, middle);
  return faces;
}

// The faces of a convex body, seen from outside.
inline void addOutside(Faces& faces, const std::vector<Outline>& outlines) {
  Vector middle{};
  for (const Outline& outline : outlines)
    for (std::size_t k = 0; k < 3; ++k)
      middle[k] += meanOf(outline)[k] / static_cast<double>(outlines.size());
  for (const Outline& outline : outlines) {
    const Vector mean = meanOf(outline);
    const Vector out = mean - middle;
    faces.add(outline, {mean[0] + out[0], mean[1] + out[1], mean[2] + out[2]});
  }
}

inline std::vector<Outline> boxOutlines(const Vector& low, const Vector& high) {
  const auto at = [&](int x, int y, int z) -> Vector {
    return {x == 0 ? low[0] : high[0], y == 0 ? low[1] : high[1], z == 0 ? low[2] : high[2]};
  };
  return {{at(0, 0, 0), at(1, 0, 0), at(1, 1, 0), at(0, 1, 0)},
          {at(0, 0, 1), at(1, 0, 1), at(1, 1, 1), at(0, 1, 1)},
          {at(0, 0, 0), at(1, 0, 0), at(1, 0, 1), at(0, 0, 1)},
          {at(0, 1, 0), at(1, 1, 0), at(1, 1, 1), at(0, 1, 1)},
          {at(0, 0, 0), at(0, 1, 0), at(0, 1, 1), at(0, 0, 1)},
          {at(1, 0, 0), at(1, 1, 0), at(1, 1, 1), at(1, 0, 1)}};
}

inline std::vector<Outline> prismOutlines(int sides, double radius, double height) {
  Outline low;
  Outline high;
  for (int i = 0; i < sides; ++i) {
    const double angle = 2.0 * Pi * i / sides + 0.3;
    low.push_back({radius * std::cos(angle), radius * std::sin(angle), 0.0});
    high.push_back({radius * std::cos(angle), radius * std::sin(angle), height});
  }
  std::vector<Outline> result = {low, high};
  for (std::size_t i = 0; i < low.size(); ++i) {
    const std::size_t next = (i + 1) % low.size();
    result.push_back({low[i], low[next], high[next], high[i]});
  }
  return result;
}

inline const Outline Tetrahedron = {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}};

inline std::vector<Outline> tetrahedronOutlines() {
  const Outline& t = Tetrahedron;
  return {{t[0], t[1], t[2]}, {t[0], t[1], t[3]}, {t[0], t[2], t[3]}, {t[1], t[2], t[3]}};
}

inline std::vector<Outline> octahedronOutlines() {
  std::vector<Outline> result;
  for (const double x : {-1.0, 1.0})
    for (const double y : {-1.0, 1.0})
      for (const double z : {-1.0, 1.0}) result.push_back({{x, 0, 0}, {0, y, 0}, {0, 0, z}});
  return result;
}

// A room with a box and a leaning plate in it; nothing is regular.
inline Faces furnishedRoom() {
  Faces faces = inside(boxOutlines({0, 0, 0}, {4, 3, 2.5}));
  addOutside(faces, boxOutlines({0.7, 0.9, 0.3}, {1.8, 1.6, 1.1}));
  const Outline plate = {{2.3, 0.5, 0.4}, {3.1, 0.7, 0.4}, {3.2, 2.2, 1.9}, {2.4, 2.0, 1.9}};
  faces.add(plate, {0, 1, 2.5});
  faces.add(plate, {4, 1, 0});
  return faces;
}

inline double entry(const FactorRow& row, std::size_t element) {
  for (const FactorEntry& e : row.entries)
    if (e.element == element) return e.factor;
  return 0.0;
}

inline double estimate(const FactorRow& row, std::size_t element) {
  for (const FactorEntry& e : row.entries)
    if (e.element == element) return e.estimate;
  return 0.0;
}

inline double sumOf(const FactorRow& row) {
  double sum = row.sky;
  for (const FactorEntry& e : row.entries) sum += e.factor;
  return sum;
}

inline FactorOptions tolerance(double value) {
  FactorOptions options;
  options.tolerance = value;
  return options;
}

}  // namespace Lumivane::Measure::FactorScenes
