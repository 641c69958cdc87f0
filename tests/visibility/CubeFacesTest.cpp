#include "visibility/CubeFaces.h"
#include "visibility/Polygons.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Visibility {
namespace {

using Samples::Random;

__extension__ using Wide = __int128;

Segment level(Coordinate x0, Coordinate y0, Coordinate x1, Coordinate y1) {
  return makeSegment(0, x0, y0, x1, y1, 1, false);
}

TEST(CubeFaces, EveryFaceShowsXToTheRightOfYAsTheEyeSeesIt) {
  for (const CubeFace& f : CubeFaces) {
    FrameVector u{};
    FrameVector v{};
    u.c[f.u] = 1.0;
    v.c[f.v] = 1.0;
    const double normal[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                              u[0] * v[1] - u[1] * v[0]};
    for (int i = 0; i < 3; ++i) EXPECT_EQ(i == f.axis ? -f.sign : 0, normal[i]);
  }
}

TEST(CubeFaces, TheFrameIsARotationAndBack) {
  Random random(1);
  for (int i = 0; i < 100; ++i) {
    const Vector v = random.vector(10.0);
    const FrameVector turned = toFrame({v[0], v[1], v[2]});
    const Kernel::Vec3 back = toScene(turned);
    EXPECT_NEAR(v[0], back.x, 1e-14);
    EXPECT_NEAR(v[1], back.y, 1e-14);
    EXPECT_NEAR(v[2], back.z, 1e-14);
  }
}

TEST(CubeFaces, ACornerIsAboveBelowOrNudgedToTheRight) {
  const Segment rising = level(0, 0, 100, 100);
  EXPECT_EQ(1, sideOf(rising, 50, 51));
  EXPECT_EQ(-1, sideOf(rising, 50, 49));
  EXPECT_EQ(-1, sideOf(rising, 50, 50));  // nudged to the right it lies below
  EXPECT_EQ(1, sideOf(level(0, 100, 100, 0), 50, 50));
  EXPECT_EQ(1, sideOf(level(0, 50, 100, 50), 50, 50));  // nudged upwards
  EXPECT_EQ(-1, sideOf(level(50, 0, 50, 100), 50, 50));
}

TEST(CubeFacesProperty, SidesAreThoseOfWholeNumbersOfAnyLength) {
  Random random(2);
  const auto coordinate = [&] {
    return static_cast<Coordinate>(random.between(-1.0, 1.0) * static_cast<double>(CubeHalf));
  };
  int close = 0;
  for (int i = 0; i < 20000; ++i) {
    const Segment s = level(coordinate(), coordinate(), coordinate(), coordinate());
    // Half of the points lie within a unit of the line, where doubles cannot decide.
    Coordinate x = coordinate();
    Coordinate y = coordinate();
    if (i % 2 == 0 && s.x1 > s.x0) {
      x = s.x0 + (s.x1 - s.x0) / 3;
      y = s.y0 +
          static_cast<Coordinate>(static_cast<long double>(s.y1 - s.y0) / (s.x1 - s.x0) *
                                  static_cast<long double>(x - s.x0)) +
          random.below(3) - 1;
      ++close;
    }
    const Wide exact =
        static_cast<Wide>(s.x1 - s.x0) * (y - s.y0) - static_cast<Wide>(s.y1 - s.y0) * (x - s.x0);
    if (exact != 0) {
      EXPECT_EQ(exact > 0 ? 1 : -1, sideOf(s, x, y));
    }
  }
  EXPECT_GT(close, 5000);
}

TEST(CubeFacesProperty, WalksAroundAClosedOutlineReturnToWhereTheyBegan) {
  Random random(3);
  for (int i = 0; i < 200; ++i) {
    std::vector<Segment> outline;
    std::vector<Coordinate> xs;
    std::vector<Coordinate> ys;
    const int corners = 3 + random.below(6);
    for (int k = 0; k < corners; ++k) {
      xs.push_back(random.below(20) - 10);
      ys.push_back(random.below(20) - 10);
    }
    for (size_t k = 0; k < xs.size(); ++k) {
      const size_t next = (k + 1) % xs.size();
      if (xs[k] != xs[next] || ys[k] != ys[next])
        outline.push_back(level(xs[k], ys[k], xs[next], ys[next]));
    }
    const auto get = [](const Segment& s) -> const Segment& { return s; };
    Coordinate x = -11;
    Coordinate y = -11;
    bool inside = false;
    for (int step = 0; step < 50; ++step) {
      const Coordinate toX = random.below(22) - 11;
      const Coordinate toY = random.below(22) - 11;
      inside ^= crossingParity(outline, get, x, y, toX, toY);
      x = toX;
      y = toY;
    }
    inside ^= crossingParity(outline, get, x, y, -11, -11);
    EXPECT_FALSE(inside);
  }
}

TEST(CubeFacesProperty, ArcsAreUnbrokenFromFaceToFace) {
  Random random(4);
  for (int i = 0; i < 2000; ++i) {
    const Vector a = random.vector(1.0);
    const Vector b = random.vector(1.0);
    std::vector<Segment> segments;
    appendArc(segments, {{a[0], a[1], a[2]}}, {{b[0], b[1], b[2]}}, 1, false);
    ASSERT_FALSE(segments.empty());
    // Every point of an arc but its two ends belongs to an even number of ends of segments.
    std::vector<Vector> ends;
    for (const Segment& s : segments) {
      const CubeFace& f = CubeFaces[s.face];
      for (const auto& [x, y] : {std::pair(s.x0, s.y0), std::pair(s.x1, s.y1)}) {
        Vector p{};
        p[static_cast<size_t>(f.axis)] = f.sign * static_cast<double>(CubeHalf);
        p[static_cast<size_t>(f.u)] = static_cast<double>(x);
        p[static_cast<size_t>(f.v)] = static_cast<double>(y);
        ends.push_back(p);
      }
    }
    int loose = 0;
    for (const Vector& p : ends) {
      int same = 0;
      for (const Vector& q : ends) same += p == q ? 1 : 0;
      loose += same % 2;
    }
    EXPECT_EQ(2, loose);
  }
}

// A point of a face in the axes of the cube.
std::array<Coordinate, 3> cubePointOf(const Segment& s, bool first) {
  const CubeFace& f = CubeFaces[s.face];
  std::array<Coordinate, 3> point{};
  point[static_cast<std::size_t>(f.axis)] = f.sign * CubeHalf;
  point[static_cast<std::size_t>(f.u)] = first ? s.x0 : s.x1;
  point[static_cast<std::size_t>(f.v)] = first ? s.y0 : s.y1;
  return point;
}

// How far the farthest point of some segments is from the arc between two directions, of those in
// between by the sine of the angle.
double farthestFromArc(const std::vector<Segment>& segments, Kernel::Vec3 a, Kernel::Vec3 b) {
  const Kernel::Vec3 normal = Kernel::normalise(Kernel::cross(a, b)).direction;
  double farthest = 0.0;
  for (const Segment& s : segments)
    for (const bool first : {true, false}) {
      const auto p = cubePointOf(s, first);
      const Kernel::Vec3 d =
          Kernel::normalise(
              {static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2])})
              .direction;
      farthest = std::max({farthest, std::fabs(Kernel::dot(normal, d)),
                           -Kernel::dot(Kernel::cross(a, d), normal),
                           -Kernel::dot(Kernel::cross(d, b), normal)});
    }
  return farthest;
}

