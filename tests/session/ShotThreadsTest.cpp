// One shot by several threads: the same bytes, messages and facts as by one.

#include "scene/City.h"
#include "support/Capture.h"
#include "support/WorkingFolder.h"

#include <lumivane/session/Error.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/TakenShot.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::capturedStdout;
using Lumivane::Test::WorkingFolder;

ViewSettings settingsOf(const Bench::NamedView& view) {
  ViewSettings settings;
  settings.eye = {view.eye.x, view.eye.y, view.eye.z};
  settings.forward = {view.forward.x, view.forward.y, view.forward.z};
  settings.up = {view.up.x, view.up.y, view.up.z};
  return settings;
}

// The shot with all that is known of it.
std::string wholeShot(LoadedScene& scene, const ViewSettings& view) {
  std::string text;
  const std::string messages = capturedStdout([&] {
    const TakenShot shot = scene.take(view);
    text = shot.text() + std::to_string(shot.hiddenFaces());
    for (const FaceNumber face : shot.cycle())
      text += " " + std::to_string(face.object) + "/" + std::to_string(face.face);
  });
  return messages + text;
}

// What comes of a take: the shot, or the error, with the messages before it.
std::string outcome(const Bench::Model& model, const ViewSettings& view) {
  LoadedScene scene = LoadedScene::fromText(sceneText(model), "town");
  std::string text;
  const std::string messages = capturedStdout([&] {
    try {
      const TakenShot shot = scene.take(view);
      const Vector eye = shot.eye();
      text = shot.text() + std::to_string(eye[0]) + " " + std::to_string(eye[1]);
    } catch (const Error& error) {
      text = error.what();
    }
  });
  return messages + text;
}

// The outcome, which is the same by several threads.
std::string outcomeOfAll(const Bench::Model& model, ViewSettings view) {
  view.checkScene = false;
  view.threads = 1;
  const std::string expected = outcome(model, view);
  for (const int threads : {2, 4}) {
    view.threads = threads;
    EXPECT_TRUE(expected == outcome(model, view)) << threads;
  }
  return expected;
}

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

// An upright square across x that an eye in its middle stands on.
Bench::Thing squareAt(Bench::Model& model, const std::string& id, Bench::Point middle) {
  Bench::Face face;
  for (const auto& [y, z] :
       {std::pair(-1.0, -1.0), std::pair(1.0, -1.0), std::pair(1.0, 1.0), std::pair(-1.0, 1.0)})
    face.points.push_back(model.add({middle.x, middle.y + y, middle.z + z}));
  return {id, {face}};
}

// A town that several threads share, seen from above one corner, along y.
struct Town {
  Bench::Model model = Bench::city(250).model;
  ViewSettings view;

  Town() {
    view.eye = {100.0, 0.0, 60.0};
    view.forward = {0.0, 1.0, 0.0};
    view.maxLength = 0.0;
  }
  void insert(std::size_t place, Bench::Thing thing) {
    model.things.insert(model.things.begin() + static_cast<std::ptrdiff_t>(place),
                        std::move(thing));
  }
};

TEST(ShotThreads, MoveTheEyeOffPolygonsAsOneThreadDoes) {
  const WorkingFolder folder;
  Town town;
  town.view.segments = 1;  // of which the polygons that the eye stands on get 300
  const std::string unmoved = outcomeOfAll(town.model, town.view);
  // Each step off a square leads to the next one, ten times: more often than all threads are
  // stopped.
  for (int k = 0; k < 10; ++k)
    town.insert(static_cast<std::size_t>(20 + 20 * k),
                squareAt(town.model, "square" + std::to_string(k), {100.0 - 0.055 * k, 0.0, 60.0}));
  const std::string moved = outcomeOfAll(town.model, town.view);
  EXPECT_EQ("}100.000000 0.000000", unmoved.substr(unmoved.rfind('}')));
  EXPECT_EQ("}99.454997 0.000000", moved.substr(moved.rfind('}')));
}

TEST(ShotThreads, PrintTheMessagesOfRegionsAtTheirTurn) {
  const WorkingFolder folder;
  Town town;
  for (std::size_t place = 10; place < 200; place += 20) {
    Bench::Thing thing = town.model.things[place];
    thing.id = "short" + std::to_string(place);
    thing.faces[0].points.resize(2);
    town.insert(place, thing);
  }
  EXPECT_EQ(10U, countOf(outcomeOfAll(town.model, town.view), "Error: region points size < 3 \n"));
}

TEST(ShotThreads, FailAtTheFirstObjectThatFails) {
  const WorkingFolder folder;
  Town town;
  town.model.things[200].faces[1].points[2] = 10000000;
  town.model.things[220].faces[1].points[2] = 10000000;
  town.model.things[100].faces[0].points.resize(2);
  const std::string failed = outcomeOfAll(town.model, town.view);
  EXPECT_EQ(1U, countOf(failed, "Error: region points size < 3 \n"));
  EXPECT_EQ(1U, countOf(failed, "town: no shot can be made"));
}

TEST(ShotThreads, KeepToTheLimitsAsOneThreadDoes) {
  const WorkingFolder folder;
  Town town;
  town.view.maxLength = 0.02;
  std::size_t refused = 0;
  for (const std::int64_t most : {1000, 5000, 10000, 20000, 30000, 60000}) {
    town.view.limitPoints = most;
    refused += countOf(outcomeOfAll(town.model, town.view), "--limit-points");
  }
  EXPECT_GT(refused, 1U);
  EXPECT_LT(refused, 6U);
}

TEST(ShotThreads, MakeTheShotThatOneThreadMakes) {
  const WorkingFolder folder;  // for reports of cycles
  const Bench::BenchScene town = Bench::city(1000);
  LoadedScene scene = LoadedScene::fromText(sceneText(town.model), "town");
  for (const Bench::NamedView& named : town.views) {
    for (const Base::ViewCameraKind camera :
         {Base::ViewCameraKind::Spherical, Base::ViewCameraKind::Normal}) {
      ViewSettings view = settingsOf(named);
      view.camera = camera;
      const std::string expected = wholeShot(scene, view);
      for (const int threads : {2, 5, 0}) {
        view.threads = threads;
        EXPECT_TRUE(expected == wholeShot(scene, view)) << named.name << ", " << threads;
      }
    }
  }
}

TEST(ShotThreads, ProgressNeverRunsBackwards) {
  const WorkingFolder folder;
  const Bench::BenchScene town = Bench::city(1000);
  LoadedScene scene = LoadedScene::fromText(sceneText(town.model), "town");
  ViewSettings view = settingsOf(town.views.front());
  view.threads = 3;
  std::mutex mutex;
  std::vector<double> reported;
  capturedStdout([&] {
    scene.take(view, [&](double percent) {
      const std::lock_guard<std::mutex> lock(mutex);
      reported.push_back(percent);
    });
  });
  EXPECT_TRUE(std::is_sorted(reported.begin(), reported.end()));
  EXPECT_EQ(100.0, reported.back());
}

TEST(ShotThreads, BelowZeroAreAFault) {
  ViewSettings view;
  view.threads = -1;
  EXPECT_EQ("the number of threads is -1, below 0", view.fault());
}

}  // namespace
}  // namespace Lumivane::Session
