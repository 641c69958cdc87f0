#include "session/Scenes.h"
#include "support/TempFolder.h"
#include "support/Thrown.h"

#include <lumivane/io/DataWriter.h>
#include <lumivane/session/ShotFile.h>

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Session {
namespace {

using Lumivane::Test::TempFolder;
using Lumivane::Test::thrownText;

TEST(ShotFile, WrittenShotIsReadBack) {
  const TempFolder folder;
  LoadedScene scene = Lumivane::Test::smallScene();
  const TakenShot taken = scene.take(Lumivane::Test::smallView());
  taken.write(folder.path("a"));
  const std::unique_ptr<Shot::Shot2d> read = readShot(folder.path("a"));
  EXPECT_EQ(taken.text(), IO::DataWriter().writeShotString(read.get()));
  EXPECT_EQ(nullptr, read->getView());
}

TEST(ShotFile, ReadShotIsFreedWithAllItsLists) {
  LoadedScene scene = Lumivane::Test::squareScene();
  EXPECT_NE(nullptr, readShotText(scene.take({}).text(), "text")->getBrushes());
}

TEST(ShotFile, WrongFilesAreErrors) {
  const TempFolder folder;
  const auto error = [](const std::string& path) {
    return thrownText<Error>([&path] { readShot(path); });
  };
  EXPECT_EQ(folder.path("a") + ": cannot be read: No such file or directory",
            error(folder.path("a")));
  EXPECT_EQ(folder.path("b") + ": not JSON: there is no complete object or array in it",
            error(folder.file("b", "")));
  EXPECT_EQ(folder.path("c") + ": pen 1: alpha is -4, not 0 to 255",
            error(folder.file("c", R"({"Pens":[[1,2,3,-4,1]]})")));
}

TEST(ShotFile, NameOfATextStandsInItsErrors) {
  EXPECT_EQ("mine: not JSON: there is no complete object or array in it",
            thrownText<Error>([] { readShotText("", "mine"); }));
}

}  // namespace
}  // namespace Lumivane::Session
