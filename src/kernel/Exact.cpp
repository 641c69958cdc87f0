// Three stages, each asked only where the one before cannot answer. The first decides nearly
// always. The second is Shewchuk's: numbers as sums of doubles that do not overlap, in order of
// rising magnitude, so that the last one has the sign of the sum. It needs that no rounding error
// of a product is lost below the least double, nor a product beyond the largest one: hence the
// limits on magnitudes. The third knows no limits.
#include "kernel/Exact.h"

#include "kernel/TwoDoubles.h"

#include <cmath>
#include <cstdint>

namespace Lumivane::Kernel {
namespace {

constexpr double Unit = 0x1p-53;  // a rounded result is off by this part of itself at most
constexpr int MostProducts = 8;

int signOf(double value) { return value > 0.0 ? 1 : value < 0.0 ? -1 : 0; }

// ---------------------------------------------------------------- expansions

// A number as a sum of up to `Most` doubles that do not overlap, of rising magnitude, none zero.
template <int Most>
class Expansion {
 public:
  void add(double value) {
    int kept = 0;
    for (int i = 0; i < count; ++i) {
      const TwoDoubles sum = twoSum(value, parts[i]);
      value = sum.high;
      if (sum.low != 0.0) parts[kept++] = sum.low;
    }
    if (value != 0.0) parts[kept++] = value;
    count = kept;
  }
  void add(TwoDoubles value) {
    add(value.low);
    add(value.high);
  }
  // `factor` times `other`.
  template <int OtherMost>
  void addScaled(const Expansion<OtherMost>& other, double factor) {
    static_assert(2 * OtherMost <= Most);
    for (int i = 0; i < other.size(); ++i) add(twoProduct(other[i], factor));
  }

  int size() const { return count; }
  double operator[](int i) const { return parts[i]; }
  int sign() const { return count == 0 ? 0 : signOf(parts[count - 1]); }

 private:
  double parts[Most] = {};
  int count = 0;
};

// Whether the magnitude of a number, unless it is 0, is within a power of two and its inverse.
bool isWithin(double value, double most, double least) {
  const double magnitude = std::abs(value);
  return magnitude <= most && (magnitude >= least || magnitude == 0.0);
}

bool isModest(const double* values, int count, double most, double least) {
  for (int i = 0; i < count; ++i)
    if (!isWithin(values[i], most, least)) return false;
  return true;
}

// ---------------------------------------------------------------- whole numbers

// A double as a whole number times a power of two.
struct Whole {
  std::uint64_t mantissa;
  int exponent;
  bool negative;
};

Whole wholeOf(double value) {
  int exponent = 0;
  const double fraction = std::frexp(std::abs(value), &exponent);
  return {static_cast<std::uint64_t>(std::ldexp(fraction, 53)), exponent - 53, std::signbit(value)};
}

// A sum of products of up to three doubles: a whole number in two's complement, times the least
// power of two that such a product may have.
class WideSum {
 public:
  void addProduct(double a, double b, double c) {
    if (a == 0.0 || b == 0.0 || c == 0.0) return;
    const Whole x = wholeOf(a);
    const Whole y = wholeOf(b);
    const Whole z = wholeOf(c);
    std::uint32_t product[Factors] = {1};
    multiply(product, x.mantissa);
    multiply(product, y.mantissa);
    multiply(product, z.mantissa);
    const int shift = x.exponent + y.exponent + z.exponent + Lowest;
    const bool negative = (x.negative != y.negative) != z.negative;
    addShifted(product, static_cast<unsigned>(shift), negative);
  }

  int sign() const {
    if ((limbs[Limbs - 1] >> 31U) != 0) return -1;
    for (const std::uint32_t limb : limbs)
      if (limb != 0) return 1;
    return 0;
  }

 private:
  static constexpr int Factors = 6;        // three mantissas of 53 digits
  static constexpr int Lowest = 3 * 1126;  // the least exponent is -1126: 2^-1074 as 53 digits
  static constexpr int Limbs = (Lowest + 3 * 1024 + 64) / 32;

  static void multiply(std::uint32_t* number, std::uint64_t factor) {
    std::uint32_t result[Factors + 2] = {};
    const std::uint64_t parts[2] = {factor & 0xFFFFFFFFU, factor >> 32U};
    for (int j = 0; j < 2; ++j) {
      std::uint64_t carry = 0;
      for (int i = 0; i + j < Factors; ++i) {
        carry += number[i] * parts[j] + result[i + j];
        result[i + j] = static_cast<std::uint32_t>(carry);
        carry >>= 32U;
      }
    }
    for (int i = 0; i < Factors; ++i) number[i] = result[i];
  }

  // A negative one is the complement plus one, which the first carry adds.
  void addShifted(const std::uint32_t* number, unsigned shift, bool negative) {
    const auto first = static_cast<int>(shift / 32U);
    const unsigned bits = shift % 32U;
    std::uint64_t carry = negative ? 1 : 0;
    for (int i = first; i < Limbs; ++i) {
      std::uint32_t limb = limbAt(number, i - first) << bits;
      if (bits != 0) limb |= limbAt(number, i - first - 1) >> (32U - bits);
      carry += static_cast<std::uint64_t>(limbs[i]) + (negative ? ~limb : limb);
      limbs[i] = static_cast<std::uint32_t>(carry);
      carry >>= 32U;
    }
  }

