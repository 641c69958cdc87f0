#include "support/Thrown.h"
#include "utils/InOrder.h"
#include "utils/StageScope.h"

#include <atomic>
#include <cstddef>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Utils::makeInOrder;
using Utils::Stage;
using Utils::StageTimes;

std::vector<std::size_t> squares(std::size_t count, std::size_t threads) {
  std::vector<std::size_t> joined;
  makeInOrder(
      count, threads, [] { return [](std::size_t index) { return index * index; }; },
      [&](std::size_t part, std::size_t index) {
        EXPECT_EQ(index, joined.size());
        joined.push_back(part);
        return true;
      });
  return joined;
}

TEST(InOrder, PartsAreJoinedInTheirOrderByAnyNumberOfThreads) {
  const std::vector<std::size_t> expected = squares(1000, 1);
  ASSERT_EQ(1000U, expected.size());
  for (const std::size_t threads : {2U, 3U, 16U, 2000U})
    EXPECT_EQ(expected, squares(1000, threads));
  EXPECT_TRUE(squares(0, 4).empty());
}

TEST(InOrder, PartsAreJoinedByTheCallingThread) {
  const std::thread::id caller = std::this_thread::get_id();
  makeInOrder(
      200, 4, [] { return [](std::size_t index) { return index; }; },
      [&](std::size_t, std::size_t) {
        EXPECT_EQ(caller, std::this_thread::get_id());
        return true;
      });
}

TEST(InOrder, ByOneThreadEachPartIsJoinedBeforeTheNextIsMade) {
  std::size_t joined = 0;
  makeInOrder(
      20, 1,
      [&joined] {
        return [&joined](std::size_t index) {
          EXPECT_EQ(index, joined);
          return index;
        };
      },
      [&joined](std::size_t, std::size_t) {
        ++joined;
        return true;
      });
  EXPECT_EQ(20U, joined);
}

TEST(InOrder, NothingIsJoinedBehindThePartThatEndsTheWork) {
  for (const std::size_t threads : {1U, 4U}) {
    std::size_t joined = 0;
    makeInOrder(
        500, threads, [] { return [](std::size_t index) { return index; }; },
        [&joined](std::size_t, std::size_t index) {
          ++joined;
          return index != 41;
        });
    EXPECT_EQ(42U, joined);
  }
}

TEST(InOrder, WhatAPartThrowsIsThrownAtItsTurn) {
  for (const std::size_t threads : {1U, 4U}) {
    std::size_t joined = 0;
    const std::string thrown = thrownText<std::runtime_error>([&] {
      makeInOrder(
          500, threads,
          [] {
            return [](std::size_t index) {
              if (index == 77 || index == 78) throw std::runtime_error(std::to_string(index));
              return index;
            };
          },
          [&joined](std::size_t, std::size_t) {
            ++joined;
            return true;
          });
    });
    EXPECT_EQ("77", thrown);
    EXPECT_EQ(77U, joined);
  }
}

TEST(InOrder, NothingIsJoinedBehindWhatJoiningThrows) {
  for (const std::size_t threads : {1U, 4U}) {
    std::size_t joined = 0;
    EXPECT_EQ("enough", thrownText<std::runtime_error>([&] {
                makeInOrder(
                    5000, threads, [] { return [](std::size_t index) { return index; }; },
                    [&joined](std::size_t, std::size_t index) {
                      ++joined;
                      if (index == 30) throw std::runtime_error("enough");
                      return true;
                    });
              }));
    EXPECT_EQ(31U, joined);
  }
}

TEST(InOrder, ThreadsThatHelpCountToTheStageOfTheCaller) {
  StageTimes::reset();
  StageTimes::enable(true);
  std::atomic<int> workers{0};
  {
    const Utils::StageScope stage(Stage::Projection);
    makeInOrder(
        2, 2,
        [&workers] {
          return [&workers](std::size_t) {
            // Both threads have a part, and work.
            ++workers;
            while (workers.load() < 2) std::this_thread::yield();
            const std::clock_t start = std::clock();
            while (std::clock() - start < CLOCKS_PER_SEC / 50) {
            }
            return 0;
          };
        },
        [](int, std::size_t) { return true; });
  }
  StageTimes::enable(false);
  // The clock is that of both: it shows 20 ms while each of them has had some.
  EXPECT_GT(StageTimes::seconds(Stage::Projection), 0.015);
  StageTimes::reset();
}

}  // namespace
}  // namespace Lumivane::Test
