#pragma once

#include "kernel/Vec.h"

#include <cstddef>
#include <stdexcept>
#include <vector>

/// The border between the containers of the public operations and the kernels' fixed-size values.
namespace Lumivane::Utils {

[[noreturn]] inline void throwInvalidSubscript() {
  throw std::out_of_range("invalid vector subscript");
}

/// Element `index` of a vector.
///
/// \throws std::out_of_range "invalid vector subscript" if there is none
inline double elementAt(const std::vector<double>& v, std::size_t index) {
  if (index >= v.size()) throwInvalidSubscript();
  return v[index];
}

/// The first two elements.
///
/// \throws std::out_of_range "invalid vector subscript" if there are fewer
inline Kernel::Vec2 toVec2(const std::vector<double>& v) {
  if (v.size() < 2) throwInvalidSubscript();
  return {v[0], v[1]};
}

/// The first three elements.
///
/// \throws std::out_of_range "invalid vector subscript" if there are fewer
inline Kernel::Vec3 toVec3(const std::vector<double>& v) {
  if (v.size() < 3) throwInvalidSubscript();
  return {v[0], v[1], v[2]};
}

inline std::vector<double> toVector(Kernel::Vec2 v) { return {v.x, v.y}; }
inline std::vector<double> toVector(Kernel::Vec3 v) { return {v.x, v.y, v.z}; }

inline std::vector<Kernel::Vec2> toVec2s(const std::vector<std::vector<double>>& points) {
  std::vector<Kernel::Vec2> result;
  result.reserve(points.size());
  for (const std::vector<double>& point : points) result.push_back(toVec2(point));
  return result;
}

inline std::vector<Kernel::Vec3> toVec3s(const std::vector<std::vector<double>>& points) {
  std::vector<Kernel::Vec3> result;
  result.reserve(points.size());
  for (const std::vector<double>& point : points) result.push_back(toVec3(point));
  return result;
}

template <class Vec>
std::vector<std::vector<double>> toVectors(const std::vector<Vec>& points) {
  std::vector<std::vector<double>> result;
  result.reserve(points.size());
  for (const Vec& point : points) result.push_back(toVector(point));
  return result;
}

}  // namespace Lumivane::Utils
