#include "visibility/Polygons.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::Axes;
using Samples::Outline;
using Samples::PolygonBuilder;
using Samples::Random;
using Samples::square;

Seen seen(const PolygonScene& scene, const Vector& eye, const Vector& direction,
          bool twoSided = false) {
  return SceneIndex(scene).seenIn(eye, {direction}, twoSided).front();
}

// A square at the height z that is seen from below.
Outline ceiling(double z, double side) {
  Outline outline = square(-side / 2, -side / 2, z, side);
  std::reverse(outline.begin(), outline.end());
  return outline;
}

TEST(SeenIn, TheNearestIsSeenAtItsDistance) {
  PolygonBuilder builder;
  builder.add(ceiling(5, 4));
  builder.add(ceiling(3, 2));
  builder.add(ceiling(4, 9));
  const Seen up = seen(builder.scene, {0.1, 0, 0}, {0, 0, 7});
  EXPECT_EQ(2, up.label.region);
  EXPECT_DOUBLE_EQ(3.0, up.distance);
  const Seen aslant = seen(builder.scene, {0, 0, 0}, {1, 0, 2});
  EXPECT_EQ(3, aslant.label.region);
  EXPECT_DOUBLE_EQ(std::sqrt(20.0), aslant.distance);
}

TEST(SeenIn, WhereNothingIsTheSkyIs) {
  PolygonBuilder builder;
  builder.add(ceiling(5, 4));
  const Seen sky = seen(builder.scene, {0, 0, 0}, {0, 0, -1});
  EXPECT_EQ((Label{0, 0, 0}), sky.label);
  EXPECT_EQ(0.0, sky.distance);
  EXPECT_EQ((Label{0, 0, 0}), seen(PolygonScene{}, {0, 0, 0}, {1, 0, 0}).label);
}

TEST(SeenIn, PolygonsAreSeenFromWhereTheyRunClockwise) {
  PolygonBuilder builder;
  builder.add(square(-1, -1, 2, 2));  // clockwise from above
  EXPECT_EQ(0, seen(builder.scene, {0, 0, 0}, {0, 0, 1}).label.object);
  EXPECT_EQ(1, seen(builder.scene, {0, 0, 4}, {0, 0, -1}).label.object);
  EXPECT_EQ(1, seen(builder.scene, {0, 0, 0}, {0, 0, 1}, true).label.object);
  EXPECT_EQ(1, seen(builder.scene, {0, 0, 4}, {0, 0, -1}, true).label.object);
}

TEST(SeenIn, AnEyeInThePlaneSeesNothingOfIt) {
  PolygonBuilder builder;
  builder.add(ceiling(0, 2));
  for (const bool twoSided : {false, true}) {
    EXPECT_EQ(0, seen(builder.scene, {0.2, 0.1, 0}, {0, 0, 1}, twoSided).label.object);
    EXPECT_EQ(0, seen(builder.scene, {1, 0.1, 0}, {-1, 0, 0}, twoSided).label.object);
    EXPECT_EQ(0, seen(builder.scene, {1, 1, 0}, {-1, -1, 0}, twoSided).label.object);
    EXPECT_EQ(0, seen(builder.scene, {5, 0, 0}, {-1, 0, 0}, twoSided).label.object);
  }
  EXPECT_EQ(1, seen(builder.scene, {0.2, 0.1, -1e-9}, {0, 0, 1}).label.object);
}

TEST(SeenIn, OfRegionsInOnePlaneTheLaterIsSeenHoweverTheSceneIsTurned) {
  PolygonBuilder builder;
  builder.add(ceiling(5, 10), 1);
  builder.add(ceiling(5, 2), 1);
  builder.add(ceiling(5, 1), 2);
  Random random(2);
  for (int i = 0; i < 50; ++i) {
    const Axes axes(random);
    const Vector eye = random.vector(100.0);
    const PolygonScene scene =
        Samples::moved(builder.scene, [&](const Vector& p) { return Samples::plus(axes(p), eye); });
    const SceneIndex index(scene);
    EXPECT_EQ(1U, index.layerCount());
    const std::vector<Seen> found =
        index.seenIn(eye, {axes({0.1, 0.2, 5}), axes({0.8, 0.7, 5}), axes({3, -2, 5})});
    EXPECT_EQ((Label{2, -1, 1}), found[0].label);
    EXPECT_EQ((Label{1, -1, 2}), found[1].label);
    EXPECT_EQ((Label{1, -1, 1}), found[2].label);
  }
}

