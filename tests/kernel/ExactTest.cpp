#include "kernel/Exact.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Kernel {
namespace {

// A whole number of any length, as a sign and digits of base 2^16 by schoolbook rules:
// another form than the one under test, slow and plain.
class Integer {
 public:
  explicit Integer(double wholeNumber = 0.0) {  // |wholeNumber| below 2^53
    negative = wholeNumber < 0.0;
    for (auto rest = static_cast<std::uint64_t>(std::abs(wholeNumber)); rest != 0; rest >>= 16U)
      digits.push_back(static_cast<std::uint32_t>(rest & 0xFFFFU));
  }

  int sign() const { return digits.empty() ? 0 : negative ? -1 : 1; }

  Integer operator-() const {
    Integer result = *this;
    result.negative = !negative;
    return result;
  }

  Integer operator*(const Integer& other) const {
    Integer result;
    result.negative = negative != other.negative;
    std::vector<std::uint64_t> sums(digits.size() + other.digits.size() + 1, 0);
    for (std::size_t i = 0; i < digits.size(); ++i) {
      for (std::size_t j = 0; j < other.digits.size(); ++j) {
        sums[i + j] += static_cast<std::uint64_t>(digits[i]) * other.digits[j];
        sums[i + j + 1] += sums[i + j] >> 16U;
        sums[i + j] &= 0xFFFFU;
      }
    }
    for (std::size_t i = 0; i + 1 < sums.size(); ++i) {
      sums[i + 1] += sums[i] >> 16U;
      sums[i] &= 0xFFFFU;
    }
    for (const std::uint64_t sum : sums) result.digits.push_back(static_cast<std::uint32_t>(sum));
    result.trim();
    return result;
  }

  Integer operator+(const Integer& other) const {
    if (negative == other.negative) return added(other);
    return lessThan(digits, other.digits) ? other.subtracted(*this) : subtracted(other);
  }

  Integer shifted(int powerOfTwo) const {
    Integer result = *this;
    result.digits.insert(result.digits.begin(), static_cast<std::size_t>(powerOfTwo / 16), 0);
    result.trim();
    return result * Integer(std::ldexp(1.0, powerOfTwo % 16));
  }

 private:
  static bool lessThan(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b) {
    if (a.size() != b.size()) return a.size() < b.size();
    return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
  }
  Integer added(const Integer& other) const {
    Integer result;
    result.negative = negative;
    std::uint32_t carry = 0;
    for (std::size_t i = 0; i < std::max(digits.size(), other.digits.size()) || carry != 0; ++i) {
      carry +=
          (i < digits.size() ? digits[i] : 0) + (i < other.digits.size() ? other.digits[i] : 0);
      result.digits.push_back(carry & 0xFFFFU);
      carry >>= 16U;
    }
    return result;
  }
  Integer subtracted(const Integer& smaller) const {
    Integer result = *this;
    std::int64_t borrow = 0;
    for (std::size_t i = 0; i < digits.size(); ++i) {
      std::int64_t value = static_cast<std::int64_t>(digits[i]) - borrow -
                           (i < smaller.digits.size() ? smaller.digits[i] : 0);
      borrow = value < 0 ? 1 : 0;
      value += borrow * 65536;
      result.digits[i] = static_cast<std::uint32_t>(value);
    }
    result.trim();
    return result;
  }
  void trim() {
    while (!digits.empty() && digits.back() == 0) digits.pop_back();
  }

