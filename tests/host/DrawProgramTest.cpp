// `lumivane draw`, run as a process.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <algorithm>
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

const std::string Street = LUMIVANE_SCENES "/street.json";

Result draw(std::vector<std::string> more, const std::string& scene = Street) {
  std::vector<std::string> command = {LUMIVANE_PROGRAM, "draw", scene};
  command.insert(command.end(), more.begin(), more.end());
  return Lumivane::Test::runProcess(command, {{"DISPLAY", {}}});
}

TEST(DrawProgram, WritesEveryFormatOfOneDrawing) {
  const TempFolder folder;
  const Result result =
      draw({"--parallel", "isometric", "--hidden", "dashed", "--svg", folder.path("a.svg"), "--pdf",
            folder.path("a.pdf"), "--png", folder.path("a.png"), "--dxf", folder.path("a.dxf"),
            "--stats", folder.path("a.json")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ(0U, fileBytes(folder.path("a.svg")).find("<svg "));
  EXPECT_EQ(0U, fileBytes(folder.path("a.pdf")).find("%PDF"));
  EXPECT_EQ(1U, fileBytes(folder.path("a.png")).find("PNG"));
  EXPECT_EQ(0U, fileBytes(folder.path("a.dxf")).find("0\nSECTION"));
  const Json stats = Json::parse(fileBytes(folder.path("a.json")));
  EXPECT_LT(0, stats["lines"]["hidden"].get<int>());
  EXPECT_LT(0, stats["paths"].get<int>());
}

TEST(DrawProgram, ACubeIsSixPictures) {
  const TempFolder folder;
  const Result result =
      draw({"--projection", "cube", "--eye", "-5.3,-1.37,3.4", "--svg", folder.path("{face}.svg")});
  ASSERT_EQ(0, result.status) << result.err;
  for (const char* face : {"front", "right", "back", "left", "up", "down"})
    EXPECT_TRUE(fs::exists(folder.path(std::string(face) + ".svg"))) << face;
}

TEST(DrawProgram, AWebPageHoldsTheDrawingThatIsAskedForAndAllNamedOnes) {
  const TempFolder folder;
  const auto namesOf = [&](std::vector<std::string> how) {
    how.insert(how.end(), {"--html", folder.path("a.html")});
    const Result result = draw(how, LUMIVANE_SCENES "/small.json");
    EXPECT_EQ(0, result.status) << result.err;
    const std::string page = fileBytes(folder.path("a.html"));
    const std::string start = "id=\"data\">";
    const std::size_t from = page.find(start) + start.size();
    std::string names;
    const Json data = Json::parse(page.substr(from, page.find("</script>", from) - from));
    for (const Json& picture : data.at("pictures"))
      names += picture.at("name").get<std::string>() + " ";
    return names;
  };
  // From below there is nothing to be seen.
  EXPECT_EQ("the eye top front back left right isometric ",
            namesOf({"--eye", "0,0,0.5", "--projection", "stereographic"}));
  EXPECT_EQ("isometric top front back left right ", namesOf({"--parallel", "isometric"}));
  EXPECT_EQ("1,2,-1 the eye top front back left right isometric ",
            namesOf({"--parallel", "1,2,-1", "--eye", "0,0,0.5", "--hidden", "dashed"}));
}

TEST(DrawProgram, APageHasTheSizeThatIsAskedFor) {
  const TempFolder folder;
  const Result result = draw({"--parallel", "top", "--page", "A4-landscape", "--scale", "1:500",
                              "--scale-bar", "--svg", folder.path("a.svg")});
  ASSERT_EQ(0, result.status) << result.err;
  const std::string svg = fileBytes(folder.path("a.svg"));
  EXPECT_NE(std::string::npos, svg.find("width=\"297mm\" height=\"210mm\""));
  EXPECT_NE(std::string::npos, svg.find(">1:500<"));
}

TEST(DrawProgram, ProjectionsHaveTheirNamesOfOtherFieldsToo) {
  const TempFolder folder;
  const auto drawn = [&](std::vector<std::string> how) {
    how.insert(how.end(), {"--svg", folder.path("a.svg")});
    const Result result = draw(how);
    EXPECT_EQ(0, result.status) << result.err;
    return fileBytes(folder.path("a.svg"));
  };
  const std::vector<std::string> names = {"orthographic", "fisheye", "nusselt"};
  std::vector<std::string> pictures;
  for (const std::string& name : names)
    pictures.push_back(drawn({"--projection", name, "--eye", "-5.3,-1.37,3.4"}));
  EXPECT_EQ(pictures[0], pictures[1]);
  EXPECT_EQ(pictures[0], pictures[2]);
  EXPECT_EQ(drawn({"--parallel", "top"}), drawn({"--parallel", "plan"}));
}

TEST(DrawProgram, WhatCannotBeDrawnIsSaidInOneLine) {
  const TempFolder folder;
  const std::string out = folder.path("a.svg");
  const auto fault = [&](std::vector<std::string> more, int status, const std::string& text) {
    more.insert(more.end(), {"--svg", out});
    const Result result = draw(more);
    EXPECT_EQ(status, result.status) << result.err;
    EXPECT_NE(std::string::npos, result.err.find(text)) << result.err;
    EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n')) << result.err;
    EXPECT_FALSE(fs::exists(out));
  };
  fault({"--eye", "0,0,2", "--fov", "0"}, 1, "field of view");
  fault({"--eye", "0,0,2", "--fov", "180"}, 1, "field of view");
  fault({"--eye", "0,0,2000", "--forward", "0,0,1"}, 1, "nothing of the scene");
  fault({"--eye", "0,0,2", "--page", "15x200"}, 1, "margin");
  fault({"--eye", "0,0,2", "--page", "A9"}, 2, "--page");
  fault({"--eye", "0,0,2", "--widths", "outlines=1"}, 2, "--widths");
  fault({"--eye", "0,0,2", "--sky", "blue"}, 2, "--sky");
  fault({"--eye", "0,0,2", "--scale", "1:100"}, 2, "--scale");
  fault({"--parallel", "above"}, 2, "--parallel");
  fault({"--parallel", "0,0,0"}, 1, "direction is zero");
  fault({"--parallel", "top", "--scale", "100"}, 2, "--scale");
  fault({"--projection", "orthographic"}, 2, "--eye");
  fault({"--projection", "cube", "--eye", "0,0,2"}, 2, "{face}");
  fault({"--projection", "cylindrical", "--parallel", "top"}, 2, "--parallel");
  fault({"--eye", "0,0,2", "--html", out}, 2, "a.svg");
}

TEST(DrawProgram, WithoutAnOutputItSaysWhatIsMissing) {
  const Result result = draw({"--parallel", "top"});
  EXPECT_EQ(2, result.status);
  EXPECT_NE(std::string::npos, result.err.find("--svg")) << result.err;
}

}  // namespace
}  // namespace Lumivane::Host
