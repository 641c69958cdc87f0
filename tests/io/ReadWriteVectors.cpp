#include "support/Vectors.h"

#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::IO {
namespace {

using Test::checkedRun;
using Test::Json;
using Test::VectorCase;
using Test::VectorTests;

const VectorTests SceneReadWrite("sceneReadWrite", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const std::string text = c.in.at("text").get<std::string>();
    const std::unique_ptr<Scene::Scene3D> scene(DataReader().readSceneString(text));
    if (scene == nullptr)
      EXPECT_TRUE(c.out.is_null());
    else
      EXPECT_EQ(c.out, Json(DataWriter().writeSceneString(scene.get())));
  });
});

const VectorTests ShotReadWrite("shotReadWrite", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const std::string text = c.in.at("text").get<std::string>();
    const std::unique_ptr<Shot::Shot2d> shot(DataReader().readShotString(text));
    if (shot == nullptr)
      EXPECT_TRUE(c.out.is_null());
    else
      EXPECT_EQ(c.out, Json(DataWriter().writeShotString(shot.get())));
  });
});

}  // namespace
}  // namespace Lumivane::IO
