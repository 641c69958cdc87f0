// Shots of several scenes, taken by several threads at a time. What is shared must be guarded (the
// thread sanitizer looks at that), and every shot must be the one that a single thread takes.

#include "session/Scenes.h"
#include "support/Capture.h"
#include "support/Thrown.h"
#include "support/WorkingFolder.h"

#include <lumivane/cmd/CmdManager.h>
#include <lumivane/cmd/MessageScope.h>
#include <lumivane/geometry/Point2d.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Cmd::CmdManager;
using Cmd::MessageScope;
using Lumivane::Test::capturedStdout;
using Lumivane::Test::smallScene;
using Lumivane::Test::smallView;
using Lumivane::Test::squareScene;
using Lumivane::Test::thrownText;
using Lumivane::Test::WorkingFolder;

constexpr const char* Projecting = "Projecting objects\n\n";  // what every take prints first

// Runs all works at once and waits for them.
void atOnce(const std::vector<std::function<void()>>& works) {
  std::vector<std::thread> threads;
  threads.reserve(works.size());
  for (const auto& work : works) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

// Where a number of threads wait for each other. Whoever is alone for a minute gives up.
class MeetingPoint {
 public:
  explicit MeetingPoint(int threads) : missing(threads) {}

  bool meet() {
    std::unique_lock<std::mutex> lock(mutex);
    --missing;
    changed.notify_all();
    return changed.wait_for(lock, std::chrono::minutes(1), [this] { return missing <= 0; });
  }

 private:
  std::mutex mutex;
  std::condition_variable changed;
  int missing;
};

// Calls `work` within the take, before it has looked at any object.
Cmd::MessageSink whenProjecting(std::function<void()> work) {
  return [work = std::move(work)](std::string_view text) {
    if (text == Projecting) work();
  };
}

struct Case {
  std::string scene;
  ViewSettings view;
};

ViewSettings viewFrom(const Vector& eye, const Vector& forward, Base::ViewCameraKind camera) {
  ViewSettings view;
  view.eye = eye;
  view.forward = forward;
  view.camera = camera;
  return view;
}

// Of each sample scene several views; one scene has a cyclic overlap.
std::vector<Case> cases() {
  std::vector<Case> result;
  for (const auto camera : {Base::ViewCameraKind::Spherical, Base::ViewCameraKind::Normal}) {
    for (const double shift : {0.0, 0.3}) {
      result.push_back({"small", viewFrom({-2.6, 0.35 + shift, 1.9}, {1, -0.06, -0.45}, camera)});
      result.push_back({"ring", viewFrom({-4, shift, 0}, {1, 0, 0}, camera)});
      result.push_back({"room", viewFrom({0.35, 2.137 - shift, 1.6}, {1, 0, 0}, camera)});
      result.push_back({"docking", viewFrom({-4 + shift, 0.2, 1.0}, {1, 0, 0}, camera)});
    }
  }
  return result;
}

LoadedScene sample(const std::string& name) {
  return LoadedScene::fromFile(std::string(LUMIVANE_SCENES) + "/" + name + ".json");
}

// Everything that a take returns, as text.
std::string resultOf(const Case& wanted) {
  std::string messages;
  const MessageScope scope([&messages](std::string_view text) { messages += text; });
  LoadedScene scene = sample(wanted.scene);
  std::vector<double> reported;
  const TakenShot shot =
      scene.take(wanted.view, [&reported](double percent) { reported.push_back(percent); });
  const bool isRising = std::is_sorted(reported.begin(), reported.end()) &&
                        reported.front() == 0.0 && reported.back() == 100.0;
  return shot.text() + messages + std::to_string(shot.hiddenFaces()) +
         (shot.hasCycle() ? " cycle" : "") + (shot.isInside() ? " inside" : "") +
         (isRising ? "" : " progress falls");
}

TEST(Threads, ShotsTakenByTwoThreadsAreThoseOfOne) {
  const WorkingFolder folder;  // for the report of the cycle
  const std::vector<Case> all = cases();
  std::vector<std::string> expected;
  for (const Case& one : all) expected.push_back(resultOf(one));
  ASSERT_TRUE(std::any_of(expected.begin(), expected.end(), [](const std::string& text) {
    return text.find("cycle") != std::string::npos;
  }));

  constexpr std::size_t Rounds = 4;
  const auto work = [&](std::size_t first, std::vector<std::string>& found) {
    for (std::size_t i = 0; i < Rounds * all.size(); ++i)
      found.push_back(resultOf(all[(first + i) % all.size()]));
  };
  std::vector<std::string> forwards;
  std::vector<std::string> shifted;
  atOnce({[&] { work(0, forwards); }, [&] { work(all.size() / 2 + 1, shifted); }});
  for (std::size_t i = 0; i < Rounds * all.size(); ++i) {
    EXPECT_EQ(expected[i % all.size()], forwards[i]) << i;
    EXPECT_EQ(expected[(all.size() / 2 + 1 + i) % all.size()], shifted[i]) << i;
  }
}

TEST(Threads, TakesWithTheSameSettingsAreMadeAtTheSameTime) {
  MeetingPoint both(2);
  std::vector<char> met(2, 0);
  std::vector<std::string> texts(2);
  const auto take = [&](std::size_t i) {
    LoadedScene scene = i == 0 ? smallScene() : squareScene();
    const MessageScope scope(whenProjecting([&, i] { met[i] = both.meet() ? 1 : 0; }));
    texts[i] = scene.take(i == 0 ? smallView() : ViewSettings()).text();
  };
  atOnce({[&] { take(0); }, [&] { take(1); }});
  EXPECT_EQ(std::vector<char>({1, 1}), met);  // neither waited for the other's end
  const MessageScope quiet({});
  EXPECT_EQ(smallScene().take(smallView()).text(), texts[0]);
  EXPECT_EQ(squareScene().take({}).text(), texts[1]);
}

// How many of several takes with these views were ever at work at the same time.
int mostAtOnce(const std::vector<ViewSettings>& views) {
  std::atomic<int> now{0};
  std::atomic<int> most{0};
  std::vector<std::function<void()>> works;
  for (const ViewSettings& view : views) {
    works.emplace_back([&now, &most, &view] {
      LoadedScene scene = squareScene();
      for (int i = 0; i < 10; ++i) {
        const MessageScope scope([&](std::string_view text) {
          if (text != Projecting) return;
          const int count = ++now;
          for (int seen = most; seen < count && !most.compare_exchange_weak(seen, count);) {
          }
          std::this_thread::sleep_for(std::chrono::milliseconds(2));
          --now;
        });
        scene.take(view);
      }
    });
  }
  atOnce(works);
  return most;
}

TEST(Threads, TakesWithOtherSettingsWaitForEachOther) {
  std::vector<ViewSettings> views(4);
  views[1].segments = 7;
  views[2].maxLength = 0.05;
  views[3].mergeDistance = 0.01;
  EXPECT_EQ(1, mostAtOnce(views));
}

TEST(Threads, MergeDistanceIsTheSameWhetherItIsAskedForOrUsual) {
  ViewSettings asked;
  asked.mergeDistance = Geometry::Point2d::Precision;
  MeetingPoint both(2);
  std::atomic<int> met{0};
  const auto take = [&](const ViewSettings& view) {
    LoadedScene scene = squareScene();
    const MessageScope scope(whenProjecting([&] { met += both.meet() ? 1 : 0; }));
    scene.take(view);
  };
  atOnce({[&] { take(asked); }, [&] { take({}); }});
  EXPECT_EQ(2, met);
}

TEST(Threads, UsualMergeDistanceIsNotTheOneThatAnotherTakeAsksFor) {
  ViewSettings coarse;
  coarse.mergeDistance = 0.25;
  LoadedScene first = squareScene();
  LoadedScene second = squareScene();
  std::string text;
  const MessageScope quiet({});
  const std::string expected = second.take({}).text();
  std::thread other;
  {
    const MessageScope scope(whenProjecting([&] {
      other = std::thread([&] {
        const MessageScope alsoQuiet({});
        text = second.take({}).text();
      });
    }));
    EXPECT_NE(expected, first.take(coarse).text());
  }
  other.join();
  EXPECT_EQ(expected, text);
}

TEST(Threads, SettingsOfTheProcessAreBackWhenTheLastTakeHasEnded) {
  CmdManager::minSegmentsNumber = 11;
  CmdManager::maxSegmentsLength = 0.5;
  const double precision = Geometry::Point2d::Precision;
  const auto take = [] {
    const MessageScope quiet({});
    LoadedScene scene = squareScene();
    for (int i = 0; i < 5; ++i) scene.take({});
  };
  atOnce({take, take, take});
  EXPECT_EQ(11, CmdManager::minSegmentsNumber);
  EXPECT_EQ(0.5, CmdManager::maxSegmentsLength);
  EXPECT_EQ(precision, Geometry::Point2d::Precision);
  CmdManager::minSegmentsNumber = 6;
  CmdManager::maxSegmentsLength = 0.0;
}

TEST(Threads, LimitsOfOneTakeAreNotThoseOfAnother) {
  MeetingPoint both(2);
  ViewSettings tight = smallView();
  tight.limitPoints = 1;
  std::string refused;
  std::string expected;
  {
    const MessageScope quiet({});
    expected = smallScene().take(smallView()).text();
  }
  std::string text;
  const auto meet = whenProjecting([&both] { both.meet(); });
  atOnce({[&] {
            const MessageScope scope(meet);
            LoadedScene scene = smallScene();
            refused = thrownText<Error>([&] { scene.take(tight); });
          },
          [&] {
            const MessageScope scope(meet);
            text = smallScene().take(smallView()).text();
          }});
  EXPECT_NE(std::string::npos, refused.find("--limit-points")) << refused;
  EXPECT_EQ(expected, text);
}

TEST(Threads, MessagesOfATakeGoToTheSinkOfItsThread) {
  std::string messages;
  std::string expected;
  EXPECT_EQ("", capturedStdout([&] {
              const MessageScope scope([&messages](std::string_view text) { messages += text; });
              smallScene().take(smallView());
            }));
  EXPECT_EQ(capturedStdout([] { smallScene().take(smallView()); }), messages);
  EXPECT_NE("", messages);
}

TEST(Threads, SinkOfMessagesTakesNoShotItself) {
  LoadedScene other = squareScene();
  std::string text;
  {
    const MessageScope scope(
        whenProjecting([&] { text = thrownText<Error>([&other] { other.take({}); }); }));
    squareScene().take({});
  }
  EXPECT_EQ("square: no shot can be made: a sink of messages must not take a shot", text);
  EXPECT_EQ("nothing thrown", thrownText<Error>([&other] { other.take({}); }));
}

}  // namespace
}  // namespace Lumivane::Session
