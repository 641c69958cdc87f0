#pragma once

// Mixing the channels of two colour stops.

#include <cmath>
#include <limits>

namespace Lumivane::Kernel {

// Truncation toward zero; what no int can hold, not a number too, is the lowest int.
inline int truncatedOrLowest(double value) {
  constexpr double pastHighest = 2147483648.0;
  constexpr double pastLowest = -2147483649.0;
  if (!(value > pastLowest && value < pastHighest)) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

// The difference of two ints, wrapped in 32 bits.
inline int wrappedDifference(int a, int b) {
  return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

// Deliberate: no interpolation between the stops' keys. The share of the lower stop is the ratio
// of the value to the upper key, whatever the lower key is, and the result is not clamped.
inline int mixedChannel(int lower, int upper, double ratio) {
  return truncatedOrLowest(wrappedDifference(lower, upper) * ratio + upper);
}

}  // namespace Lumivane::Kernel