TEST(SeenIn, OutlinesFollowEvenOdd) {
  PolygonBuilder builder;  // a star of five points: its middle is wound around twice
  Outline star;
  for (int i = 0; i < 5; ++i) {
    const double angle = 2.0 * 6.283185307179586 * i / 5.0;
    star.push_back({std::cos(angle), std::sin(angle), 3.0});
  }
  builder.add(star);
  EXPECT_EQ(0, seen(builder.scene, {0, 0, 0}, {0, 0, 1}, true).label.object);
  EXPECT_EQ(1, seen(builder.scene, {0, 0, 0}, {0.6, 0, 3}, true).label.object);
}

TEST(SeenIn, DirectionsOnASharedEdgeSeeOneOfTheTwo) {
  PolygonBuilder builder;
  builder.add({{-1, -1, 2}, {1, -1, 2}, {0.3, 0.7, 2}});
  builder.add({{-1, -1, 2}, {0.3, 0.7, 2}, {-2, 1, 2}});
  const SceneIndex index(builder.scene);
  for (int i = 1; i < 100; ++i) {
    const double t = i / 100.0;
    const Vector d{-1 + t * 1.3, -1 + t * 1.7, 2};
    EXPECT_EQ(1, index.seenIn({0, 0, 0}, {d}, true).front().label.object);
  }
}

TEST(SeenIn, DirectionsOfAnyLengthSeeTheSame) {
  PolygonBuilder builder;
  builder.add(ceiling(5, 4));
  for (const double length : {1e-300, 1e-5, 1e300}) {
    const Seen found = seen(builder.scene, {0, 0, 0}, {0.1 * length, 0, length});
    EXPECT_EQ(1, found.label.region);
    EXPECT_NEAR(5.0 * std::sqrt(1.01), found.distance, 1e-14);
  }
}

TEST(SeenIn, RefusesWhatIsNoDirection) {
  const SceneIndex index{PolygonScene{}};
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(index.seenIn({nan, 0, 0}, {{1, 0, 0}}), std::invalid_argument);
  EXPECT_THROW(index.seenIn({0, 0, 0}, {{1, 0, 0}, {0, 0, 0}}), std::invalid_argument);
  EXPECT_THROW(index.seenIn({0, 0, 0}, {{1, nan, 0}}), std::invalid_argument);
}

// All polygons one by one, in wide numbers: independent of the code under test.
class SlowEye {
 public:
  SlowEye(const PolygonScene& polygons, const Vector& eyePoint) : scene(polygons) {
    for (int k = 0; k < 3; ++k) eye[k] = eyePoint[static_cast<std::size_t>(k)];
  }

  struct Hit {
    int outline = -1;
    long double distance = 1e300L;
    bool isClear = true;  // no edge nearer than the tolerance
  };

  Hit nearest(const Vector& direction, bool twoSided) const {
    Hit best;
    for (std::size_t i = 0; i + 1 < scene.offsets.size(); ++i) ask(i, direction, twoSided, best);
    return best;
  }

