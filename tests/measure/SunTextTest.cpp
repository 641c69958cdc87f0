// Tables of sun hours, from values made by hand.

#include <lumivane/measure/SunText.h>

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Lumivane::Measure {
namespace {

using nlohmann::json;

// 2024-03-20 with an hour of shade and half an hour of sun, and a day without any.
std::vector<SunEye> twoEyes() {
  const double start = TimeZone().momentOf({2024, 3, 20}, 6.5 * 3600.0);
  SunDay day;
  day.date = {2024, 3, 20};
  day.spans = {{start, start + 3600.0, 2, 0}, {start + 3600.0, start + 5400.0, 0, -1}};
  SunDay night;
  night.date = {2024, 4, 1};
  SunEye first;
  first.name = "a,b";
  first.eye = {1.5, -2.0, 0.25};
  first.days = {day, night};
  first.values = {0.125};
  SunEye second;
  second.name = "=c";
  second.isInside = true;
  second.days = {night};
  second.values = {2.0};
  return {first, second};
}

std::shared_ptr<const Visibility::VisibleMap::Names> names() {
  auto result = std::make_shared<Visibility::VisibleMap::Names>();
  result->objectIds = {"floor", "house \"1\""};
  result->classNames = {"wall"};
  return result;
}

TEST(SunText, SpansNameWhatStandsInFrontOfTheSun) {
  const SunText text(TimeZone(3600), names());
  EXPECT_EQ(
      "name,date,start,end,seconds,state,object,id,class\n"
      "\"a,b\",2024-03-20,2024-03-20T07:30:00.00+01:00,2024-03-20T08:30:00.00+01:00,3600,shade,2,"
      "\"house \"\"1\"\"\",wall\n"
      "\"a,b\",2024-03-20,2024-03-20T08:30:00.00+01:00,2024-03-20T09:00:00.00+01:00,1800,sun,,,\n",
      text.spans(twoEyes(), SunText::Format::Csv));
  const json spans = json::parse(text.spans(twoEyes(), SunText::Format::Json));
  EXPECT_EQ(1, spans.at("version").get<int>());
  ASSERT_EQ(2U, spans.at("rows").size());
  EXPECT_EQ("wall", spans["rows"][0].at("class").get<std::string>());
  EXPECT_EQ(0U, spans["rows"][1].count("object"));
}

TEST(SunText, DaysWithoutSunHaveEmptyTimes) {
  const SunText text(TimeZone(3600), names());
  EXPECT_EQ(
      "name,date,sunrise,sunset,first_sun,last_sun,sun_hours,daylight_hours\n"
      "\"a,b\",2024-03-20,2024-03-20T07:30:00.00+01:00,2024-03-20T09:00:00.00+01:00,"
      "2024-03-20T08:30:00.00+01:00,2024-03-20T09:00:00.00+01:00,0.5,1.5\n"
      "\"a,b\",2024-04-01,,,,,0,0\n"
      "=c,2024-04-01,,,,,0,0\n",
      text.days(twoEyes(), SunText::Format::Csv));
}

TEST(SunText, MonthsAndTotalsAreSums) {
  const SunText text(TimeZone(3600), names(), true);
  EXPECT_EQ(
      "name,month,days,sun_hours,daylight_hours\n\"a,b\",2024-03,1,0.5,1.5\n"
      "\"a,b\",2024-04,1,0,0\n'=c,2024-04,1,0,0\n",
      text.months(twoEyes(), SunText::Format::Csv));
  EXPECT_EQ(
      "name,x,y,z,inside,days,sun_hours,daylight_hours,sun_share\n"
      "\"a,b\",1.5,-2,0.25,0,2,0.5,1.5,0.3333333333333333\n'=c,0,0,0,1,1,0,0,0\n",
      text.totals(twoEyes(), SunText::Format::Csv));
}

TEST(SunText, ValuesHaveTheColumnsThatAreNamed) {
  const SunText text(TimeZone(), nullptr);
  EXPECT_EQ("name,x,y,z,inside,p1\n\"a,b\",1.5,-2,0.25,0,0.125\n=c,0,0,0,1,2\n",
            text.values(twoEyes(), {"p1"}, SunText::Format::Csv));
  const json values = json::parse(text.values(twoEyes(), {"p1"}, SunText::Format::Json));
  EXPECT_EQ(0.125, values.at("rows").at(0).at("p1").get<double>());
}

}  // namespace
}  // namespace Lumivane::Measure
