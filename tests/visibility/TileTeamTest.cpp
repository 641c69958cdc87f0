#include "visibility/TileTeam.h"

#include <lumivane/visibility/SceneIndex.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

const std::function<void(double)> NoReport;

TileStart startOnFace(int face) {
  TileStart start;
  start.tile.face = face;
  return start;
}

TEST(TileTeam, GivesWhatWasOfferedFirstToAThreadThatWaits) {
  TileTeam team(nullptr, NoReport);
  team.offer(startOnFace(4));
  team.offer(startOnFace(2));
  TileJob* const job = team.next();
  ASSERT_NE(job, nullptr);
  EXPECT_EQ(job->start.tile.face, 4);
  EXPECT_EQ(job->state, TileJob::State::Taken);
}

TEST(TileTeam, LetsAJobBeTakenBackOnceAndNotFromAThreadThatHasIt) {
  TileTeam team(nullptr, NoReport);
  TileJob& first = team.offer(startOnFace(0));
  TileJob& second = team.offer(startOnFace(1));
  EXPECT_TRUE(team.takeBack(second));
  EXPECT_FALSE(team.takeBack(second));
  EXPECT_EQ(team.next(), &first);
  EXPECT_FALSE(team.takeBack(first));
}

TEST(TileTeam, GivesAnotherJobToAThreadThatWaitsForOne) {
  TileTeam team(nullptr, NoReport);
  TileJob& awaited = team.offer(startOnFace(0));
  TileJob& other = team.offer(startOnFace(1));
  ASSERT_EQ(team.next(), &awaited);
  EXPECT_EQ(team.waitFor(awaited), &other);
  team.finish(awaited);
  EXPECT_EQ(team.waitFor(awaited), nullptr);
}

TEST(TileTeam, WantsWorkWhileAThreadWaitsForIt) {
  TileTeam team(nullptr, NoReport);
  EXPECT_FALSE(team.wantsWork());
  TileJob* got = nullptr;
  std::thread waiting([&] { got = team.next(); });
  while (!team.wantsWork()) std::this_thread::yield();
  TileJob& job = team.offer(startOnFace(3));
  waiting.join();
  EXPECT_EQ(got, &job);
  EXPECT_FALSE(team.wantsWork());
}

TEST(TileTeam, SendsAllHomeWhenTheWorkIsOver) {
  TileTeam team(nullptr, NoReport);
  std::atomic<int> home{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i)
    threads.emplace_back([&] {
      if (team.next() == nullptr) ++home;
    });
  team.end();
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(home, 3);
  team.throwFailure();
}

TEST(TileTeam, StopsAllByWhatFailedFirst) {
  TileTeam team(nullptr, NoReport);
  std::atomic<bool> isStopped{false};
  std::thread waiting([&] {
    try {
      team.next();
    } catch (const TileTeam::Stopped&) {
      isStopped = true;
    }
  });
  for (const char* const text : {"first", "second"}) try {
      throw std::runtime_error(text);
    } catch (...) {
      team.fail();
    }
  waiting.join();
  EXPECT_TRUE(isStopped);
  EXPECT_THROW(team.check(), TileTeam::Stopped);
  try {
    team.throwFailure();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "first");
  }
}

TEST(TileTeam, ChecksWhetherTheLookWasCancelled) {
  std::atomic<bool> cancelled{false};
  const TileTeam team(&cancelled, NoReport);
  EXPECT_NO_THROW(team.check());
  cancelled = true;
  EXPECT_THROW(team.check(), Cancelled);
}

}  // namespace
}  // namespace Lumivane::Visibility
