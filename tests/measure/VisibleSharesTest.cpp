#include "measure/HandShot.h"

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Measure {
namespace {

using Algorithm::ProjectionType;
using Test::box;
using Test::HandShot;
using Test::Outline;
constexpr double Pi = 3.141592653589793;
constexpr double Tolerance = 1e-12;

double area(const VisibleShares& shares, size_t region) {
  return shares.regions().at(region - 1).share.area;
}

void expectWhole(const VisibleShares& shares) {
  Share sum = shares.open();
  for (const ObjectShare& object : shares.objects()) {
    sum.area += object.share.area;
    sum.viewFactor += object.share.viewFactor;
    sum.solidAngle += object.share.solidAngle;
  }
  const Share whole = shares.whole();
  EXPECT_NEAR(1.0, sum.area / whole.area, Tolerance);
  EXPECT_NEAR(1.0, sum.viewFactor, Tolerance);
  EXPECT_NEAR(1.0, sum.hemisphereShare(), Tolerance);
}

TEST(VisibleShares, AnEmptyShotIsAllOpen) {
  const Shot::Shot2d shot;
  for (const ProjectionType type : {ProjectionType::Radial, ProjectionType::Square}) {
    const VisibleShares shares(shot, type);
    EXPECT_TRUE(shares.regions().empty());
    EXPECT_NEAR(type == ProjectionType::Radial ? Pi : 4.0, shares.open().area, Tolerance);
    EXPECT_NEAR(1.0, shares.open().viewFactor, Tolerance);
    EXPECT_NEAR(2 * Pi, shares.open().solidAngle, Tolerance);
  }
}

TEST(VisibleShares, WhatIsDrawnLaterTakesAwayWhatItCovers) {
  HandShot hand;
  hand.add(box(-0.5, -0.5, 0.5, 0.5));
  hand.add(box(-0.1, -0.2, 0.3, 0.2));
  hand.add(box(0.2, 0.1, 0.6, 0.4));
  const VisibleShares shares = hand.round();
  EXPECT_NEAR(1.0 - 0.16 - 0.09 + 0.01, area(shares, 1), Tolerance);
  EXPECT_NEAR(0.16 - 0.01, area(shares, 2), Tolerance);
  EXPECT_NEAR(0.12, area(shares, 3), Tolerance);
  EXPECT_NEAR(Pi - 1.03, shares.open().area, Tolerance);
  expectWhole(shares);
}

TEST(VisibleShares, ARegionWhollyBehindLaterOnesHasNothing) {
  HandShot hand;
  hand.add(box(-0.3, -0.3, 0.3, 0.3));
  hand.add(box(-0.4, -0.4, 0.1, 0.4));
  hand.add(box(0.1, -0.4, 0.4, 0.4));
  const VisibleShares shares = hand.round();
  EXPECT_EQ(0.0, area(shares, 1));
  EXPECT_EQ(0.0, shares.regions()[0].share.solidAngle);
}

TEST(VisibleShares, TheViewFactorOfTheRoundPictureIsTheAreaByPi) {
  HandShot hand;
  hand.add(box(0.1, 0.2, 0.4, 0.5));
  EXPECT_NEAR(0.09 / Pi, hand.round().regions()[0].share.viewFactor, Tolerance);
}

TEST(VisibleShares, AnOutlineThatWindsTwiceIsFilledOnce) {
  HandShot hand;
  Outline twice = box(-0.2, -0.2, 0.2, 0.2);
  const Outline once = twice;
  twice.insert(twice.end(), once.begin(), once.end());
  hand.add(twice);
  EXPECT_NEAR(0.16, area(hand.round(), 1), Tolerance);
}

TEST(VisibleShares, AnOutlineThatCrossesItselfIsFilledOnBothSides) {
  HandShot hand;
  hand.add({{-0.2, -0.2}, {0.2, 0.2}, {0.2, -0.2}, {-0.2, 0.2}});
  EXPECT_NEAR(0.08, area(hand.round(), 1), Tolerance);
}

TEST(VisibleShares, RepeatedPointsAndSpikesAddNothing) {
  HandShot hand;
  hand.add({{0, 0}, {0, 0}, {0.3, 0}, {0.6, 0}, {0.3, 0}, {0.3, 0.3}, {0.3, 0.3}, {0, 0.3}});
  EXPECT_NEAR(0.09, area(hand.round(), 1), Tolerance);
}

TEST(VisibleShares, RegionsWithoutAreaHaveNothing) {
  HandShot hand;
  hand.add({});
  hand.add({{0.1, 0.1}});
  hand.add({{0.1, 0.1}, {0.4, 0.3}});
  hand.add({{0.1, 0.1}, {0.2, 0.2}, {0.4, 0.4}});
  const VisibleShares shares = hand.round();
  for (const RegionShare& region : shares.regions()) {
    EXPECT_NEAR(0.0, region.share.area, Tolerance) << region.regionNumber;
    EXPECT_NEAR(0.0, region.share.solidAngle, Tolerance) << region.regionNumber;
  }
  EXPECT_NEAR(Pi, shares.open().area, Tolerance);
}

TEST(VisibleShares, PointsOutsideThePictureCountAsOnItsRim) {
  HandShot hand;
  hand.add(box(-7, -7, 7, 7));
  EXPECT_NEAR(2.0, area(hand.round(), 1), Tolerance);  // the square in the unit circle
  EXPECT_NEAR(4.0, area(hand.square(), 1), Tolerance);
  expectWhole(hand.round());
}

TEST(VisibleShares, PointsThatAreNoNumbersAreLeftOut) {
  HandShot hand;
  Outline outline = box(0, 0, 0.3, 0.3);
  outline.insert(outline.begin() + 1, {std::numeric_limits<double>::quiet_NaN(), 0.0});
  outline.insert(outline.begin() + 3, {0.0, std::numeric_limits<double>::infinity()});
  hand.add(outline);
  EXPECT_NEAR(0.09, area(hand.round(), 1), Tolerance);
}

TEST(VisibleShares, TheRimBelongsToARegionThatFollowsIt) {
  // By chords a half disc of few points lacks much of its area, by arcs nothing of its solid angle.
  HandShot hand;
  hand.add({{-1, 0}, {0, -1}, {1, 0}});
  const VisibleShares shares = hand.round();
  EXPECT_NEAR(1.0, area(shares, 1), Tolerance);
  EXPECT_NEAR(Pi, shares.regions()[0].share.solidAngle, Tolerance);
  EXPECT_NEAR(Pi, shares.open().solidAngle, Tolerance);
}

TEST(VisibleShares, TheSquarePictureHasItsOwnMeasures) {
  // From azimuth 0 to 90 degrees, elevation 0 to 90: a quarter of the hemisphere in every respect.
  HandShot hand;
  hand.add(box(0, 0, 1, 1));
  const Share share = hand.square().regions()[0].share;
  EXPECT_NEAR(1.0, share.area, Tolerance);
  EXPECT_NEAR(0.25, share.viewFactor, Tolerance);
  EXPECT_NEAR(Pi / 2, share.solidAngle, Tolerance);
  expectWhole(hand.square());
}

TEST(VisibleShares, SumsByObjectAndFaceAreThoseOfTheRegions) {
  HandShot hand;
  hand.addObject("second");
  hand.addObject("third");
  hand.add(box(0, 0, 0.2, 0.2), 1);
  hand.add(box(0.3, 0.3, 0.4, 0.4), 2);
  hand.add(box(-0.3, -0.3, 0, 0), 1);
  const VisibleShares shares = hand.round();
  ASSERT_EQ(3U, shares.objects().size());
  EXPECT_EQ("second", shares.objects()[1].id);
  EXPECT_NEAR(0.04 + 0.09, shares.objects()[0].share.area, Tolerance);
  EXPECT_NEAR(0.01, shares.objects()[1].share.area, Tolerance);
  EXPECT_EQ(0.0, shares.objects()[2].share.area);
  ASSERT_EQ(3U, shares.faces().size());
  EXPECT_EQ(3, shares.faces()[1].faceNumber);
  EXPECT_NEAR(0.09, shares.faces()[1].share.area, Tolerance);
}

TEST(VisibleShares, APointNumberWithoutAPointThrows) {
  HandShot hand;
  hand.add(box(0, 0, 0.2, 0.2));
  hand.shot.getRegions()->getRegion(0)->addPoint(5);
  EXPECT_THROW(hand.round(), std::out_of_range);
}

TEST(VisibleShares, AShotWithoutAViewHasToBeGivenItsProjection) {
  const HandShot hand;
  EXPECT_THROW(VisibleShares shares(hand.shot), std::invalid_argument);
}

}  // namespace
}  // namespace Lumivane::Measure
