#include "Options.h"

#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

ShotOptions parsed(const std::vector<std::string>& arguments) {
  CLI::App app;
  ShotOptions options;
  setShotOptions(app, options);
  const std::vector<std::string> joined = joinedVectorOptions(arguments);
  app.parse(std::vector<std::string>(joined.rbegin(), joined.rend()));
  return options;
}

std::string refusal(const std::vector<std::string>& arguments) {
  try {
    parsed(arguments);
  } catch (const CLI::ParseError& error) {
    return error.what();
  }
  return "";
}

TEST(Options, DefaultsAreThoseOfTheManual) {
  const ShotOptions options = parsed({"s.json"});
  EXPECT_EQ("s.json", options.scene);
  EXPECT_EQ((Vector{0, 0, 0}), options.view.eye);
  EXPECT_EQ((Vector{1, 0, 0}), options.view.forward);
  EXPECT_EQ((Vector{0, 0, 1}), options.view.up);
  EXPECT_EQ(Base::ViewCameraKind::Spherical, options.view.camera);
  EXPECT_EQ(-1, options.view.property);
  EXPECT_EQ(-1, options.view.scale);
  EXPECT_EQ(0.01, options.view.d1);
  EXPECT_EQ(1.0, options.view.d2);
  EXPECT_EQ(6, options.view.segments);
  EXPECT_EQ(0.02, options.view.maxLength);
  EXPECT_EQ(0.0, options.view.mergeDistance);
  EXPECT_EQ(Base::ViewDisplayStyle::Filled, options.view.style);
  EXPECT_EQ(800, options.width);
  EXPECT_EQ(800, options.height);
  EXPECT_EQ("", options.shot + options.png + options.stats);
}

TEST(Options, NegativeFirstCoordinateWorksInBothForms) {
  EXPECT_EQ((Vector{-1, 2, 3}), parsed({"s", "--eye", "-1,2,3"}).view.eye);
  EXPECT_EQ((Vector{-1, 2, 3}), parsed({"s", "--eye=-1,2,3"}).view.eye);
  EXPECT_EQ((Vector{-0.5, 2, 3}), parsed({"s", "--eye", "-.5,2,3"}).view.eye);
  EXPECT_EQ((Vector{-1, 0, 0}), parsed({"--forward", "-1,0,0", "s"}).view.forward);
  EXPECT_EQ((Vector{-1e-3, 0, -2}), parsed({"--up", "-1e-3,0,-2", "s"}).view.up);
}

TEST(Options, EveryOptionReachesItsField) {
  const ShotOptions options =
      parsed({"s",          "--camera", "normal",       "--d1",    "0.5",  "--d2",    "4",
              "--segments", "9",        "--max-length", "0",       "-o",   "a",       "--png",
              "b",          "--size",   "640x480",      "--style", "half", "--stats", "c"});
  EXPECT_EQ(Base::ViewCameraKind::Normal, options.view.camera);
  EXPECT_EQ(0.5, options.view.d1);
  EXPECT_EQ(4.0, options.view.d2);
  EXPECT_EQ(9, options.view.segments);
  EXPECT_EQ(0.0, options.view.maxLength);
  EXPECT_EQ("a", options.shot);
  EXPECT_EQ("b", options.png);
  EXPECT_EQ(640, options.width);
  EXPECT_EQ(480, options.height);
  EXPECT_EQ(Base::ViewDisplayStyle::HalfTransparent, options.view.style);
  EXPECT_EQ("c", options.stats);
}

TEST(Options, EveryNameOfAProjectionIsTaken) {
  for (const char* const name : {"fisheye", "spherical", "radial"}) {
    EXPECT_EQ(Base::ViewCameraKind::Spherical, parsed({"s", "--camera", name}).view.camera) << name;
  }
  for (const char* const name : {"equirectangular", "normal", "square"})
    EXPECT_EQ(Base::ViewCameraKind::Normal, parsed({"s", "--camera", name}).view.camera) << name;
}

