// Options that would change nothing are mistakes, which each command names.

#include "host/Process.h"
#include "support/TempFolder.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";

Result run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

void expectRefused(const std::vector<std::string>& arguments, const std::string& message) {
  const Result result = run(arguments);
  EXPECT_EQ(2, result.status) << message;
  EXPECT_EQ("lumivane: " + message + "\n", result.err);
}

TEST(UselessOptions, OfViewAreRefused) {
  const auto view = [](const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"view", Small, "--eye=-4,0.35,1.9"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  };
  expectRefused(view({"--rows", "class"}), "--rows requires --shares (see --help)");
  const std::vector<std::pair<std::string, std::string>> ofPictures = {
      {"--size", "30x30"}, {"--projection", "equirectangular"}, {"--color-by", "object"}};
  for (const auto& [option, value] : ofPictures)
    expectRefused(view({option, value}),
                  option +
                      ": is that of pictures: name one with --svg, --pdf, --png-vector, "
                      "--html or --report");
  const TempFolder folder;
  EXPECT_EQ(
      0,
      run(view({"--size", "30x30", "--color-by", "object", "--svg", folder.path("a.svg")})).status);
}

TEST(UselessOptions, OfModelsAreRefusedForSceneFiles) {
  const auto expectNamed = [](std::vector<std::string> command, const std::string& option) {
    command.push_back(option);
    if (option == "--import-scale" || option == "--scale" || option == "--crease")
      command.emplace_back("2");
    expectRefused(command, Small +
                               ": is a scene file, whose polygons stay as they are: leave out " +
                               option + ", which is for meshes and city models");
  };
  for (const char* const option : {"--flip", "--y-up", "--import-scale", "--crease"}) {
    expectNamed({"view", Small, "--eye=-4,0.35,1.9"}, option);
    expectNamed({"check", Small}, option);
  }
  expectNamed({"shot", Small, "--eye=-4,0.35,1.9"}, "--two-sided");
  expectNamed({"grid", Small, "--spacing", "1", "--height", "1"}, "--flip");
  const TempFolder folder;
  const std::string views = folder.file("v.csv", "name,eye\na,\"-4,0.35,1.9\"\n");
  expectNamed({"batch", Small, views, "--out-dir", folder.path("out")}, "--y-up");
  expectNamed({"import", Small, "-o", folder.path("a.lumiscene")}, "--scale");
  EXPECT_EQ(0, run({"view", Small, "--eye=-4,0.35,1.9", "--import-scale", "1", "--center"}).status);
}

TEST(UselessOptions, ToKeepTextsOfTablesSafeIsRefusedWithoutATableThatHasThem) {
  const TempFolder folder;
  const std::string start = "--csv-safe: is for texts in tables: name one (.csv) with ";
  const std::vector<std::string> shot = {"shot", Small, "--eye=-4,0.35,1.9", "--csv-safe"};
  const std::vector<std::string> view = {"view", Small, "--eye=-4,0.35,1.9", "--csv-safe"};
  const auto with = [](std::vector<std::string> command, const std::string& option,
                       const std::string& path) {
    command.insert(command.end(), {option, path});
    return command;
  };
  expectRefused(shot, start + "--visible");
  expectRefused(with(shot, "--visible", folder.path("a.json")), start + "--visible");
  EXPECT_EQ(0, run(with(shot, "--visible", folder.path("a.csv"))).status);
  expectRefused(view, start + "--shares");
  expectRefused(with(view, "--svg", folder.path("a.svg")), start + "--shares");
  EXPECT_EQ(0, run(with(view, "--shares", folder.path("a.csv"))).status);
  expectRefused({"factors", Small, "-o", folder.path("f.csv"), "--csv-safe"},
                "--csv-safe requires --elements (see --help)");
  expectRefused({"sun", Small, "--eye=-4,0.35,1.9", "--latitude", "52", "--longitude", "4",
                 "--north", "90", "--horizon", folder.path("a.hor"), "--csv-safe"},
                start + "--intervals, --days, --months, --totals or --sky-values");
}

TEST(UselessOptions, OfGridAndFactorsAreRefused) {
  const TempFolder folder;
  expectRefused({"grid", Small, "--spacing", "1", "--height", "1", "--rows", "class"},
                "--rows requires --shares (see --help)");
  const std::string classes = folder.file("c.csv", "object,class\n1,wall\n");
  expectRefused({"factors", Small, "-o", folder.path("f.csv"), "--classes", classes},
                "--classes: is for the column class of the elements: name their table with "
                "--elements, or write .json or .npz");
  EXPECT_EQ(0, run({"factors", Small, "-o", folder.path("f.json"), "--classes", classes}).status);
}

TEST(UselessOptions, OfMapAndDrawAreRefused) {
  const TempFolder folder;
  const std::string table = folder.file("t.csv", "eye,value\n\"0,0,1\",1\n");
  expectRefused(
      {"map", Small, table, "--column", "value", "--svg", folder.path("a.svg"), "--dpi", "100"},
      "--dpi requires --png (see --help)");
  expectRefused({"map", Small, table, "--column", "value", "--svg", folder.path("a.svg"), "--cell",
                 "1", "--dot", "3"},
                "--dot: is the width of dots, but --cell asks for squares");
  EXPECT_EQ(0, run({"map", Small, table, "--column", "value", "--svg", folder.path("a.svg"),
                    "--cell", "0", "--dot", "3"})
                   .status);
  expectRefused({"draw", Small, "--eye=-4,0.35,1.9", "--svg", folder.path("b.svg"), "--dpi", "99"},
                "--dpi requires --png (see --help)");
}

TEST(UselessOptions, OfBatchAreRefusedOnTheCommandLineAndTakenInTables) {
  const TempFolder folder;
  const std::string views = folder.file("v.csv", "name,eye,max-length\na,\"-4,0.35,1.9\",0.1\n");
  const auto batch = [&](const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {"batch", Small, views, "--out-dir", folder.path("out")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  };
  expectRefused(batch({"--no-shots", "--max-length", "0.1"}),
                "--max-length: is for shots, which --no-shots leaves out");
  expectRefused(batch({"--no-shots", "--rows", "face"}),
                "--rows: is for --shares; rows of classes alone are columns of the summary");
  EXPECT_EQ(0, run(batch({"--no-shots", "--rows", "class"})).status);
  EXPECT_EQ(0, run(batch({"--no-shots", "--rows", "face", "--shares", "{name}.csv"})).status);
}

}  // namespace
}  // namespace Lumivane::Host
