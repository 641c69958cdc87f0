#include "session/Scenes.h"
#include "support/Thrown.h"

#include <lumivane/session/SurfaceClasses.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::squareScene;
using Names = std::vector<std::string>;

std::string refusal(const SurfaceClasses& classes) {
  LoadedScene scene = squareScene();
  return Lumivane::Test::thrownText<Error>([&] { scene.setClasses(classes); });
}

TEST(SurfaceClasses, NamesComeOutInOneOrderWhateverThatOfTheRegions) {
  const SurfaceClasses classes = SurfaceClasses::ofNames({"Wall", "", "Roof", "Wall"});
  EXPECT_EQ((Names{"Roof", "Wall"}), classes.names);
  EXPECT_EQ((std::vector<int>{1, -1, 0, 1}), classes.regions);
  EXPECT_EQ((Names{"Wall", "", "Roof", "Wall"}), classes.namesOfRegions());
}

TEST(SurfaceClasses, RegionsWithoutNamesAreAllEmpty) {
  const SurfaceClasses classes = SurfaceClasses::ofNames({"", ""});
  EXPECT_TRUE(classes.names.empty());
  EXPECT_TRUE(classes.regions.empty());
}

TEST(SurfaceClasses, SceneKeepsThemAndAFileHasNone) {
  LoadedScene scene = squareScene();
  EXPECT_TRUE(scene.classes().names.empty());
  scene.setClasses({{"Wall"}, {0}});
  LoadedScene moved = std::move(scene);
  EXPECT_EQ(Names{"Wall"}, moved.classes().names);
  EXPECT_EQ(std::vector<int>{0}, moved.classes().regions);
}

TEST(SurfaceClasses, WhatDoesNotFitTheSceneIsRefused) {
  EXPECT_EQ("square: there are classes of 2 regions, but the scene has 1",
            refusal({{"Wall"}, {0, 0}}));
  EXPECT_EQ("square: class number 1 points at none of the 1 names", refusal({{"Wall"}, {1}}));
  EXPECT_EQ("square: class number -2 points at none of the 1 names", refusal({{"Wall"}, {-2}}));
  EXPECT_EQ("square: a class has no name", refusal({{""}, {0}}));
  EXPECT_EQ("square: there are two classes \"a\"", refusal({{"a", "a"}, {0}}));
  EXPECT_EQ("nothing thrown", refusal({{}, {}}));
}

}  // namespace
}  // namespace Lumivane::Session
