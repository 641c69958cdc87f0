#include "support/JsonText.h"

#include <lumivane/algorithm/ProjectionType.h>
#include <lumivane/algorithm/ShotParameters.h>

#include <gtest/gtest.h>

namespace Lumivane::Algorithm {
namespace {

using namespace Lumivane::Test;

TEST(ShotParameters, DefaultsChooseNoPropertyAndNoScale) {
  const ShotParameters parameters;
  EXPECT_EQ(0, parameters.getHandledObjectsCounter());
  EXPECT_EQ(-1, parameters.getPropertyNum());
  EXPECT_EQ(-1, parameters.getScaleNum());
  EXPECT_EQ(0.01, parameters.getD1());
  EXPECT_EQ(1.0, parameters.getD2());
}

TEST(ShotParameters, CounterCountsAndResets) {
  ShotParameters parameters;
  parameters.increaseHandledObjectsCounter();
  parameters.increaseHandledObjectsCounter();
  EXPECT_EQ(2, parameters.getHandledObjectsCounter());
  parameters.resetHandledObjectsCounter();
  EXPECT_EQ(0, parameters.getHandledObjectsCounter());
}

TEST(ShotParameters, CopiesAllFields) {
  ShotParameters parameters;
  parameters.increaseHandledObjectsCounter();
  parameters.setPropertyNum(4);
  parameters.setScaleNum(5);
  parameters.setD1(0.25);
  parameters.setD2(2.5);
  const ShotParameters copy(parameters);
  ShotParameters assigned;
  assigned = parameters;
  for (const ShotParameters& one : {copy, assigned}) {
    EXPECT_EQ(1, one.getHandledObjectsCounter());
    EXPECT_EQ(4, one.getPropertyNum());
    EXPECT_EQ(5, one.getScaleNum());
    EXPECT_EQ(0.25, one.getD1());
    EXPECT_EQ(2.5, one.getD2());
  }
}

TEST(ShotParameters, WritesAnEmptyObjectAndReadsNothing) {
  ShotParameters parameters;
  parameters.setD1(5);
  EXPECT_EQ("{}", written(parameters));
  read(parameters, "{\"D1\":7}");
  EXPECT_EQ(5.0, parameters.getD1());
}

TEST(ProjectionType, HasItsNumbers) {
  EXPECT_EQ(0, static_cast<int>(ProjectionType::Radial));
  EXPECT_EQ(1, static_cast<int>(ProjectionType::Square));
  EXPECT_EQ(3, static_cast<int>(static_cast<ProjectionType>(3)));  // other values can be passed
}

}  // namespace
}  // namespace Lumivane::Algorithm
