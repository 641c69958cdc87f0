#include "session/Scenes.h"

#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/session/Faults.h>
#include <lumivane/session/ShotFile.h>
#include <lumivane/view/ViewBuilder.h>

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::squareText;

std::string faultOf(const std::string& region) {
  const LoadedScene scene = LoadedScene::fromText(squareText(region), "square");
  return sceneFault(scene.scene(), ViewSettings());
}

TEST(Faults, SoundSceneAndShotHaveNone) {
  LoadedScene scene = Lumivane::Test::squareScene();
  EXPECT_EQ("", sceneFault(scene.scene(), ViewSettings()));
  EXPECT_EQ("", sceneDrawingFault(scene.scene()));
  const TakenShot shot = scene.take({});
  EXPECT_EQ("", shotFault(shot.shot()));
  EXPECT_EQ("", shotPointsFault(shot.shot()));
}

TEST(Faults, NumbersOfARegionAreLookedAt) {
  EXPECT_EQ("object \"wall\", region 1: point 0, but there are 1 to 4",
            faultOf(R"({"Brush":1,"Face":1,"Points":[1,2,0]})"));
  EXPECT_EQ("object \"wall\", region 1: face -1, but there are 1 to 1",
            faultOf(R"({"Brush":1,"Points":[1,2,3]})"));
  EXPECT_EQ("object \"wall\", region 1: docking edge 0, but they count from 1",
            faultOf(R"({"Brush":1,"Face":1,"Points":[1,2,3],"DockingEdges":[0]})"));
}

TEST(Faults, BrushAndPenOfASceneAreLookedAt) {
  const LoadedScene scene =
      LoadedScene::fromText(squareText(R"({"Brush":2,"Face":1,"Points":[1,2,3]})"), "square");
  EXPECT_EQ("object \"wall\", region 1: brush 2, but there are 1 to 1",
            sceneDrawingFault(scene.scene()));
  const LoadedScene pen = Lumivane::Test::squareScene();
  pen.scene().getObjects()->getObject(0)->setPenNumber(3);
  EXPECT_EQ("object \"wall\": pen 3, but there are 1 to 1", sceneDrawingFault(pen.scene()));
}

TEST(Faults, WhatDrawingDoesNotReadIsNoFaultOfAScene) {
  const LoadedScene scene = LoadedScene::fromText(
      R"({"Points":[[3,-1,-1],[3,1,-1],[3,1,1]],"Brushes":[[1,2,3,255]],"Pens":[[0,0,0,255,1]],)"
      R"("Objects":[{"Id":"empty","Regions":[]},{"Id":"no list"},)"
      R"({"Id":"point","Regions":[{"Brush":9,"Points":[77]}]},)"
      R"({"Id":"wall","Pen":1,"Regions":[{"Brush":9,"Points":[1,2]},)"
      R"({"Brush":1,"Points":[1,2,3],"DockingEdges":[0]}]}]})",
      "scene");
  EXPECT_EQ("", sceneDrawingFault(scene.scene()));
}

TEST(Faults, PointsOfASceneAreLookedAtAsFarAsDrawn) {
  const LoadedScene scene =
      LoadedScene::fromText(squareText(R"({"Brush":1,"Face":1,"Points":[1,9]})"), "square");
  EXPECT_EQ("object \"wall\", region 1: point 9, but there are 1 to 4",
            sceneDrawingFault(scene.scene()));
}

TEST(Faults, ShotRegionOfOnePointNeedsNoPen) {
  const auto shot =
      readShotText(R"({"Points":[[0,0]],"Pens":[],"Regions":[{"Pen":4,"Points":[1]}]})", "shot");
  EXPECT_EQ("", shotFault(*shot));
}

// A triangle whose edges are all docking edges, as in the middle of a cut polygon, has no lines.
TEST(Regression, RegionOfDockingEdgesAloneWasBlamedForAPen) {
  const LoadedScene scene =
      LoadedScene::fromText(R"({"Points":[[3,-1,-1],[3,1,-1],[3,1,1]],"Brushes":[[1,2,3,255]],)"
                            R"("Pens":[],"Objects":[{"Id":"wall","Pen":1,"Regions":[)"
                            R"({"Brush":1,"Points":[1,2,3],"DockingEdges":[3,2,1,1,0,4]}]}]})",
                            "scene");
  EXPECT_EQ("", sceneDrawingFault(scene.scene()));
  EXPECT_NO_THROW(View::ViewBuilder::createSceneView(&scene.scene()));
  const auto shot =
      readShotText(R"({"Points":[[0,0],[1,0],[0,1]],"Pens":[],)"
                   R"("Regions":[{"Pen":4,"Points":[1,2,3],"DockingEdges":[1,2,3]}]})",
                   "shot");
  EXPECT_EQ("", shotFault(*shot));
}

TEST(Faults, BrushAndPenOfAShotAreLookedAtAsFarAsDrawn) {
  LoadedScene scene = Lumivane::Test::squareScene();
  ViewSettings view;
  const TakenShot filled = scene.take(view);
  filled.shot().getRegions()->getRegion(0)->setBrushNumber(5);
  EXPECT_EQ("object \"wall\", region 1 (region 1 of the shot): brush 5, but there are 1 to 1",
            shotFault(filled.shot()));
  view.style = Base::ViewDisplayStyle::Outline;
  const TakenShot outline = scene.take(view);
  outline.shot().getRegions()->getRegion(0)->setBrushNumber(5);
  EXPECT_EQ("", shotFault(outline.shot()));
  outline.shot().getRegions()->getRegion(0)->setPenNumber(0);
  EXPECT_EQ("object \"wall\", region 1 (region 1 of the shot): pen 0, but there are 1 to 1",
            shotFault(outline.shot()));
}

TEST(Faults, PointsOfAShotFileAreLookedAt) {
  const auto shot = readShotText(R"({"Points":[[0,0]],"Regions":[{"Points":[1,1,2]}]})", "shot");
  EXPECT_EQ("region 1 of the shot: point 2, but there are 1 to 1", shotPointsFault(*shot));
}

}  // namespace
}  // namespace Lumivane::Session
