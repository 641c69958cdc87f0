// When the sun shines: against rays of every second, closed forms and laws.

#include <lumivane/importers/Importer.h>
#include <lumivane/measure/SunHours.h>
#include <lumivane/session/LoadedScene.h>

#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

using Visibility::PolygonScene;
using Visibility::SceneIndex;
using Visibility::Seen;
using Visibility::Vector;

constexpr double Pi = 3.141592653589793;

Place rotterdam() {
  Place place;
  place.latitude = 51.917;
  place.longitude = 4.486;
  place.zone = TimeZone(2 * 3600);
  return place;
}

class SunHoursTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!SunPath::isBuilt()) GTEST_SKIP() << "built without libnova";
  }
};

class Builder {
 public:
  Builder() { scene.offsets.push_back(0); }

  // Seen from both sides if the look is.
  void add(const std::vector<Vector>& outline) {
    for (const Vector& p : outline) {
      scene.corners.push_back(static_cast<int>(scene.points.size()));
      scene.points.push_back(p);
    }
    scene.offsets.push_back(scene.corners.size());
    scene.labels.push_back({++objects, 1, 1});
  }
  void addBox(double x, double y, double width, double depth, double height) {
    const std::vector<Vector> low = {
        {x, y, 0}, {x + width, y, 0}, {x + width, y + depth, 0}, {x, y + depth, 0}};
    std::vector<Vector> high = low;
    for (Vector& p : high) p[2] = height;
    add(high);
    for (std::size_t i = 0; i < 4; ++i) add({low[i], low[(i + 1) % 4], high[(i + 1) % 4], high[i]});
  }

  PolygonScene scene;
  int objects = 0;
};

// What a ray says every so many seconds against what the spans say.
struct Comparison {
  int differing = 0;  // rays that another thing is said of
  double litByRays = 0.0;
  double litBySpans = 0.0;
  double farthest = 0.0;  // seconds that a ray of another finding is from a change
  int shades = 0;
};

// Whether a ray reaches the sun.
bool isLit(const SceneIndex& index, const Vector& eye, const SunPath& path, bool twoSided,
           double moment) {
  const Vector d = path.direction(moment);
  return d[2] > 0.0 && index.seenIn(eye, {d}, twoSided)[0].label.object == 0;
}

Comparison compare(const SceneIndex& index, const Vector& eye, const SunPath& path, bool twoSided,
                   double step) {
  const SunHours hours(index, eye, path, twoSided);
  Comparison result;
  result.litBySpans = hours.litSeconds();
  std::vector<SunSpan> spans;
  for (const SunDay& day : hours.days())
    for (const SunSpan& span : day.spans) spans.push_back(span);
  for (const SunSpan& span : spans) result.shades += span.isLit() ? 0 : 1;
  std::vector<Vector> directions;
  std::vector<double> moments;
  for (double moment = path.start() + 0.5 * step; moment < path.end(); moment += step) {
    directions.push_back(path.direction(moment));
    moments.push_back(moment);
  }
  const std::vector<Seen> seen = index.seenIn(eye, directions, twoSided);
  const auto lit = [&](std::size_t i) {
    return directions[i][2] > 0.0 && seen[i].label.object == 0;
  };
  for (std::size_t i = 0; i < seen.size(); ++i) {
    if (lit(i)) result.litByRays += step;
    // Where a ray differs from the next, more rays find the moment of the change.
    if (i > 0 && lit(i) != lit(i - 1)) {
      double low = moments[i - 1];
      double high = moments[i];
      while (high - low > 1e-3) {
        const double middle = 0.5 * (low + high);
        (isLit(index, eye, path, twoSided, middle) == lit(i) ? high : low) = middle;
      }
      const double half = 0.5 * (moments[i - 1] + moments[i]);
      result.litByRays += lit(i) ? half - high : high - half;
    }
  }
  std::size_t at = 0;
  for (std::size_t i = 0; i < seen.size(); ++i) {
    if (!(directions[i][2] > 0.0)) continue;
    while (at < spans.size() && spans[at].end < moments[i]) ++at;
    const bool isIn = at < spans.size() && spans[at].start <= moments[i];
    if (isIn && spans[at].object == seen[i].label.object) continue;
    ++result.differing;
    // The nearest time in which the same is said.
    double nearest = 1e9;
    for (const SunSpan& span : spans)
      if (span.object == seen[i].label.object)
        nearest = std::min(nearest, std::max(span.start - moments[i], moments[i] - span.end));
    result.farthest = std::max(result.farthest, nearest);
  }
  return result;
}

