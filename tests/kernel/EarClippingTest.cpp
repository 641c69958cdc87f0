#include "kernel/EarClipping.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Kernel {
namespace {

using Outline = std::vector<Vec2>;

double crossOf(Vec2 a, Vec2 b, Vec2 c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

double areaOf(const Outline& outline) {
  double sum = 0.0;
  for (std::size_t i = 1; i + 1 < outline.size(); ++i)
    sum += crossOf(outline[0], outline[i], outline[i + 1]);
  return sum / 2.0;
}

bool isInside(const Outline& outline, Vec2 p) {
  bool inside = false;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const Vec2 a = outline[i];
    const Vec2 b = outline[(i + 1) % outline.size()];
    if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) / (b.y - a.y) * (b.x - a.x))
      inside = !inside;
  }
  return inside;
}

int trianglesAt(const Outline& outline, const std::vector<CornerTriple>& triangles, Vec2 p) {
  return static_cast<int>(
      std::count_if(triangles.begin(), triangles.end(), [&](const CornerTriple& t) {
        return isInside({outline[t[0]], outline[t[1]], outline[t[2]]}, p);
      }));
}

// Each triangle counter-clockwise, all points inside in one of them and all others in none.
void expectCover(const Outline& outline, std::size_t count) {
  const std::vector<CornerTriple> triangles = clippedEars(outline);
  EXPECT_EQ(count, triangles.size());
  double sum = 0.0;
  for (const CornerTriple& t : triangles) {
    const double area = areaOf({outline[t[0]], outline[t[1]], outline[t[2]]});
    EXPECT_GT(area, 0.0);
    sum += area;
  }
  EXPECT_NEAR(areaOf(outline), sum, 1e-12 * std::abs(sum));
  std::mt19937 engine(5);
  std::uniform_real_distribution<double> place(-1.1, 1.1);
  for (int i = 0; i < 200; ++i) {
    const Vec2 p{place(engine), place(engine)};
    EXPECT_EQ(isInside(outline, p) ? 1 : 0, trianglesAt(outline, triangles, p));
  }
}

Outline star(int corners, unsigned seed) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> radius(0.1, 1.0);
  Outline result;
  for (int i = 0; i < corners; ++i) {
    const double angle = 6.283185307179586 * i / corners;
    const double r = radius(engine);
    result.push_back({r * std::cos(angle), r * std::sin(angle)});
  }
  return result;
}

Outline turned(const Outline& outline, double angle) {
  Outline result;
  for (const Vec2 p : outline)
    result.push_back({std::cos(angle) * p.x - std::sin(angle) * p.y,
                      std::sin(angle) * p.x + std::cos(angle) * p.y});
  return result;
}

TEST(EarClipping, ATriangleIsItself) {
  EXPECT_EQ((std::vector<CornerTriple>{{2, 0, 1}}), clippedEars({{0, 0}, {1, 0}, {0, 1}}));
}

TEST(EarClipping, OfEqualEarsTheOneWithTheLowestNumberIsFirst) {
  const Outline square = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
  EXPECT_EQ((std::vector<CornerTriple>{{3, 0, 1}, {3, 1, 2}}), clippedEars(square));
}

TEST(EarClipping, TheEarWithTheLargestLeastAngleIsFirst) {
  // The far corner is the sharpest; cutting the kite along its short diagonal is best.
  const Outline kite = {{0, 0}, {1, -0.5}, {4, 0}, {1, 0.5}};
  EXPECT_EQ((CornerTriple{3, 0, 1}), clippedEars(kite).front());
}

