// `lumivane sun`, run as a process.

#include "host/Process.h"
#include "support/TempFolder.h"

#include <lumivane/measure/SunPath.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>
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
  EXPECT_NE(std::string::npos,
            result.err.find("1 of 2 eyes lie inside a body or under the ground"));
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

// A table of eyes in the court, each a little higher.
std::string manyEyes(const TempFolder& folder, int count) {
  std::string text = "name,eye\n";
  for (int i = 0; i < count; ++i)
    text += "e" + std::to_string(i) + ",\"231.8,-183.6," + std::to_string(1 + i) + ".5\"\n";
  return folder.file("many.csv", text);
}

// The first lines of a file, the first few characters of the next one included.
void tear(const std::string& path, int lines) {
  const std::string text = fileBytes(path);
  std::size_t end = 0;
  for (int i = 0; i < lines; ++i) end = text.find('\n', end) + 1;
  std::ofstream(path, std::ios::trunc) << text.substr(0, end + 9);
}

TEST_F(SunProgram, WhatIsLeftOfAnEndedRunIsTakenFromItsJournal) {
  const Words command = Words{"--views", manyEyes(folder, 4)} + Place +
                        Words{"--day", "2024-03-20", "--sky", "patches:145"};
  const std::string days = folder.path("d.csv");
  const std::string values = folder.path("v.csv");
  const Words outputs = {"--days", days, "--totals", folder.path("t.csv"), "--sky-values", values};
  ASSERT_EQ(0, sun(command + outputs).status);
  EXPECT_FALSE(std::filesystem::exists(days + ".rows"));
  const std::string wholeTotals = fileBytes(folder.path("t.csv"));
  const std::string wholeValues = fileBytes(values);
  // A table that cannot be written leaves the journal as a run leaves it that is ended there.
  std::filesystem::create_symlink("/dev/full", folder.path("full.csv"));
  const Words failing = {"--days",       days,  "--totals", folder.path("full.csv"),
                         "--sky-values", values};
  EXPECT_EQ(1, sun(command + failing).status);
  ASSERT_TRUE(std::filesystem::exists(days + ".rows"));
  for (const int known : {4, 2, 0}) {
    if (known == 0) std::ofstream(days + ".rows") << "lumivane sun 0000000000000000\n0 0 0 0\n";
    if (known == 2) tear(days + ".rows", 1 + known);
    std::filesystem::remove(values);
    const Result again = sun(command + outputs);
    ASSERT_EQ(0, again.status) << again.err;
    const std::string line = std::to_string(known) + " eyes are known from the run before";
    EXPECT_EQ(known > 0, again.out.find(line) != std::string::npos) << again.out;
    EXPECT_EQ(wholeTotals, fileBytes(folder.path("t.csv"))) << known;
    EXPECT_EQ(wholeValues, fileBytes(values)) << known;
    EXPECT_FALSE(std::filesystem::exists(days + ".rows"));
    if (known > 2) {
      EXPECT_EQ(1, sun(command + failing).status);
    }
  }
}

TEST_F(SunProgram, ARunThatIsKilledGoesOnToTheSameBytes) {
  const std::string totals = folder.path("t.csv");
  const Words command = Words{"--views", manyEyes(folder, 12), "--year", "2024", "--totals",
                              totals,    "--threads",          "1"} +
                        Place;
  ASSERT_EQ(0, sun(command).status);
  const std::string whole = fileBytes(totals);
  std::filesystem::remove(totals);
  const auto hasRows = [&] {
    if (!std::filesystem::exists(totals + ".rows")) return false;
    const std::string rows = fileBytes(totals + ".rows");
    return std::count(rows.begin(), rows.end(), '\n') > 2;
  };
  const Result stopped = Lumivane::Test::runUntil(
      Words{LUMIVANE_PROGRAM, "sun", Rotterdam} + command, {{"DISPLAY", {}}}, 9, hasRows);
  if (stopped.bySignal) {
    EXPECT_FALSE(std::filesystem::exists(totals));
    const Result again = sun(command);
    ASSERT_EQ(0, again.status) << again.err;
    EXPECT_NE(std::string::npos, again.out.find(" eyes are known")) << again.out;
  }
  EXPECT_EQ(whole, fileBytes(totals));
  EXPECT_FALSE(std::filesystem::exists(totals + ".rows"));
}