  static std::uint32_t limbAt(const std::uint32_t* number, int i) {
    return i >= 0 && i < Factors ? number[i] : 0;
  }

  std::uint32_t limbs[Limbs] = {};
};

int wideSignOfSum(const double* a, const double* b, int count) {
  WideSum sum;
  for (int i = 0; i < count; ++i) sum.addProduct(a[i], b[i], 1.0);
  return sum.sign();
}

int wideOrientation(Vec3 a, Vec3 b, Vec3 c) {
  WideSum sum;
  sum.addProduct(a.x, b.y, c.z);
  sum.addProduct(-a.x, b.z, c.y);
  sum.addProduct(a.y, b.z, c.x);
  sum.addProduct(-a.y, b.x, c.z);
  sum.addProduct(a.z, b.x, c.y);
  sum.addProduct(-a.z, b.y, c.x);
  return sum.sign();
}

// ---------------------------------------------------------------- second stage

int exactSignOfSum(const double* a, const double* b, int count) {
  // The low part of a product of numbers from 2^-450 on is a multiple of 2^-1004.
  constexpr double Most = 0x1p450;
  constexpr double Least = 0x1p-450;
  if (!isModest(a, count, Most, Least) || !isModest(b, count, Most, Least))
    return wideSignOfSum(a, b, count);
  Expansion<2 * MostProducts> sum;
  for (int i = 0; i < count; ++i) sum.add(twoProduct(a[i], b[i]));
  return sum.sign();
}

// a b - c d.
Expansion<4> minorOf(double a, double b, double c, double d) {
  const TwoDoubles first = twoProduct(a, b);
  const TwoDoubles second = twoProduct(c, d);
  Expansion<4> result;
  if (first.high == second.high) {  // as where an edge is parallel to an axis
    const TwoDoubles rest = twoDifference(first.low, second.low);
    result.add(rest);
    return result;
  }
  result.add(first);
  result.add({-second.high, -second.low});
  return result;
}

int exactOrientation(Vec3 a, Vec3 b, Vec3 c) {
  // The lowest digit of a product of three numbers from 2^-300 on is at 2^-1056 at least.
  constexpr double Most = 0x1p300;
  constexpr double Least = 0x1p-300;
  const double all[9] = {a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z};
  if (!isModest(all, 9, Most, Least)) return wideOrientation(a, b, c);
  Expansion<24> sum;
  sum.addScaled(minorOf(b.y, c.z, b.z, c.y), a.x);
  sum.addScaled(minorOf(b.z, c.x, b.x, c.z), a.y);
  sum.addScaled(minorOf(b.x, c.y, b.y, c.x), a.z);
  return sum.sign();
}

}  // namespace

// Error: each product is off by u of itself, or by 2^-1075 where it is denormal, and each sum by u
// of itself, so that the sum is off by less than n u S + n 2^-1074, S being the sum of the
// products' magnitudes, to first order in u. S as computed is off by n u of itself: n + 2 in place
// of n holds all terms of higher order as long as n u is small.
int signOfSumOfProducts(const double* a, const double* b, int count) {
  double sum = 0.0;
  double magnitudes = 0.0;
  for (int i = 0; i < count; ++i) {
    const double product = a[i] * b[i];
    sum += product;
    magnitudes += std::abs(product);
  }
  const double bound = (count + 2) * Unit * magnitudes + count * 0x1p-1073;
  if (std::abs(sum) > bound) return signOf(sum);  // never for infinities and not-a-numbers
  return exactSignOfSum(a, b, count);
}

// Error: a minor is off by 2 u of its two products' magnitudes, its product with a coordinate by 3
// u, and two sums make it 5 u of the permanent, to first order; 8 holds the higher orders and the
// rounding of the permanent. Products below the range are off by 2^-1075: two of them in each
// minor, times the coordinate, and the three themselves.
int orientation(Vec3 a, Vec3 b, Vec3 c) {
  const double yz = b.y * c.z;
  const double zy = b.z * c.y;
  const double zx = b.z * c.x;
  const double xz = b.x * c.z;
  const double xy = b.x * c.y;
  const double yx = b.y * c.x;
  const double determinant = a.x * (yz - zy) + a.y * (zx - xz) + a.z * (xy - yx);
  const double x = std::abs(a.x);
  const double y = std::abs(a.y);
  const double z = std::abs(a.z);
  const double permanent = x * (std::abs(yz) + std::abs(zy)) + y * (std::abs(zx) + std::abs(xz)) +
                           z * (std::abs(xy) + std::abs(yx));
  const double bound = 8.0 * Unit * permanent + (x + y + z + 1.0) * 0x1p-1070;
  if (std::abs(determinant) > bound) return signOf(determinant);
  return exactOrientation(a, b, c);
}

}  // namespace Lumivane::Kernel
