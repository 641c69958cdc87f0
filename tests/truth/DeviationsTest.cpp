#include "truth/Builder.h"
#include "truth/Deviations.h"

#include <cmath>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

/// The sum of twelve evenly spread numbers less their mean has a deviation of one.
double nearlyNormal(Random& random) {
  double sum = -6.0;
  for (int i = 0; i < 12; ++i) sum += random.between(0.0, 1.0);
  return sum;
}

TEST(Deviations, KnowTheNormalDistribution) {
  EXPECT_NEAR(normalPartBeyond(1.0), 0.317310507863, 1e-12);
  EXPECT_NEAR(normalPartBeyond(4.0), 6.3342483666e-5, 1e-14);
  // One deviate is beyond 0.6745 with a probability of a half.
  EXPECT_NEAR(normalMaximum(1), 0.674489750196, 1e-9);
  EXPECT_NEAR(normalMaximum(1, normalPartBeyond(3.0)), 3.0, 1e-9);
  EXPECT_GT(normalMaximum(10000), 3.9);
  EXPECT_LT(normalMaximum(10000), 4.1);
}

TEST(Deviations, OfNormalOnesAreAsManyBeyondEachLimitAsExpected) {
  Random random(5);
  Deviations deviations;
  for (int i = 0; i < 20000; ++i) deviations.add(nearlyNormal(random));
  EXPECT_EQ(deviations.count(), 20000U);
  EXPECT_NEAR(deviations.mean(), 0.0, 0.03);
  EXPECT_NEAR(deviations.spread(), 1.0, 0.03);
  EXPECT_NEAR(static_cast<double>(deviations.beyond(2.0)), 20000 * normalPartBeyond(2.0), 120.0);
}

TEST(Deviations, SayWhereSomethingIsWrong) {
  Deviations deviations;
  for (const double by : {0.5, -7.0, 1.2}) deviations.add(by);
  EXPECT_EQ(deviations.greatest(), 7.0);
  EXPECT_EQ(deviations.beyond(4.0), 1U);
  EXPECT_NE(deviations.text().find("beyond 4:      1, expected 0.00"), std::string::npos)
      << deviations.text();
}

}  // namespace
}  // namespace Lumivane::Truth
