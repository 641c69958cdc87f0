#include "pictures/PictureModels.h"
#include "pictures/SvgText.h"

#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <pugixml.hpp>

namespace Lumivane::Test {
namespace {

using Pictures::SvgNumbers;
using Pictures::SvgWriter;
using Pictures::VectorOptions;
using Pictures::VectorPicture;

// A written document, read again.
struct Svg {
  explicit Svg(const std::string& text) { result = document.load_string(text.c_str()); }
  explicit Svg(Shot::Shot2d& shot, const VectorOptions& options = {})
      : Svg(SvgWriter::write(VectorPicture(shot, options))) {}

  std::vector<pugi::xml_node> all(const char* path) const {
    std::vector<pugi::xml_node> nodes;
    for (const auto& found : document.select_nodes(path)) nodes.push_back(found.node());
    return nodes;
  }
  std::vector<pugi::xml_node> regions() const { return all("//path[@data-region]"); }

  pugi::xml_document document;
  pugi::xml_parse_result result;
};

std::string attribute(const pugi::xml_node& node, const char* name) {
  return node.attribute(name).value();
}

TEST(SvgNumbers, AreShortAndRounded) {
  const SvgNumbers numbers(4);
  EXPECT_EQ("0", numbers.text(0.0));
  EXPECT_EQ("0", numbers.text(-0.00004));
  EXPECT_EQ("1", numbers.text(1.00004));
  EXPECT_EQ("1.0001", numbers.text(1.00005));
  EXPECT_EQ("-.05", numbers.text(-0.05));
  EXPECT_EQ("-120.5", numbers.text(-120.5));
  EXPECT_EQ("16384", numbers.text(16384.0));
}

TEST(SvgNumbers, StepIsAtMostAMillionthOfHalfTheHeight) {
  EXPECT_EQ(".3333", SvgNumbers::forHeight(800).text(1.0 / 3));
  EXPECT_EQ(".33333", SvgNumbers::forHeight(100).text(1.0 / 3));
  EXPECT_EQ(".333", SvgNumbers::forHeight(16384).text(1.0 / 3));
  EXPECT_EQ(".333333", SvgNumbers::forHeight(1).text(1.0 / 3));
}

TEST(SvgNumbers, OfAnySizeAreWellFormedAndReadBack) {
  for (int decimals = 0; decimals <= 6; ++decimals) {
    const SvgNumbers numbers(decimals);
    for (double value = 1.0; std::isfinite(value); value *= 7.3) {
      for (const double number : {value, -value}) {
        const std::string text = numbers.text(number);
        EXPECT_EQ(std::string::npos, text.find_first_not_of("-+.e0123456789")) << text;
        EXPECT_EQ(number < 0 ? 0U : std::string::npos, text.find('-')) << text;
        EXPECT_NEAR(number, std::stod(text), 0.5 * std::pow(10.0, -decimals) + value * 2e-16)
            << text;
      }
    }
    EXPECT_EQ("0", numbers.text(std::nan("")));
    EXPECT_EQ("0", numbers.text(-std::numeric_limits<double>::infinity()));
  }
  EXPECT_EQ("1e+15", SvgNumbers(4).text(1e15));
  EXPECT_EQ("1e+300", SvgNumbers(6).text(1e300));
}

TEST(SvgNumbersProperty, ReadBackWithinHalfAStep) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> value(-20000.0, 20000.0);
  for (int decimals = 0; decimals <= 6; ++decimals) {
    const SvgNumbers numbers(decimals);
    const double half = 0.5 * std::pow(10.0, -decimals) + 1e-9;
    for (int i = 0; i < 500; ++i) {
      const double expected = value(random) * std::pow(10.0, -static_cast<int>(random() % 8));
      const std::string text = numbers.text(expected);
      ASSERT_NEAR(expected, std::stod(text), half) << text;
      ASSERT_TRUE(text.find('.') == std::string::npos || text.back() != '0') << text;
    }
  }
}

TEST(SvgWriter, DocumentHasSizeAndView) {
  PiecesModel model;
  VectorOptions options;
  options.width = 300;
  options.height = 200;
  options.title = "a <b>";
  const Svg svg(*model.shot, options);
  ASSERT_TRUE(svg.result) << svg.result.description();
  const pugi::xml_node root = svg.document.child("svg");
  EXPECT_EQ("300", attribute(root, "width"));
  EXPECT_EQ("200", attribute(root, "height"));
  EXPECT_EQ("0 0 300 200", attribute(root, "viewBox"));
  EXPECT_STREQ("a <b>", root.child("title").text().get());
  EXPECT_TRUE(svg.all("//rect").empty());
  EXPECT_TRUE(svg.all("//g[@id='axes']").empty());
}

TEST(SvgWriter, EachRegionIsOnePathInDrawingOrderThatKnowsItsOrigin) {
  const FourPieces model(1, 1);
  model.addRectangle(2, 2, 0, 0, 1, 1);
  model.shot->getRegions()->getRegion(1)->setSourceRegionNumber(5);
  const Svg svg(*model.shot);
  const auto regions = svg.regions();
  ASSERT_EQ(5u, regions.size());
  for (size_t i = 0; i < 5; ++i)
    EXPECT_EQ("r" + std::to_string(i + 1), attribute(regions[i], "id"));
  EXPECT_EQ("A", attribute(regions[1], "data-object"));
  EXPECT_EQ("1", attribute(regions[1], "data-face"));
  EXPECT_EQ("5", attribute(regions[1], "data-region"));
  EXPECT_EQ("o1", attribute(regions[1], "class"));
  EXPECT_STREQ("A, face 1, region 5", regions[1].child("title").text().get());
  EXPECT_EQ("", attribute(regions[4], "data-object"));
  EXPECT_EQ("o-1", attribute(regions[4], "class"));
}

TEST(SvgWriter, RegionWithoutDockingEdgesIsFilledAndStrokedByOnePath) {
  PiecesModel model;
  model.addRectangle(2, 2, 0, 0, 0.5, 0.5);
  const Svg svg(*model.shot);
  const auto paths = svg.all("//path");
  ASSERT_EQ(1u, paths.size());
  EXPECT_EQ("M400 400 600 400 600 200 400 200z", attribute(paths[0], "d"));
  EXPECT_EQ("#060", attribute(paths[0], "fill"));
  EXPECT_EQ(".2", attribute(paths[0], "fill-opacity"));
  EXPECT_EQ("#003", attribute(paths[0], "stroke"));
  EXPECT_EQ(".8", attribute(paths[0], "stroke-opacity"));
  EXPECT_EQ("3.5", attribute(paths[0], "stroke-width"));
}

TEST(SvgWriter, DockingEdgesAreFilledToButNotStroked) {
  const FourPieces model(1, 1);
  const Svg svg(*model.shot);
  for (const pugi::xml_node& region : svg.regions()) {
    EXPECT_EQ("", attribute(region, "stroke"));
    EXPECT_EQ("#f00", attribute(region, "fill"));
    const pugi::xml_node edges = region.next_sibling();
    EXPECT_EQ("edges o1", attribute(edges, "class"));
    EXPECT_EQ("none", attribute(edges, "pointer-events"));
    EXPECT_EQ("", attribute(edges, "fill"));
    const std::string data = attribute(edges, "d");
    EXPECT_EQ(0, attribute(region, "d").find(data)) << data;  // the first edge of three
    EXPECT_EQ(std::string::npos, data.find('z'));
  }
  ASSERT_EQ(1u, svg.all("//path[@class='ground o1']").size());
  EXPECT_EQ(svg.all("//g[@id='shot']")[0].first_child(), svg.all("//path[@class='ground o1']")[0]);
}

TEST(SvgWriter, PathOfAnOutlinePictureHoldsTheDrawnEdges) {
  const FourPieces model(1, 1);
  VectorOptions options;
  options.style = Base::ViewDisplayStyle::Outline;
  const Svg svg(*model.shot, options);
  EXPECT_EQ(4u, svg.all("//path").size());
  for (const pugi::xml_node& region : svg.regions()) {
    EXPECT_EQ("", attribute(region, "fill"));
    EXPECT_EQ("#000", attribute(region, "stroke"));
    EXPECT_EQ(1,
              std::count(region.attribute("d").value(), region.attribute("d").value() + 40, 'M'));
    EXPECT_EQ(std::string::npos, attribute(region, "d").find('z'));
  }
}

TEST(SvgWriter, TransparentPiecesAreOneLayerUnderTheirEdges) {
  const FourPieces model(2, 1);
  const Svg svg(*model.shot);
  const auto layers = svg.all("//g[@opacity]");
  ASSERT_EQ(1u, layers.size());
  EXPECT_EQ(".2", attribute(layers[0], "opacity"));
  EXPECT_EQ(4u, svg.all("//g[@opacity]/path[@data-region]").size());
  EXPECT_EQ(0u, svg.all("//g[@opacity]/path[@stroke]").size());
  EXPECT_EQ(4u, svg.all("//g[@id='shot']/path[@class='edges o1']").size());
}

TEST(SvgWriter, LineUnderALaterFaceLiesBetweenInsideAndEdges) {
  const FourPieces model(1, 1);
  model.shot->getRegions()->getRegion(0)->setFaceNumber(2);
  const Svg svg(*model.shot);
  const auto spreads = svg.all("//path[@class='spread o1']");
  ASSERT_EQ(1u, spreads.size());
  EXPECT_EQ("#f00", attribute(spreads[0], "stroke"));
  EXPECT_EQ("", attribute(spreads[0], "fill"));
  EXPECT_EQ("butt", attribute(spreads[0], "stroke-linecap"));
  EXPECT_EQ("none", attribute(spreads[0], "pointer-events"));
  EXPECT_EQ("r1", attribute(spreads[0].previous_sibling(), "id"));
  EXPECT_EQ("edges o1", attribute(spreads[0].next_sibling(), "class"));
}

TEST(SvgWriter, OverrideColorIsHonoured) {
  PiecesModel model;
  model.addRectangle(1, 1, 0, 0, 1, 1)->setOverrideColor(Base::Color(1, 2, 3, 255));
  EXPECT_EQ("#010203", attribute(Svg(*model.shot).regions().at(0), "fill"));
}

TEST(SvgWriter, APenOfAnyWidthMakesAWellFormedDocument) {
  for (const double width : {1e14, 1e15, 1e19, 1e40, 1e300}) {
    PiecesModel model;
    model.addRectangle(1, 3, -0.5, -0.5, 0.5, 0.5);
    for (Base::Pen* const pen : *model.shot->getPens()->getPens()) pen->setWidth(width);
    const Svg svg(*model.shot);
    ASSERT_TRUE(svg.result);
    size_t count = 0;
    for (const pugi::xml_node& path : svg.all("//path[@stroke-width]")) {
      const std::string text = attribute(path, "stroke-width");
      size_t length = 0;
      EXPECT_EQ(width, std::stod(text, &length)) << text;
      EXPECT_EQ(text.size(), length) << text;
      ++count;
    }
    EXPECT_GT(count, 0U);
  }
}

TEST(SvgWriter, AxesAreAGroupUnderTheShot) {
  PiecesModel model;
  VectorOptions options;
  options.axes = Pictures::VectorAxes::OfShot;
  options.background = Base::Color(255, 255, 255, 255);
  const Svg svg(*model.shot, options);
  const auto axes = svg.all("//g[@id='axes']");
  ASSERT_EQ(1u, axes.size());
  EXPECT_STREQ("rect", axes[0].previous_sibling().name());
  EXPECT_EQ("shot", attribute(axes[0].next_sibling(), "id"));
  EXPECT_EQ(15, std::distance(axes[0].begin(), axes[0].end()));
}

TEST(SvgWriter, IdsOfAnyBytesMakeAWellFormedDocument) {
  FourPieces model;
  Shot::Object2d* object = model.shot->getObjects()->getObject(0);
  const std::pair<std::string, std::string> ids[] = {
      {"<a href=\"x\">&amp;'</a>", "<a href=\"x\">&amp;'</a>"},
      {"]]><!-- --", "]]><!-- --"},
      {"\xD0\xA1\xD1\x82\xD0\xB5\xD0\xBD\xD0\xB0", "\xD0\xA1\xD1\x82\xD0\xB5\xD0\xBD\xD0\xB0"},
      {"\xF0\x9F\x8F\xA0", "\xF0\x9F\x8F\xA0"},
      {std::string("a\x01\x1B") + "b",
       "a\xEF\xBF\xBD\xEF\xBF\xBD"
       "b"},
      {std::string("a\0b", 3),
       "a\xEF\xBF\xBD"
       "b"},
      {"\xD1\xF2", "\xEF\xBF\xBD\xEF\xBF\xBD"},                  // another code page
      {"\xC0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD"},                  // longer than need be
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},  // half a pair
      {"\xEF\xBF\xBF", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},  // no character
      {"\xF4\x90\x80\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xE2\x82", "\xEF\xBF\xBD\xEF\xBF\xBD"}};  // torn off
  for (const auto& [id, expected] : ids) {
    object->setId(id);
    const Svg svg(*model.shot);
    ASSERT_TRUE(svg.result) << svg.result.description();
    EXPECT_EQ(expected, attribute(svg.regions().at(0), "data-object"));
    EXPECT_EQ(expected + ", face 1, region 1", svg.regions()[0].child("title").text().get());
  }
}

TEST(SvgWriter, OptionsLeaveOutTitlesAndDeclarationAndNameTheIds) {
  const FourPieces model;
  SvgWriter::Options options;
  options.titles = false;
  options.declaration = false;
  options.idPrefix = "b-";
  const std::string text = SvgWriter::write(VectorPicture(*model.shot), options);
  EXPECT_EQ(0u, text.find("<svg"));
  const Svg svg(text);
  EXPECT_TRUE(svg.all("//title").empty());
  EXPECT_EQ("b-r1", attribute(svg.regions().at(0), "id"));
  EXPECT_EQ(1u, svg.all("//g[@id='b-shot']").size());
}

TEST(SvgWriter, EqualShotsGiveEqualBytesInEveryLocale) {
  const FourPieces model(2, 2);
  const VectorPicture picture(*model.shot);
  const std::string expected = SvgWriter::write(picture);
  for (const char* name : {"de_DE.UTF-8", "C.UTF-8", "C"}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;  // not every machine has every locale
    EXPECT_EQ(expected, SvgWriter::write(picture)) << name;
  }
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace Lumivane::Test