TEST_F(SunHoursTest, InThreePlacesOfTheStreetTheyAreThoseOfRaysOfEverySecond) {
  Session::LoadedScene scene = Session::LoadedScene::fromFile(LUMIVANE_SCENES "/street.json");
  const SceneIndex index(scene);
  Place place = rotterdam();
  place.north = {0.6, 0.8, 0.0};
  const SunPath path(place, {2024, 6, 21}, {2024, 6, 21});
  int shades = 0;
  for (const Vector& eye :
       {Vector{-5.3, -1.37, 3.4}, Vector{40.1, 5.3, 1.7}, Vector{101.7, -7.9, 1.6}}) {
    const Comparison found = compare(index, eye, path, false, 1.0);
    EXPECT_LE(found.differing, 1) << eye[0];
    EXPECT_LT(found.farthest, 0.01) << eye[0];
    EXPECT_NEAR(found.litByRays, found.litBySpans, 0.1) << eye[0];
    shades += found.shades;
  }
  EXPECT_GT(shades, 5);
}

TEST_F(SunHoursTest, InThreeStreetsOfRotterdamTheyAreThoseOfRaysOfEverySecond) {
  const Importers::ImportedScene imported =
      Importers::Importer::importFile(LUMIVANE_SCENES "/models/rotterdam.city.json");
  const SceneIndex index(imported.scene);
  const SunPath path(rotterdam(), {2024, 3, 20}, {2024, 3, 20});
  int shades = 0;
  for (const Vector& eye :
       {Vector{231.8, -183.6, 1.6}, Vector{226.3, -141.2, 1.6}, Vector{193.1, -181.4, 1.6}}) {
    const Comparison found = compare(index, eye, path, false, 1.0);
    EXPECT_LE(found.differing, 1) << eye[0];
    EXPECT_LT(found.farthest, 0.01) << eye[0];
    EXPECT_NEAR(found.litByRays, found.litBySpans, 0.1) << eye[0];
    shades += found.shades;
  }
  EXPECT_GT(shades, 5);
}

TEST_F(SunHoursTest, InRandomTownsOfAllLatitudesTheyAreThoseOfRaysProperty) {
  std::mt19937 random(7);
  const auto pick = [&random](double low, double high) {
    return low + (high - low) * (static_cast<double>(random()) / 4294967296.0);
  };
  int shades = 0;
  for (int round = 0; round < 40; ++round) {
    Builder town;
    for (int i = 0; i < 12; ++i)
      town.addBox(pick(-30, 30), pick(-30, 30), pick(0.5, 12), pick(0.5, 12), pick(1, 30));
    Place place;
    place.latitude = pick(-90, 90);
    place.longitude = pick(-180, 180);
    place.zone = TimeZone(static_cast<int>(pick(-12, 14)) * 3600);
    place.north = {pick(-1, 1), pick(-1, 1), 0.0};
    const CivilDate day = dateOfDay(dayNumber({2024, 1, 1}) + static_cast<int>(pick(0, 366)));
    const SunPath path(place, day, dateOfDay(dayNumber(day) + 1));
    const Comparison found =
        compare(SceneIndex(town.scene), {pick(-30, 30), pick(-30, 30), 1.5}, path, true, 20.0);
    EXPECT_LT(found.farthest, 0.01) << round << " at " << place.latitude;
    shades += found.shades;
  }
  EXPECT_GT(shades, 60);
}

TEST_F(SunHoursTest, OverAWallOnTheEquatorTheSunComesAtItsAngle) {
  // A wall in the east, as high as its distance by the tangent of 30 degrees: the sun comes four
  // hours before noon on every day.
  Builder wall;
  const double height = std::tan(Pi / 6.0);
  wall.add({{1, -1e5, -1}, {1, 1e5, -1}, {1, 1e5, height}, {1, -1e5, height}});
  Place place;
  const SunPath path(place, {2024, 1, 1}, {2024, 12, 31});
  const SunHours hours(SceneIndex(wall.scene), {0, 0, 0}, path, true);
  ASSERT_EQ(366U, hours.days().size());
  for (const SunDay& day : hours.days()) {
    ASSERT_EQ(2U, day.spans.size());
    EXPECT_EQ(1, day.spans[0].object);
    EXPECT_TRUE(day.spans[1].isLit());
    EXPECT_EQ(day.spans[0].end, day.spans[1].start);
    const double angle = std::remainder(path.position(day.spans[1].start).hourAngle, 2.0 * Pi);
    // Parallax lowers the sun by at most 8.95".
    EXPECT_NEAR(-Pi / 3.0, angle, 5e-5);
    EXPECT_GT(angle, -Pi / 3.0);
    const Vector at = path.direction(day.spans[1].start);
    EXPECT_NEAR(at[0] * height, at[2], 1e-7);
  }
}

