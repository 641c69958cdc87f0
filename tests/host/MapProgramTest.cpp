// `lumivane map`, run as a process.

#include "host/CityScene.h"
#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::cityText;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

class MapProgram : public ::testing::Test {
 protected:
  Result map(const std::string& table, const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = {LUMIVANE_PROGRAM, "map", model,
                                          folder.file("values.csv", table)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
  }

  // The layer of the values in the picture of a table.
  std::string values(const std::string& table, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> options = {"--svg", folder.path("map.svg")};
    options.insert(options.end(), more.begin(), more.end());
    const Result result = map(table, options);
    EXPECT_EQ(0, result.status) << result.err;
    const std::string svg = fileBytes(folder.path("map.svg"));
    const std::size_t begin = svg.find("<g id=\"values\"");
    EXPECT_NE(std::string::npos, begin);
    return svg.substr(begin, svg.find("</g>", begin) - begin);
  }

  static std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++found;
    return found;
  }

  TempFolder folder;
  std::string model = folder.file("city.city.json", cityText());
};

// In the scene's coordinates, which the import has moved by -10 and -6.
const std::string Grid =
    "name,status,eye_x,eye_y,eye_z,v\n"
    "a,ok,-9.5,-5.5,3,0\n"
    "b,ok,-7.5,-5.5,3,0.5\n"
    "c,ok,-9.5,-3.5,3,1\n"
    "d,failed,,,,\n";

TEST_F(MapProgram, ColoursAreThoseOfTheScale) {
  const std::string layer = values(Grid, {"--column", "v"});
  EXPECT_EQ(3U, count(layer, "<path"));
  EXPECT_EQ(1U, count(layer, "id=\"value-0\""));
  EXPECT_EQ(1U, count(layer, "id=\"value-255\""));
  EXPECT_NE(std::string::npos, layer.find("#440154")) << layer;  // dark blue, of the least
  EXPECT_NE(std::string::npos, layer.find("#fde725")) << layer;  // yellow, of the greatest
}

TEST_F(MapProgram, ValuesOutsideTheRangeHaveTheColourOfItsEnd) {
  const std::string layer = values(Grid, {"--column", "v", "--range", "0.5,0.75"});
  EXPECT_EQ(2U, count(layer, "<path"));
  EXPECT_EQ(1U, count(layer, "id=\"value-0\""));
  EXPECT_EQ(1U, count(layer, "id=\"value-255\""));
}

// At 1:100 a square of 2 m has 20 mm.
TEST_F(MapProgram, SquaresOfAGridAreItsCells) {
  const std::string layer = values(Grid, {"--column", "v", "--scale", "1:100"});
  EXPECT_NE(std::string::npos, layer.find("20 ")) << layer;
  EXPECT_EQ(std::string::npos, layer.find("stroke=\"#000\"")) << layer;
  const std::string dots = values(Grid, {"--column", "v", "--cell", "0"});
  EXPECT_NE(std::string::npos, dots.find("stroke=\"#000\"")) << dots;
}

// As on walls: where outlines of one path overlap, it would not be filled.
TEST_F(MapProgram, DotsOverEachOtherAreAllFilledAndTheHighestIsOnTop) {
  const std::string table =
      "eye_x,eye_y,eye_z,v\n-9.5,-5.5,3,1\n-9.5,-5.5,6,0\n-9.5,-5.5,4,1\n-7.25,-5.5,3,0.5\n";
  const std::string layer = values(table, {"--column", "v", "--cell", "0"});
  EXPECT_EQ(4U, count(layer, "<path")) << layer;
  EXPECT_EQ(2U, count(layer, "fill=\"#fde725\"")) << layer;
  EXPECT_LT(layer.rfind("fill=\"#fde725\""), layer.find("fill=\"#440154\"")) << layer;
  const Result result =
      map(table, {"--column", "v", "--cell", "0", "--svg", folder.path("map.svg")});
  EXPECT_NE(std::string::npos,
            result.err.find("2 eyes stand straight below others, which are drawn over them"))
      << result.err;
  // Squares that overlap, too.
  EXPECT_EQ(4U, count(values(table, {"--column", "v", "--cell", "3"}), "<path"));
}

