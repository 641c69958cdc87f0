#include "session/Scenes.h"
#include "support/Thrown.h"

#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::squareScene;
using Lumivane::Test::thrownText;

TEST(Progress, RisesFrom0To100) {
  std::vector<double> reported;
  LoadedScene scene = LoadedScene::fromFile(LUMIVANE_SCENES "/street.json");
  ViewSettings view;
  view.eye = {-5.3, -1.37, 3.4};
  scene.take(view, [&reported](double percent) { reported.push_back(percent); });
  ASSERT_GE(reported.size(), 2u);
  EXPECT_EQ(0.0, reported.front());
  EXPECT_EQ(100.0, reported.back());
  EXPECT_TRUE(std::is_sorted(reported.begin(), reported.end()));
}

TEST(Progress, EveryShotStartsAt0WhateverTheLastOneLeft) {
  LoadedScene scene = squareScene();
  for (int i = 0; i < 3; ++i) {
    std::vector<double> reported;
    scene.take({}, [&reported](double percent) { reported.push_back(percent); });
    EXPECT_EQ(std::vector<double>({0.0, 100.0}), reported);
  }
}

TEST(Progress, IsReportedByOneThreadThatIsNotTheCallers) {
  std::set<std::thread::id> threads;
  LoadedScene scene = squareScene();
  scene.take({}, [&threads](double) { threads.insert(std::this_thread::get_id()); });
  EXPECT_EQ(1u, threads.size());
  EXPECT_EQ(0u, threads.count(std::this_thread::get_id()));
}

TEST(Progress, FailedShotNeverReports100AndEndsItsCalls) {
  std::vector<double> reported;
  LoadedScene scene = squareScene();
  scene.scene().getObjects()->getObject(0)->getRegions()->getRegion(0)->addPoint(9);
  ViewSettings unchecked;
  unchecked.checkScene = false;  // so that it fails half way
  EXPECT_NE("nothing thrown", thrownText<Error>([&] {
              scene.take(unchecked, [&reported](double percent) { reported.push_back(percent); });
            }));
  EXPECT_EQ(std::vector<double>({0.0}), reported);
}

TEST(Progress, ThrowingCallbackIsNotCalledAgainAndTheShotIsMade) {
  int calls = 0;
  LoadedScene scene = squareScene();
  const std::string expected = scene.take({}).text();
  const TakenShot shot = scene.take({}, [&calls](double) {
    ++calls;
    throw std::runtime_error("not now");
  });
  EXPECT_EQ(1, calls);
  EXPECT_EQ(expected, shot.text());
}

TEST(Progress, CallbackTakesNoShotItself) {
  std::string text;
  LoadedScene scene = squareScene();
  LoadedScene other = squareScene();
  scene.take({}, [&](double) { text = thrownText<Error>([&other] { other.take({}); }); });
  EXPECT_EQ("square: no shot can be made: a progress callback must not take a shot", text);
  EXPECT_EQ("nothing thrown", thrownText<Error>([&other] { other.take({}); }));
}

}  // namespace
}  // namespace Lumivane::Session
