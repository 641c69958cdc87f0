#include "pictures/PictureModels.h"
#include "pictures/PngImage.h"

#include <lumivane/pictures/CairoWriter.h>
#include <lumivane/pictures/VectorPicture.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Pictures::CairoWriter;
using Pictures::VectorOptions;
using Pictures::VectorPicture;
VectorOptions onMagenta(int side) {
  VectorOptions options;
  options.width = options.height = side;
  options.background = Base::Color(255, 0, 255, 255);
  return options;
}

Image drawn(const PiecesModel& model, const VectorOptions& options, double scale = 1.0) {
  return Image(CairoWriter::png(VectorPicture(*model.shot, options), scale));
}

// The pixels along the four slanted docking edges of FourPieces, but for their outer ends, that are
// not of the colour.
int strangePixelsAlongSeams(const FourPieces& model, const Image& image,
                            const std::vector<Rgb>& colors) {
  int count = 0;
  const auto& points = *model.shot->getPoints()->getPoints();
  for (size_t corner = 0; corner < 4; ++corner) {
    for (int step = 0; step < 2000; ++step) {
      const double t = step / 2000.0 * 0.98;
      const double x = points[4]->getX() + t * (points[corner]->getX() - points[4]->getX());
      const double y = points[4]->getY() + t * (points[corner]->getY() - points[4]->getY());
      const Rgb pixel = image.at(static_cast<int>((1 + x) * 0.5 * image.width()),
                                 static_cast<int>((1 - y) * 0.5 * image.height()));
      if (std::find(colors.begin(), colors.end(), pixel) == colors.end()) ++count;
    }
  }
  return count;
}

constexpr Rgb Red = {255, 0, 0};
constexpr Rgb Magenta = {255, 0, 255};

TEST(CairoWriter, PngHasTheSizeAndTheColors) {
  PiecesModel model;
  model.addRectangle(1, 3, -0.5, -0.5, 0.5, 0.5);
  VectorOptions options;
  options.width = 60;
  options.height = 40;
  const Image image = drawn(model, options);
  EXPECT_EQ(60, image.width());
  EXPECT_EQ(40, image.height());
  EXPECT_EQ(Red, image.at(30, 20));
  EXPECT_EQ((Rgb{255, 255, 255}), image.at(2, 2));
  EXPECT_EQ(Magenta, drawn(model, onMagenta(40)).at(2, 2));
}

TEST(CairoWriter, LaterRegionsPaintOverEarlierOnes) {
  PiecesModel model;
  model.addRectangle(1, 3, -0.5, -0.5, 0.5, 0.5);
  model.addRectangle(3, 1, 0, -0.5, 0.5, 0.5);
  const Image image = drawn(model, onMagenta(80));
  EXPECT_EQ(Red, image.at(30, 40));
  EXPECT_EQ((Rgb{0, 0, 255}), image.at(50, 40));
  EXPECT_EQ((Rgb{0, 0, 0}), image.at(40, 40));  // the pen's two pixels, to either side
  EXPECT_EQ((Rgb{0, 0, 0}), image.at(39, 40));
}

TEST(CairoWriter, HalfTransparentLetsTheBackgroundThroughHalfway) {
  const FourPieces model;
  VectorOptions options = onMagenta(400);
  options.style = Base::ViewDisplayStyle::HalfTransparent;
  const Image image = drawn(model, options);
  const Rgb pixel = image.at(250, 100);
  EXPECT_EQ(255, pixel[0]);
  EXPECT_NEAR(127, pixel[2], 1);
  // One even layer: neither seam nor overlap.
  EXPECT_EQ(0, strangePixelsAlongSeams(model, image, {pixel}));
}

TEST(CairoWriter, BackgroundDoesNotShineThroughBetweenThePiecesOfAFace) {
  for (const double scale : {1.0, 3.7, 8.0}) {
    const FourPieces pieces;
    EXPECT_EQ(0, strangePixelsAlongSeams(pieces, drawn(pieces, onMagenta(200), scale), {Red}))
        << scale;
  }
}

TEST(CairoWriter, BackgroundDoesNotShineThroughBetweenFacesThatDock) {
  const FourPieces faces;
  for (int i = 0; i < 4; ++i) faces.shot->getRegions()->getRegion(i)->setFaceNumber(i + 1);
  for (const double scale : {4.0, 8.0})
    EXPECT_EQ(0, strangePixelsAlongSeams(faces, drawn(faces, onMagenta(200), scale), {Red}));
}

TEST(CairoWriter, BackgroundDoesShineThroughWhereNothingDocks) {
  const FourPieces apart(1, 3, false);
  EXPECT_LT(1000, strangePixelsAlongSeams(apart, drawn(apart, onMagenta(200), 8.0), {Red}));
}

