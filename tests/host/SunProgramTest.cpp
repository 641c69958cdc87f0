// `lumivane sun`, run as a process.

#include "host/Process.h"
#include "support/TempFolder.h"

#include <lumivane/measure/SunPath.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;
using nlohmann::json;
using Words = std::vector<std::string>;

const std::string Rotterdam = LUMIVANE_SCENES "/models/rotterdam.city.json";
const Words Court = {"--eye", "231.8,-183.6,1.6"};
const Words Place = {"--latitude",  "51.917",           "--longitude", "4.486",
                     "--time-zone", "Europe/Amsterdam", "--north",     "0,1,0"};

Words operator+(Words a, const Words& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Result sun(const Words& more, const std::string& scene = Rotterdam) {
  return Lumivane::Test::runProcess(Words{LUMIVANE_PROGRAM, "sun", scene} + more,
                                    {{"DISPLAY", {}}});
}

std::vector<Words> rows(const std::string& path) {
  std::vector<Words> result;
  std::istringstream text(fileBytes(path));
  for (std::string line; std::getline(text, line);) {
    result.emplace_back();
    std::istringstream fields(line + ",");
    for (std::string field; std::getline(fields, field, ',');) result.back().push_back(field);
  }
  return result;
}

class SunProgram : public testing::Test {
 protected:
  void SetUp() override {
    if (!Measure::SunPath::isBuilt()) GTEST_SKIP() << "built without libnova";
  }
  TempFolder folder;
};

TEST_F(SunProgram, IntervalsOfADayFollowEachOther) {
  const Result result = sun(Court + Place +
                            Words{"--day", "2024-03-20", "--intervals", folder.path("i.csv"),
                                  "--days", folder.path("d.csv")});
  ASSERT_EQ(0, result.status) << result.err;
  const std::vector<Words> spans = rows(folder.path("i.csv"));
  ASSERT_EQ(10U, spans.size());
  EXPECT_EQ((Words{"name", "date", "start", "end", "seconds", "state", "object", "id", "class"}),
            spans[0]);
  EXPECT_EQ("2024-03-20T06:49:13", spans[1][2].substr(0, 19));
  EXPECT_EQ("+01:00", spans[1][2].substr(22));
  EXPECT_EQ("shade", spans[1][5]);
  double lit = 0.0;
  for (std::size_t i = 1; i < spans.size(); ++i) {
    if (i > 1) {
      EXPECT_EQ(spans[i - 1][3], spans[i][2]);
    }
    if (spans[i][5] != "sun") continue;
    lit += std::stod(spans[i][4]);
    EXPECT_EQ("", spans[i][6]);
  }
  const std::vector<Words> days = rows(folder.path("d.csv"));
  ASSERT_EQ(2U, days.size());
  EXPECT_NEAR(lit / 3600.0, std::stod(days[1][6]), 1e-9);
  EXPECT_NEAR(1.67, std::stod(days[1][6]), 0.01);
}

TEST_F(SunProgram, AYearHasItsMonthsAndTotals) {
  const Result result = sun(Court + Place +
                            Words{"--year", "2024", "--months", folder.path("m.json"), "--totals",
                                  folder.path("t.json")});
  ASSERT_EQ(0, result.status) << result.err;
  const json months = json::parse(fileBytes(folder.path("m.json")));
  ASSERT_EQ(12U, months.at("rows").size());
  double lit = 0.0;
  for (const json& month : months.at("rows")) lit += month.at("sun_hours").get<double>();
  const json totals = json::parse(fileBytes(folder.path("t.json")));
  EXPECT_NEAR(lit, totals.at("rows").at(0).at("sun_hours").get<double>(), 1e-6);
  EXPECT_EQ(366, totals.at("rows").at(0).at("days").get<int>());
  EXPECT_EQ(0, totals.at("rows").at(0).at("inside").get<int>());
}

TEST_F(SunProgram, ClocksOfANamedZoneChange) {
  const Result result =
      sun(Court + Place +
          Words{"--from", "2024-03-30", "--to", "2024-03-31", "--days", folder.path("d.csv")});
  ASSERT_EQ(0, result.status) << result.err;
  const std::vector<Words> days = rows(folder.path("d.csv"));
  EXPECT_EQ("+01:00", days.at(1).at(2).substr(22));
  EXPECT_EQ("+02:00", days.at(2).at(2).substr(22));
}

TEST_F(SunProgram, ManyEyesHaveARowEachAndThoseInsideAreFlagged) {
  std::ofstream(folder.path("views.csv")) << "name,eye\ncourt,\"231.8,-183.6,1.6\"\n"
                                             "house,\"241,-160,3\"\n";
  const Result result = sun(Words{"--views", folder.path("views.csv")} + Place +
                            Words{"--day", "2024-06-21", "--totals", folder.path("t.csv"), "--sky",
                                  "patches:145", "--sky-values", folder.path("s.csv")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, result.err.find("1 of 2 eyes lie inside a body"));
  const std::vector<Words> totals = rows(folder.path("t.csv"));
  ASSERT_EQ(3U, totals.size());
  EXPECT_EQ("court", totals[1][0]);
  EXPECT_EQ("0", totals[1][4]);
  EXPECT_EQ("1", totals[2][4]);
  const std::vector<Words> patches = rows(folder.path("s.csv"));
  ASSERT_EQ(3U, patches.size());
  EXPECT_EQ(150U, patches[0].size());
  EXPECT_EQ("p001", patches[0][5]);
  double open = 0.0;
  for (std::size_t i = 5; i < 150; ++i) open += std::stod(patches[1][i]);
  EXPECT_NEAR(2.1078, open, 1e-3);
  const std::string atOnce = fileBytes(folder.path("t.csv"));
  ASSERT_EQ(0, sun(Words{"--views", folder.path("views.csv"), "--threads", "1"} + Place +
                   Words{"--day", "2024-06-21", "--totals", folder.path("t.csv")})
                   .status);
  EXPECT_EQ(fileBytes(folder.path("t.csv")), atOnce);
}

TEST_F(SunProgram, TheDiagramAndThePageHoldTheCellsAndThePaths) {
  const Result result =
      sun(Court + Place + Words{"--day", "2024-03-20", "--svg", folder.path("p.svg")});
  const Result page =
      sun(Court + Place + Words{"--day", "2024-03-20", "--html", folder.path("p.html")});
  ASSERT_EQ(0, page.status) << page.err;
  EXPECT_NE(std::string::npos, fileBytes(folder.path("p.html")).find("<td>14:16:38</td>"));
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, result.out.find("2024-03-20: 1.67"));
  EXPECT_NE(std::string::npos, result.out.find("  behind {C6AAF95B"));
  const std::string svg = fileBytes(folder.path("p.svg"));
  for (const char* part : {"<g id=\"map\"", "<g id=\"sun\"", ">21 Jun</text>", ">12</text>",
                           ">N</text>", "stroke=\"#ff9800\""})
    EXPECT_NE(std::string::npos, svg.find(part)) << part;
}

TEST(SunProgramSky, HorizonAndOvercastSkyNeedNoSun) {
  const TempFolder folder;
  const Result result =
      sun(Court + Words{"--north", "90", "--latitude", "51.9", "--horizon", folder.path("h.hor"),
                        "--horizon-step", "5", "--sky", "cie:16", "--plane", "0,1,0"});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, result.out.find("level_component: 0.596456"));
  EXPECT_NE(std::string::npos, result.out.find("plane_component: 0.0822356"));
  std::istringstream lines(fileBytes(folder.path("h.hor")));
  int count = 0;
  for (std::string line; std::getline(lines, line);) count += line[0] == '#' ? 0 : 1;
  EXPECT_EQ(72, count);
}

