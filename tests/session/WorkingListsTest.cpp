#include "support/ShotScene.h"

#include <lumivane/session/WorkingLists.h>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

TEST(WorkingLists, RawShotsLoseNothingWhenTheyAreReleased) {
  Lumivane::Test::ShotScene scene;
  Scene::Object& object = scene.addObject();
  scene.addRegion(object, Lumivane::Test::wallAhead());
  for (int i = 0; i < 3; ++i) {
    const Lumivane::Test::SharingShot shot = scene.makeShot();
    EXPECT_NE(nullptr, object.getRegionsProjectedPolygons());
    object.setCameraInRegionIndex(0);
    releaseWorkingLists(scene.scene);
    EXPECT_EQ(nullptr, object.getRegionsPolyData());
    EXPECT_EQ(nullptr, object.getRegionsClippedPolyData());
    EXPECT_EQ(nullptr, object.getRegionsVisiblePolygons());
    EXPECT_EQ(nullptr, object.getRegionsProjectedPolygons());
    EXPECT_EQ(-1, object.getCameraInRegionIndex());
    EXPECT_FALSE(shot->getRegions()->getRegions()->empty());
  }
}

TEST(WorkingLists, SceneWithoutThemIsLeftAlone) {
  Scene::Scene3D empty;
  releaseWorkingLists(empty);
  EXPECT_EQ(nullptr, empty.getObjects());

  Lumivane::Test::ShotScene scene;
  scene.addObject();
  releaseWorkingLists(scene.scene);
  releaseWorkingLists(scene.scene);
  EXPECT_EQ(1u, scene.scene.getObjects()->getObjects()->size());
}

TEST(WorkingLists, NullObjectAndMissingVectorArePassedOver) {
  Scene::Scene3D scene;
  scene.setObjects(new Scene::Objects());
  scene.getObjects()->addObject(nullptr);
  releaseWorkingLists(scene);
  scene.getObjects()->removeObject(0);
  delete scene.getObjects()->getObjects();
  scene.getObjects()->setObjects(nullptr);
  releaseWorkingLists(scene);
  EXPECT_EQ(nullptr, scene.getObjects()->getObjects());
}

}  // namespace
}  // namespace Lumivane::Session
