// Scenes made ready for looking (*.lumiscene), run through the program's commands.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <lumivane/session/Files.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string House = LUMIVANE_MODELS "/house.city.json";
const std::string Rooms = LUMIVANE_SCENES "/room.json";

Result run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

// A command on a scene, with the bytes of the file that it writes.
std::string made(const TempFolder& folder, const std::string& command, const std::string& scene,
                 const std::vector<std::string>& more, const std::string& option,
                 const std::string& ending) {
  std::vector<std::string> arguments = {command, scene};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const std::string out = folder.path("out" + ending);
  arguments.insert(arguments.end(), {option, out});
  const Result result = run(arguments);
  EXPECT_EQ(0, result.status) << command << ": " << result.err;
  return result.status == 0 ? fileBytes(out) : "";
}

void expectSame(const std::string& source, const std::vector<std::string>& eye) {
  const TempFolder folder;
  const std::string ready = folder.path("scene.lumiscene");
  const Result import = run({"import", source, "-o", ready});
  ASSERT_EQ(0, import.status) << import.err;
  struct Work {
    const char* command;
    std::vector<std::string> more;
    const char* option;
    const char* ending;
  };
  std::vector<std::string> look = eye;
  look.insert(look.end(), {"--forward", "0.3,1,-0.2"});
  std::vector<std::string> regions = look;
  regions.insert(regions.end(), {"--rows", "region"});
  const std::vector<Work> works = {
      {"view", regions, "--shares", ".csv"},
      {"view", look, "--map", ".json"},
      {"view", look, "--svg", ".svg"},
      {"draw", {"--parallel", "0,0,-1"}, "--svg", ".svg"},
      {"factors", {"--tolerance", "0.1"}, "-o", ".csv"},
      {"grid", {"--spacing", "3", "--height", "1.5", "--skip-inside"}, "-o", ".csv"},
  };
  for (const Work& work : works) {
    SCOPED_TRACE(std::string(work.command) + " " + work.option);
    // A title names the scene's file, so both have one name.
    const TempFolder place;
    const std::string same = place.path("scene.lumiscene");
    std::filesystem::copy_file(ready, same);
    const std::string fromReady =
        made(folder, work.command, same, work.more, work.option, work.ending);
    std::string fromSource =
        made(folder, work.command, source, work.more, work.option, work.ending);
    const std::string name = std::filesystem::path(source).filename().string();
    for (std::size_t at = 0; (at = fromSource.find(name, at)) != std::string::npos;)
      fromSource.replace(at, name.size(), "scene.lumiscene");
    EXPECT_TRUE(fromSource == fromReady);
    EXPECT_FALSE(fromReady.empty());
  }
}

TEST(ReadyScene, GivesWhatItsCityModelGives) { expectSame(House, {"--eye", "-9.3,-11.1,7.7"}); }

TEST(ReadyScene, GivesWhatItsSceneFileGives) { expectSame(Rooms, {"--eye", "0.31,0.27,1.6"}); }

// The order of a model's objects, by which shots differ, depends on the eye.
TEST(ReadyScene, GivesTheShotThatItsModelGivesForTheEyeOfItsImport) {
  const TempFolder folder;
  const std::string ready = folder.path("a.lumiscene");
  const std::string eye = "-9.3,-11.1,7.7";
  ASSERT_EQ(0, run({"import", House, "-o", ready, "--eye", eye}).status);
  const std::vector<std::string> look = {"--eye", eye, "--forward", "0.3,1,-0.2"};
  EXPECT_TRUE(made(folder, "shot", House, look, "-o", ".json") ==
              made(folder, "shot", ready, look, "-o", ".json"));
}

TEST(ReadyScene, KeepsWhatIsReportedOfItsImport) {
  const TempFolder folder;
  const std::string ready = folder.path("a.lumiscene");
  ASSERT_EQ(0, run({"import", House, "-o", ready, "--stats", folder.path("import.json")}).status);
  ASSERT_EQ(0, run({"view", ready, "--eye", "1,2,30", "--stats", folder.path("view.json")}).status);
  EXPECT_EQ(Json::parse(fileBytes(folder.path("import.json"))),
            Json::parse(fileBytes(folder.path("view.json"))).at("import"));
}

