#pragma once

#include "kernel/Vec.h"

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

/// Random numbers as geometry meets them at its worst: plain values, small integers that make
/// coincidences, signed zeros, very large and very small numbers, infinities and NaN.
namespace Lumivane::Test {

inline double anyDouble(std::mt19937_64& random) {
  constexpr double extremes[] = {0.0,
                                 -0.0,
                                 1e200,
                                 -1e200,
                                 1e-200,
                                 -1e-200,
                                 5e-324,
                                 std::numeric_limits<double>::max(),
                                 std::numeric_limits<double>::infinity(),
                                 -std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN()};
  const std::uint64_t kind = random() % 20;
  if (kind == 0) return extremes[random() % (sizeof extremes / sizeof extremes[0])];
  if (kind < 8) return static_cast<double>(static_cast<int>(random() % 5) - 2);
  return std::uniform_real_distribution<double>(-5.0, 5.0)(random);
}

inline Kernel::Vec3 anyVec3(std::mt19937_64& random) {
  const double x = anyDouble(random);
  const double y = anyDouble(random);
  return {x, y, anyDouble(random)};
}

inline Kernel::Vec2 anyVec2(std::mt19937_64& random) {
  const double x = anyDouble(random);
  return {x, anyDouble(random)};
}

}  // namespace Lumivane::Test
