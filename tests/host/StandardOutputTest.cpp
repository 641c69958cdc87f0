// The file name "-" stands for standard output, in each command alike, and nothing else is printed
// there then.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"
#include "support/WorkingFolder.h"

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
using Lumivane::Test::WorkingFolder;
using Arguments = std::vector<std::string>;

const std::string Small = LUMIVANE_SCENES "/small.json";
const std::string Cube = LUMIVANE_MODELS "/cube.obj";

Result run(Arguments arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

Arguments with(Arguments command, const std::string& option, const std::string& path) {
  command.push_back(option);
  command.push_back(path);
  return command;
}

// Prints what the file would hold, and makes no file of that name.
void expectPrinted(const Arguments& command, const std::string& option) {
  SCOPED_TRACE(command[0] + " " + option);
  const WorkingFolder work;
  const TempFolder folder;
  const std::string path = folder.path("out");
  const Result written = run(with(command, option, path));
  ASSERT_EQ(0, written.status) << written.err;
  const Result printed = run(with(command, option, "-"));
  EXPECT_EQ(0, printed.status) << printed.err;
  EXPECT_FALSE(printed.out.empty());
  EXPECT_EQ(fileBytes(path), printed.out);
  EXPECT_EQ(written.out + written.err, printed.err);
  EXPECT_FALSE(fs::exists("-"));
}

TEST(StandardOutput, StandsForTheFilesOfViewAndShot) {
  const Arguments view = {"view", Small, "--eye=-4,0.35,1.9", "--size", "60x60"};
  for (const std::string option : {"--svg", "--html", "--report", "--png-vector"})
    expectPrinted(view, option);
  expectPrinted({"view", Small, "--eye=-4,0.35,1.9"}, "--map");
  const Arguments shot = {"shot", Small, "--eye=-4,0.35,1.9"};
  for (const std::string option : {"-o", "--output", "--svg", "--html", "--eps", "--png-vector"})
    expectPrinted(shot, option);
}

TEST(StandardOutput, StandsForTheFilesOfOtherCommands) {
  expectPrinted({"draw", Small, "--eye=-4,0.35,1.9"}, "--svg");
  expectPrinted({"draw", Small, "--eye=-4,0.35,1.9"}, "--dxf");
  expectPrinted({"grid", Small, "--spacing", "1", "--height", "1.5"}, "-o");
  expectPrinted({"json5", Small}, "-o");
}

TEST(StandardOutput, OfAModelIsFreeOfWhatBecameOfIt) {
  const Result map = run({"view", Cube, "--eye=-4,0.35,1.9", "--map", "-"});
  ASSERT_EQ(0, map.status) << map.err;
  EXPECT_EQ(1, Json::parse(map.out).at("version"));
  EXPECT_EQ(0u, map.err.find("Imported OBJ: "));
  const TempFolder folder;
  const Result stats = run({"import", Cube, "-o", folder.path("a.json"), "--stats=-"});
  ASSERT_EQ(0, stats.status) << stats.err;
  EXPECT_EQ(2, Json::parse(stats.out).at("objects"));
  const Result scene = run({"import", Cube, "-o", "-"});
  ASSERT_EQ(0, scene.status) << scene.err;
  EXPECT_EQ(2u, Json::parse(scene.out).at("Objects").size());
}

TEST(StandardOutput, HasRoomForOneOutput) {
  const Result result = run({"view", Small, "--eye=-4,0.35,1.9", "--map", "-", "--svg", "-"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_EQ(
      "lumivane: --svg: \"-\" stands for standard output, which has room for one output "
      "(see --help)\n",
      result.err);
}

TEST(StandardOutput, HasNoEndingThatSaysTheFormat) {
  const Result result = run({"view", Small, "--eye=-4,0.35,1.9", "--shares", "-"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("lumivane: --shares: \"-\" ends neither in .csv nor in .json (see --help)\n",
            result.err);
}

TEST(StandardOutput, ThatIsFullIsNamedInTheError) {
  const Result result =
      Lumivane::Test::runProcess({"sh", "-c", "exec \"$@\" > /dev/full", "sh", LUMIVANE_PROGRAM,
                                  "view", Small, "--eye=-4,0.35,1.9", "--map", "-"},
                                 {{"DISPLAY", {}}});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("lumivane: standard output: cannot be written: No space left on device\n", result.err);
}

}  // namespace
}  // namespace Lumivane::Host
