// `lumivane import`, and meshes and city models as the scenes of `lumivane shot`, run as processes.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string House = LUMIVANE_MODELS "/house.city.json";
const std::string Cube = LUMIVANE_MODELS "/cube.obj";

Result run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

void expectFailure(const Result& result, int status, const std::string& errorLine) {
  EXPECT_EQ(status, result.status) << result.err;
  EXPECT_EQ(errorLine + "\n", result.err);
}

TEST(ImportProgram, CityModelBecomesASceneAndTheShiftIsReported) {
  const TempFolder folder;
  const Result result =
      run({"import", House, "-o", folder.path("scene"), "--stats", folder.path("stats")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ("", result.err);
  EXPECT_NE(std::string::npos,
            result.out.find("Moved by -84603,-447399,0: add this to the file's coordinates\n"));
  const Json scene = Json::parse(fileBytes(folder.path("scene")));
  const Json stats = Json::parse(fileBytes(folder.path("stats")));
  EXPECT_EQ(Json({-84603, -447399, 0}), stats.at("shift"));
  EXPECT_EQ("CityJSON 2.0", stats.at("format"));
  EXPECT_EQ(scene.at("Objects").size(), stats.at("objects"));
  EXPECT_EQ(scene.at("Points").size(), stats.at("points"));
  EXPECT_EQ(scene.at("Brushes").size(), stats.at("brushes"));
  EXPECT_EQ(2u, stats.at("notes").size());
}

TEST(ImportProgram, ShotOfTheFileIsTheShotOfTheImportedScene) {
  for (const std::string& file : {House, Cube, std::string(LUMIVANE_MODELS "/boxes.glb")}) {
    SCOPED_TRACE(file);
    const TempFolder folder;
    const std::vector<std::string> view = {"--eye", "-9.3,-11.1,7.7", "--forward", "1,1,-0.5"};
    const auto shot = [&](const std::string& scene, const std::string& out,
                          std::vector<std::string> more = {}) {
      std::vector<std::string> arguments = {"shot", scene, "-o", folder.path(out)};
      arguments.insert(arguments.end(), view.begin(), view.end());
      arguments.insert(arguments.end(), more.begin(), more.end());
      return run(arguments);
    };
    ASSERT_EQ(0, run({"import", file, "-o", folder.path("scene.json"), "--scale", "1.7", "--eye",
                      "-9.3,-11.1,7.7"})
                     .status);
    ASSERT_EQ(0, shot(folder.path("scene.json"), "a").status);
    ASSERT_EQ(0, shot(file, "b", {"--import-scale", "1.7"}).status);
    EXPECT_EQ(fileBytes(folder.path("a")), fileBytes(folder.path("b")));
    EXPECT_GT(Json::parse(fileBytes(folder.path("a"))).at("Regions").size(), 2u);
  }
}

// The lid is cut into two triangles, and the eye stands on the cut.
TEST(ImportProgram, EyeOnAnEdgeIsNamedInTheError) {
  expectFailure(
      run({"shot", Cube, "--eye=0,0,1", "--forward=1,0,0"}), 1,
      "lumivane: " + Cube +
          ": no shot can be made: Scene::Object \"lid\", region 2: the eye stands on its "
          "edge 2, so no splitting brings its pieces below the length limit: move the eye "
          "off the edge");
}

TEST(ImportProgram, StatisticsOfAShotTellOfTheImport) {
  const TempFolder folder;
  const Result result = run({"shot", House, "--eye", "0.3,-20.1,9", "--forward", "0,1,-0.3",
                             "--stats", folder.path("stats")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ(0u, result.out.find("Imported CityJSON 2.0: "));
  const Json stats = Json::parse(fileBytes(folder.path("stats")));
  EXPECT_EQ(Json({-84603, -447399, 0}), stats.at("import").at("shift"));
}

TEST(ImportProgram, SidesAndPlaceCanBeChosen) {
  const TempFolder folder;
  const auto stats = [&](std::vector<std::string> more) {
    std::vector<std::string> arguments = {
        "import", Cube, "-o", folder.path("scene"), "--stats", folder.path("stats")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Result result = run(arguments);
    EXPECT_EQ(0, result.status) << result.err;
    return Json::parse(fileBytes(folder.path("stats")));
  };
  EXPECT_EQ(12, stats({}).at("regions"));
  EXPECT_EQ(24, stats({"--two-sided"}).at("regions"));
  EXPECT_EQ(Json({-1, -1, 0}), stats({"--center"}).at("lower"));
  EXPECT_EQ(Json({3, 3, 3}), stats({"--scale", "3", "--y-up"}).at("upper"));

  const auto normal = [&] {
    const Json scene = Json::parse(fileBytes(folder.path("scene")));
    return scene.at("Objects").at(1).at("Faces").at(0).at("Normal");
  };
  stats({});
  EXPECT_EQ(Json({0, 0, -1}), normal());
  stats({"--flip"});
  EXPECT_EQ(Json({0, 0, 1}), normal());
}

TEST(ImportProgram, NonsenseIsRefusedInOneLine) {
  const TempFolder folder;
  const std::string out = folder.path("scene");
  expectFailure(run({"import", Cube, "-o", out, "--two-sided", "--flip"}), 2,
                "lumivane: --two-sided excludes --flip (see --help)");
  expectFailure(run({"import", Cube, "-o", out, "--scale", "0"}), 2,
                "lumivane: --scale: \"0\" is not a finite number above 0 (see --help)");
  expectFailure(run({"import", Cube, "-o", out, "--scale", "nan"}), 2,
                "lumivane: --scale: \"nan\" is not a finite number above 0 (see --help)");
  expectFailure(run({"import", Cube, "-o", out, "--crease", "100"}), 2,
                "lumivane: --crease: \"100\" is not an angle of 0 to 90 degrees (see --help)");
  expectFailure(run({"import", Cube}), 2, "lumivane: --output is required (see --help)");
  EXPECT_FALSE(fs::exists(out));
}

TEST(ImportProgram, FaultsNameTheFileAndLeaveNoOutput) {
  const TempFolder folder;
  const std::string out = folder.path("scene");
  const std::string bad = folder.file("bad.obj", "v 0 0 0\nf 1 2 3\n");
  const std::string fault = "line 2: face refers to vertex 2, but there are 1";
  expectFailure(run({"import", bad, "-o", out}), 1, "lumivane: " + bad + ": " + fault);
  expectFailure(run({"shot", bad, "-o", out}), 1, "lumivane: " + bad + ": " + fault);
  const std::string gone = folder.path("gone.stl");
  expectFailure(run({"import", gone, "-o", out}), 1,
                "lumivane: " + gone + ": cannot be read: No such file or directory");
  EXPECT_FALSE(fs::exists(out));
}

TEST(ImportProgram, OutputsNeverTakeThePlaceOfTheFile) {
  const TempFolder folder;
  const std::string file = folder.file("cube.obj", fileBytes(Cube));
  expectFailure(run({"import", file, "-o", file}), 2,
                "lumivane: --output: \"" + file + "\" is already named for another file");
  const std::string out = folder.path("scene");
  expectFailure(run({"import", file, "-o", out, "--stats", out}), 2,
                "lumivane: --stats: \"" + out + "\" is already named for another file");
  EXPECT_EQ(fileBytes(Cube), fileBytes(file));
}

TEST(ImportProgram, BufferOutsideTheFolderIsReadWithItsOptionAlone) {
  const TempFolder folder;
  fs::create_directory(folder.path("model"));
  const std::string bytes = fileBytes(LUMIVANE_MODELS "/boxes.glb");
  folder.file("boxes.bin", bytes.substr(bytes.size() - 168));  // the data stands at the end
  std::string text = fileBytes(LUMIVANE_MODELS "/boxes.gltf");
  const size_t start = text.find("data:application");
  text.replace(start, text.find('"', start) - start, "%2E%2E/boxes.bin");
  const std::string model = folder.file("model/boxes.gltf", text);
  const std::string table = folder.file("v.csv", "name,eye\na,\"-9.3,-11.1,7.7\"\n");
  const std::string out = folder.path("out");
  const std::vector<std::vector<std::string>> commands = {
      {"import", model, "-o", out},
      {"check", model},
      {"shot", model, "--eye=-9.3,-11.1,7.7", "-o", out},
      {"view", model, "--eye=-9.3,-11.1,7.7", "--map", out},
      {"grid", model, "--spacing=1", "--height=1.5", "-o", out},
      {"batch", model, table, "--out-dir", out + "s", "-o", "a.json", "--jobs=1"},
  };
  for (std::vector<std::string> command : commands) {
    SCOPED_TRACE(command[0]);
    const Result refused = run(command);
    EXPECT_EQ(command[0] == "check" ? 2 : 1, refused.status);
    EXPECT_NE(std::string::npos,
              refused.err.find("boxes.gltf: buffers 0: its file \"%2E%2E/boxes.bin\" lies outside "
                               "the folder of the model; --allow-outside reads it\n"))
        << refused.err;
    EXPECT_FALSE(fs::exists(out));
    command.emplace_back("--allow-outside");
    const Result read = run(command);
    EXPECT_LE(read.status, command[0] == "check" ? 1 : 0) << read.err;
    fs::remove(out);
  }
}

TEST(ImportProgram, SceneMayGoToStandardOutputByItself) {
  const Result result = run({"import", Cube, "-o", "/dev/stdout"});
  ASSERT_EQ(0, result.status);
  EXPECT_EQ(2u, Json::parse(result.out).at("Objects").size());
  EXPECT_EQ(0u, result.err.find("Imported OBJ: "));
}

TEST(ImportProgram, TestModelsAreThoseOfTheirScript) {
  const TempFolder folder;
  const Result result = Lumivane::Test::runProcess(
      {"python3", LUMIVANE_SCENES "/../scripts/make_models.py", folder.path("")});
  ASSERT_EQ(0, result.status) << result.err;
  size_t count = 0;
  for (const auto& entry : fs::directory_iterator(LUMIVANE_MODELS)) {
    const std::string name = entry.path().filename().string();
    EXPECT_EQ(fileBytes(folder.path(name)), fileBytes(entry.path().string())) << name;
    ++count;
  }
  EXPECT_EQ(10u, count);
}

TEST(ImportProgram, HelpTellsOfTheCommandAndOfFilesForShots) {
  const Result help = run({"import", "--help"});
  EXPECT_EQ(0, help.status);
  for (const char* const word : {".city.json", "--two-sided", "--flip", "--scale", "--y-up",
                                 "--center", "--crease", "--stats"})
    EXPECT_NE(std::string::npos, help.out.find(word)) << word;
  EXPECT_NE(std::string::npos, run({"shot", "--help"}).out.find("--import-scale"));
}

}  // namespace
}  // namespace Lumivane::Host
