// The sun's paths over the sky of an eye.

#include <lumivane/pictures/SunDiagram.h>
#include <lumivane/visibility/SceneIndex.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace Lumivane::Pictures {
namespace {

using Visibility::PolygonScene;
using Visibility::SceneIndex;

class SunDiagramTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!Measure::SunPath::isBuilt()) GTEST_SKIP() << "built without libnova";
    place.latitude = 52.0;
    place.longitude = 15.0;
    place.zone = Measure::TimeZone(3600);
  }
  static Visibility::VisibleMap openSky(const Measure::Place& place) {
    return SceneIndex{PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}}.look(
        {}, Measure::lookUpwards(place));
  }
  pugi::xml_node sunOf(const SunDiagramOptions& options = {}) {
    const std::string text = sunDiagram(openSky(place), MapColors(), place, options);
    EXPECT_TRUE(document.load_string(text.c_str()));
    return document.child("svg").find_child_by_attribute("g", "id", "sun");
  }
  // Where a name stands.
  static std::pair<double, double> placeOf(pugi::xml_node group, const std::string& name) {
    for (const pugi::xml_node node : group.children("text"))
      if (node.text().get() == name)
        return {node.attribute("x").as_double(), node.attribute("y").as_double()};
    ADD_FAILURE() << name << " is missing";
    return {};
  }

  Measure::Place place;
  pugi::xml_document document;
};

TEST_F(SunDiagramTest, NorthIsAboveAndEastOnTheLeft) {
  const pugi::xml_node sun = sunOf();
  EXPECT_LT(placeOf(sun, "N").second, 100.0);
  EXPECT_GT(placeOf(sun, "S").second, 700.0);
  EXPECT_LT(placeOf(sun, "E").first, 100.0);
  EXPECT_GT(placeOf(sun, "W").first, 700.0);
  EXPECT_LT(placeOf(sun, "6").first, 300.0);
  EXPECT_GT(placeOf(sun, "18").first, 500.0);
}

TEST_F(SunDiagramTest, TheArcsAreAsHighAtNoonAsDeclinationAndLatitudeSay) {
  // On the equidistant fisheye the angle from the zenith is the distance from the middle.
  const pugi::xml_node sun = sunOf();
  const double radius = 400.0 / 1.14;
  const auto angleOf = [&](const char* name) {
    const auto [x, y] = placeOf(sun, name);
    return std::hypot(x - 400.0, y - 7.0 - 0.35 * 9.0 - 400.0) / radius * 90.0;
  };
  EXPECT_NEAR(52.0 - 23.44, angleOf("21 Jun"), 0.3);
  EXPECT_NEAR(52.0, angleOf("20 Mar, 22 Sep"), 0.7);
  EXPECT_NEAR(52.0 + 23.44, angleOf("21 Dec"), 0.3);
}

TEST_F(SunDiagramTest, ADayIsDrawnByItsSpans) {
  Measure::SunDay day;
  day.date = {2024, 4, 2};
  const double noon = place.zone.momentOf(day.date, 12 * 3600.0);
  day.spans = {{noon - 7200.0, noon, 1, -1}, {noon, noon + 3600.0, 0, -1}};
  SunDiagramOptions options;
  options.day = day;
  int lit = 0;
  int dashed = 0;
  for (const pugi::xml_node path : sunOf(options).children("path")) {
    lit += path.attribute("stroke").as_string() == std::string("#ff9800") ? 1 : 0;
    dashed += path.attribute("stroke-dasharray") ? 1 : 0;
  }
  EXPECT_EQ(1, lit);
  EXPECT_EQ(1, dashed);
}

TEST_F(SunDiagramTest, ThePageHoldsTheDiagramAndTheTimes) {
  const SceneIndex nothing{PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}};
  const Measure::SunPath path(place, {2024, 4, 2}, {2024, 4, 2});
  const Visibility::VisibleMap map = openSky(place);
  std::vector<Measure::SunDay> days = Measure::SunHours(map, path).days();
  days[0].spans.insert(days[0].spans.begin(),
                       {days[0].spans[0].start - 3600.0, days[0].spans[0].start, 7, -1});
  SunDiagramOptions options;
  options.title = "a <b> & c";
  const std::string page = sunPage(map, MapColors(), place, days, options);
  EXPECT_EQ(0U, page.find("<!DOCTYPE html>"));
  for (const char* part : {"<title>a &lt;b&gt; &amp; c</title>", "<svg ", "<g id=\"sun\"",
                           "<td>2024-04-02</td>", "behind ", "1:00:00", "In front of the sun"})
    EXPECT_NE(std::string::npos, page.find(part)) << part;
  EXPECT_EQ(std::string::npos, page.find("<?xml"));
  // Of a year there are months.
  const Measure::SunPath year(place, {2024, 1, 1}, {2024, 12, 31});
  const std::string ofYear =
      sunPage(map, MapColors(), place, Measure::SunHours(map, year).days(), options);
  EXPECT_NE(std::string::npos, ofYear.find("<td>2024-12</td>"));
  EXPECT_EQ(std::string::npos, ofYear.find("<td>2024-12-01</td>"));
}

TEST_F(SunDiagramTest, PolarPlacesHaveDiagramsToo) {
  for (const double latitude : {-90.0, -70.0, 0.0, 90.0}) {
    place.latitude = latitude;
    EXPECT_TRUE(sunOf());
  }
}

TEST_F(SunDiagramTest, WhatIsNoDiagramIsRefused) {
  SunDiagramOptions options;
  options.projection = MapProjection::Equirectangular;
  EXPECT_THROW(sunDiagram(openSky(place), MapColors(), place, options), std::invalid_argument);
  options = {};
  options.width = 0;
  EXPECT_THROW(sunDiagram(openSky(place), MapColors(), place, options), std::invalid_argument);
  options = {};
  options.year = 1899;
  EXPECT_THROW(sunDiagram(openSky(place), MapColors(), place, options), std::invalid_argument);
  const SceneIndex nothing{PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}};
  EXPECT_THROW(sunDiagram(nothing.look({}), MapColors(), place), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Pictures
