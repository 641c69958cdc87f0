#include "support/ShotScene.h"
#include "support/Thrown.h"

#include <lumivane/geometry/VFace.h>
#include <lumivane/session/FaceValues.h>

#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Geometry::VFace;
using Lumivane::Test::ShotScene;
using Lumivane::Test::thrownText;
using Lumivane::Test::wallAhead;

VFace* valued(Scene::Object& object, int position) {
  return dynamic_cast<VFace*>(object.getFaces()->getFace(position));
}

TEST(FaceValues, PlainFaceIsReplacedWithItsRegionsAndNormal) {
  ShotScene scene;
  Scene::Object& object = scene.addObject();
  scene.addRegion(object, wallAhead());
  object.getFaces()->getFace(0)->getNormal()->setX(5);
  setFaceValue(object, 1, 7, 0.5);
  ASSERT_NE(nullptr, valued(object, 0));
  EXPECT_EQ(0.5, valued(object, 0)->getPropertyValue(7));
  EXPECT_EQ(std::vector<int>({1}), *valued(object, 0)->getRegions());
  EXPECT_EQ(5, valued(object, 0)->getNormal()->getX());
}

TEST(FaceValues, FaceWithValuesKeepsItsPlaceAndItsOtherValues) {
  ShotScene scene;
  Scene::Object& object = scene.addObject();
  scene.addRegion(object, wallAhead());
  setFaceValue(object, 1, 7, 0.5);
  VFace* const first = valued(object, 0);
  setFaceValue(object, 1, 8, 2);
  setFaceValue(object, 1, 7, 1.5);
  EXPECT_EQ(first, valued(object, 0));
  EXPECT_EQ(1.5, first->getPropertyValue(7));
  EXPECT_EQ(2, first->getPropertyValue(8));
}

TEST(FaceValues, MissingFaceAndNegativePropertyAreErrors) {
  ShotScene scene;
  Scene::Object& object = scene.addObject("wall");
  scene.addRegion(object, wallAhead());
  for (const int number : {0, -1, 2})
    EXPECT_EQ("object \"wall\" has no face " + std::to_string(number),
              thrownText<std::out_of_range>([&] { setFaceValue(object, number, 7, 1); }));
  EXPECT_EQ("property number -1",
            thrownText<std::out_of_range>([&] { setFaceValue(object, 1, -1, 1); }));
  EXPECT_EQ(nullptr, valued(object, 0));
  Scene::Object bare;
  EXPECT_THROW(setFaceValue(bare, 1, 1, 1), std::out_of_range);
}

}  // namespace
}  // namespace Lumivane::Session
