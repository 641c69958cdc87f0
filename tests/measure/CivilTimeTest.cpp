// Dates and clocks.

#include <lumivane/measure/CivilTime.h>

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

TEST(CivilTime, DaysAreCountedFrom1970) {
  EXPECT_EQ(0, dayNumber({1970, 1, 1}));
  EXPECT_EQ(19723, dayNumber({2024, 1, 1}));
  EXPECT_EQ(-25567, dayNumber({1900, 1, 1}));
  EXPECT_EQ((CivilDate{2000, 2, 29}), dateOfDay(11016));
}

TEST(CivilTime, EachDayNumberOfFourCenturiesIsThatOfItsDate) {
  CivilDate before = dateOfDay(-30000);
  for (std::int64_t day = -29999; day < 120000; ++day) {
    const CivilDate date = dateOfDay(day);
    ASSERT_EQ(day, dayNumber(date));
    const bool isNext = date.day == before.day + 1 || (date.day == 1 && before.day >= 28);
    ASSERT_TRUE(isNext) << dateText(date);
    before = date;
  }
}

TEST(CivilTime, ATextThatIsNoDateIsRefused) {
  EXPECT_EQ((CivilDate{2024, 2, 29}), readDate("2024-02-29"));
  for (const char* text : {"2023-02-29", "1900-02-29", "2024-13-01", "2024-00-10", "2024-04-31",
                           "2024-4-30", "24-04-30", "2024-04-3x", "", "2024-04-30 "})
    EXPECT_FALSE(readDate(text)) << text;
  EXPECT_EQ("0987-06-05", dateText({987, 6, 5}));
}

TEST(CivilTime, ClocksShowWhatTheirStepsSay) {
  const TimeZone zone({{0.0, 3600}, {1711846800.0, 7200}});  // 2024-03-31 01:00 UTC
  EXPECT_EQ(3600, zone.offsetAt(-1e9));
  EXPECT_EQ("2024-03-31T01:59:59.99+01:00", zone.text(1711846799.995));
  EXPECT_EQ("2024-03-31T03:00:00+02:00", zone.text(1711846800.0, 0));
  EXPECT_EQ(23 * 3600.0, zone.momentOf({2024, 4, 1}) - zone.momentOf({2024, 3, 31}));
  EXPECT_EQ((CivilDate{2024, 3, 31}), zone.dateAt(zone.momentOf({2024, 4, 1}) - 0.5));
  EXPECT_EQ("1969-12-31T16:00:00.50-08:00", TimeZone(-8 * 3600).text(0.5));
  EXPECT_EQ("1970-01-01T05:30:00.000000+05:30", TimeZone(19800).text(0.0, 6));
}

// As in Apia in 2011, which went over the 30th of December.
TEST(CivilTime, ADayThatTheCalendarLeavesOutHasNoLength) {
  const double change = 1325239200.0;  // 2011-12-30 10:00 UTC
  const TimeZone zone({{0.0, -10 * 3600}, {change, 14 * 3600}});
  EXPECT_EQ(change - 86400.0, zone.momentOf({2011, 12, 29}));
  EXPECT_EQ(change, zone.momentOf({2011, 12, 30}));
  EXPECT_EQ(change, zone.momentOf({2011, 12, 30}, 43200.0));
  EXPECT_EQ(change, zone.momentOf({2011, 12, 31}));
  EXPECT_EQ(change + 86400.0, zone.momentOf({2012, 1, 1}));
  EXPECT_TRUE(zone.momentsAt({2011, 12, 30}, 43200.0).empty());
}

TEST(CivilTime, ATimeIsShownOnceButWhereClocksChange) {
  // 2024-03-31 01:00 UTC and 2024-10-27 01:00 UTC.
  const TimeZone zone({{0.0, 3600}, {1711846800.0, 7200}, {1729990800.0, 3600}});
  EXPECT_EQ(std::vector<double>{1711843200.0}, zone.momentsAt({2024, 3, 31}, 3600.0));
  EXPECT_TRUE(zone.momentsAt({2024, 3, 31}, 2.5 * 3600.0).empty());
  EXPECT_EQ(1711846800.0, zone.momentOf({2024, 3, 31}, 2.5 * 3600.0));
  EXPECT_EQ(std::vector<double>{1711846800.0}, zone.momentsAt({2024, 3, 31}, 3.0 * 3600.0));
  EXPECT_EQ((std::vector<double>{1729989000.0, 1729992600.0}),
            zone.momentsAt({2024, 10, 27}, 2.5 * 3600.0));
  EXPECT_EQ(1729989000.0, zone.momentOf({2024, 10, 27}, 2.5 * 3600.0));
  EXPECT_EQ(std::vector<double>{1729994400.0}, zone.momentsAt({2024, 10, 27}, 3.0 * 3600.0));
}

TEST(CivilTime, StepsOutOfOrderAreRefused) {
  EXPECT_THROW(TimeZone(std::vector<TimeZone::Step>{}), std::invalid_argument);
  EXPECT_THROW(TimeZone({{5.0, 0}, {5.0, 1}}), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Measure
