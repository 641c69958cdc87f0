#pragma once

/// Sums and products of doubles without error, as two doubles (J. R. Shewchuk, Adaptive Precision
/// Floating-Point Arithmetic and Fast Robust Geometric Predicates, 1997).
namespace Lumivane::Kernel {

/// A number as the sum of two, the low one no more than half a unit of the high one's last place.
struct TwoDoubles {
  double high;
  double low;
};

/// high + low == a + b (Knuth).
inline TwoDoubles twoSum(double a, double b) {
  const double high = a + b;
  const double fromB = high - a;
  const double fromA = high - fromB;
  return {high, (a - fromA) + (b - fromB)};
}

/// high + low == a - b.
inline TwoDoubles twoDifference(double a, double b) { return twoSum(a, -b); }

/// Two halves of 26 digits at most (Veltkamp). \pre below 2^996
inline TwoDoubles halves(double a) {
  constexpr double Splitter = 134217729.0;  // 2^27 + 1
  const double c = Splitter * a;
  const double high = c - (c - a);
  return {high, a - high};
}

/// high + low == a b (Dekker), unless the low part is below the least double or the product beyond
/// the largest.
inline TwoDoubles twoProduct(double a, double b) {
  const double high = a * b;
  const TwoDoubles x = halves(a);
  const TwoDoubles y = halves(b);
  const double first = high - x.high * y.high;
  const double second = first - x.low * y.high;
  const double third = second - x.high * y.low;
  return {high, x.low * y.low - third};
}

}  // namespace Lumivane::Kernel
