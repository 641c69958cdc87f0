// Single directions and what an index counts, against the judge, over all hard scenes.

#include "truth/Builder.h"
#include "truth/HardScenes.h"
#include "truth/Judge.h"

#include <lumivane/visibility/SceneIndex.h>

#include <cmath>

#include <gtest/gtest.h>

namespace Lumivane::Truth {
namespace {

using Visibility::SceneIndex;
using Visibility::Vector;

// Everywhere, and near the scene's points.
std::vector<Vector> directionsOf(const HardScene& hard, Random& random) {
  std::vector<Vector> result;
  result.reserve(700);
  for (int i = 0; i < 500; ++i) result.push_back(random.direction());
  for (std::size_t i = 0; i < hard.scene.points.size() && i < 200; ++i) {
    Vector d{};
    for (std::size_t k = 0; k < 3; ++k) d[k] = hard.scene.points[i][k] - hard.eye[k];
    const double length = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
    if (!(length > 0.0)) continue;
    const Vector off = random.direction();
    for (std::size_t k = 0; k < 3; ++k) d[k] += 1e-3 * length * off[k];
    result.push_back(d);
  }
  return result;
}

TEST(SeenInTruth, SingleDirectionsOfHardScenesSeeWhatTheJudgeSays) {
  Random random(14);
  std::size_t seen = 0;
  for (std::size_t number = 0; number < HardSceneCount; ++number) {
    const HardScene hard = hardScene(number);
    const SceneIndex index(hard.scene);
    const Judge judge(hard.scene);
    const std::vector<Vector> directions = directionsOf(hard, random);
    const bool twoSided = hard.options.twoSided;
    const std::vector<Visibility::Seen> found = index.seenIn(hard.eye, directions, twoSided);
    for (std::size_t i = 0; i < directions.size(); ++i) {
      const Verdict verdict = judge.seen(hard.eye, directions[i], twoSided);
      ASSERT_EQ(verdict.label, found[i].label) << number << ' ' << hard.name;
      seen += verdict.label.object != 0 ? 1 : 0;
    }
  }
  EXPECT_GT(seen, 20000U);
}

TEST(SeenInTruth, AnIndexCountsWhatTheJudgeCounts) {
  for (std::size_t number = 0; number < HardSceneCount; ++number) {
    const HardScene hard = hardScene(number);
    const SceneIndex index(hard.scene);
    const Pieces pieces = piecesOf(hard.scene, {});
    EXPECT_EQ(pieces.dropped, index.droppedRegionCount()) << number << ' ' << hard.name;
    EXPECT_EQ(pieces.layers, index.layerCount()) << number << ' ' << hard.name;
    if (pieces.nearlyFlat == 0) {
      EXPECT_EQ(pieces.triangulated, index.triangulatedRegionCount()) << number << ' ' << hard.name;
    }
  }
}

}  // namespace
}  // namespace Lumivane::Truth
