// Two hundred scenes that are likely to break an exact engine, each against rays in wide
// arithmetic and against the map's own account.

#include "truth/Builder.h"
#include "truth/EachHardScene.h"
#include "truth/Invariants.h"
#include "truth/MapCheck.h"
#include "truth/MapLocator.h"
#include "truth/SceneFaults.h"

#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using Visibility::MapShares;
using Visibility::SceneIndex;
using Visibility::Seen;
using Visibility::Vector;
using Visibility::VisibleMap;

constexpr std::size_t Rays = 5000;

class HardSceneProperty : public EachHardScene {};

TEST_P(HardSceneProperty, TheMapIsSound) {
  each([](const HardScene& hard) {
    EXPECT_EQ(faultText(SceneIndex(hard.scene).look(hard.eye, hard.options)), "");
  });
}

TEST_P(HardSceneProperty, NoRaySeesAnotherLabel) {
  each([](const HardScene& hard) {
    const VisibleMap map = SceneIndex(hard.scene).look(hard.eye, hard.options);
    const RayReport report = checkByRays(Judge(hard.scene), map, Rays, 77);
    EXPECT_TRUE(report.wrong.empty()) << report.text();
    EXPECT_EQ(report.wrongDistances, 0U);
  });
}

TEST_P(HardSceneProperty, DistancesAndKindsFitThePlanes) {
  each([](const HardScene& hard) {
    const VisibleMap map = SceneIndex(hard.scene).look(hard.eye, hard.options);
    EXPECT_EQ(sceneFaultText(Judge(hard.scene), map), "");
  });
}

TEST_P(HardSceneProperty, SingleDirectionsSeeWhatRaysSee) {
  each([](const HardScene& hard) {
    const SceneIndex index(hard.scene);
    const Judge judge(hard.scene);
    Random random(5);
    std::vector<Vector> directions(1000);
    std::generate(directions.begin(), directions.end(), [&] { return random.direction(); });
    const bool twoSided = hard.options.twoSided;
    const std::vector<Seen> seen = index.seenIn(hard.eye, directions, twoSided);
    ASSERT_EQ(seen.size(), directions.size());
    for (std::size_t i = 0; i < directions.size(); ++i) {
      const Verdict truth = judge.seen(hard.eye, directions[i], twoSided);
      EXPECT_EQ(seen[i].label, truth.label) << "direction " << i;
      if (seen[i].label == truth.label) {
        EXPECT_NEAR(seen[i].distance, truth.distance, 1e-9 * truth.distance);
      }
    }
  });
}

TEST_P(HardSceneProperty, SharesAreTheSumsOfCells) {
  each([](const HardScene& hard) {
    const VisibleMap map = SceneIndex(hard.scene).look(hard.eye, hard.options);
    const MapShares shares(map);
    std::vector<Real> sums(shares.objects().size() + 1);
    Real whole = 0.0L;
    for (const VisibleMap::Cell& cell : map.cells) {
      ASSERT_LT(static_cast<std::size_t>(cell.label.object), sums.size());
      sums[static_cast<std::size_t>(cell.label.object)] += cell.solidAngle;
      whole += cell.solidAngle;
    }
    EXPECT_NEAR(shares.sky().solidAngle, static_cast<double>(sums[0]), 1e-12);
    EXPECT_NEAR(shares.whole().solidAngle, static_cast<double>(whole), 1e-12);
    for (std::size_t i = 0; i < shares.objects().size(); ++i)
      EXPECT_NEAR(shares.objects()[i].share.solidAngle, static_cast<double>(sums[i + 1]), 1e-12);
    const auto sumOf = [](const auto& rows) {
      Real sum = 0.0L;
      for (const auto& row : rows) sum += row.share.solidAngle;
      return static_cast<double>(sum);
    };
    const auto seen = static_cast<double>(whole - sums[0]);
    EXPECT_NEAR(sumOf(shares.objects()), seen, 1e-11);
    EXPECT_NEAR(sumOf(shares.regions()), seen, 1e-11);
    EXPECT_NEAR(sumOf(shares.faces()), seen, 1e-11);
  });
}

INSTANTIATE_TEST_SUITE_P(Kinds, HardSceneProperty, ::testing::Range<std::size_t>(0, HardKinds));

}  // namespace
}  // namespace Lumivane::Truth