TEST_F(SunProgram, ADayThatTheCalendarLeavesOutHasNoRow) {
  const Words apia = {"--latitude", "-13.83", "--longitude", "-171.76",
                      "--north",    "90",     "--time-zone", "Pacific/Apia"};
  const Result result =
      sun(Court + apia +
          Words{"--from", "2011-12-29", "--to", "2011-12-31", "--days", folder.path("d.csv")});
  ASSERT_EQ(0, result.status) << result.err;
  const std::vector<Words> days = rows(folder.path("d.csv"));
  ASSERT_EQ(3U, days.size());
  EXPECT_EQ("2011-12-29", days[1][1]);
  EXPECT_EQ("2011-12-29T07:04:", days[1][2].substr(0, 17));
  EXPECT_EQ("-10:00", days[1][2].substr(22));
  EXPECT_EQ("2011-12-31", days[2][1]);
  EXPECT_EQ("+14:00", days[2][2].substr(22));
  for (const std::size_t day : {1U, 2U}) EXPECT_NEAR(12.81, std::stod(days[day][7]), 0.01);
  const Result none = sun(Court + apia + Words{"--day", "2011-12-30"});
  EXPECT_EQ(1, none.status);
  EXPECT_NE(std::string::npos, none.err.find("2011-12-30 is in no calendar of the place"))
      << none.err;
}

TEST_F(SunProgram, ATimeThatClocksDoNotShowOnceIsRefusedButWithItsOffset) {
  const auto at = [](const std::string& time) {
    return sun(Court + Place + Words{"--sky", "cie:12", "--at", time});
  };
  const Result never = at("2024-03-31T02:30");
  EXPECT_EQ(2, never.status);
  EXPECT_NE(std::string::npos, never.err.find("put forward to 2024-03-31T03:00")) << never.err;
  const Result twice = at("2024-10-27T02:30");
  EXPECT_EQ(2, twice.status);
  EXPECT_NE(std::string::npos, twice.err.find("add +02:00 or +01:00")) << twice.err;
  EXPECT_NE(std::string::npos, at("2024-10-27T02:30+01:00").err.find("the sun is not up"));
  const std::string noon = at("2024-06-21T12:00").out;
  EXPECT_NE(std::string::npos, noon.find("level_component: "));
  EXPECT_EQ(noon, at("2024-06-21T12:00+02:00").out);
  EXPECT_EQ(noon, at("2024-06-21T10:00Z").out);
  EXPECT_NE(noon, at("2024-06-21T12:00Z").out);
}

TEST_F(SunProgram, ClassesOfATableStandBesideWhatIsInFrontOfTheSun) {
  const std::string classes =
      folder.file("c.csv", "id,class\n{C6AAF95B-8C09-4130-AB4D-6777A2A18A2E},\"Mill, old\"\n");
  const Words command = Court + Place + Words{"--day", "2024-03-20", "--classes", classes};
  const Result printed = sun(command);
  ASSERT_EQ(0, printed.status) << printed.err;
  EXPECT_NE(std::string::npos,
            printed.out.find("behind {C6AAF95B-8C09-4130-AB4D-6777A2A18A2E} (Mill, old): 4.08"))
      << printed.out;
  ASSERT_EQ(0, sun(command + Words{"--intervals", folder.path("i.json"), "--svg",
                                   folder.path("p.svg"), "--color-by", "class"})
                   .status);
  std::set<std::string> found;
  const json intervals = json::parse(fileBytes(folder.path("i.json")));
  for (const json& row : intervals.at("rows"))
    if (row.contains("class")) found.insert(row.at("class").get<std::string>());
  EXPECT_EQ((std::set<std::string>{"Mill, old", "Wall"}), found);
  EXPECT_EQ(2, sun(command + Words{"--days", classes}).status);
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
  const std::string out = folder.path("d.csv");
  refused(Court + Place + day + Words{"--days", out, "--totals", out},
          "--totals: \"" + out + "\" is already named for another file");
  refused(Court + Words{"--sky", "uniform", "--horizon-step", "5"}, "--horizon");
  refused(Court + Words{"--sky", "uniform", "--patch-values", "cosine"}, "--patch-values: is for");
  refused(Court + Words{"--sky", "uniform", "--sun-above", "5"}, "--sun-above: is for sun hours");
  refused(Court + Words{"--sky", "uniform", "--size", "9x9"}, "--size: is that of the diagram");
  refused(Court + Words{"--sky", "uniform", "--projection", "fisheye"},
          "--projection: is that of the diagram");
  refused(Court + Place + Words{"--from", "2024-03-02", "--to", "2024-03-01"}, "--to: is before");
  refused(Court + Words{"--sky", "uniform", "--plane", "0,0,0"}, "--plane: is not a direction");
  refused(Court + Place + day + Words{"--plane", "0,1,0"}, "--plane: gets the light of --sky");
  refused(Court + Words{"--sky", "uniform", "--at", "2024-06-21T12:00"}, "--at: is for skies");
}

}  // namespace
}  // namespace Lumivane::Host
