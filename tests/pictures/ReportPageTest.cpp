#include "visibility/Polygons.h"

#include <lumivane/measure/SunHours.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/ReportPage.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/SceneIndex.h>

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace Lumivane::Pictures {
namespace {

using Visibility::LookOptions;
using Visibility::MapShares;
using Visibility::PolygonScene;
using Visibility::SceneIndex;
using Visibility::VisibleMap;
using namespace Visibility::Samples;

// Seen from the origin upwards: a small square before half of a larger one, and one below.
PolygonScene squares(bool hasClasses) {
  PolygonBuilder builder;
  const auto add = [&builder](int object, double half, double z) {
    builder.add({{half, half, z}, {half, -half, z}, {-half, -half, z}, {-half, half, z}}, object);
  };
  add(1, 1.0, 4.0);
  add(2, 3.0, 8.0);
  add(3, 1.0, -4.0);
  builder.scene.objectIds = {"a < b", "roof", "cellar"};
  if (hasClasses) {
    builder.scene.classNames = {"Canopy", "Roof"};
    builder.scene.classes = {0, 1, -1};
  }
  return builder.scene;
}

struct Looked {
  explicit Looked(bool hasClasses, bool isAlone = true) {
    LookOptions options;
    options.forward = {0, 0, 1};
    options.alone = isAlone;
    options.twoSided = true;
    map = SceneIndex(squares(hasClasses)).look({0, 0, 0}, options);
  }
  ReportPage page() const {
    return {"scene & eye", VectorPicture(map, MapColors::byClass(map), MapPictureOptions()), map,
            MapShares(map)};
  }
  VisibleMap map;
};

// The page without its first line is XML.
pugi::xml_document parsed(const std::string& page) {
  pugi::xml_document document;
  const pugi::xml_parse_result result =
      document.load_string(page.substr(page.find('\n') + 1).c_str());
  EXPECT_TRUE(result) << result.description();
  return document;
}

std::vector<std::vector<std::string>> table(const pugi::xml_document& document,
                                            const std::string& title) {
  std::vector<std::vector<std::string>> rows;
  for (const pugi::xpath_node& row :
       document.select_nodes(("//section[h2='" + title + "']//tr").c_str())) {
    rows.emplace_back();
    for (const pugi::xml_node cell : row.node().children())
      rows.back().emplace_back(cell.text().get());
  }
  return rows;
}

TEST(ReportPage, HasThePictureTheEyeAndTheSkyViewFactor) {
  const Looked looked(true);
  const pugi::xml_document document = parsed(looked.page().text());
  EXPECT_STREQ("scene & eye", document.select_node("//h1").node().text().get());
  EXPECT_TRUE(document.select_node("//svg"));
  const auto fact = [&document](const std::string& name) {
    return std::string(
        document.select_node(("//dt[.='" + name + "']/following-sibling::dd[1]").c_str())
            .node()
            .text()
            .get());
  };
  EXPECT_EQ("0, 0, 0", fact("eye"));
  EXPECT_EQ("0, 0, 1", fact("forward"));
  const double sky = MapShares(looked.map).sky().viewFactor;
  EXPECT_NEAR(sky, std::stod(fact("sky view factor")), 1e-6);
}

TEST(ReportPage, ListsWhatIsSeenByClassTheMostFirstAndTheSkyLast) {
  const auto rows = table(parsed(Looked(true).page().text()), "By class");
  ASSERT_EQ(4U, rows.size());
  EXPECT_EQ("class", rows[0][0]);
  EXPECT_EQ("Roof", rows[1][0]);
  EXPECT_EQ("Canopy", rows[2][0]);
  EXPECT_EQ("sky", rows[3][0]);
  EXPECT_EQ("4.000", rows[2][5]);
  EXPECT_EQ("", rows[3][5]);
  double sum = 0.0;
  for (std::size_t i = 1; i < rows.size(); ++i) sum += std::stod(rows[i][2]);
  EXPECT_NEAR(1.0, sum, 3e-6);
}

TEST(ReportPage, ListsWhatIsSeenByObjectWithItsVisiblePart) {
  const pugi::xml_document document = parsed(Looked(true).page().text());
  const auto rows = table(document, "By object");
  ASSERT_EQ(4U, rows.size());
  EXPECT_EQ("roof", rows[1][0]);
  EXPECT_EQ("Roof", rows[1][1]);
  EXPECT_EQ("a < b", rows[2][0]);
  EXPECT_EQ((std::vector<std::string>{"object", "class", "area on the disc", "view factor",
                                      "solid angle, sr", "visible part of it", "least distance",
                                      "greatest distance"}),
            rows[0]);
  for (const auto& row : rows) EXPECT_EQ(rows[0].size(), row.size());
  EXPECT_EQ("1.000", rows[2][5]);
  EXPECT_GT(1.0, std::stod(rows[1][5]));
  EXPECT_STREQ("2 of 3 objects are seen",
               document.select_node("//section[h2='By object']/p").node().text().get());
}

TEST(ReportPage, ObjectOfSeveralClassesHasThoseOfWhatIsSeen) {
  Looked looked(true);
  // The canopy, in front, and the roof behind it as one object.
  auto names = std::make_shared<VisibleMap::Names>(*looked.map.names);
  for (Visibility::Label& label : names->regions)
    if (label.object == 2) label = {1, label.face, 2};
  for (VisibleMap::Cell& cell : looked.map.cells)
    if (cell.label.object == 2) cell.label = {1, cell.label.face, 2};
  looked.map.names = names;
  const auto rows = table(parsed(looked.page().text()), "By object");
  EXPECT_EQ("Roof, Canopy", rows.at(1).at(1));
}

TEST(ReportPage, LeavesOutWhatTheMapDoesNotKnow) {
  const std::string page = Looked(false, false).page().text();
  EXPECT_EQ(std::string::npos, page.find("By class"));
  EXPECT_EQ(std::string::npos, page.find("visible part"));
}

TEST(ReportPage, TakesTablesAndFactsOfAHost) {
  ReportPage page = Looked(true).page();
  page.addFact("place", "52.01, 4.36");
  page.add({"Sun hours", "of \"clear\" days", {"day", "hours"}, {{"21 March", "7.25"}}});
  const pugi::xml_document document = parsed(page.text());
  const auto rows = table(document, "Sun hours");
  ASSERT_EQ(2U, rows.size());
  EXPECT_EQ((std::vector<std::string>{"21 March", "7.25"}), rows[1]);
  EXPECT_TRUE(document.select_node("//dd[.='52.01, 4.36']"));
}

TEST(ReportPage, EqualLooksGiveEqualPages) {
  EXPECT_EQ(Looked(true).page().text(), Looked(true).page().text());
}

TEST(ReportPage, HoldsTheSunHoursOfTheEye) {
  const Looked looked(true);
  Measure::Place place;
  place.latitude = 52.5;
  place.longitude = -4.25;
  Measure::SunDay day;
  day.date = {2024, 3, 20};
  day.spans = {{0.0, 3600.0, 2, 1}, {3600.0, 5400.0, 0, -1}};
  ReportPage page = looked.page();
  page.addSun(looked.map, place, {day}, "<svg id=\"paths\"></svg>");
  const std::string text = page.text();
  const pugi::xml_document document = parsed(text);
  EXPECT_EQ((std::vector<std::vector<std::string>>{
                {"from", "to", "what", "how long"},
                {"00:00:00", "01:00:00", "behind roof (Roof)", "1:00:00"},
                {"01:00:00", "01:30:00", "sun", "0:30:00"}}),
            table(document, "From when to when"));
  EXPECT_EQ((std::vector<std::vector<std::string>>{{"day", "sun", "daylight"},
                                                   {"2024-03-20", "0:30:00", "1:30:00"}}),
            table(document, "Sun hours"));
  EXPECT_EQ(
      (std::vector<std::vector<std::string>>{{"what", "how long"}, {"roof (Roof)", "1:00:00"}}),
      table(document, "In front of the sun"));
  EXPECT_NE(std::string::npos, text.find("<dt>sun hours</dt><dd>0.500</dd>"));
  EXPECT_NE(std::string::npos, text.find("<dt>latitude, longitude</dt><dd>52.5, -4.25</dd>"));
  EXPECT_EQ(1U, document.select_nodes("//section//svg[@id='paths']").size());
}

TEST(ReportPage, OfManyDaysItHoldsMonths) {
  const Looked looked(true);
  std::vector<Measure::SunDay> days(40);
  for (std::size_t i = 0; i < days.size(); ++i) {
    days[i].date = Measure::dateOfDay(Measure::dayNumber({2024, 1, 1}) + static_cast<int>(i));
    days[i].spans = {{0.0, 360.0, 0, -1}};
  }
  ReportPage page = looked.page();
  page.addSun(looked.map, Measure::Place(), days, "");
  EXPECT_EQ((std::vector<std::vector<std::string>>{{"month", "sun", "daylight"},
                                                   {"2024-01", "3:06:00", "3:06:00"},
                                                   {"2024-02", "0:54:00", "0:54:00"},
                                                   {"together", "4:00:00", "4:00:00"}}),
            table(parsed(page.text()), "Sun hours"));
}

TEST(ReportPage, ATableWithoutColumnsIsANote) {
  ReportPage page = Looked(true).page();
  page.add({"Sun hours", "none", {}, {}});
  const pugi::xml_document document = parsed(page.text());
  EXPECT_EQ(1U, document.select_nodes("//section[h2='Sun hours']/p").size());
  EXPECT_EQ(0U, document.select_nodes("//section[h2='Sun hours']/table").size());
}

}  // namespace
}  // namespace Lumivane::Pictures