  bool negative = false;
  std::vector<std::uint32_t> digits;
};

// The numbers as whole multiples of one power of two.
std::vector<Integer> integersOf(const std::vector<double>& values) {
  int lowest = 5000;
  for (const double value : values)
    if (value != 0.0) lowest = std::min(lowest, std::ilogb(value) - 52);
  std::vector<Integer> result;
  for (const double value : values) {
    if (value == 0.0) {
      result.emplace_back();
      continue;
    }
    int exponent = 0;
    const double fraction = std::frexp(value, &exponent);
    result.push_back(Integer(std::ldexp(fraction, 53)).shifted(exponent - 53 - lowest));
  }
  return result;
}

int slowSignOfSum(const std::vector<double>& a, const std::vector<double>& b) {
  const std::vector<Integer> x = integersOf(a);
  const std::vector<Integer> y = integersOf(b);
  Integer sum;
  for (std::size_t i = 0; i < x.size(); ++i) sum = sum + x[i] * y[i];
  return sum.sign();
}

int slowOrientation(Vec3 a, Vec3 b, Vec3 c) {
  const std::vector<Integer> n = integersOf({a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z});
  const auto minor = [&](std::size_t i, std::size_t j) {
    return n[3 + i] * n[6 + j] + -(n[3 + j] * n[6 + i]);
  };
  return (n[0] * minor(1, 2) + n[1] * minor(2, 0) + n[2] * minor(0, 1)).sign();
}

class Numbers {
 public:
  double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine);
  }
  int whole(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine); }
  // Of any magnitude that a double may have, within powers of two.
  double ofPowers(int low, int high) { return std::ldexp(between(-1.0, 1.0), whole(low, high)); }
  Vec3 vector(int low, int high) {
    return {ofPowers(low, high), ofPowers(low, high), ofPowers(low, high)};
  }
  Vec3 smallWhole() {
    return {static_cast<double>(whole(-3, 3)), static_cast<double>(whole(-3, 3)),
            static_cast<double>(whole(-3, 3))};
  }

 private:
  std::mt19937_64 engine{20};
};

void expectSum(const std::vector<double>& a, const std::vector<double>& b) {
  EXPECT_EQ(slowSignOfSum(a, b),
            signOfSumOfProducts(a.data(), b.data(), static_cast<int>(a.size())));
}

void expectOrientation(Vec3 a, Vec3 b, Vec3 c) {
  const int expected = slowOrientation(a, b, c);
  EXPECT_EQ(expected, orientation(a, b, c));
  EXPECT_EQ(expected, orientation(b, c, a));
  EXPECT_EQ(expected, orientation(c, a, b));
  EXPECT_EQ(-expected, orientation(b, a, c));
  EXPECT_EQ(-expected, orientation(a, c, b));
  EXPECT_EQ(-expected, orientation(-a, b, c));
}