Kernel::Vec3 onGrid(Random& random, int most) {
  const auto one = [&] { return static_cast<double>(random.below(2 * most + 1) - most); };
  const double x = one();
  const double y = one();
  return {x, y, one()};
}

// They ran to places that rounding chose, beside the arc or beyond its end.
TEST(CubeFacesProperty, ArcsAlongBordersAndThroughCornersOfFacesStayBetweenTheirEnds) {
  Random random(5);
  int count = 0;
  for (int i = 0; i < 40000; ++i) {
    const int most = 1 + random.below(4);
    const Kernel::Vec3 a = onGrid(random, most);
    const Kernel::Vec3 b = onGrid(random, most);
    const double lengths = Kernel::length3(a) * Kernel::length3(b);
    if (Kernel::length3(Kernel::cross(a, b)) == 0.0 || Kernel::dot(a, b) < -0.93 * lengths)
      continue;
    // By way of the scene's axes, which leaves rounding.
    const FrameVector from = toFrame(random.between(0.3, 3.0) * toScene({{a.x, a.y, a.z}}));
    const FrameVector to = toFrame(random.between(0.3, 3.0) * toScene({{b.x, b.y, b.z}}));
    std::vector<Segment> segments;
    appendArc(segments, from, to, 1, false);
    std::map<std::array<Coordinate, 3>, int> ends;
    for (const Segment& s : segments)
      for (const bool first : {true, false}) ++ends[cubePointOf(s, first)];
    int open = 0;
    for (const auto& end : ends) open += end.second % 2;
    EXPECT_EQ(2, open) << i;
    EXPECT_LT(farthestFromArc(segments, a, b), 1e-14) << i;
    ++count;
  }
  EXPECT_GT(count, 30000);
}

// Where it left a face it was as good as at its far end.
TEST(CubeFacesProperty, AnArcIsTheSameHoweverLongItsEndsAre) {
  Random random(6);
  int severalFaces = 0;
  for (int i = 0; i < 2000; ++i) {
    const Vector a = random.vector(1.0);
    const Vector b = random.vector(1.0);
    const FrameVector from{{a[0], a[1], a[2]}};
    const FrameVector to{{b[0], b[1], b[2]}};
    constexpr double Short = 0x1p-200;
    const FrameVector near{{Short * b[0], Short * b[1], Short * b[2]}};
    std::vector<Segment> segments;
    std::vector<Segment> same;
    appendArc(segments, from, to, 1, false);
    appendArc(same, from, near, 1, false);
    ASSERT_EQ(segments.size(), same.size());
    severalFaces += segments.size() > 2 ? 1 : 0;
    for (std::size_t k = 0; k < segments.size(); ++k) {
      EXPECT_EQ(cubePointOf(segments[k], true), cubePointOf(same[k], true));
      EXPECT_EQ(cubePointOf(segments[k], false), cubePointOf(same[k], false));
    }
  }
  EXPECT_GT(severalFaces, 100);
}

}  // namespace
}  // namespace Lumivane::Visibility
