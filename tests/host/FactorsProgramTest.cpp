// `lumivane factors`, run as a process.

#include "host/Process.h"
#include "support/TempFolder.h"

#include <lumivane/measure/FactorText.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";

Result factors(std::vector<std::string> more, const std::string& scene = Small) {
  std::vector<std::string> command = {LUMIVANE_PROGRAM, "factors", scene, "--tolerance", "1e-2"};
  command.insert(command.end(), more.begin(), more.end());
  return Lumivane::Test::runProcess(command, {{"DISPLAY", {}}});
}

// The numbers of a table, without its heading.
std::vector<std::vector<double>> numbers(const std::string& path) {
  std::vector<std::vector<double>> rows;
  std::istringstream text(fileBytes(path));
  std::string line;
  std::getline(text, line);
  EXPECT_EQ("i,j,view_factor,estimate", line);
  while (std::getline(text, line)) {
    rows.emplace_back();
    std::istringstream fields(line);
    for (std::string field; std::getline(fields, field, ',');)
      rows.back().push_back(std::stod(field));
  }
  return rows;
}

TEST(FactorsProgram, AToleranceThatIsNoneIsRefusedWithItsRange) {
  for (const char* const wrong : {"0", "-1", "2", "9e-8", "nan", "small"}) {
    const Result result = Lumivane::Test::runProcess(
        {LUMIVANE_PROGRAM, "factors", Small, "-o", "f.csv", "--tolerance", wrong});
    EXPECT_EQ(2, result.status) << wrong;
    EXPECT_EQ(std::string("lumivane: --tolerance: \"") + wrong +
                  "\" is not a number from 1e-07 to 1 (see --help)\n",
              result.err);
  }
}

TEST(FactorsProgram, RowsOfTheTableAddUpToOneWithTheSky) {
  const TempFolder folder;
  const Result result = factors({"-o", folder.path("f.csv")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, result.out.find("in 10 of 10 rows"));
  EXPECT_NE(std::string::npos, result.out.find("reciprocity: off by"));
  std::map<double, double> sums;
  for (const std::vector<double>& row : numbers(folder.path("f.csv"))) {
    ASSERT_EQ(4U, row.size());
    sums[row[0]] += row[2];
  }
  ASSERT_EQ(10U, sums.size());
  for (const auto& [row, sum] : sums) EXPECT_NEAR(1.0, sum, 1e-12) << row;
}

TEST(FactorsProgram, ElementsOfTheTableAreThoseOfTheScene) {
  const TempFolder folder;
  ASSERT_EQ(0, factors({"-o", folder.path("f.csv"), "--elements", folder.path("e.csv"),
                        "--two-sided", "--rows", "1:2"})
                   .status);
  std::istringstream text(fileBytes(folder.path("e.csv")));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  ASSERT_EQ(21U, lines.size());
  EXPECT_EQ(0U, lines[1].find("1,1,plate,1,1,front,"));
  EXPECT_EQ(0U, lines[2].find("2,1,plate,1,1,back,"));
  EXPECT_EQ(0U, lines[20].find("20,3,pyramid,4,4,back,"));
}

TEST(FactorsProgram, ReciprocalFactorsAgreeInBothDirections) {
  const TempFolder folder;
  const Result result =
      factors({"-o", folder.path("f.csv"), "--elements", folder.path("e.csv"), "--reciprocal"});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, result.out.find("; now by "));
  std::map<double, double> areas;
  std::istringstream text(fileBytes(folder.path("e.csv")));
  std::string line;
  std::getline(text, line);
  while (std::getline(text, line)) {
    std::istringstream fields(line);
    std::vector<std::string> cells;
    for (std::string field; std::getline(fields, field, ',');) cells.push_back(field);
    areas[std::stod(cells.at(0))] = std::stod(cells.at(7));
  }
  std::map<std::pair<double, double>, double> exchanges;
  for (const std::vector<double>& row : numbers(folder.path("f.csv")))
    if (row[1] > 0.0) exchanges[{row[0], row[1]}] = areas[row[0]] * row[2];
  ASSERT_FALSE(exchanges.empty());
  for (const auto& [pair, exchange] : exchanges)
    EXPECT_NEAR(exchange, exchanges.at({pair.second, pair.first}), 1e-12);
}