TEST_F(MapProgram, EyesMayStandInATableOfTheirOwn) {
  const std::string views = folder.file("views.csv", "name,eye\na,\"-9.5,-5.5,3\"\n");
  const std::string shares = "name,kind,view_factor\na,total,0.25\na,sky,0.75\n";
  const std::string layer =
      values(shares, {"--views", views, "--column", "view_factor", "--where", "kind=sky"});
  EXPECT_EQ(1U, count(layer, "<path"));
  const Result both = map(shares, {"--column", "view_factor", "--svg", folder.path("map.svg")});
  EXPECT_EQ(1, both.status);
  EXPECT_NE(std::string::npos, both.err.find("has no eyes")) << both.err;
}

TEST_F(MapProgram, AllKindsOfFilesAreWritten) {
  const Result result = map(Grid, {"--column", "v", "--svg", folder.path("a.svg"), "--pdf",
                                   folder.path("a.pdf"), "--png", folder.path("a.png")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, result.err.find("1 rows have no value of v and are left out"));
  EXPECT_EQ(0U, fileBytes(folder.path("a.pdf")).find("%PDF"));
  EXPECT_EQ(1U, fileBytes(folder.path("a.png")).find("PNG"));
  EXPECT_NE(std::string::npos, fileBytes(folder.path("a.svg")).find(">v</text>"));
}

TEST_F(MapProgram, SeveralValuesOfOneEyeAreNotDrawnOverEachOther) {
  const std::string table = "kind,eye_x,eye_y,eye_z,v\nsky,-5,0,2,1\nobject,-5,0,2,9\n";
  const Result both = map(table, {"--column", "v", "--svg", folder.path("map.svg")});
  EXPECT_EQ(1, both.status);
  EXPECT_NE(std::string::npos, both.err.find("choose among them with --where")) << both.err;
  EXPECT_EQ(
      0,
      map(table, {"--column", "v", "--where", "kind=sky", "--svg", folder.path("map.svg")}).status);
}

TEST_F(MapProgram, EyesBesideTheSceneAreReported) {
  const std::string heading = "eye_x,eye_y,eye_z,v\n";
  const std::string far = "5000,0,1,1\n";
  const Result none = map(heading + far, {"--column", "v", "--svg", folder.path("map.svg")});
  EXPECT_EQ(1, none.status);
  EXPECT_NE(std::string::npos, none.err.find("no eye of it lies over the scene")) << none.err;
  const Result one = map(heading + far + "-5,0,2,1\n",
                         {"--column", "v", "--cell", "1", "--svg", folder.path("map.svg")});
  EXPECT_EQ(0, one.status);
  EXPECT_NE(std::string::npos, one.err.find("1 of 2 eyes lie beside the scene")) << one.err;
}

TEST_F(MapProgram, NonsenseIsReported) {
  EXPECT_EQ(2, map(Grid, {"--column", "v"}).status);
  const std::string svg = folder.path("map.svg");
  const Result column = map(Grid, {"--column", "w", "--svg", svg});
  EXPECT_EQ(1, column.status);
  EXPECT_NE(std::string::npos,
            column.err.find("has no column \"w\"; there are name, status, eye_x, eye_y, eye_z, v"))
      << column.err;
  const Result text = map(Grid, {"--column", "status", "--svg", svg});
  EXPECT_EQ(1, text.status);
  EXPECT_NE(std::string::npos, text.err.find("line 2: column \"status\": \"ok\" is not a number"))
      << text.err;
  const Result none = map(Grid, {"--column", "v", "--where", "name=z", "--svg", svg});
  EXPECT_EQ(1, none.status);
  EXPECT_NE(std::string::npos, none.err.find("has no value in column \"v\" where name is \"z\""))
      << none.err;
  EXPECT_EQ(2, map(Grid, {"--column", "v", "--range", "1,0", "--svg", svg}).status);
  EXPECT_EQ(2, map(Grid, {"--column", "v", "--where", "name", "--svg", svg}).status);
}

}  // namespace
}  // namespace Lumivane::Host
