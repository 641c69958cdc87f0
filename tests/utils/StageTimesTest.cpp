#include "utils/StageScope.h"

#include <ctime>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Utils::Stage;
using Utils::StageTimes;

// Works until the processor's clock has moved on.
void work() {
  const std::clock_t start = std::clock();
  while (std::clock() - start < CLOCKS_PER_SEC / 1000) {
  }
}

class StageClock : public ::testing::Test {
 protected:
  StageClock() {
    StageTimes::reset();
    StageTimes::enable(true);
  }
  ~StageClock() override {
    StageTimes::enable(false);
    StageTimes::reset();
  }
};

TEST_F(StageClock, AStageCountsItsOwnTime) {
  {
    const Utils::StageScope scope(Stage::Read);
    work();
  }
  EXPECT_GT(StageTimes::seconds(Stage::Read), 0.0);
  EXPECT_EQ(0.0, StageTimes::seconds(Stage::Write));
}

TEST_F(StageClock, TimeBetweenStagesCountsToNone) {
  { const Utils::StageScope scope(Stage::Read); }
  const double before = StageTimes::seconds(Stage::Read);
  work();
  { const Utils::StageScope scope(Stage::Write); }
  EXPECT_EQ(before, StageTimes::seconds(Stage::Read));
}

TEST_F(StageClock, AStageWithinAnotherStopsTheOuterOne) {
  double outerSoFar = 0.0;
  {
    const Utils::StageScope outer(Stage::Points);
    {
      const Utils::StageScope inner(Stage::Docking);
      outerSoFar = StageTimes::seconds(Stage::Points);
      work();
    }
    EXPECT_EQ(outerSoFar, StageTimes::seconds(Stage::Points));
    EXPECT_GT(StageTimes::seconds(Stage::Docking), 0.0);
    work();
  }
  EXPECT_GT(StageTimes::seconds(Stage::Points), outerSoFar);
}

TEST_F(StageClock, AnExceptionEndsAStage) {
  const auto fail = [] {
    const Utils::StageScope scope(Stage::Order);
    throw std::runtime_error("wanted");
  };
  EXPECT_THROW(fail(), std::runtime_error);
  const double before = StageTimes::seconds(Stage::Order);
  work();
  { const Utils::StageScope scope(Stage::Write); }
  EXPECT_EQ(before, StageTimes::seconds(Stage::Order));
}

TEST_F(StageClock, SwitchedOffCountsNothing) {
  StageTimes::enable(false);
  {
    const Utils::StageScope scope(Stage::Read);
    work();
  }
  EXPECT_EQ(0.0, StageTimes::seconds(Stage::Read));
}

TEST_F(StageClock, AStageThatBeganOnEndsProperlyWhenSwitchedOffMeanwhile) {
  {
    const Utils::StageScope scope(Stage::Read);
    StageTimes::enable(false);
    work();
  }
  const double read = StageTimes::seconds(Stage::Read);
  EXPECT_GT(read, 0.0);
  StageTimes::enable(true);
  work();
  { const Utils::StageScope scope(Stage::Write); }
  EXPECT_EQ(read, StageTimes::seconds(Stage::Read));
}

TEST_F(StageClock, NamesTellTheStagesApart) {
  EXPECT_STREQ("read", StageTimes::name(Stage::Read));
  EXPECT_STREQ("clip_and_cull", StageTimes::name(Stage::ClipAndCull));
  EXPECT_STREQ("write", StageTimes::name(Stage::Write));
  EXPECT_THROW(StageTimes::name(static_cast<Stage>(StageTimes::Count)), std::out_of_range);
}

}  // namespace
}  // namespace Lumivane::Test
