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

const std::string West = LUMIVANE_MODELS "/tile-west.city.json";
const std::string East = LUMIVANE_MODELS "/tile-east.city.jsonl";

TEST(ImportProgram, SeveralFilesAreOneScene) {
  const TempFolder folder;
  const Result result =
      run({"import", West, East, "-o", folder.path("town.json"), "--stats", folder.path("stats")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ(0U, result.out.find("Imported 2 files (CityJSON 2.0 + CityJSON 2.0 sequence): "));
  EXPECT_NE(
      std::string::npos,
      fileBytes(folder.path("town.classes.csv")).find("tile-east.city.jsonl#ground,,LandUse\n"));
  EXPECT_EQ(Json({West, East}), Json::parse(fileBytes(folder.path("stats"))).at("files"));

  const auto shares = [&](std::vector<std::string> scene) {
    scene.insert(scene.begin(), "view");
    for (const char* word : {"--eye", "1,-4,2", "--rows", "face", "--shares"})
      scene.push_back(word);
    scene.push_back(folder.path("shares.csv"));
    const Result look = run(scene);
    EXPECT_EQ(0, look.status) << look.err;
    return fileBytes(folder.path("shares.csv"));
  };
  const std::string expected = shares({folder.path("town.json")});
  EXPECT_NE(std::string::npos, expected.find("hall"));
  EXPECT_EQ(expected, shares({West, East}));
  ASSERT_EQ(0, run({"import", West, East, "-o", folder.path("town.lumiscene")}).status);
  EXPECT_EQ(expected, shares({folder.path("town.lumiscene")}));
}

TEST(ImportProgram, PicturesAndPagesNameAllFilesOfTheirScene) {
  const TempFolder folder;
  const std::string title = "<title>tile-west.city.json, tile-east.city.jsonl</title>";
  const auto page = [&](const std::string& command, std::vector<std::string> more) {
    const std::string file = folder.path(command + ".out");
    more.insert(more.begin(), {command, West, East, "--eye", "1,-4,2"});
    more.push_back(file);
    const Result result = run(more);
    EXPECT_EQ(0, result.status) << result.err;
    return fileBytes(file);
  };
  EXPECT_NE(std::string::npos, page("view", {"--html"}).find(title));
  EXPECT_NE(std::string::npos, page("draw", {"--html"}).find(title));
  EXPECT_NE(std::string::npos,
            page("shot", {"-o", folder.path("shot.json"), "--html"}).find(title));
}

TEST(ImportProgram, SeveralFilesAreOneSceneOfEachCommand) {
  const TempFolder folder;
  const auto done = [&](std::vector<std::string> arguments) {
    const Result result = run(arguments);
    EXPECT_EQ(0, result.status) << arguments[0] << ": " << result.err;
    EXPECT_EQ(arguments[0] == "check" ? std::string::npos : 0U,
              result.out.find("Imported 2 files ("))
        << arguments[0];
  };
  const std::string views = folder.path("views.csv");
  const std::string many = folder.path("many");
  done({"shot", West, East, "--eye", "1,-8,7", "-o", folder.path("shot")});
  done({"draw", West, East, "--eye", "1,-8,7", "--svg", folder.path("drawing.svg")});
  done({"check", West, East});
  done({"factors", West, East, "-o", folder.path("factors.csv")});
  done({"sun", West, East, "--eye", "1,-4,2", "--north", "90", "--latitude", "52", "--longitude",
        "4.36", "--time-zone", "1", "--day", "2024-06-21", "--intervals", folder.path("sun.csv")});
  done({"grid", West, East, "--spacing", "9", "--height", "1.6", "-o", views});
  done({"batch", West, views, "--also", East, "--out-dir", many, "--no-shots"});
  done({"map", West, many + "/summary.csv", "--also", East, "--svg", folder.path("map.svg")});
  // Other files are other views, although the table is the same.
  const Result other = run({"batch", West, views, "--out-dir", many, "--no-shots", "--merge"});
  EXPECT_EQ(1, other.status);
}

TEST(ImportProgram, FilesThatAreNoOneSceneAreRefused) {
  const TempFolder folder;
  const std::string kinds =
      ": is no mesh and no city model: of several files of one scene each must be one (.obj, .stl, "
      ".ply, .gltf, .glb, .city.json, .city.jsonl); of a scene give the files that it was made of";
  ASSERT_EQ(0, run({"import", West, "-o", folder.path("west.json")}).status);
  ASSERT_EQ(0, run({"import", West, "-o", folder.path("west.lumiscene")}).status);
  for (const char* scene : {"west.json", "west.lumiscene"}) {
    const std::string path = folder.path(scene);
    expectFailure(run({"view", East, path, "--eye", "1,2,3"}), 2, "lumivane: " + path + kinds);
    expectFailure(run({"view", path, East, "--eye", "1,2,3"}), 2, "lumivane: " + path + kinds);
  }
  expectFailure(
      run({"shot", East, folder.path("nothing.obj")}), 1,
      "lumivane: " + folder.path("nothing.obj") + ": cannot be read: No such file or directory");
  expectFailure(
      run({"import", West, East, West, "-o", folder.path("scene")}), 1,
      "lumivane: " + West + ": is named twice among the files of one scene: leave it out once");
  expectFailure(run({"import", West, East, "-o", East}), 2,
                "lumivane: --output: \"" + East + "\" is already named for another file");
  expectFailure(run({"view", West, "--also", East, "--eye", "1,2,3"}), 2,
                "lumivane: The following argument was not expected: --also (see --help)");
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
  EXPECT_EQ(12u, count);
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