TEST(FactorsProgram, AnEndedRunGoesOnWithTheRowsOfItsJournal) {
  const TempFolder folder;
  const std::string out = folder.path("f.csv");
  ASSERT_EQ(0, factors({"-o", out, "--rows", "1:4"}).status);
  EXPECT_FALSE(fs::exists(out + ".rows"));
  ASSERT_EQ(0, factors({"-o", out}).status);
  const std::string whole = fileBytes(out);
  // A journal as a killed run leaves it: some rows, the last one torn.
  ASSERT_EQ(0, factors({"-o", folder.path("keep.json")}).status);
  const Result stopped = Lumivane::Test::runUntil(
      {LUMIVANE_PROGRAM, "factors", Small, "--tolerance", "1e-2", "--threads", "1", "-o", out},
      {{"DISPLAY", {}}}, 9, [&] { return fs::exists(out + ".rows"); });
  if (stopped.bySignal) {
    std::ofstream(out + ".rows", std::ios::app) << "7 1 1 0.5 0.";
    const Result again = factors({"-o", out});
    ASSERT_EQ(0, again.status) << again.err;
  }
  EXPECT_EQ(whole, fileBytes(out));
  EXPECT_FALSE(fs::exists(out + ".rows"));
}

TEST(FactorsProgram, AJournalOfOtherOptionsIsPassedOver) {
  const TempFolder folder;
  const std::string out = folder.path("f.csv");
  std::ofstream(out + ".rows") << "lumivane factors 0000000000000000\n0 1 1 0 1 0 0\n";
  const Result result = factors({"-o", out});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ(std::string::npos, result.out.find("are known"));
  const std::string text = fileBytes(out);
  ASSERT_EQ(0, factors({"-o", folder.path("g.csv")}).status);
  EXPECT_EQ(fileBytes(folder.path("g.csv")), text);
}

TEST(FactorsProgram, SciPyReadsTheArchiveAsTheMatrix) {
  if (!Measure::FactorText::hasNpz()) GTEST_SKIP() << "built without libarchive";
  const std::string python = "/usr/bin/python3";
  if (!fs::exists(python) ||
      Lumivane::Test::runProcess({python, "-c", "import scipy.sparse"}).status != 0)
    GTEST_SKIP() << "there is no SciPy";
  const TempFolder folder;
  ASSERT_EQ(0, factors({"-o", folder.path("f.npz")}).status);
  const Result result =
      Lumivane::Test::runProcess({python, "-c",
                                  "import sys, numpy, scipy.sparse\n"
                                  "m = scipy.sparse.load_npz(sys.argv[1])\n"
                                  "z = numpy.load(sys.argv[1])\n"
                                  "assert m.shape == (10, 10) and m.nnz == z['estimate'].size, m\n"
                                  "sums = numpy.asarray(m.sum(axis=1)).ravel() + z['sky']\n"
                                  "assert abs(sums - 1).max() < 1e-12, sums\n"
                                  "assert abs(z['area'][0] - 16) < 1e-12, z['area']\n",
                                  folder.path("f.npz")});
  EXPECT_EQ(0, result.status) << result.err;
}

TEST(FactorsProgram, WrongArgumentsAreNamed) {
  const TempFolder folder;
  const auto refused = [&](std::vector<std::string> more, const std::string& text) {
    const Result result = factors(std::move(more));
    EXPECT_NE(0, result.status) << text;
    EXPECT_NE(std::string::npos, result.err.find(text)) << result.err;
  };
  refused({"-o", folder.path("f.txt")}, "does not end in .csv, .json or .npz");
  refused({"-o", folder.path("f.csv"), "--rows", "5:4"}, "is not FIRST:LAST");
  refused({"-o", folder.path("f.csv"), "--rows", "1:11"}, "there are 10 elements");
  refused({"-o", folder.path("f.csv"), "--rows", "1:2", "--reciprocal"}, "leave out --rows");
  refused({"-o", folder.path("f.csv"), "--elements", folder.path("f.csv")}, "f.csv");
  refused({"-o", Small}, "small.json");
}

}  // namespace
}  // namespace Lumivane::Host
