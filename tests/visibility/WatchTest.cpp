#include "visibility/Watch.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <numeric>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

const std::function<void(double)> NoReport;

constexpr std::size_t Many = 1'000'000;

std::vector<int> falling() {
  std::vector<int> items(Many);
  std::iota(items.rbegin(), items.rend(), 0);
  return items;
}

TEST(Watch, LoopsOverAllItemsAndNumbersInOrder) {
  Watch watch(nullptr, NoReport);
  std::vector<int> items = {5, 7, 9};
  for (int& item : watch.over(items)) ++item;
  EXPECT_EQ(items, (std::vector<int>{6, 8, 10}));
  std::vector<std::size_t> numbers;
  for (const std::size_t i : watch.upTo(3)) numbers.push_back(i);
  EXPECT_EQ(numbers, (std::vector<std::size_t>{0, 1, 2}));
  for (const std::size_t i : watch.upTo(0)) ADD_FAILURE() << i;
}

TEST(Watch, EndsALoopLongBeforeItsEndOnceTheLookIsCancelled) {
  std::atomic<bool> cancelled{false};
  Watch watch(&cancelled, NoReport);
  std::size_t passed = 0;
  const auto loop = [&] {
    for (const std::size_t i : watch.upTo(Many)) {
      passed = i;
      if (i == 100'000) cancelled = true;
    }
  };
  EXPECT_THROW(loop(), Cancelled);
  EXPECT_LT(passed, 110'000U);

  const std::vector<int> items = falling();
  passed = 0;
  const auto loopOverItems = [&] {
    for (const int item : watch.over(items)) passed += item >= 0 ? 1 : 0;
  };
  EXPECT_THROW(loopOverItems(), Cancelled);
  EXPECT_LT(passed, 10'000U);
}

TEST(Watch, EndsSortingOnceTheLookIsCancelled) {
  std::atomic<bool> cancelled{false};
  Watch watch(&cancelled, NoReport);
  std::vector<int> items = falling();
  std::size_t compared = 0;
  auto order = watch.order([&](int a, int b) {
    if (++compared == 50'000) cancelled = true;
    return a < b;
  });
  EXPECT_THROW(std::sort(items.begin(), items.end(), std::ref(order)), Cancelled);
  EXPECT_LT(compared, 70'000U);
}

TEST(Watch, SortsAsTheOrderAsks) {
  Watch watch(nullptr, NoReport);
  std::vector<int> items = falling();
  auto order = watch.order(std::less<>());
  std::sort(items.begin(), items.end(), std::ref(order));
  std::vector<int> expected(Many);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(items, expected);
}

TEST(Watch, ReportsTheSamePartWhileALoopRunsAndFromItsOwnThreadAlone) {
  std::vector<double> parts;
  const std::function<void(double)> progress = [&](double part) { parts.push_back(part); };
  Watch watch(nullptr, progress);
  watch.setPart(0.25);
  while (parts.size() < 2) watch.check();  // ten times a second
  EXPECT_EQ(parts, (std::vector<double>{0.25, 0.25}));

  ProgressReport report(progress);
  std::this_thread::sleep_for(std::chrono::milliseconds(120));
  std::thread([&] { report.at(0.5); }).join();
  EXPECT_EQ(parts.size(), 2U);
  report.at(0.75);
  EXPECT_EQ(parts.back(), 0.75);
}

}  // namespace
}  // namespace Lumivane::Visibility