 private:
  using Real = long double;
  struct Point {
    Real x, y, z;
  };
  static Point cross(Point a, Point b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
  }
  static Real dot(Point a, Point b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

  std::vector<Point> cornersOf(std::size_t outline) const {
    std::vector<Point> corners;
    for (std::size_t c = scene.offsets[outline]; c < scene.offsets[outline + 1]; ++c) {
      const Vector& p = scene.points[static_cast<std::size_t>(scene.corners[c])];
      corners.push_back({p[0] - eye[0], p[1] - eye[1], p[2] - eye[2]});
    }
    return corners;
  }

  void ask(std::size_t outline, const Vector& direction, bool twoSided, Hit& best) const {
    const std::vector<Point> corners = cornersOf(outline);
    const Point d{direction[0], direction[1], direction[2]};
    const Point first = corners[0];
    Point normal{0, 0, 0};
    for (std::size_t k = 1; k + 1 < corners.size(); ++k) {
      const Point a = {corners[k].x - first.x, corners[k].y - first.y, corners[k].z - first.z};
      const Point b = {corners[k + 1].x - first.x, corners[k + 1].y - first.y,
                       corners[k + 1].z - first.z};
      const Point n = cross(a, b);
      normal = {normal.x + n.x, normal.y + n.y, normal.z + n.z};
    }
    const Real offset = dot(normal, first);
    if (offset <= 0 && !twoSided) return;
    const Real t = offset / dot(normal, d);
    if (!(t > 0)) return;
    // The angles that the edges turn through about the direction add up to a multiple of a circle.
    Real angle = 0;
    for (std::size_t k = 0; k < corners.size(); ++k) {
      const Point a = cross(d, corners[k]);
      const Point b = cross(d, corners[(k + 1) % corners.size()]);
      angle += std::atan2(dot(cross(a, b), d) / std::sqrt(dot(d, d)), dot(a, b));
    }
    const auto turns = std::lround(angle / 6.28318530717958647692L);
    if (turns % 2 == 0) return;
    if (std::fabs(t - best.distance) < 1e-9L * t) best.isClear = false;
    if (t < best.distance) {
      best.distance = t;
      best.outline = static_cast<int>(outline);
    }
  }

  const PolygonScene& scene;
  Real eye[3] = {};
};

Outline randomPolygon(Random& random) {
  const Axes axes(random);
  const Vector centre = random.vector(10.0);
  const int corners = 3 + random.below(6);
  const double size = random.between(0.2, 9.0);
  Outline outline;
  for (int i = 0; i < corners; ++i) {
    const double angle = 6.283185307179586 * i / corners;
    const double r = size * random.between(0.2, 1.0);
    outline.push_back(Samples::plus(centre, axes({r * std::cos(angle), r * std::sin(angle), 0.0})));
  }
  return outline;
}

TEST(SeenInProperty, FindsWhatAskingAllPolygonsFinds) {
  Random random(11);
  int hits = 0;
  for (int round = 0; round < 20; ++round) {
    PolygonBuilder builder;
    for (int i = 0; i < 100; ++i) builder.add(randomPolygon(random));
    const SceneIndex index(builder.scene);
    const Vector eye = random.vector(12.0);
    const SlowEye slow(builder.scene, eye);
    const bool twoSided = round % 2 == 1;
    for (int i = 0; i < 200; ++i) {
      const Vector d = random.direction();
      const SlowEye::Hit expected = slow.nearest(d, twoSided);
      if (!expected.isClear) continue;
      const Seen found = index.seenIn(eye, {d}, twoSided).front();
      EXPECT_EQ(expected.outline + 1, found.label.region);
      if (expected.outline < 0) continue;
      ++hits;
      EXPECT_NEAR(1.0, found.distance / static_cast<double>(expected.distance), 1e-9);
    }
  }
  EXPECT_GT(hits, 1000);
}

TEST(SeenInProperty, MeshesWithoutGapsShowNone) {
  // A closed body of triangles about the eye, asked in its very corners and edges.
  Random random(5);
  std::vector<Vector> points;
  const int columns = 12;
  const int rows = 8;
  for (int i = 0; i <= rows; ++i)
    for (int j = 0; j < columns; ++j) {
      const double latitude = 3.141592653589793 * i / rows;
      const double longitude = 6.283185307179586 * j / columns;
      const bool pole = i == 0 || i == rows;
      points.push_back({pole ? 0.0 : std::sin(latitude) * std::cos(longitude),
                        pole ? 0.0 : std::sin(latitude) * std::sin(longitude),
                        pole ? (i == 0 ? 1.0 : -1.0) : std::cos(latitude)});
    }
  PolygonBuilder builder;
  const auto at = [&](int i, int j) {
    return points.at(static_cast<std::size_t>(i) * columns + static_cast<std::size_t>(j % columns));
  };
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < columns; ++j) {
      if (i > 0) builder.add({at(i, j), at(i, j + 1), at(i + 1, j)});
      if (i + 1 < rows) builder.add({at(i, j + 1), at(i + 1, j + 1), at(i + 1, j)});
    }
  const SceneIndex index(builder.scene);
  for (int round = 0; round < 5; ++round) {
    const Vector eye = random.vector(0.3);
    std::vector<Vector> directions;
    directions.reserve(2 * points.size() + 300);
    for (const Vector& p : points) directions.push_back(Samples::minus(p, eye));
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
      directions.push_back(
          Samples::minus(Samples::times(0.5, Samples::plus(points[i], points[i + 1])), eye));
    for (int i = 0; i < 300; ++i) directions.push_back(random.direction());
    for (const Seen& found : index.seenIn(eye, directions, true)) EXPECT_EQ(1, found.label.object);
  }
}

}  // namespace
}  // namespace Lumivane::Visibility
