#include <lumivane/algorithm/ShotParameters.h>
#include <lumivane/base/View.h>
#include <lumivane/base/ViewOrientation3D.h>
#include <lumivane/base/ViewSphericalCamera.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/utils/ProgressbarUtils.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Utils::ProgressbarUtils;

void expectReset(ProgressbarUtils& record) {
  EXPECT_EQ(0, record.getHandledObjectsCount());
  EXPECT_EQ(0, record.getTotalObjectsCount());
  EXPECT_EQ("", record.getStatus());
  EXPECT_EQ(0.0, record.getProgress());
}

class ProgressRecord : public ::testing::Test {
 protected:
  ~ProgressRecord() override { record.reset(); }
  ProgressbarUtils& record = *ProgressbarUtils::getInstance();
};

TEST_F(ProgressRecord, ResetOfAFreshInstanceChangesNothing) {
  expectReset(record);
  record.reset();
  expectReset(record);
}

TEST_F(ProgressRecord, InstanceIsAlwaysTheSame) {
  EXPECT_EQ(&record, ProgressbarUtils::getInstance());
  EXPECT_EQ(&record, ProgressbarUtils::getInstance());
}

TEST_F(ProgressRecord, InstanceIsTheSameForThreadsThatAskAtOnce) {
  std::vector<ProgressbarUtils*> found(8, nullptr);
  std::vector<std::thread> threads;
  threads.reserve(found.size());
  for (ProgressbarUtils*& one : found)
    threads.emplace_back([&one] { one = ProgressbarUtils::getInstance(); });
  for (std::thread& thread : threads) thread.join();
  for (const ProgressbarUtils* one : found) EXPECT_EQ(&record, one);
}

TEST_F(ProgressRecord, IncreasingByFiveTwiceGivesTen) {
  record.increaseProgress(5.0);
  record.increaseProgress(5.0);
  EXPECT_EQ(10.0, record.getProgress());
}

TEST_F(ProgressRecord, FieldsKeepWhatIsWritten) {
  record.setTotalObjectsCount(12);
  record.increaseHandledObjectsCounter();
  record.increaseHandledObjectsCounter();
  record.setStatus("sorting");
  record.setProgress(42.5);
  EXPECT_EQ(12, record.getTotalObjectsCount());
  EXPECT_EQ(2, record.getHandledObjectsCount());
  EXPECT_EQ("sorting", record.getStatus());
  EXPECT_EQ(42.5, record.getProgress());
}

TEST_F(ProgressRecord, ResetSetsAllFieldsBack) {
  record.setTotalObjectsCount(12);
  record.increaseHandledObjectsCounter();
  record.setStatus("sorting");
  record.setProgress(42.5);
  record.reset();
  expectReset(record);
}

TEST_F(ProgressRecord, AShotOfASceneWithoutObjectsResetsTheRecordAndLeavesTheProgressAtZero) {
  record.setTotalObjectsCount(12);
  record.increaseHandledObjectsCounter();
  record.setStatus("sorting");
  record.setProgress(42.5);
  Base::ViewSphericalCamera camera;
  Base::ViewOrientation3D orientation;
  Base::View view;
  view.setCamera(&camera);
  view.setOrientation(&orientation);
  Algorithm::ShotParameters parameters;
  Scene::Scene3D scene;
  scene.setObjects(new Scene::Objects());
  const std::unique_ptr<Shot::Shot2d> shot(scene.makeShot(&view, &parameters));
  ASSERT_NE(nullptr, shot);
  expectReset(record);
}

TEST_F(ProgressRecord, AnotherThreadSeesTheProgressGrow) {
  std::atomic<bool> seen = false;
  std::thread poller([&] {
    while (record.getProgress() < 30.0) std::this_thread::yield();
    seen = true;
  });
  for (int i = 0; i <= 30; ++i) record.setProgress(i);
  poller.join();
  EXPECT_TRUE(seen);
}

}  // namespace
}  // namespace Lumivane::Test
