// Where the sun stands: against published positions and those of another library.

#include <lumivane/measure/SunPath.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Lumivane::Measure {
namespace {

using nlohmann::json;

constexpr double Pi = 3.141592653589793;
constexpr double Degree = Pi / 180.0;
constexpr double Arcsecond = 1.0 / 3600.0;  // degrees

json published() {
  std::ifstream file(LUMIVANE_SUN_DATA "/positions.json");
  return json::parse(file);
}

double momentOf(const json& row) {
  const auto date = readDate(row.at("utc").get<std::string>());
  return TimeZone().momentOf(date.value(), row.at("seconds").get<double>());
}

double number(const json& row, const char* key) { return row.at(key).get<double>(); }

// Degrees.
double apart(double a, double b) { return std::abs(std::remainder(a - b, 360.0)); }

class SunPathTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!SunPath::isBuilt()) GTEST_SKIP() << "built without libnova";
  }
};

TEST_F(SunPathTest, TheWorkedExampleOfNrelComesOut) {
  const json row = published().at("nrel");
  const SunPosition sun = sunPosition(momentOf(row));
  EXPECT_LT(apart(number(row, "hour_angle") - number(row, "longitude"), sun.hourAngle / Degree),
            0.3 * Arcsecond);
  EXPECT_NEAR(number(row, "declination"), sun.declination / Degree, 0.2 * Arcsecond);
  EXPECT_NEAR(number(row, "distance"), sun.distance, 1e-6);

  Place place;
  place.latitude = number(row, "latitude");
  place.longitude = number(row, "longitude");
  place.zone = TimeZone(-7 * 3600);
  const SunPath path(place, {2003, 10, 17}, {2003, 10, 17});
  const Visibility::Vector d = path.direction(momentOf(row));
  const double azimuth = std::atan2(d[0], d[1]) / Degree;
  EXPECT_LT(apart(number(row, "azimuth"), azimuth), 0.5 * Arcsecond);
  // The report's own refraction, which its zenith angle has.
  const double elevation = std::asin(d[2]) / Degree;
  const double refraction = number(row, "pressure_mbar") / 1010.0 * 283.0 /
                            (273.0 + number(row, "celsius")) * 1.02 /
                            (60.0 * std::tan((elevation + 10.3 / (elevation + 5.11)) * Degree));
  EXPECT_NEAR(number(row, "zenith_with_refraction"), 90.0 - elevation - refraction,
              0.5 * Arcsecond);
}

TEST_F(SunPathTest, TheExampleOfMeeusComesOut) {
  const json row = published().at("meeus");
  const double moment = momentOf(row);
  const SunPosition sun = sunPosition(moment);
  EXPECT_NEAR(number(row, "declination"), sun.declination / Degree, 0.1 * Arcsecond);
  // Sidereal time by the book's formula (12.4), with the book's nutation.
  const double days = moment / 86400.0 + 2440587.5 - 2451545.0;
  const double t = days / 36525.0;
  const double mean =
      280.46061837 + 360.98564736629 * days + 0.000387933 * t * t - t * t * t / 38710000.0;
  const double equinoxes = number(row, "nutation_in_longitude_arcseconds") * Arcsecond *
                           std::cos(number(row, "obliquity") * Degree);
  EXPECT_LT(apart(number(row, "right_ascension"), mean + equinoxes - sun.hourAngle / Degree),
            0.1 * Arcsecond);
}

TEST_F(SunPathTest, AnotherLibraryHasTheSamePositions) {
  const json rows = published().at("erfa").at("rows");
  ASSERT_EQ(12U, rows.size());
  for (const json& row : rows) {
    const int year = std::stoi(row.at("utc").get<std::string>().substr(0, 4));
    const double limit = (year >= 1950 && year < 2050 ? 0.5 : 2.0) * Arcsecond;
    const SunPosition sun = sunPosition(momentOf(row));
    EXPECT_LT(apart(number(row, "hour_angle"), sun.hourAngle / Degree), limit) << row;
    EXPECT_NEAR(number(row, "declination"), sun.declination / Degree, limit) << row;
    EXPECT_NEAR(number(row, "distance"), sun.distance, 2e-6) << row;
  }
}

TEST_F(SunPathTest, BetweenItsNodesThePathIsWherePositionsAre) {
  Place place;
  place.latitude = 51.9;
  place.longitude = 4.5;
  const SunPath path(place, {2024, 1, 1}, {2024, 12, 31});
  EXPECT_EQ(366 * 86400.0, path.end() - path.start());
  for (double moment = path.start(); moment < path.end(); moment += 5.371 * 86400.0 / 4.0) {
    const SunPosition exact = sunPosition(moment);
    const SunPosition between = path.position(moment);
    const double h = exact.hourAngle + place.longitude * Degree;
    EXPECT_LT(std::abs(std::remainder(between.hourAngle - h, 2.0 * Pi)), 2e-8) << moment;
    EXPECT_NEAR(exact.declination, between.declination, 1e-9) << moment;
  }
}

TEST_F(SunPathTest, NorthTurnsThePath) {
  Place place;
  place.latitude = -33.9;
  place.longitude = 151.2;
  place.zone = TimeZone(10 * 3600);
  const CivilDate day = {2025, 6, 21};
  const SunPath straight(place, day, day);
  place.north = {3.0, 4.0, 7.0};
  const SunPath turned(place, day, day);
  const double noon = place.zone.momentOf(day, 12 * 3600.0);
  const Visibility::Vector a = straight.direction(noon);
  const Visibility::Vector b = turned.direction(noon);
  EXPECT_GT(a[1], 0.5);  // in the north, on the southern hemisphere
  EXPECT_NEAR(a[1], 0.6 * b[0] + 0.8 * b[1], 1e-15);
  EXPECT_NEAR(a[0], 0.8 * b[0] - 0.6 * b[1], 1e-15);
  EXPECT_NEAR(a[2], b[2], 1e-15);
  EXPECT_NEAR(1.0, a[0] * a[0] + a[1] * a[1] + a[2] * a[2], 1e-14);
}

TEST_F(SunPathTest, WhatIsNoPlaceAndNoDayIsRefused) {
  const CivilDate day = {2025, 6, 21};
  const auto made = [](double latitude, double longitude, Visibility::Vector north, CivilDate first,
                       CivilDate last) {
    Place place;
    place.latitude = latitude;
    place.longitude = longitude;
    place.north = north;
    return SunPath(place, first, last);
  };
  const double none = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NO_THROW(made(90, 180, {0, 1, 0}, day, day));
  EXPECT_THROW(made(90.1, 0, {0, 1, 0}, day, day), std::invalid_argument);
  EXPECT_THROW(made(none, 0, {0, 1, 0}, day, day), std::invalid_argument);
  EXPECT_THROW(made(0, -181, {0, 1, 0}, day, day), std::invalid_argument);
  EXPECT_THROW(made(0, 0, {0, 0, 1}, day, day), std::invalid_argument);
  EXPECT_THROW(made(0, 0, {none, 1, 0}, day, day), std::invalid_argument);
  EXPECT_THROW(made(0, 0, {0, 1, 0}, {2025, 2, 29}, day), std::invalid_argument);
  EXPECT_THROW(made(0, 0, {0, 1, 0}, {1899, 2, 28}, day), std::invalid_argument);
  EXPECT_THROW(made(0, 0, {0, 1, 0}, day, {2025, 6, 20}), std::invalid_argument);
  EXPECT_THROW(made(0, 0, {0, 1, 0}, day, day).direction(0.0), std::out_of_range);
}

}  // namespace
}  // namespace Lumivane::Measure