TEST(Exact, TheUnitVectorsTurnCounterClockwise) {
  EXPECT_EQ(1, orientation({1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
  EXPECT_EQ(-1, orientation({0, 1, 0}, {1, 0, 0}, {0, 0, 1}));
  EXPECT_EQ(0, orientation({1, 0, 0}, {0, 1, 0}, {1, 1, 0}));
}

TEST(Exact, TheSumOfNoProductsIsNothing) { EXPECT_EQ(0, signOfSumOfProducts(nullptr, nullptr, 0)); }

TEST(Exact, ASumThatCancelsBelowTheLastDigitKeepsItsSign) {
  const double a[3] = {1e16, 1.0, -1e16};
  const double b[3] = {1.0, 1e-30, 1.0};
  EXPECT_EQ(1, signOfSumOfProducts(a, b, 3));
  const double c[3] = {1e16, -1.0, -1e16};
  EXPECT_EQ(-1, signOfSumOfProducts(c, b, 3));
}

TEST(Exact, ProductsBeyondADoubleAreComparedAllTheSame) {
  const double huge = std::numeric_limits<double>::max();
  const double next = std::nextafter(huge, 0.0);
  const double a[2] = {huge, -next};
  const double b[2] = {huge, huge};
  EXPECT_EQ(1, signOfSumOfProducts(a, b, 2));
  const double tiny = std::numeric_limits<double>::denorm_min();
  const double c[2] = {tiny, -2.0 * tiny};
  const double d[2] = {3.0 * tiny, tiny};
  EXPECT_EQ(1, signOfSumOfProducts(c, d, 2));
  const double e[2] = {huge, tiny};
  const double f[2] = {-huge, tiny};
  EXPECT_EQ(-1, signOfSumOfProducts(e, f, 2));
  EXPECT_EQ(1, orientation({tiny, 0, 0}, {0, tiny, 0}, {0, 0, tiny}));
  EXPECT_EQ(-1, orientation({huge, 0, 0}, {0, huge, 0}, {0, 0, -huge}));
  EXPECT_EQ(0, orientation({huge, tiny, huge}, {tiny, huge, tiny}, {huge, tiny, huge}));
}

TEST(ExactProperty, SumsOfProductsOfAnyMagnitudeHaveTheirSign) {
  Numbers numbers;
  for (const int power : {0, 60, 500, 1020}) {
    for (int i = 0; i < 400; ++i) {
      std::vector<double> a;
      std::vector<double> b;
      for (int k = numbers.whole(1, 8); k > 0; --k) {
        a.push_back(numbers.ofPowers(-power, power));
        b.push_back(numbers.ofPowers(-power, power));
      }
      expectSum(a, b);
    }
  }
}

TEST(ExactProperty, SumsThatNearlyCancelHaveTheirSign) {
  Numbers numbers;
  for (const int power : {0, 40, 400, 1000}) {
    for (int i = 0; i < 400; ++i) {
      // x y - x' y', the first factors as near to each other as doubles are, and the same again.
      const double x = numbers.ofPowers(-power, power);
      const double y = numbers.ofPowers(-power, power);
      const double z = numbers.ofPowers(-power, power);
      const double nearly = std::nextafter(x, numbers.whole(-1, 1) * 1e300);
      expectSum({x, -nearly, z, -z}, {y, y, y, std::nextafter(y, 0.0)});
      expectSum({x, -x, z, -z, nearly, -nearly}, {y, y, y, y, z, z});
      expectSum({x, -y}, {y, x});
    }
  }
}

TEST(ExactProperty, OrientationsOfAnyMagnitudeHaveTheirSign) {
  Numbers numbers;
  for (const int power : {0, 60, 330, 1020})
    for (int i = 0; i < 300; ++i)
      expectOrientation(numbers.vector(-power, power), numbers.vector(-power, power),
                        numbers.vector(-power, power));
}

TEST(ExactProperty, OrientationsOfSmallWholeNumbersHaveTheirSign) {
  Numbers numbers;
  for (int i = 0; i < 1000; ++i)
    expectOrientation(numbers.smallWhole(), numbers.smallWhole(), numbers.smallWhole());
}

TEST(ExactProperty, OrientationsOfNearlyCoplanarDirectionsHaveTheirSign) {
  Numbers numbers;
  int zeros = 0;
  for (const int power : {0, 20, 250, 320, 500}) {
    for (int i = 0; i < 300; ++i) {
      const Vec3 a = numbers.vector(-power, power);
      const Vec3 b = numbers.vector(-power, power);
      const double s = numbers.between(-2.0, 2.0);
      const double t = numbers.between(-2.0, 2.0);
      expectOrientation(a, b, s * a + t * b);  // in their plane but for rounding
      expectOrientation(a, b, 0.5 * a);
      expectOrientation(a, Vec3{a.x, a.y, std::nextafter(a.z, 1e300)}, s * a);
      zeros += orientation(a, b, 2.0 * a) == 0 ? 1 : 0;
    }
  }
  EXPECT_EQ(1500, zeros);
}

TEST(ExactProperty, CornersOfDecimalCoordinatesOnALineHaveTheirSign) {
  Numbers numbers;
  for (int i = 0; i < 500; ++i) {
    // Points of a wall in millimetres, seen from an eye beside it.
    const auto decimal = [&] { return numbers.whole(-9999999, 9999999) / 1000.0; };
    const Vec3 eye{decimal(), decimal(), decimal()};
    const Vec3 a{decimal(), decimal(), decimal()};
    const Vec3 b{decimal(), decimal(), decimal()};
    const Vec3 middle = 0.5 * (a + b);
    expectOrientation(a - eye, b - eye, middle - eye);
  }
}

TEST(ExactProperty, PositivePowersOfTwoChangeNoSign) {
  Numbers numbers;
  for (int i = 0; i < 300; ++i) {
    const Vec3 a = numbers.vector(-3, 3);
    const Vec3 b = numbers.vector(-3, 3);
    const Vec3 c = a + 0x1p-50 * b;
    const int sign = orientation(a, b, c);
    for (const double scale : {0x1p-320, 0x1p-100, 0x1p100, 0x1p400, 0x1p900}) {
      EXPECT_EQ(sign, orientation(scale * a, scale * b, scale * c));
      EXPECT_EQ(sign, orientation(scale * a, b, c));
    }
  }
}

TEST(Exact, DifferencesAreNotRounded) {
  const Vec3 a{1.0, 0.0, 0.0};
  const Vec3 b{0x1p-80, 0.0, 0.0};
  EXPECT_EQ(1, signOfDifferenceDot(a, b, {1.0, 0.0, 0.0}));
  EXPECT_EQ(-1, signOfDifferenceDot({1.0, 1.0, 0.0}, {1.0, 1.0 + 0x1p-52, 0.0}, {1.0, 1e-9, 0.0}));
  EXPECT_EQ(0, signOfDifferenceDot(a, a, {1.0, 2.0, 3.0}));
}

}  // namespace
}  // namespace Lumivane::Kernel
