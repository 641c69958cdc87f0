#include <lumivane/algorithm/Bounds2D.h>
#include <lumivane/algorithm/ObjectData.h>
#include <lumivane/algorithm/ProjectedPolygonData.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Algorithm::Bounds2D;
using Algorithm::ObjectData;
using Algorithm::ProjectedPolygonData;
using Vector = std::vector<double>;

Vector valuesOf(const Bounds2D& b) { return {b.getXMin(), b.getXMax(), b.getYMin(), b.getYMax()}; }

TEST(ObjectData, DefaultHasAnIdAndNothingElse) {
  const ObjectData object;
  EXPECT_FALSE(object.getId().empty());
  EXPECT_EQ("", object.getSourceObject());
  EXPECT_EQ(nullptr, object.getSourceRegions());
  EXPECT_EQ(nullptr, object.getSourcePolygons());
  EXPECT_EQ(nullptr, object.getProjectedPolygons());
  EXPECT_EQ(nullptr, object.getProjectedBounds());
  EXPECT_EQ(-1, object.getDepthIndex());
}

TEST(ObjectData, IdsAreConsecutiveDecimalNumbers) {
  const int first = std::stoi(ObjectData().getId());
  EXPECT_EQ(std::to_string(first + 1), ObjectData().getId());
  EXPECT_EQ(std::to_string(first + 2), ObjectData().getId());
}

// In a process of its own, since other tests draw ids as well.
TEST(ObjectDataDeathTest, FirstIdOfAProcessIsOne) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const std::string first = ObjectData().getId();
        const std::string second = ObjectData().getId();
        std::fprintf(stderr, "ids %s %s.", first.c_str(), second.c_str());
        std::_Exit(0);
      },
      ::testing::ExitedWithCode(0), "ids 1 2\\.");
}

TEST(ObjectData, CopyKeepsTheIdAndSharesTheLists) {
  ObjectData::Regions regions;
  ObjectData::SourcePolygons sources;
  ObjectData::ProjectedPolygons polygons;
  Bounds2D bounds;
  ObjectData object;
  object.setSourceObject("house");
  object.setSourceRegions(&regions);
  object.setSourcePolygons(&sources);
  object.setProjectedPolygons(&polygons);
  object.setProjectedBounds(&bounds);
  object.setDepthIndex(7);

  const ObjectData copy(object);
  ObjectData assigned;
  assigned = object;
  for (const ObjectData* other : {&copy, static_cast<const ObjectData*>(&assigned)}) {
    EXPECT_EQ(object.getId(), other->getId());
    EXPECT_EQ("house", other->getSourceObject());
    EXPECT_EQ(&regions, other->getSourceRegions());
    EXPECT_EQ(&sources, other->getSourcePolygons());
    EXPECT_EQ(&polygons, other->getProjectedPolygons());
    EXPECT_EQ(&bounds, other->getProjectedBounds());
    EXPECT_EQ(7, other->getDepthIndex());
  }
}

TEST(ObjectData, CopyDrawsNoId) {
  const ObjectData object;
  ObjectData copy(object);
  copy.setDepthIndex(3);
  EXPECT_EQ(object.getId(), copy.getId());
  EXPECT_EQ(std::stoi(object.getId()) + 1, std::stoi(ObjectData().getId()));
}

TEST(ObjectData, BoundsStayAsTheyAreWithoutPolygons) {
  ObjectData::ProjectedPolygons none;
  Bounds2D bounds(1, 2, 3, 4);
  ObjectData object;
  object.setProjectedBounds(&bounds);
  object.setProjectedPolygons(nullptr);
  EXPECT_EQ(&bounds, object.getProjectedBounds());
  object.setProjectedPolygons(&none);
  EXPECT_EQ(&bounds, object.getProjectedBounds());
}

TEST(ObjectData, BoundsOfOnePolygonAreANewCopyOfIts) {
  Bounds2D bounds(1, 2, 3, 4);
  ProjectedPolygonData polygon;
  polygon.setBounds(&bounds);
  ObjectData::ProjectedPolygons polygons{&polygon};
  ObjectData object;
  object.setProjectedPolygons(&polygons);
  const std::unique_ptr<Bounds2D> made(object.getProjectedBounds());
  EXPECT_NE(&bounds, made.get());
  EXPECT_EQ((Vector{1, 2, 3, 4}), valuesOf(*made));
}