TEST(EarClipping, OutlinesWithoutEarsAreCutAllTheSame) {
  EXPECT_TRUE(clippedEars({{0, 0}, {1, 0}}).empty());
  const std::vector<Outline> outlines = {
      {{0, 0}, {2, 2}, {2, 0}, {0, 1}},                  // a bow-tie
      {{0, 0}, {0, 1}, {1, 1}, {1, 0}},                  // clockwise
      {{0, 0}, {1, 0}, {2, 0}, {3, 0}},                  // no area
      {{0, 0}, {2, 2}, {4, 4}, {4, 0}, {2, 2}, {0, 4}},  // a knot
      {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}}};         // one place
  for (const Outline& outline : outlines) {
    const std::vector<CornerTriple> triangles = clippedEars(outline);
    EXPECT_EQ(outline.size() - 2, triangles.size());
    double sum = 0.0;
    for (const CornerTriple& t : triangles)
      sum += areaOf({outline[t[0]], outline[t[1]], outline[t[2]]});
    EXPECT_NEAR(areaOf(outline), sum, 1e-15);
  }
}

TEST(EarClipping, WhereThereIsNoEarTheLowestCornerIsCutOff) {
  EXPECT_EQ((std::vector<CornerTriple>{{3, 0, 1}, {3, 1, 2}}),
            clippedEars({{0, 0}, {0, 1}, {1, 1}, {1, 0}}));
}

TEST(EarClipping, CornersOnALineMakeNoTriangle) {
  expectCover({{-1, -1}, {0, -1}, {1, -1}, {1, 1}, {-1, 1}}, 3);
  expectCover({{-1, -1}, {1, -1}, {1, 1}, {0, 0}, {-1, 1}}, 3);
}

TEST(EarClipping, AHoleJoinedByAnEdgeWalkedTwiceStaysAHole) {
  const Outline frame = {{-1, -1},     {1, -1},     {1, 1},     {-1, 1},     {-1, -1},
                         {-0.5, -0.5}, {-0.5, 0.5}, {0.5, 0.5}, {0.5, -0.5}, {-0.5, -0.5}};
  expectCover(frame, 8);
  for (const double angle : {0.1, 0.7, 2.0, 4.0}) expectCover(turned(frame, angle), 8);
}

TEST(EarClipping, TwoHolesAtOneCornerStayHoles) {
  const Outline outline = {{-1, -1},  {1, -1},     {1, 1},      {-1, 1},   {-1, -1},
                           {-0.5, 0}, {-0.2, 0.5}, {0, 0},      {-0.5, 0}, {-1, -1},
                           {0, -0.8}, {0.2, -0.4}, {0.6, -0.8}, {0, -0.8}};
  expectCover(outline, 12);
}

TEST(EarClippingProperty, StarsAreCoveredOnce) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    const int corners = 3 + static_cast<int>(seed) * 2;
    expectCover(star(corners, seed), static_cast<std::size_t>(corners) - 2);
  }
}

TEST(EarClippingProperty, SpiralsAreCoveredOnce) {
  for (int turns = 1; turns < 5; ++turns) {
    Outline spiral;
    const int steps = 24 * turns;
    for (int i = 0; i <= steps; ++i) {
      const double angle = 6.283185307179586 * i / 24.0;
      const double r = 0.2 + 0.7 * i / steps;
      spiral.push_back({r * std::cos(angle), r * std::sin(angle)});
    }
    for (int i = steps; i >= 0; --i) {
      const double r = 0.2 + 0.7 * i / steps - 0.3 / turns / 2.0;
      const double angle = 6.283185307179586 * i / 24.0;
      spiral.push_back({r * std::cos(angle), r * std::sin(angle)});
    }
    expectCover(spiral, spiral.size() - 2);
  }
}

TEST(EarClippingProperty, TurnedOutlinesAreCutAsBefore) {
  const Outline shape = {{-1, -1}, {0, -1}, {0, -0.5}, {1, -0.5}, {1, 1}, {-1, 1}};
  const std::vector<CornerTriple> cut = clippedEars(shape);
  EXPECT_EQ(4U, cut.size());
  for (double angle = 0.05; angle < 6.3; angle += 0.05)
    EXPECT_EQ(cut, clippedEars(turned(shape, angle)));
}

}  // namespace
}  // namespace Lumivane::Kernel
