#include "kernel/Trigonometry.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace Lumivane::Kernel {
namespace {

class Random {
 public:
  double between(double low, double high) {
    return low + (high - low) * static_cast<double>(engine() >> 11U) * 0x1.0p-53;
  }
  double anySize(double lowest, double highest) {
    const double size = std::pow(10.0, between(lowest, highest));
    return between(0, 1) < 0.5 ? -size : size;
  }

 private:
  std::mt19937_64 engine{14};
};

/// How many units of the last place of a double a value is off.
double unitsOff(double value, long double truth) {
  const auto nearest = static_cast<double>(truth);
  const double next = std::nextafter(std::abs(nearest), HUGE_VAL);
  const double unit = next - std::abs(nearest);
  return static_cast<double>(std::abs(static_cast<long double>(value) - truth)) / unit;
}

constexpr int Rounds = 300000;

TEST(Trigonometry, ArcTangentsAreWithinAUnitOfTheLastPlace) {
  Random random;
  double worst = 0.0;
  for (int i = 0; i < Rounds; ++i) {
    const bool wide = i % 3 == 0;
    const double y = wide ? random.anySize(-30, 30) : random.between(-1, 1);
    const double x = wide ? random.anySize(-30, 30) : random.between(-1, 1);
    const long double truth = std::atan2(static_cast<long double>(y), static_cast<long double>(x));
    worst = std::max(worst, unitsOff(arcTangent(y, x), truth));
    EXPECT_NEAR(arcTangent(y, x), std::atan2(y, x), 4.5e-16);
  }
  EXPECT_LT(worst, 0.6);
}

TEST(Trigonometry, ArcTangentsOfTheStepsOfTheTableAreWithinAUnit) {
  for (int i = 0; i <= 64; ++i)
    for (const double off : {-1e-9, 0.0, 1e-9, 1e-16}) {
      const double y = i / 32.0 + off;
      EXPECT_LT(unitsOff(arcTangent(y, 1.0), std::atan(static_cast<long double>(y))), 0.6) << y;
      EXPECT_LT(unitsOff(arcTangent(1.0, y), std::atan2(1.0L, static_cast<long double>(y))), 0.6);
    }
}

TEST(Trigonometry, ArcTangentsHaveTheSignsAndEndsOfTheStandard) {
  constexpr double Infinity = std::numeric_limits<double>::infinity();
  constexpr double Least = std::numeric_limits<double>::denorm_min();
  constexpr double Most = std::numeric_limits<double>::max();
  const double values[] = {0.0, -0.0, 1.0, -1.0, Infinity, -Infinity, Least, -Least, Most, -Most};
  for (const double y : values)
    for (const double x : values) {
      const double expected = std::atan2(y, x);
      const double actual = arcTangent(y, x);
      EXPECT_EQ(expected, actual) << y << ' ' << x;
      EXPECT_EQ(std::signbit(expected), std::signbit(actual)) << y << ' ' << x;
    }
  EXPECT_TRUE(std::isnan(arcTangent(std::nan(""), 1.0)));
  EXPECT_TRUE(std::isnan(arcTangent(1.0, std::nan(""))));
}

TEST(Trigonometry, SinesAndCosinesAreWithinAUnitOfTheLastPlace) {
  Random random;
  double worst = 0.0;
  double worstTangent = 0.0;
  for (int i = 0; i < Rounds; ++i) {
    const double x = i % 4 == 0   ? random.between(-1000, 1000)
                     : i % 4 == 1 ? random.anySize(-20, 0)
                                  : random.between(-7, 7);
    const auto exact = static_cast<long double>(x);
    worst = std::max(worst, unitsOff(sine(x), std::sin(exact)));
    worst = std::max(worst, unitsOff(cosine(x), std::cos(exact)));
    worstTangent = std::max(worstTangent, unitsOff(tangent(x), std::tan(exact)));
  }
  EXPECT_LT(worst, 1.0);
  EXPECT_LT(worstTangent, 2.0);
}

TEST(Trigonometry, NearMultiplesOfAQuarterTurnNoDigitIsLost) {
  for (int i = -40; i <= 40; ++i) {
    const double x = i * 1.5707963267948966;
    const auto exact = static_cast<long double>(x);
    EXPECT_NEAR(sine(x), static_cast<double>(std::sin(exact)), 1e-18 + 2e-16 * (i % 2 != 0));
    EXPECT_NEAR(cosine(x), static_cast<double>(std::cos(exact)), 1e-18 + 2e-16 * (i % 2 == 0));
  }
}

// The same on every machine: bits, not values near each other.
TEST(Trigonometry, GivesTheBitsThatItAlwaysGave) {
  Random random;
  std::uint64_t hash = 14695981039346656037U;
  const auto take = [&hash](double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    hash = (hash ^ bits) * 1099511628211U;
  };
  for (int i = 0; i < 20000; ++i) {
    const double y = random.between(-2, 2);
    const double x = random.between(-2, 2);
    take(arcTangent(y, x));
    take(sine(3.0 * x));
    take(cosine(3.0 * y));
    take(tangent(0.7 * y));
  }
  EXPECT_EQ(hash, 11964218714787094797U) << "the hash of the bits";
}

}  // namespace
}  // namespace Lumivane::Kernel