TEST(Options, OldNamesOfTheEyeOffsetAreAliases) {
  for (const std::string name : {"--eye-clearance", "--d1"})
    EXPECT_EQ(0.5, parsed({"s", name, "0.5"}).view.d1) << name;
  for (const std::string name : {"--grazing-angle", "--d2"})
    EXPECT_EQ(4.0, parsed({"s", name, "4"}).view.d2) << name;
}

TEST(Options, VectorsHaveThreeNumbers) {
  for (const char* const text : {"1,2", "1,2,3,4", "1,2,", ",,", "a,b,c", "1 ,2,3", "1,2,3x"})
    EXPECT_EQ(std::string("--eye: \"") + text + "\" is not three numbers X,Y,Z",
              refusal({"s", std::string("--eye=") + text}));
}

TEST(Options, NumbersOutsideTheirRangeAreRefused) {
  for (const char* const option : {"--d1", "--d2", "--max-length"})
    for (const char* const value : {"-0.1", "nan", "inf", "x", "1x"})
      EXPECT_NE("", refusal({"s", std::string(option) + "=" + value})) << option << " " << value;
  EXPECT_NE("", refusal({"s", "--segments", "0"}));
  EXPECT_NE("", refusal({"s", "--segments", "2000000"}));
  EXPECT_NE("", refusal({"s", "--segments", "6.5"}));
  EXPECT_NE("", refusal({"s", "--camera", "undefined"}));
  EXPECT_NE("", refusal({"s", "--style", "dotted"}));
}

TEST(Options, SizesAreTwoPositiveNumbers) {
  for (const char* const text : {"800", "800x", "x800", "0x1", "1x0", "-1x1", "1x99999", "1X1",
                                 "1x1x1", "99999999999x1", "1.5x2"})
    EXPECT_NE("", refusal({"s", std::string("--size=") + text})) << text;
}

TEST(Options, SceneIsRequired) { EXPECT_NE("", refusal({"-o", "a"})); }

TEST(Options, OnlyOptionsOfTheViewCountAsView) {
  CLI::App plain;
  ShowOptions options;
  setShowOptions(plain, options);
  plain.parse(std::vector<std::string>{"shot.json", "scene.json"});
  EXPECT_FALSE(viewWasGiven(plain));
  EXPECT_EQ("scene.json", options.scene);
  EXPECT_EQ("shot.json", options.shot);

  for (const std::string view :
       {"--eye=1,2,3", "--forward=1,2,3", "--up=1,2,3", "--camera=normal", "--d1=1", "--d2=1",
        "--segments=1", "--eye-clearance=1", "--grazing-angle=1", "--max-length=1",
        "--merge-distance=1", "--style=half"}) {
    CLI::App turned;
    setShowOptions(turned, options);
    turned.parse(std::vector<std::string>{view, "scene.json"});
    EXPECT_TRUE(viewWasGiven(turned)) << view;
  }
}

TEST(Options, ValueOfAVectorOptionIsNotJoinedTwice) {
  EXPECT_EQ((std::vector<std::string>{"--eye=--up", "x"}),
            joinedVectorOptions({"--eye", "--up", "x"}));
  EXPECT_EQ((std::vector<std::string>{"--eye"}), joinedVectorOptions({"--eye"}));
  // A direction for the sun, a flag for drawings.
  EXPECT_EQ((std::vector<std::string>{"--north=-1,0,0"}),
            joinedVectorOptions({"--north", "-1,0,0"}));
  EXPECT_EQ((std::vector<std::string>{"--north", "--eye=-1,0,0"}),
            joinedVectorOptions({"--north", "--eye", "-1,0,0"}));
  EXPECT_EQ((std::vector<std::string>{"--eye=1", "--up=2"}),
            joinedVectorOptions({"--eye", "1", "--up", "2"}));
}

}  // namespace
}  // namespace Lumivane::Host