TEST(ReadyScene, GivesABatchTheSameSummary) {
  const TempFolder folder;
  const std::string ready = folder.path("a.lumiscene");
  ASSERT_EQ(0, run({"import", House, "-o", ready}).status);
  Session::writeFile(folder.path("views.csv"),
                     "name,eye,forward\na,\"-9,-11,7\",\"1,1,-0.5\"\nb,\"1,2,30\",\"0,0,-1\"\n");
  for (const std::string rows : {"object", "class", "building"}) {
    const auto summary = [&](const std::string& scene, const std::string& to) {
      const Result result =
          run({"batch", scene, folder.path("views.csv"), "--no-shots", "--rows", rows, "--shares",
               "{name}.csv", "--out-dir", folder.path(to + rows), "--jobs", "1"});
      EXPECT_EQ(0, result.status) << result.err;
      return fileBytes(folder.path(to + rows + "/summary.csv"));
    };
    EXPECT_EQ(summary(House, "x"), summary(ready, "y"));
  }
}

TEST(ReadyScene, FindsEyesInsideBodiesAsItsSceneDoes) {
  const TempFolder folder;
  const std::string ready = folder.path("a.lumiscene");
  const std::string box = LUMIVANE_MODELS "/cube.obj";
  ASSERT_EQ(0, run({"import", box, "-o", ready}).status);
  const Result in = run({"view", ready, "--eye", "0.3,0.4,0.5"});
  const Result same = run({"view", box, "--eye", "0.3,0.4,0.5"});
  EXPECT_EQ(std::string::npos == same.err.find("inside a body"),
            std::string::npos == in.err.find("inside a body"));
  EXPECT_EQ(std::string::npos, run({"view", ready, "--eye", "0.3,0.4,5.5"}).err.find("inside"));
}

TEST(ReadyScene, WithoutTheSceneItselfIsEnoughForLooks) {
  const TempFolder folder;
  const std::string ready = folder.path("a.lumiscene");
  Visibility::SceneIndex(Session::LoadedScene::fromFile(Rooms)).write(ready);
  const Result view = run({"view", ready, "--eye", "0.31,0.27,1.6"});
  EXPECT_EQ(0, view.status) << view.err;
  const Result shot = run({"shot", ready, "--eye", "0.31,0.27,1.6", "-o", folder.path("s")});
  EXPECT_EQ(1, shot.status);
  EXPECT_EQ("lumivane: " + ready +
                ": holds only what looks need, and no scene for shots, colours or checks: make it "
                "with lumivane import to have both\n",
            shot.err);
}

TEST(ReadyScene, IsRefusedInOneLineIfItIsDamaged) {
  const TempFolder folder;
  const std::string ready = folder.path("a.lumiscene");
  ASSERT_EQ(0, run({"import", House, "-o", ready}).status);
  const std::string good = fileBytes(ready);
  Session::writeFile(ready, good.substr(0, good.size() / 2));
  for (const char* command : {"view", "shot"}) {
    const Result result = run({command, ready, "--eye", "1,2,30"});
    EXPECT_NE(0, result.status);
    EXPECT_EQ("lumivane: " + ready + ": is cut off: it has " + std::to_string(good.size() / 2) +
                  " of " + std::to_string(good.size()) +
                  " bytes; make it anew from the scene, with lumivane import\n",
              result.err)
        << command;
  }
}

TEST(ReadyScene, TakesNoOptionsOfAnImport) {
  const TempFolder folder;
  const std::string ready = folder.path("a.lumiscene");
  ASSERT_EQ(0, run({"import", House, "-o", ready}).status);
  const Result result = run({"view", ready, "--eye", "1,2,30", "--center"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("lumivane: " + ready +
                ": is a scene made ready, which stays as it is: give --center to lumivane import "
                "when it is made\n",
            result.err);
  for (const std::vector<std::string>& option :
       {std::vector<std::string>{"--two-sided"}, {"--import-scale", "2"}}) {
    std::vector<std::string> shot = {"shot", ready, "--eye", "1,2,30"};
    shot.insert(shot.end(), option.begin(), option.end());
    const std::string name = option.front() == "--import-scale" ? "--scale" : option.front();
    EXPECT_EQ("lumivane: " + ready + ": is a scene made ready, which stays as it is: give " + name +
                  " to lumivane import when it is made\n",
              run(shot).err);
  }
  EXPECT_EQ(2, run({"import", ready, "-o", folder.path("b.lumiscene")}).status);
}

}  // namespace
}  // namespace Lumivane::Host