TEST_F(SunHoursTest, UnderAnEmptySkyTheSunShinesAllDay) {
  const SceneIndex nothing{PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}};
  Place place = rotterdam();
  const SunPath path(place, {2024, 6, 20}, {2024, 6, 22});
  const SunHours hours(nothing, {1, 2, 3}, path);
  for (const SunDay& day : hours.days()) {
    ASSERT_EQ(1U, day.spans.size());
    EXPECT_TRUE(day.spans[0].isLit());
    EXPECT_NEAR(0.0, path.direction(day.spans[0].start)[2], 1e-8);
    EXPECT_NEAR(0.0, path.direction(day.spans[0].end)[2], 1e-8);
    EXPECT_NEAR(16.5 * 3600.0, day.litSeconds(), 600.0);
  }
  EXPECT_EQ(hours.daylightSeconds(), hours.litSeconds());
  EXPECT_TRUE(hours.shades().empty());
}

TEST_F(SunHoursTest, NearThePolesTheSunStaysUpOrDown) {
  const SceneIndex nothing{PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}};
  Place place;
  place.latitude = 80.0;
  const SunHours summer(nothing, {}, SunPath(place, {2024, 6, 21}, {2024, 6, 21}));
  EXPECT_EQ(86400.0, summer.litSeconds());
  const SunHours winter(nothing, {}, SunPath(place, {2024, 12, 21}, {2024, 12, 21}));
  EXPECT_EQ(0.0, winter.daylightSeconds());
  EXPECT_TRUE(winter.days().at(0).spans.empty());
}

TEST_F(SunHoursTest, DaysOfMonthsAndShadesAddUp) {
  Builder town;
  town.addBox(5, -20, 8, 40, 12);
  town.addBox(-20, -9, 10, 4, 15);
  const SunPath path(rotterdam(), {2024, 2, 20}, {2024, 4, 10});
  const SunHours hours(SceneIndex(town.scene), {0, 0, 1.6}, path, true);
  const std::vector<SunMonth> months = hours.months();
  ASSERT_EQ(3U, months.size());
  EXPECT_EQ(10, months[0].days);
  EXPECT_EQ(31, months[1].days);
  EXPECT_EQ(10, months[2].days);
  double lit = 0.0;
  for (const SunMonth& month : months) lit += month.litSeconds;
  EXPECT_NEAR(hours.litSeconds(), lit, 1e-6);
  double shaded = 0.0;
  for (const SunShade& shade : hours.shades()) shaded += shade.seconds;
  EXPECT_NEAR(hours.daylightSeconds() - hours.litSeconds(), shaded, 1e-6);
  EXPECT_GT(shaded, 3600.0);
  for (const SunDay& day : hours.days())
    for (std::size_t i = 1; i < day.spans.size(); ++i)
      EXPECT_EQ(day.spans[i - 1].end, day.spans[i].start);
}

TEST_F(SunHoursTest, ALowestElevationTakesTheSunAwayBelowIt) {
  const SceneIndex nothing{PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}};
  const SunPath path(rotterdam(), {2024, 6, 21}, {2024, 6, 21});
  const Visibility::VisibleMap map = nothing.look({}, lookUpwards(path.place()));
  SunHours::Options options;
  options.lowestElevation = 10.0;
  const SunHours hours(map, path, options);
  const SunSpan& span = hours.days().at(0).spans.at(0);
  EXPECT_NEAR(std::sin(Pi / 18.0), path.direction(span.start)[2], 1e-8);
  EXPECT_NEAR(std::sin(Pi / 18.0), path.direction(span.end)[2], 1e-8);
  options.lowestElevation = -0.833;
  EXPECT_THROW(SunHours(map, path, options), std::invalid_argument);
}

TEST_F(SunHoursTest, AMapThatIsNotOfTheSkyIsRefused) {
  const SceneIndex nothing{PolygonScene{{}, {0}, {}, {}, {}, {}, {}, {}}};
  const SunPath path(rotterdam(), {2024, 6, 21}, {2024, 6, 21});
  EXPECT_THROW(SunHours(nothing.look({}), path), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Measure
