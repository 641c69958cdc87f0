#include "visibility/Polygons.h"

#include <lumivane/pictures/DrawingPage.h>
#include <lumivane/session/LoadedScene.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Lumivane::Pictures {
namespace {

using Json = nlohmann::json;
using Visibility::SceneIndex;
using namespace Visibility::Samples;

// Two panes that run through each other, and a third behind them.
SceneIndex panes() {
  PolygonBuilder builder;
  builder.scene.objectIds = {"left", "right", "behind"};
  builder.add({{2, -1, 0}, {2, -1, 2}, {4, 1, 2}, {4, 1, 0}}, 1);
  builder.add({{4, -1, 0}, {4, -1, 2}, {2, 1, 2}, {2, 1, 0}}, 2);
  builder.add({{6, -3, 0}, {6, -3, 3}, {6, 3, 3}, {6, 3, 0}}, 3);
  return SceneIndex(builder.scene);
}

DrawingView fromEye() {
  DrawingView view;
  view.name = "the eye";
  view.options.eye = {0, 0, 1};
  view.options.twoSided = true;
  view.options.hidden = true;
  return view;
}

DrawingView along(const std::string& name, const Visibility::Vector& direction) {
  DrawingView view = fromEye();
  view.name = name;
  view.options.projection = DrawingProjection::Parallel;
  view.options.forward = direction;
  return view;
}

Json dataOf(const std::string& page) {
  const std::string start = "<script type=\"application/json\" id=\"data\">";
  const std::size_t from = page.find(start) + start.size();
  return Json::parse(page.substr(from, page.find("</script>", from) - from));
}

std::string pageOf(const std::vector<DrawingView>& views) {
  return drawingPage(panes(), DrawingColors(), views, "panes");
}

TEST(DrawingPage, HoldsAMapOfTheSphereWithItsLinesAndThoseThatAreHidden) {
  DrawingView view = fromEye();
  view.options.fieldOfView = 75.0;
  view.options.shift = {0.1, 0.25};
  const std::string page = pageOf({view});
  const Json picture = dataOf(page).at("pictures").at(0);
  EXPECT_EQ("the eye", picture.at("name"));
  const Json map = picture.at("map");
  EXPECT_EQ(true, map.at("isSphere"));
  EXPECT_EQ("equirectangular", map.at("projection"));
  EXPECT_EQ("perspective", map.at("opening").at("projection"));
  EXPECT_EQ(75.0, map.at("opening").at("angle"));
  EXPECT_EQ(Json({0.1, 0.25}), map.at("opening").at("shift"));
  // Dashed ones come first: what the panes hide of the one behind and of each other.
  EXPECT_NE(std::string::npos, page.find("stroke-dasharray"));
  EXPECT_LT(page.find("p1-map"), page.find("stroke-dasharray"));
  const Json& hidden = map.at("lines").at(0);
  ASSERT_LT(4U, hidden.size());
  EXPECT_EQ(0U, hidden.size() % 2);
  for (const Json& vertex : hidden)
    ASSERT_GT(map.at("vertices").size() / 3, vertex.get<std::size_t>());
  view.options.hidden = false;
  const std::string without = pageOf({view});
  EXPECT_EQ(std::string::npos, without.find("stroke-dasharray"));
  EXPECT_EQ(map.at("lines").size() - 1,
            dataOf(without).at("pictures").at(0).at("map").at("lines").size());
}

TEST(DrawingPage, ParallelPicturesHaveTheAreasOfTheirObjects) {
  const Json pictures = dataOf(pageOf({along("front", {1, 0, 0}), fromEye()})).at("pictures");
  ASSERT_EQ(2U, pictures.size());
  EXPECT_EQ(0U, pictures[0].count("map"));
  EXPECT_EQ("front", pictures[0].at("name"));
  EXPECT_EQ(Json({"area", "share"}), pictures[0].at("columns"));
  // Each pane is seen to the line in which they cross; what is behind, beside and above them.
  const double expected[] = {2.0, 2.0, 14.0};
  for (std::size_t i = 0; i < 3; ++i) {
    const Json& row = pictures[0].at("rows").at(i);
    EXPECT_EQ(i + 1, row.at(0));
    EXPECT_NEAR(expected[i], row.at(2).get<double>(), 1e-7);
    EXPECT_NEAR(expected[i] / 18.0, row.at(3).get<double>(), 1e-7);
  }
}

TEST(DrawingPage, LeavesOutOtherViewsInWhichThereIsNothing) {
  PolygonBuilder builder;
  builder.add(square(0, 0, 0, 4), 1);
  const SceneIndex index(builder.scene);
  const DrawingView top = along("top", {0, 0, -1});
  const DrawingView front = along("front", {0, 1, 0});
  const Json pictures =
      dataOf(drawingPage(index, DrawingColors(), {top, front}, "")).at("pictures");
  ASSERT_EQ(1U, pictures.size());
  EXPECT_EQ("top", pictures[0].at("name"));
  EXPECT_THROW(drawingPage(index, DrawingColors(), {front, top}, ""), std::runtime_error);
}

TEST(DrawingPage, RefusesNoViewsAndOptionsOutOfRange) {
  EXPECT_THROW(pageOf({}), std::invalid_argument);
  DrawingView view = fromEye();
  view.options.fieldOfView = 180.0;
  EXPECT_THROW(pageOf({view}), std::invalid_argument);
}

TEST(DrawingPage, EqualDrawingsGiveEqualBytesFromAnyNumberOfThreads) {
  const SceneIndex index(Session::LoadedScene::fromFile(LUMIVANE_SCENES "/small.json"));
  std::vector<DrawingView> views = {fromEye(), along("top", {0, 0, -1})};
  for (DrawingView& view : views) view.options.threads = 1;
  const std::string one = drawingPage(index, DrawingColors(), views, "small");
  for (DrawingView& view : views) view.options.threads = 3;
  EXPECT_EQ(one, drawingPage(index, DrawingColors(), views, "small"));
}

}  // namespace
}  // namespace Lumivane::Pictures
