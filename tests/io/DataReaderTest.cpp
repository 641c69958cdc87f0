#include "support/Capture.h"
#include "support/TempFolder.h"

#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace Lumivane::IO {
namespace {

using Test::capturedStdout;
using Test::TempFolder;
using ScenePointer = std::unique_ptr<Scene::Scene3D>;
using ShotPointer = std::unique_ptr<Shot::Shot2d>;

const std::string SceneErrorLines = "\n! Error: scene JSON invalid\nReading end\n\n";
const std::string ShotErrorLines = "\n! Error: shot JSON invalid\nReading end\n\n";

TEST(DataReader, LinesAreJoinedWithNothingBetween) {
  const TempFolder folder;
  EXPECT_EQ("abcd", DataReader().readFileIntoString(folder.file("a", "ab\ncd\n")));
  EXPECT_EQ("abcd", DataReader().readFileIntoString(folder.file("b", "\n\nab\n\ncd")));
  EXPECT_EQ("a\r b\r", DataReader().readFileIntoString(folder.file("c", "a\r\n b\r\n")));
  EXPECT_EQ(std::string("a\0b", 3),
            DataReader().readFileIntoString(folder.file("d", std::string("a\0\nb", 4))));
  EXPECT_EQ("", DataReader().readFileIntoString(folder.file("e", "")));
}

TEST(DataReader, TokenSplitOverTwoLinesComesOutJoined) {
  const TempFolder folder;
  const std::string path = folder.file("s.json", "{\"Poi\nnts\":[[1\n2,0,\n0]]}");
  ScenePointer scene;
  capturedStdout([&] { scene.reset(DataReader().readSceneFile(path)); });
  ASSERT_NE(nullptr, scene);
  ASSERT_NE(nullptr, scene->getPoints());
  EXPECT_EQ(12.0, scene->getPoints()->getPoint(0)->getX());
}

TEST(DataReader, SceneFileOfTwoLinesReadsAsOneText) {
  const TempFolder folder;
  const std::string path = folder.file("s.json", "{\"Points\":\n[[0,0,0]]}");
  ScenePointer scene;
  const std::string log = capturedStdout([&] { scene.reset(DataReader().readSceneFile(path)); });
  EXPECT_EQ("Reading: " + path + "\nReading end\n\n", log);
  ASSERT_NE(nullptr, scene);
  ASSERT_NE(nullptr, scene->getPoints());
  EXPECT_EQ(1u, scene->getPoints()->getPoints()->size());
}

TEST(DataReader, EmptyFileGivesErrorLinesAndNull) {
  const TempFolder folder;
  const std::string path = folder.file("s.json", "");
  Scene::Scene3D* scene = nullptr;
  EXPECT_EQ("Reading: " + path + "\n" + SceneErrorLines,
            capturedStdout([&] { scene = DataReader().readSceneFile(path); }));
  EXPECT_EQ(nullptr, scene);
  Shot::Shot2d* shot = nullptr;
  EXPECT_EQ("Reading: " + path + "\n" + ShotErrorLines,
            capturedStdout([&] { shot = DataReader().readShotFile(path); }));
  EXPECT_EQ(nullptr, shot);
}

TEST(DataReader, ArrayAsRootGivesEmptyScene) {
  const TempFolder folder;
  const std::string path = folder.file("s.json", "[]");
  ScenePointer scene;
  EXPECT_EQ("Reading: " + path + "\nReading end\n\n",
            capturedStdout([&] { scene.reset(DataReader().readSceneFile(path)); }));
  ASSERT_NE(nullptr, scene);
  EXPECT_EQ(nullptr, scene->getBrushes());
  EXPECT_EQ(nullptr, scene->getPens());
  EXPECT_EQ(nullptr, scene->getPoints());
  EXPECT_EQ(nullptr, scene->getObjects());
  EXPECT_EQ(nullptr, scene->getProperties());
  EXPECT_EQ(nullptr, scene->getScales());
}

TEST(DataReader, PathIsAFormatWhoseConversionsMeetZeros) {
  const TempFolder folder;
  const std::string name = "a%d%5.2f%s%n%%%x.json";
  const std::string path = folder.file(name, "{}");
  ScenePointer scene;
  const std::string log = capturedStdout([&] { scene.reset(DataReader().readSceneFile(path)); });
  EXPECT_EQ("Reading: " + folder.path("a0 0.00(null)%0.json") + "\nReading end\n\n", log);
  EXPECT_NE(nullptr, scene);
}

TEST(DataReader, ByteZeroFromAPathReachesTheLog) {
  const TempFolder folder;
  const std::string path = folder.file("a%cb", "{}");
  ShotPointer shot;
  const std::string log = capturedStdout([&] { shot.reset(DataReader().readShotFile(path)); });
  EXPECT_EQ("Reading: " + folder.path("a") + std::string("\0b\nReading end\n\n", 16), log);
}

TEST(DataReader, TextsAreReadInSilence) {
  ScenePointer scene;
  ShotPointer shot;
  EXPECT_EQ("", capturedStdout([&] {
              scene.reset(DataReader().readSceneString("{\"Points\":[]}"));
              shot.reset(DataReader().readShotString("{\"Points\":[]}"));
            }));
  EXPECT_NE(nullptr, scene);
  EXPECT_NE(nullptr, shot);
}

TEST(DataReader, TextsThatAreNoJsonGiveErrorLinesAndNull) {
  Scene::Scene3D* scene = nullptr;
  Shot::Shot2d* shot = nullptr;
  EXPECT_EQ(SceneErrorLines,
            capturedStdout([&] { scene = DataReader().readSceneString("{\"Points\":["); }));
  EXPECT_EQ(ShotErrorLines,
            capturedStdout([&] { shot = DataReader().readShotString("nonsense"); }));
  EXPECT_EQ(nullptr, scene);
  EXPECT_EQ(nullptr, shot);
}

TEST(DataReader, NegativePenWidthThrowsBeforeTheEndLine) {
  const TempFolder folder;
  const std::string path = folder.file("s.json", "{\"Pens\":[[0,0,0,255,-1]]}");
  const std::string log = capturedStdout([&] {
    try {
      DataReader().readSceneFile(path);
      ADD_FAILURE() << "nothing is thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ("pen width < 0", error.what());
    }
  });
  EXPECT_EQ("Reading: " + path + "\n", log);
}

TEST(DataReader, ShotFileIsLoggedLikeASceneFile) {
  const TempFolder folder;
  const std::string path = folder.file("s.json", "{\"Points\":[[0.5,0.25]]}\n");
  ShotPointer shot;
  EXPECT_EQ("Reading: " + path + "\nReading end\n\n",
            capturedStdout([&] { shot.reset(DataReader().readShotFile(path)); }));
  ASSERT_NE(nullptr, shot);
  EXPECT_NE(nullptr, shot->getPoints());
}

TEST(DataReaderDeathTest, FileThatCannotBeOpenedEndsTheProcess) {
  EXPECT_EXIT(DataReader().readFileIntoString("no/such/file"), ::testing::ExitedWithCode(1),
              "^Could not open the file - 'no/such/file'\n$");
  EXPECT_EXIT(DataReader().readSceneFile("no/such/%d"), ::testing::ExitedWithCode(1),
              "^Could not open the file - 'no/such/%d'\n$");
  EXPECT_EXIT(DataReader().readShotFile(""), ::testing::ExitedWithCode(1),
              "^Could not open the file - ''\n$");
}

// The handler runs at exit and leaves before the C library writes what is pending.
TEST(DataReaderDeathTest, StandardOutputIsFlushedBeforeTheProcessEnds) {
  const TempFolder folder;
  const std::string out = folder.path("out");
  EXPECT_EXIT(
      {
        std::cerr.tie(nullptr);  // or the message would flush standard output by itself
        std::atexit([] { _exit(7); });
        if (std::freopen(out.c_str(), "w", stdout) != nullptr)
          DataReader().readSceneFile("no/such/file");
      },
      ::testing::ExitedWithCode(7), "Could not open");
  EXPECT_EQ("Reading: no/such/file\n", Lumivane::Test::fileBytes(out));
}

}  // namespace
}  // namespace Lumivane::IO
