// Which polygons a shot can show at all: found from the polygon alone, and compared with shots.

#include "support/Capture.h"
#include "support/NoisyOutlines.h"
#include "support/Vectors.h"

#include <lumivane/check/SceneChecker.h>

#include <sstream>

#include <gtest/gtest.h>

namespace Lumivane::Check {
namespace {

using Kernel::Vec3;
using Test::Outline3d;

std::vector<std::array<double, 3>> cornersOf(const Outline3d& outline) {
  std::vector<std::array<double, 3>> corners;
  for (const Vec3& p : outline) corners.push_back({p.x, p.y, p.z});
  return corners;
}

// A scene file with one region.
std::string sceneOf(const Outline3d& outline) {
  std::ostringstream text;
  text.precision(17);
  text << R"({"Brushes":[[200,100,50,255]],"Pens":[[0,0,0,255,1]],"Points":[)";
  for (size_t i = 0; i < outline.size(); ++i)
    text << (i > 0 ? "," : "") << "[" << outline[i].x << "," << outline[i].y << "," << outline[i].z
         << "]";
  const Vec3 normal = Test::areaVectorOf(outline);
  text << R"(],"Objects":[{"Id":"house","PartsCount":1,"Pen":1,"Faces":[{"Regions":[1],"Normal":[)"
       << normal.x << "," << normal.y << "," << normal.z
       << R"(]}],"Parts":[{"Regions":[1]}],"Regions":[{"Brush":1,"Face":1,"Points":[)";
  for (size_t i = 0; i < outline.size(); ++i) text << (i > 0 ? "," : "") << i + 1;
  text << R"(]}],"Overlays":[]}],"Properties":[],"Scales":[]})";
  return text.str();
}

std::vector<std::string> codes(const std::vector<Finding>& findings) {
  std::vector<std::string> result;
  for (const Finding& finding : findings) result.push_back(finding.code);
  return result;
}

bool has(const std::vector<std::string>& codes, const std::string& code) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

// How much of what an eye straight in front should see of an outline is in its shot.
double shownShare(const Outline3d& outline, double distance) {
  Session::LoadedScene scene = Session::LoadedScene::fromText(sceneOf(outline), "roof");
  const Session::ViewSettings view = Test::eyeInFrontOf(outline, distance);
  double area = 0.0;
  Test::capturedStdout([&] { area = Test::shownArea(scene.take(view)); });
  return area / Test::pictureArea(outline, view);
}

// A sloping roof of 83 square metres, whose outline starts anywhere; its corners are off its plane.
Outline3d roof(double off, size_t start = 0) {
  const double slope = 0.57735, cosine = 0.857167, sine = 0.515038;
  Outline3d outline;
  for (const auto& [x, y] :
       {std::pair(0.0, 0.0), {12.0, 0.0}, {12.0, 5.0}, {4.6, 5.0}, {4.6, 10.0}, {0.0, 10.0}})
    outline.push_back({12.3 + cosine * x - sine * y, 7.9 + sine * x + cosine * y, 3.1 + slope * y});
  const double shares[] = {1.0, -0.4, 0.7, -1.0, 0.2, -0.8};
  for (size_t i = 0; i < outline.size(); ++i) outline[i].z += off * shares[i];
  std::rotate(outline.begin(), outline.begin() + static_cast<long>(start), outline.end());
  std::reverse(outline.begin(), outline.end());  // seen from above
  return outline;
}

std::vector<std::pair<double, size_t>> roofs() {
  std::vector<std::pair<double, size_t>> result;
  for (const double off : {0.0, 1e-5, 1e-4, 4e-4, -4e-4, 1e-3})
    for (size_t start = 0; start < 6; ++start) result.emplace_back(off, start);
  return result;
}

TEST(SeenShare, RoofOfAnLThatAShotLosesIsReportedAndNoOther) {
  // Its corners as single precision keeps them are off their plane already.
  bool hasVanished = false;
  for (const auto& [off, start] : roofs()) {
    const Outline3d outline = roof(off, start);
    const bool isSeen = shownShare(outline, 12.0) > 0.0;
    EXPECT_EQ(isSeen, SceneChecker::seenShare(cornersOf(outline)) > 0.0) << off;
    EXPECT_EQ(!isSeen, has(codes(SceneChecker::checkText(sceneOf(outline))), "never-seen")) << off;
    hasVanished = hasVanished || !isSeen;
  }
  EXPECT_TRUE(hasVanished);
}

TEST(SeenShare, FindingNamesTheRegionAndSaysThatItWillNotBeSeen) {
  for (const auto& [off, start] : roofs()) {
    const Outline3d outline = roof(off, start);
    if (SceneChecker::seenShare(cornersOf(outline)) > 0.0) continue;
    for (const Finding& finding : SceneChecker::checkText(sceneOf(outline))) {
      if (finding.code != "never-seen") continue;
      EXPECT_EQ(0u, finding.line().find("object \"house\", region 1: it will not be seen"));
      EXPECT_EQ(Severity::Warning, finding.severity);
      return;
    }
  }
  FAIL() << "no roof vanished";
}

TEST(SeenShare, TrianglesAndConvexPolygonsAreSeenWhole) {
  EXPECT_EQ(1.0, SceneChecker::seenShare({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
  EXPECT_EQ(1.0, SceneChecker::seenShare({{0, 0, 0}, {2, 0, 0}, {3, 1, 0}, {2, 2, 0}, {0, 2, 0}}));
  EXPECT_EQ(0.0, SceneChecker::seenShare({{0, 0, 0}, {1, 0, 0}}));
  EXPECT_EQ(0.0, SceneChecker::seenShare({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
}

TEST(SeenShareProperty, WhatPassesNeverVanishesAndWhatIsReportedAlwaysDoes) {
  Lumivane::Test::NoisyOutlines outlines(20261122);
  int reported = 0;
  int passed = 0;
  for (int i = 0; i < 400; ++i) {
    SCOPED_TRACE(i);
    const Outline3d outline = outlines.next();
    const auto found = codes(SceneChecker::checkText(sceneOf(outline)));
    for (const double distance : {4.0, 15.0, 40.0}) {
      const double shown = shownShare(outline, distance);
      if (has(found, "never-seen")) {
        EXPECT_EQ(0.0, shown) << distance;
      } else if (!has(found, "partly-seen")) {
        EXPECT_NEAR(1.0, shown, 0.02) << distance;
      }
    }
    has(found, "never-seen") ? ++reported : ++passed;
  }
  EXPECT_GT(reported, 50);
  EXPECT_GT(passed, 200);
}

}  // namespace
}  // namespace Lumivane::Check