TEST(CairoWriter, BackgroundDoesNotShineThroughBetweenPiecesOfSeveralColors) {
  const FourPieces pieces;
  pieces.shot->getRegions()->getRegion(1)->setBrushNumber(3);
  pieces.shot->getRegions()->getRegion(3)->setBrushNumber(3);
  const Image image = drawn(pieces, onMagenta(200), 8.0);
  // Red and blue mix at the seams; on black instead of magenta the mixture must be the same.
  VectorOptions onBlack = onMagenta(200);
  onBlack.background = Base::Color(0, 0, 0, 255);
  const Image other = drawn(pieces, onBlack, 8.0);
  int different = 0;
  for (int y = 400; y < 1200; ++y)
    for (int x = 400; x < 1200; ++x)
      if (image.at(x, y) != other.at(x, y)) ++different;
  EXPECT_EQ(0, different);
}

TEST(CairoWriter, MergedFacePaintsNothingBesideItself) {
  const FourPieces pieces;
  const Image image = drawn(pieces, onMagenta(200), 8.0);
  // Beside the middle of each outer edge, two pixels outward.
  EXPECT_EQ(Magenta, image.at(840, 1323));
  EXPECT_EQ(Magenta, image.at(1443, 720));
  EXPECT_EQ(Magenta, image.at(840, 178));
  EXPECT_EQ(Magenta, image.at(237, 780));
}

TEST(CairoWriter, SizesThatAreNoneAreRefused) {
  PiecesModel model;
  const VectorPicture picture(*model.shot);
  for (const double scale : {0.0, -1.0, 1e-9, 21.0, std::nan("")})
    EXPECT_THROW(CairoWriter::png(picture, scale), std::invalid_argument) << scale;
}

TEST(CairoWriter, APenOfAnyWidthCoversThePicture) {
  std::string expected;
  for (const double width : {1e5, 1e9, 1e15, 1e19, 1e300}) {
    PiecesModel model;
    model.addRectangle(1, 3, -0.5, -0.5, 0.5, 0.5);
    for (Base::Pen* const pen : *model.shot->getPens()->getPens()) pen->setWidth(width);
    const VectorPicture picture(*model.shot, onMagenta(100));
    const std::string png = CairoWriter::png(picture);
    if (expected.empty()) expected = png;
    EXPECT_TRUE(expected == png) << width;
    EXPECT_FALSE(CairoWriter::pdf(picture).empty());
    EXPECT_FALSE(CairoWriter::eps(picture).empty());
  }
  EXPECT_NE(Magenta, Image(expected).at(1, 1));
}

TEST(CairoWriter, PdfHasOnePageOfThePicturesSize) {
  const FourPieces model;
  VectorOptions options;
  options.width = 400;
  options.height = 200;
  options.title = "Wall \xFF";
  const std::string pdf = CairoWriter::pdf(VectorPicture(*model.shot, options));
  EXPECT_EQ(0u, pdf.find("%PDF-1."));
  EXPECT_NE(std::string::npos, pdf.find("/MediaBox [ 0 0 300 150 ]"));
  EXPECT_NE(std::string::npos, pdf.find("/Count 1"));
  EXPECT_NE(std::string::npos, pdf.find("/Title"));
  EXPECT_EQ(std::string::npos, pdf.find("Date"));
}

TEST(CairoWriter, EpsHasItsBoundsAndNoDate) {
  const FourPieces model;
  VectorOptions options;
  options.width = 400;
  options.height = 200;
  options.axes = Pictures::VectorAxes::OfShot;
  const std::string eps = CairoWriter::eps(VectorPicture(*model.shot, options));
  EXPECT_EQ(0u, eps.find("%!PS-Adobe-3.0 EPSF-3.0"));
  EXPECT_NE(std::string::npos, eps.find("%%BoundingBox: "));
  EXPECT_EQ(std::string::npos, eps.find("CreationDate"));
  EXPECT_EQ(std::string::npos, eps.find("/ImageType"));  // all of it lines and areas
}

TEST(CairoWriter, EqualShotsGiveEqualBytesWheneverTheyAreWritten) {
  const FourPieces model(2, 1);
  const VectorPicture picture(*model.shot);
  const std::string pdf = CairoWriter::pdf(picture);
  const std::string eps = CairoWriter::eps(picture);
  const std::string png = CairoWriter::png(picture);
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // past a second
  EXPECT_EQ(pdf, CairoWriter::pdf(picture));
  EXPECT_EQ(eps, CairoWriter::eps(picture));
  EXPECT_EQ(png, CairoWriter::png(picture));
}

TEST(CairoWriter, EmptyShotIsAnEmptyPage) {
  Shot::Shot2d shot;
  VectorOptions options;
  options.width = options.height = 10;
  const VectorPicture picture(shot, options);
  EXPECT_EQ((Rgb{255, 255, 255}), Image(CairoWriter::png(picture)).at(5, 5));
  EXPECT_EQ(0u, CairoWriter::pdf(picture).find("%PDF"));
  EXPECT_EQ(0u, CairoWriter::eps(picture).find("%!PS"));
}

}  // namespace
}  // namespace Lumivane::Test
