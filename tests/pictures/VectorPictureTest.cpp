#include "pictures/PictureModels.h"

#include <lumivane/pictures/VectorPicture.h>

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Pictures::VectorAxes;
using Pictures::VectorOptions;
using Pictures::VectorPicture;

VectorOptions ofSize(int width, int height) {
  VectorOptions options;
  options.width = width;
  options.height = height;
  return options;
}

VectorOptions ofStyle(Base::ViewDisplayStyle style) {
  VectorOptions options;
  options.style = style;
  return options;
}

const VectorPicture::Region& region(const VectorPicture& picture, size_t surface, size_t at = 0) {
  return picture.surfaces().at(surface).regions.at(at);
}

std::string causeFor(PiecesModel& model, const VectorOptions& options = {}) {
  try {
    const VectorPicture picture(*model.shot, options);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "nothing thrown";
}

TEST(VectorPicture, ShotWithoutListsIsAnEmptyPicture) {
  Shot::Shot2d shot;
  const VectorPicture picture(shot, ofSize(30, 20));
  EXPECT_EQ(30, picture.width());
  EXPECT_EQ(20, picture.height());
  EXPECT_TRUE(picture.surfaces().empty());
  EXPECT_TRUE(picture.axes().empty());
  EXPECT_FALSE(picture.background());
}

TEST(VectorPicture, ShotWithoutRegionsIsAnEmptyPicture) {
  const PiecesModel model;
  EXPECT_TRUE(VectorPicture(*model.shot).surfaces().empty());
}

TEST(VectorPicture, PlaneFillsTheHeightWithYUpAndXInProportion) {
  PiecesModel model;
  model.addRegion(1, 1, {{-1, -1}, {0, 1}, {2, 0.5}});
  const VectorPicture picture(*model.shot, ofSize(400, 200));
  const VectorPicture::Line& line = region(picture, 0).interior.lines.at(0);
  EXPECT_EQ(100, line[0].x);
  EXPECT_EQ(200, line[0].y);
  EXPECT_EQ(200, line[1].x);
  EXPECT_EQ(0, line[1].y);
  EXPECT_EQ(400, line[2].x);
  EXPECT_EQ(50, line[2].y);
}

TEST(VectorPicture, ExtentIsHalfTheHeight) {
  PiecesModel model;
  model.addRegion(1, 1, {{0, 0}, {2, 2}, {0, 1}});
  VectorOptions options = ofSize(100, 100);
  options.extent = 2.0;
  const VectorPicture picture(*model.shot, options);
  EXPECT_EQ(100, region(picture, 0).interior.lines.at(0)[1].x);
  EXPECT_EQ(0, region(picture, 0).interior.lines.at(0)[1].y);
}

TEST(VectorPicture, FillIsTheBrushAndEdgesAreThePen) {
  PiecesModel model;
  model.addRectangle(2, 2, 0, 0, 1, 1);
  const VectorPicture picture(*model.shot);
  const VectorPicture::Color fill = region(picture, 0).interior.fill.value();
  EXPECT_EQ(102, fill.green);
  EXPECT_DOUBLE_EQ(0.2, fill.opacity);
  const VectorPicture::Pen pen = region(picture, 0).edges.pen.value();
  EXPECT_EQ(51, pen.color.blue);
  EXPECT_DOUBLE_EQ(0.8, pen.color.opacity);
  EXPECT_EQ(3.5, pen.width);
}

TEST(VectorPicture, OverrideColorStandsBeforeTheBrush) {
  PiecesModel model;
  model.addRectangle(1, 1, 0, 0, 1, 1)->setOverrideColor(Base::Color(1, 2, 3, 51));
  const VectorPicture picture(*model.shot);
  EXPECT_EQ(3, region(picture, 0).interior.fill->blue);
  EXPECT_DOUBLE_EQ(0.2, region(picture, 0).interior.fill->opacity);
}

TEST(VectorPicture, ColorsOutOfRangeAreBroughtIntoIt) {
  PiecesModel model;
  model.addRectangle(1, 1, 0, 0, 1, 1)->setOverrideColor(Base::Color(300, -5, 3, 999));
  const VectorPicture picture(*model.shot);
  EXPECT_EQ(255, region(picture, 0).interior.fill->red);
  EXPECT_EQ(0, region(picture, 0).interior.fill->green);
  EXPECT_EQ(1.0, region(picture, 0).interior.fill->opacity);
}

TEST(VectorPicture, StyleIsTheOptionOrElseThatOfTheView) {
  PiecesModel model;
  model.addRectangle(1, 1, 0, 0, 1, 1);
  const auto fill = [&model](const VectorOptions& options) {
    return region(VectorPicture(*model.shot, options), 0).interior.fill;
  };
  EXPECT_EQ(1.0, fill({})->opacity);
  EXPECT_EQ(0.5, fill(ofStyle(Base::ViewDisplayStyle::HalfTransparent))->opacity);
  EXPECT_FALSE(fill(ofStyle(Base::ViewDisplayStyle::Outline)));
  model.view.setDisplayStyle(Base::ViewDisplayStyle::Outline);
  EXPECT_FALSE(fill({}));
  EXPECT_EQ(1.0, fill(ofStyle(Base::ViewDisplayStyle::Filled))->opacity);
  model.shot->setView(nullptr);
  EXPECT_EQ(1.0, fill({})->opacity);
}

TEST(VectorPicture, ShotWithoutBrushesAndPensIsBlackWithLinesOfWidthOne) {
  Shot::Shot2d shot;
  const PiecesModel model;
  model.addRectangle(7, 9, 0, 0, 1, 1);
  shot.setPoints(model.shot->getPoints());
  shot.setRegions(model.shot->getRegions());
  const VectorPicture picture(shot);
  EXPECT_EQ(1.0, region(picture, 0).interior.fill->opacity);
  EXPECT_EQ(0, region(picture, 0).interior.fill->red);
  EXPECT_EQ(1.0, region(picture, 0).edges.pen->width);
  shot.setPoints(nullptr);
  shot.setRegions(nullptr);
}

TEST(VectorPicture, DockingEdgesAreLeftOutOfTheEdgesButNotOfTheInside) {
  PiecesModel model;
  model.addRectangle(1, 1, 0, 0, 1, 1)->addDockingEdge(2);
  const VectorPicture picture(*model.shot);
  EXPECT_EQ(4u, region(picture, 0).interior.lines.at(0).size());
  const VectorPicture::Path& edges = region(picture, 0).edges;
  ASSERT_EQ(1u, edges.lines.size());  // joined over the first point
  EXPECT_FALSE(edges.closed);
  ASSERT_EQ(4u, edges.lines[0].size());
  EXPECT_EQ(800, edges.lines[0][0].x);
  EXPECT_EQ(0, edges.lines[0][0].y);
  EXPECT_EQ(800, edges.lines[0][3].x);
  EXPECT_EQ(400, edges.lines[0][3].y);
}

TEST(VectorPicture, OutlineWithoutDockingEdgesIsClosed) {
  PiecesModel model;
  model.addRectangle(1, 1, 0, 0, 1, 1);
  const VectorPicture picture(*model.shot);
  EXPECT_TRUE(region(picture, 0).edges.closed);
  EXPECT_EQ(4u, region(picture, 0).edges.lines.at(0).size());
}

TEST(VectorPicture, RegionOfDockingEdgesOnlyHasNoEdges) {
  PiecesModel model;
  Geometry::Region2d* triangle = model.addRegion(1, 1, {{0, 0}, {1, 0}, {0, 1}});
  for (const int edge : {1, 2, 3}) triangle->addDockingEdge(edge);
  EXPECT_TRUE(region(VectorPicture(*model.shot), 0).edges.lines.empty());
}

TEST(VectorPicture, PenOfWidthZeroDrawsNothing) {
  PiecesModel model;
  model.addRectangle(1, 3, 0, 0, 1, 1);
  EXPECT_TRUE(region(VectorPicture(*model.shot), 0).edges.lines.empty());
}

TEST(VectorPicture, RegionsOfFewerThanTwoPointsAreLeftOutAndTwoMakeALine) {
  PiecesModel model;
  model.addRegion(99, 99, {});
  model.addRegion(99, 99, {{0, 0}});
  model.addRegion(99, 1, {{0, 0}, {1, 1}});
  const VectorPicture picture(*model.shot);
  ASSERT_EQ(1u, picture.surfaces().size());
  EXPECT_EQ(3, region(picture, 0).number);
  EXPECT_FALSE(region(picture, 0).interior.fill);
  EXPECT_EQ(2u, region(picture, 0).edges.lines.at(0).size());
}

TEST(VectorPicture, RegionsKnowWhereTheyComeFrom) {
  const FourPieces model;
  model.shot->getRegions()->getRegion(2)->setSourceRegionNumber(7);
  model.shot->getRegions()->getRegion(2)->setObjectNumber(12);
  const VectorPicture picture(*model.shot);
  EXPECT_EQ("A", region(picture, 0).objectId);
  EXPECT_EQ(1, region(picture, 0).objectNumber);
  EXPECT_EQ(1, region(picture, 0).faceNumber);
  EXPECT_EQ(12, region(picture, 1).objectNumber);
  EXPECT_EQ("", region(picture, 1).objectId);
  EXPECT_EQ(7, region(picture, 1).sourceRegionNumber);
}

TEST(VectorPicture, DockedPiecesOfAFaceLieOnOneOutline) {
  const FourPieces model;
  const VectorPicture picture(*model.shot);
  ASSERT_EQ(1u, picture.surfaces().size());
  const VectorPicture::Surface& surface = picture.surfaces()[0];
  EXPECT_EQ(4u, surface.regions.size());
  EXPECT_EQ(1.0, surface.opacity);
  ASSERT_EQ(1u, surface.merged.size());
  ASSERT_EQ(1u, surface.merged[0].lines.size());
  EXPECT_EQ(4u, surface.merged[0].lines[0].size());
  EXPECT_EQ(255, surface.merged[0].fill->red);
}

TEST(VectorPicture, PiecesThatTurnEitherWayLieOnOneOutline) {
  const PiecesModel model;
  model.addObject("A");
  model.addPoints({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
  model.addPiece(1, 1, {1, 2, 3}, {3});
  model.addPiece(1, 1, {1, 4, 3}, {3});
  const VectorPicture picture(*model.shot);
  ASSERT_EQ(1u, picture.surfaces().at(0).merged.size());
  EXPECT_EQ(4u, picture.surfaces()[0].merged[0].lines.at(0).size());
}

TEST(VectorPicture, FacesOfUndockedRegionsAreNotGathered) {
  const FourPieces model(1, 1, false);
  const VectorPicture picture(*model.shot);
  ASSERT_EQ(4u, picture.surfaces().size());
  for (const VectorPicture::Surface& surface : picture.surfaces()) {
    EXPECT_EQ(1u, surface.regions.size());
    EXPECT_TRUE(surface.merged.empty());
  }
}

TEST(VectorPicture, PiecesThatAnotherFacePartsAreNotGathered) {
  const FourPieces model;
  model.shot->getRegions()->getRegion(2)->setFaceNumber(2);
  const VectorPicture picture(*model.shot);
  ASSERT_EQ(3u, picture.surfaces().size());
  EXPECT_EQ(1u, picture.surfaces()[0].merged.size());
  EXPECT_EQ(2u, picture.surfaces()[0].regions.size());
  EXPECT_EQ(3, region(picture, 1).number);
  EXPECT_TRUE(picture.surfaces()[1].merged.empty());
}

TEST(VectorPicture, PiecesOfSeveralColorsReachUnderThoseThatFollow) {
  const FourPieces model;
  model.shot->getRegions()->getRegion(1)->setBrushNumber(3);
  const VectorPicture picture(*model.shot);
  const std::vector<VectorPicture::Path>& merged = picture.surfaces().at(0).merged;
  ASSERT_EQ(2u, merged.size());
  EXPECT_EQ(255, merged[0].fill->red);
  EXPECT_EQ(4u, merged[0].lines.at(0).size());
  EXPECT_EQ(255, merged[1].fill->blue);
  EXPECT_EQ(3u, merged[1].lines.at(0).size());
}

TEST(VectorPicture, TransparentPiecesAreOneLayer) {
  const FourPieces model(2);
  const VectorPicture picture(*model.shot);
  ASSERT_EQ(1u, picture.surfaces().size());
  EXPECT_DOUBLE_EQ(0.2, picture.surfaces()[0].opacity);
  EXPECT_EQ(1.0, picture.surfaces()[0].merged.at(0).fill->opacity);
  EXPECT_EQ(1.0, region(picture, 0, 3).interior.fill->opacity);
}

TEST(VectorPicture, PiecesOfDifferentOpacityAreDrawnApart) {
  const FourPieces model;
  model.shot->getRegions()->getRegion(1)->setBrushNumber(2);
  const VectorPicture picture(*model.shot);
  EXPECT_EQ(4u, picture.surfaces().size());
  EXPECT_DOUBLE_EQ(0.2, region(picture, 1).interior.fill->opacity);
}

TEST(VectorPicture, FacesThatDockSpreadAlongTheEdgesUnderThoseThatFollow) {
  const FourPieces model;
  for (int i = 0; i < 4; ++i) model.shot->getRegions()->getRegion(i)->setFaceNumber(i + 1);
  const VectorPicture picture(*model.shot);
  ASSERT_EQ(4u, picture.surfaces().size());
  for (size_t i = 0; i < 3; ++i) {
    const VectorPicture::Path& spread = region(picture, i).spread;
    EXPECT_EQ(255, spread.pen.value().color.red);
    EXPECT_FALSE(spread.pen->roundEnds);
    ASSERT_EQ(1u, spread.lines.size());
  }
  EXPECT_EQ(3u, region(picture, 0).spread.lines[0].size());
  EXPECT_TRUE(region(picture, 3).spread.lines.empty());
}

TEST(VectorPicture, NothingSpreadsInsideAFaceNorWhereNothingDocksNorThroughTransparency) {
  FourPieces transparent(2, 1);
  for (int i = 0; i < 4; ++i) transparent.shot->getRegions()->getRegion(i)->setFaceNumber(i + 1);
  const FourPieces whole;
  const FourPieces apart(1, 1, false);
  const FourPieces* const models[] = {&transparent, &whole, &apart};
  for (const FourPieces* model : models) {
    const VectorPicture picture(*model->shot);
    for (const VectorPicture::Surface& surface : picture.surfaces())
      for (const VectorPicture::Region& each : surface.regions)
        EXPECT_TRUE(each.spread.lines.empty());
  }
}

TEST(VectorPicture, OutlinePictureHasNothingToMerge) {
  const FourPieces model;
  const VectorPicture picture(*model.shot, ofStyle(Base::ViewDisplayStyle::Outline));
  ASSERT_EQ(4u, picture.surfaces().size());
  EXPECT_TRUE(picture.surfaces()[0].merged.empty());
}

TEST(VectorPicture, AxesAreThoseOfTheProjection) {
  PiecesModel model;
  VectorOptions options;
  options.axes = VectorAxes::OfShot;
  EXPECT_EQ(15u, VectorPicture(*model.shot, options).axes().size());
  model.view.setCamera(&model.normal);
  EXPECT_EQ(8u, VectorPicture(*model.shot, options).axes().size());
  options.axes = VectorAxes::Radial;
  EXPECT_EQ(15u, VectorPicture(*model.shot, options).axes().size());
  model.shot->setView(nullptr);
  options.axes = VectorAxes::OfShot;
  EXPECT_EQ(15u, VectorPicture(*model.shot, options).axes().size());
  options.axes = VectorAxes::Square;
  const VectorPicture square(*model.shot, options);
  ASSERT_EQ(8u, square.axes().size());
  EXPECT_EQ(21u, square.axes().back().lines.size());
  EXPECT_NEAR(1.0 - std::pow(1.0 - 10 / 255.0, 21), square.axes().back().pen->color.opacity, 1e-12);
}

TEST(VectorPicture, NumbersThatPointAtNothingAreNamedWithTheirRegionAndObject) {
  FourPieces shot;
  Geometry::Region2d* region = shot.shot->getRegions()->getRegion(1);
  const std::string place = "region 2 of the shot (object \"A\"): ";
  region->setBrushNumber(4);
  EXPECT_EQ(place + "brush 4, but there are 3", causeFor(shot));
  EXPECT_EQ("nothing thrown", causeFor(shot, ofStyle(Base::ViewDisplayStyle::Outline)));
  region->setBrushNumber(1);
  region->setPenNumber(0);
  EXPECT_EQ(place + "pen 0, but there are 3", causeFor(shot));
  region->setPenNumber(1);
  region->addPoint(6);
  EXPECT_EQ(place + "there is no point 6", causeFor(shot));
}

TEST(VectorPicture, CoordinatesThatCannotBeDrawnAreNamed) {
  FourPieces model;
  const std::string place = "region 1 of the shot (object \"A\"): ";
  Geometry::Point2d* point = model.shot->getPoints()->getPoint(1);
  for (const double bad :
       {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    point->setX(bad);
    EXPECT_EQ(place + "point 2 is not finite", causeFor(model));
  }
  point->setX(0);
  point->setY(-1e9);
  EXPECT_EQ(place + "point 2 lies more than 1000 units away", causeFor(model));
}

TEST(VectorPicture, PenWidthsThatCannotBeDrawnAreNamed) {
  FourPieces model;
  const std::string cause =
      "region 1 of the shot (object \"A\"): the width of pen 4 is negative or not finite";
  model.shot->getPens()->addPen(new Base::Pen(0, 0, 0, 255, -1.0));
  model.shot->getRegions()->getRegion(0)->setPenNumber(4);
  EXPECT_EQ(cause, causeFor(model));
  model.shot->getPens()->getPen(3)->setWidth(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(cause, causeFor(model));
}

TEST(VectorPicture, OptionsOutOfRangeAreRefused) {
  PiecesModel model;
  EXPECT_EQ("width 0 of the picture is not within 1 to 16384", causeFor(model, ofSize(0, 5)));
  EXPECT_EQ("height 16385 of the picture is not within 1 to 16384",
            causeFor(model, ofSize(5, 16385)));
  EXPECT_EQ("there is no display style 3",
            causeFor(model, ofStyle(static_cast<Base::ViewDisplayStyle>(3))));
  VectorOptions options;
  for (const double extent : {0.0, -1.0, 1e9, std::numeric_limits<double>::quiet_NaN()}) {
    options.extent = extent;
    EXPECT_EQ("the extent of the picture is not within 0.001 to 1000", causeFor(model, options));
  }
}

}  // namespace
}  // namespace Lumivane::Test
