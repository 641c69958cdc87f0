#include "support/Capture.h"
#include "support/TempFolder.h"

#include <lumivane/base/Brush.h>
#include <lumivane/base/Brushes.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::IO {
namespace {

using Test::capturedStdout;
using Test::fileBytes;
using Test::TempFolder;

TEST(DataWriter, SceneFileHoldsTheSceneAndIsLogged) {
  const TempFolder folder;
  const std::string path = folder.path("s.json");
  Scene::Scene3D scene;
  scene.setBrushes(new Base::Brushes());
  EXPECT_EQ("Writing: " + path + "\nWriting end\n\n",
            capturedStdout([&] { DataWriter().writeSceneFile(&scene, path); }));
  EXPECT_EQ("{\n\"Brushes\": []\n}", fileBytes(path));
}

TEST(DataWriter, ShotFileHoldsTheShotAndIsLogged) {
  const TempFolder folder;
  const std::string path = folder.file("s.json", std::string(1000, 'x'));
  Shot::Shot2d shot;
  EXPECT_EQ("Writing: " + path + "\nWriting end\n\n",
            capturedStdout([&] { DataWriter().writeShotFile(&shot, path); }));
  EXPECT_EQ("{\n\n}", fileBytes(path));  // nothing of the longer old text is left
}

TEST(DataWriter, TextsAreWrittenInSilence) {
  Scene::Scene3D scene;
  Shot::Shot2d shot;
  std::string sceneText;
  std::string shotText;
  EXPECT_EQ("", capturedStdout([&] {
              sceneText = DataWriter().writeSceneString(&scene);
              shotText = DataWriter().writeShotString(&shot);
            }));
  EXPECT_EQ("{\n\n}", sceneText);
  EXPECT_EQ("{\n\n}", shotText);
}

TEST(DataWriter, FileThatCannotBeOpenedIsNotReported) {
  const TempFolder folder;
  const std::string path = folder.path("missing/s.json");
  Scene::Scene3D scene;
  std::string log;
  EXPECT_EQ("", Lumivane::Test::capturedStderr([&] {
              log = capturedStdout([&] { DataWriter().writeSceneFile(&scene, path); });
            }));
  EXPECT_EQ("Writing: " + path + "\nWriting end\n\n", log);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(DataWriter, PathIsAFormatWhoseConversionsMeetZeros) {
  const TempFolder folder;
  Shot::Shot2d shot;
  const std::string log =
      capturedStdout([&] { DataWriter().writeShotFile(&shot, folder.path("%d%n%s")); });
  EXPECT_EQ("Writing: " + folder.path("0(null)") + "\nWriting end\n\n", log);
  EXPECT_EQ("{\n\n}", fileBytes(folder.path("%d%n%s")));
}

TEST(DataWriter, WhatIsWrittenReadsBackTheSame) {
  const std::string text =
      "{\n\"Brushes\": [[200,200,200,255]],\n\"Points\": [[0,0,0],[1,0.123457,-1e-07]],\n"
      "\"Objects\": [{\n\"Id\": \"A\\/b\",\n\"PartsCount\": 1,\n\"Pen\": 1\n}]\n}";
  const std::unique_ptr<Scene::Scene3D> scene(DataReader().readSceneString(text));
  ASSERT_NE(nullptr, scene);
  EXPECT_EQ(text, DataWriter().writeSceneString(scene.get()));
}

}  // namespace
}  // namespace Lumivane::IO
