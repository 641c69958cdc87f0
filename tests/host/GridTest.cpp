// `lumivane grid`, run as a process.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";  // x and y from -2 to 2, from z 0 up

Result grid(std::vector<std::string> more) {
  std::vector<std::string> arguments = {LUMIVANE_PROGRAM, "grid", Small};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

std::vector<std::string> rows(const Result& result) {
  EXPECT_EQ(0, result.status) << result.err;
  std::vector<std::string> found;
  std::istringstream stream(result.out);
  for (std::string line; std::getline(stream, line);) found.push_back(line);
  return found;
}

TEST(GridProgram, EyesStandInTheMiddleOfTheGroundWithTheSpacingGiven) {
  const std::vector<std::string> table = rows(grid({"--spacing", "3", "--height", "1.5"}));
  ASSERT_EQ(5U, table.size());
  EXPECT_EQ("name,eye,forward,up,row,column,cell,inside", table[0]);
  EXPECT_EQ("r1c1,\"-1.5,-1.5,1.5\",\"0,0,1\",\"1,0,0\",1,1,3,0", table[1]);
  EXPECT_EQ("r2c1,\"-1.5,1.5,1.5\",\"0,0,1\",\"1,0,0\",2,1,3,0", table[3]);
}

TEST(GridProgram, HorizontalViewsTurnByTheirHeadings) {
  const std::vector<std::string> table =
      rows(grid({"--spacing", "100", "--height", "1", "--ground", "2", "--look", "horizontal",
                 "--heading", "0,90"}));
  ASSERT_EQ(3U, table.size());
  EXPECT_EQ("r1c1h0,\"0,0,3\",\"1,0,0\",\"0,0,1\",1,1,100,0", table[1]);
  EXPECT_EQ("r1c1h90,\"0,0,3\",\"0,1,0\",\"0,0,1\",1,1,100,0", table[2]);
}

TEST(GridProgram, EyesInsideBodiesAreLeftOutOnRequest) {
  const size_t all = rows(grid({"--spacing", "0.25", "--height", "0.1"})).size();
  const size_t outside =
      rows(grid({"--spacing", "0.25", "--height", "0.1", "--skip-inside"})).size();
  EXPECT_LT(outside, all);
  EXPECT_GT(outside, all / 2);
}

TEST(GridProgram, EyesOverALevelThatAreInsideBodiesOrUnderTheGroundAreFlagged) {
  const auto flagged = [](const std::string& height) {
    const std::vector<std::string> table = rows(grid({"--spacing", "0.25", "--height", height}));
    size_t count = 0;
    for (const std::string& row : table) count += row.substr(row.size() - 2) == ",1" ? 1 : 0;
    return std::make_pair(count, table.size() - 1);
  };
  const auto [inside, all] = flagged("0.1");
  EXPECT_EQ(inside,
            all + 1 - rows(grid({"--spacing", "0.25", "--height", "0.1", "--skip-inside"})).size());
  EXPECT_GT(inside, 0U);
  const auto [under, places] = flagged("-0.1");
  EXPECT_EQ(places, under);
}

TEST(GridProgram, TheTableSuitsTheBatch) {
  const TempFolder folder;
  EXPECT_EQ(0, grid({"--spacing", "2", "--height", "3", "-o", folder.path("views.csv")}).status);
  const Result result =
      Lumivane::Test::runProcess({LUMIVANE_PROGRAM, "batch", Small, folder.path("views.csv"),
                                  "--out-dir", folder.path("out")});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_EQ(0U, result.out.find("9 of 9 views made"));
}

TEST(GridProgram, NonsenseIsReported) {
  const Result zero = grid({"--spacing", "0", "--height", "1"});
  EXPECT_EQ(1, zero.status);
  EXPECT_EQ("lumivane: --spacing: must be greater than 0\n", zero.err);
  EXPECT_EQ(2, grid({"--spacing", "inf", "--height", "1"}).status);
  EXPECT_NE(std::string::npos,
            grid({"--spacing", "1e300", "--height", "1"}).out.find(",1,1,1e+300,0\n"));
  const Result many = grid({"--spacing", "1e-4", "--height", "1"});
  EXPECT_EQ(1, many.status);
  EXPECT_EQ("lumivane: --spacing: 1e-04 makes more than 1e+07 eyes over the scene\n", many.err);
  EXPECT_EQ(2, grid({"--spacing", "1"}).status);
  EXPECT_EQ(2, grid({"--spacing", "1", "--height", "1", "--look", "back"}).status);
  const Result heading = grid({"--spacing", "1", "--height", "1", "--heading", "1,x"});
  EXPECT_EQ(2, heading.status);
  EXPECT_EQ("lumivane: --heading: \"1,x\" is not a list of degrees D,D,... (see --help)\n",
            heading.err);
}

}  // namespace
}  // namespace Lumivane::Host