// A union would leave out both.
TEST(ObjectData, BoundsOfOnePolygonAreCopiedEvenIfNotNumbersOrInfinite) {
  Bounds2D bounds(std::numeric_limits<double>::infinity(), 2, 3,
                  std::numeric_limits<double>::quiet_NaN());
  ProjectedPolygonData polygon;
  polygon.setBounds(&bounds);
  ObjectData::ProjectedPolygons polygons{&polygon};
  ObjectData object;
  object.setProjectedPolygons(&polygons);
  const std::unique_ptr<Bounds2D> made(object.getProjectedBounds());
  EXPECT_EQ(bounds.getXMin(), made->getXMin());
  EXPECT_TRUE(std::isnan(made->getYMax()));
}

TEST(ObjectData, OnePolygonWithoutBoundsGivesTheDefaultBound) {
  ProjectedPolygonData polygon;
  ObjectData::ProjectedPolygons polygons{&polygon};
  ObjectData object;
  object.setProjectedPolygons(&polygons);
  const std::unique_ptr<Bounds2D> made(object.getProjectedBounds());
  EXPECT_TRUE(Bounds2D::isDefaultBounds(*made));
}

TEST(ObjectData, BoundsOfSeveralPolygonsAreTheirUnion) {
  Bounds2D left(0, 1, 5, 6);
  Bounds2D right(3, 4, -2, 0);
  ProjectedPolygonData a;
  ProjectedPolygonData unbounded;
  ProjectedPolygonData b;
  a.setBounds(&left);
  b.setBounds(&right);
  ObjectData::ProjectedPolygons polygons{&a, &unbounded, &b};
  ObjectData object;
  object.setProjectedPolygons(&polygons);
  const std::unique_ptr<Bounds2D> made(object.getProjectedBounds());
  EXPECT_EQ((Vector{0, 4, -2, 6}), valuesOf(*made));
}

TEST(ObjectData, DepthIndicesCompareStrictly) {
  ObjectData a;
  ObjectData b;
  a.setDepthIndex(1);
  b.setDepthIndex(2);
  EXPECT_TRUE(ObjectData::compareByDepthIndex(&a, &b));
  EXPECT_FALSE(ObjectData::compareByDepthIndex(&b, &a));
  EXPECT_FALSE(ObjectData::compareByDepthIndex(&a, &a));
}

TEST(ProjectedPolygonData, PointsBringTheirBounds) {
  ProjectedPolygonData::Points points{{1, 5}, {3, 2}};
  ProjectedPolygonData polygon;
  EXPECT_EQ(nullptr, polygon.getPoints());
  EXPECT_EQ(nullptr, polygon.getBounds());
  polygon.setPoints(&points);
  const std::unique_ptr<Bounds2D> made(polygon.getBounds());
  EXPECT_EQ(&points, polygon.getPoints());
  EXPECT_EQ((Vector{1, 3, 2, 5}), valuesOf(*made));
}

TEST(ProjectedPolygonData, NullOrEmptyPointsLeaveTheBoundsAsTheyWere) {
  ProjectedPolygonData::Points none;
  Bounds2D bounds;
  ProjectedPolygonData polygon;
  polygon.setBounds(&bounds);
  polygon.setPoints(&none);
  EXPECT_EQ(&none, polygon.getPoints());
  EXPECT_EQ(&bounds, polygon.getBounds());
  polygon.setPoints(nullptr);
  EXPECT_EQ(nullptr, polygon.getPoints());
  EXPECT_EQ(&bounds, polygon.getBounds());
}

TEST(ProjectedPolygonData, CopyShares) {
  ProjectedPolygonData::Points none;
  Bounds2D bounds;
  ProjectedPolygonData polygon;
  polygon.setPoints(&none);
  polygon.setBounds(&bounds);
  const ProjectedPolygonData copy(polygon);
  EXPECT_EQ(&none, copy.getPoints());
  EXPECT_EQ(&bounds, copy.getBounds());
}

}  // namespace
}  // namespace Lumivane::Test