TEST(SunProgramSky, ATableWithoutEyesIsRefused) {
  const TempFolder folder;
  const std::string table = folder.file("views.csv", "name,forward\na,\"0,0,1\"\n");
  const Result result = sun({"--views", table, "--sky", "uniform"});
  EXPECT_EQ(1, result.status);
  EXPECT_NE(std::string::npos, result.err.find("views.csv: has no column \"eye\"")) << result.err;
}

TEST(SunProgramSky, WrongArgumentsAreNamed) {
  const TempFolder folder;
  const auto refused = [](const Words& more, const std::string& text) {
    const Result result = sun(more);
    EXPECT_NE(0, result.status) << text;
    EXPECT_NE(std::string::npos, result.err.find(text)) << result.err;
    EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n')) << result.err;
  };
  const Words day = {"--day", "2024-06-21"};
  const Words noNorth = {"--latitude", "51.9", "--longitude", "4.4", "--time-zone", "1"};
  refused(Place + day, "--eye: is needed");
  refused(Court + day, "--latitude: is needed");
  refused(Court + noNorth + day, "--north: is needed");
  refused(Court + Place, "--day: is needed");
  refused(Court + Words{"--latitude", "-90.5"}, "\"-90.5\" is not from -90 to 90 degrees");
  refused(Court + Place + Words{"--day", "2023-02-29"}, "\"2023-02-29\" is no day YYYY-MM-DD");
  refused(Court + noNorth + day + Words{"--north", "0,0,1"}, "nor a direction X,Y,Z");
  refused(Court +
              Words{"--latitude", "1", "--longitude", "1", "--north", "90", "--time-zone",
                    "Mars/Phobos"} +
              day,
          "\"Mars/Phobos\" is neither an offset from UTC");
  refused(Court + Place + Words{"--sky", "cie:17"}, "\"cie:17\" is not uniform");
  refused(Court + Place + Words{"--sky", "cie:12"}, "--at: is needed");
  for (const char* at : {"2024-06-21", "2024-06-21T24:00", "2024-06-21T12:60", "2024-06-31T12:00",
                         "2024-06-21T1:000", "2024-06-21T12:00:00"})
    refused(Court + Place + Words{"--sky", "cie:12", "--at", at}, "is no time YYYY-MM-DDTHH:MM");
  refused(Court + Place + Words{"--sky", "patches:145"}, "--sky-values: is needed");
  refused(Court + Place + Words{"--horizon", folder.path("h.hor"), "--horizon-step", "7"},
          "does not divide 360");
  refused(Court + Place + day + Words{"--days", Rotterdam}, "rotterdam.city.json");
  refused(Court + Place + Words{"--from", "2024-03-02", "--to", "2024-03-01"}, "--to: is before");
  refused(Court + Words{"--sky", "uniform", "--plane", "0,0,0"}, "--plane: is not a direction");
  refused(Court + Place + day + Words{"--plane", "0,1,0"}, "--plane: gets the light of --sky");
  refused(Court + Words{"--sky", "uniform", "--at", "2024-06-21T12:00"}, "--at: is for skies");
}

}  // namespace
}  // namespace Lumivane::Host
