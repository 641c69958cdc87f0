#include "visibility/Polygons.h"
#include "visibility/WideEdge.h"

#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

__extension__ using Wide = __int128;

// Whole numbers that a double holds, so that products are known in 128 bits.
std::int64_t wholeNumber(Samples::Random& random) {
  return static_cast<std::int64_t>(random.between(-0x1p52, 0x1p52));
}

TEST(WideEdge, TheCrossProductOfVectorsThatAllButCoincideIsExactToItsLastPlaces) {
  Samples::Random random(5);
  for (int i = 0; i < 200; ++i) {
    std::int64_t a[3];
    std::int64_t b[3];
    for (int k = 0; k < 3; ++k) {
      a[k] = wholeNumber(random);
      b[k] = a[k] + static_cast<std::int64_t>(random.below(2000)) - 1000;
    }
    const auto at = [](const std::int64_t* v) {
      return Kernel::Vec3{static_cast<double>(v[0]), static_cast<double>(v[1]),
                          static_cast<double>(v[2])};
    };
    const Kernel::Vec3 cross = exactCross(at(a), at(b));
    const double found[3] = {cross.x, cross.y, cross.z};
    for (int k = 0; k < 3; ++k) {
      const int u = (k + 1) % 3;
      const int v = (k + 2) % 3;
      const auto exact =
          static_cast<double>(static_cast<Wide>(a[u]) * b[v] - static_cast<Wide>(a[v]) * b[u]);
      EXPECT_NEAR(exact, found[k], 5e-16 * std::fabs(exact));
    }
  }
}

}  // namespace
}  // namespace Lumivane::Visibility
