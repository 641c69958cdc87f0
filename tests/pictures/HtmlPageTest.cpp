#include "pictures/PictureModels.h"
#include "support/HandMap.h"
#include "support/WorkingFolder.h"

#include <lumivane/measure/ShareClasses.h>
#include <lumivane/measure/ShotAudit.h>
#include <lumivane/measure/VisibleShares.h>
#include <lumivane/pictures/HtmlPage.h>
#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/SvgWriter.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/ScenePolygons.h>
#include <lumivane/session/SurfaceClasses.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/ParallelMap.h>
#include <lumivane/visibility/SceneIndex.h>

#include <cmath>
#include <cstddef>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>

namespace Lumivane::Test {
namespace {

using Pictures::HtmlPage;
using Pictures::VectorPicture;
using Json = nlohmann::json;

std::string pageOf(const PiecesModel& model, const std::string& title = "A page") {
  HtmlPage page(title);
  page.add(VectorPicture(*model.shot), Measure::VisibleShares(*model.shot));
  return page.text();
}

// The data that the page's script reads.
Json dataOf(const std::string& page) {
  const std::string start = "<script type=\"application/json\" id=\"data\">";
  const size_t from = page.find(start) + start.size();
  return Json::parse(page.substr(from, page.find("</script>", from) - from));
}

size_t count(const std::string& text, const std::string& part) {
  size_t found = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
  return found;
}

TEST(HtmlPage, HoldsThePictureAndTheSharesOfItsObjects) {
  const FourPieces model;
  const std::string page = pageOf(model);
  EXPECT_EQ(0u, page.find("<!doctype html>"));
  EXPECT_EQ(4u, count(page, "data-region=\""));
  const Json picture = dataOf(page).at("pictures").at(0);
  EXPECT_EQ("radial", picture.at("name"));
  ASSERT_EQ(2u, picture.at("rows").size());
  const Measure::VisibleShares shares(*model.shot);
  const Json row = picture.at("rows").at(0);
  EXPECT_EQ(1, row.at(0));
  EXPECT_EQ("A", row.at(1));
  EXPECT_NEAR(shares.objects().at(0).share.viewFactor, row.at(2).get<double>(), 1e-9);
  EXPECT_NEAR(shares.objects().at(0).share.solidAngle, row.at(3).get<double>(), 1e-8);
  EXPECT_NEAR(shares.objects().at(0).share.hemisphereShare(), row.at(4).get<double>(), 1e-9);
  EXPECT_EQ(0, picture.at("rows").at(1).at(0));
  EXPECT_NEAR(shares.open().viewFactor, picture.at("rows").at(1).at(2).get<double>(), 1e-9);
}

TEST(HtmlPage, LeavesNoPlaceOfTheTemplateOpenAndNamesNoOtherPlace) {
  const std::string page = pageOf(FourPieces());
  EXPECT_EQ(std::string::npos, page.find("{{"));
  EXPECT_EQ(count(page, "http://www.w3.org/2000/svg"), count(page, "://"));
  EXPECT_EQ(std::string::npos, page.find("src="));
}

TEST(HtmlPage, TitleAndIdsOfAnyBytesStayText) {
  FourPieces model;
  const std::string id = "</script><script>alert(1)</script>{{style}}";
  model.shot->getObjects()->getObject(0)->setId(id);
  const std::string page = pageOf(model, "<img src=x> & {{data}} \xFF");
  EXPECT_EQ(2u, count(page, "&lt;img src=x&gt; &amp; {{data}} \xEF\xBF\xBD"));
  EXPECT_EQ(3u, count(page, "</script>"));  // those of the template
  EXPECT_EQ(id, dataOf(page).at("pictures").at(0).at("rows").at(0).at(1));
}

TEST(HtmlPage, EscapesOfAnIdAreShownDecodedInTableAndPicture) {
  FourPieces model;
  model.shot->getObjects()->getObject(0)->setId("caf\\u00e9 \xE9");
  const std::string page = pageOf(model);
  const std::string shown = "caf\xC3\xA9 \xEF\xBF\xBD";
  EXPECT_EQ(shown, dataOf(page).at("pictures").at(0).at("rows").at(0).at(1));
  EXPECT_EQ(4u, count(page, "data-object=\"" + shown + "\""));
}

TEST(HtmlPage, PicturesOfOnePageHaveIdsOfTheirOwn) {
  FourPieces model;
  HtmlPage page("Two");
  page.add(VectorPicture(*model.shot), Measure::VisibleShares(*model.shot));
  model.view.setCamera(&model.normal);
  page.add(VectorPicture(*model.shot), Measure::VisibleShares(*model.shot));
  const std::string text = page.text();
  EXPECT_EQ(1u, count(text, "id=\"p1-r1\""));
  EXPECT_EQ(1u, count(text, "id=\"p2-r1\""));
  EXPECT_EQ("square", dataOf(text).at("pictures").at(1).at("name"));
}

TEST(HtmlPage, EqualShotsGiveEqualBytes) { EXPECT_EQ(pageOf(FourPieces()), pageOf(FourPieces())); }

TEST(HtmlPage, EmptyShotIsAPageOfTheOpenShare) {
  const PiecesModel model;
  const Json rows = dataOf(pageOf(model)).at("pictures").at(0).at("rows");
  ASSERT_EQ(1u, rows.size());
  EXPECT_EQ(1.0, rows.at(0).at(2));
}

TEST(SvgWriter, DecimalsOutOfRangeAreRefused) {
  const FourPieces model;
  Pictures::SvgWriter::Options options;
  for (const int decimals : {-2, 7}) {
    options.decimals = decimals;
    EXPECT_THROW(Pictures::SvgWriter::write(VectorPicture(*model.shot), options),
                 std::invalid_argument);
  }
  options.decimals = 0;
  EXPECT_EQ(std::string::npos,
            Pictures::SvgWriter::write(VectorPicture(*model.shot), options).find(".5"));
}

TEST(HtmlPage, ExactSharesStandBesideThoseOfThePicture) {
  const FourPieces model;
  const HandMap hand = squareInTheSky();
  const Visibility::MapShares exact(hand.map);
  Pictures::HtmlPage page("both");
  page.add(VectorPicture(*model.shot), Measure::VisibleShares(*model.shot), &exact);
  const Json picture = dataOf(page.text()).at("pictures").at(0);
  EXPECT_EQ((Json{"viewFactor", "solidAngle", "share", "exactFactor", "exactAngle"}),
            picture.at("columns"));
  const Json sky = picture.at("rows").back();
  EXPECT_EQ(0, sky.at(0));
  EXPECT_NEAR(exact.sky().viewFactor, sky.at(5).get<double>(), 1e-8);
  EXPECT_NEAR(exact.sky().solidAngle, sky.at(6).get<double>(), 1e-8);
  EXPECT_NEAR(exact.objects().at(0).share.viewFactor, picture.at("rows").at(0).at(5).get<double>(),
              1e-8);
}

TEST(HtmlPage, HoldsAMapAsDirectionsToBeDrawnInOtherProjections) {
  const HandMap hand = cubeAroundTheEye();
  Pictures::MapPictureOptions options;
  options.allCells = true;
  const Pictures::VectorPicture picture(hand.map, Pictures::MapColors(), options);
  Pictures::HtmlPage page("map");
  page.add(picture, hand.map, Visibility::MapShares(hand.map));
  const std::string text = page.text();
  EXPECT_EQ(hand.map.cells.size(), count(text, "data-region=\""));  // also those behind the eye
  const Json map = dataOf(text).at("pictures").at(0).at("map");
  EXPECT_EQ("fisheye", map.at("projection"));
  EXPECT_TRUE(map.at("isSphere").get<bool>());
  ASSERT_EQ(3 * hand.map.vertices.size(), map.at("vertices").size());
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_NEAR(1e7 / std::sqrt(3.0), std::abs(map.at("vertices").at(i).get<double>()), 0.5);
  ASSERT_EQ(hand.map.cells.size(), map.at("cells").size());
  const Json cell = map.at("cells").at(2);
  EXPECT_EQ(3, cell.at(0));
  EXPECT_NEAR(hand.map.cells[2].solidAngle, cell.at(1).get<double>(), 1e-8);
  EXPECT_EQ(hand.map.rings(2).at(0), cell.at(2).get<std::vector<int>>());
  std::size_t ends = 0;
  for (const char* const lines : {"underlay", "lines"})
    for (const Json& path : map.at(lines)) ends += path.size();
  EXPECT_EQ(2 * hand.map.edges.size(), ends);
}

// From x = 0: object 1, a small front in front of a large back, and object 2 hidden behind both.
Session::LoadedScene frontBackAndHidden() {
  Session::ScenePolygons polygons;
  polygons.objectIds = {"house", "shed"};
  const auto addSquare = [&polygons](double x, double half, int object) {
    const int first = static_cast<int>(polygons.points.size());
    for (const auto& [y, z] : {std::pair(-half, -half), {-half, half}, {half, half}, {half, -half}})
      polygons.points.push_back({x, y, z});
    polygons.add({first + 3, first + 2, first + 1, first}, object);
  };
  addSquare(4, 1, 0);
  addSquare(5, 3, 0);
  addSquare(6, 1, 1);
  return Session::LoadedScene::fromPolygons(polygons, "squares");
}

TEST(HtmlPage, ClassesOfWhatIsSeenStandBesideTheRowsOfAMap) {
  Session::LoadedScene scene = frontBackAndHidden();
  scene.setClasses(Session::SurfaceClasses::ofNames({"Wall", "Roof </script>", "Door"}));
  const Visibility::SceneIndex index(scene);
  const Visibility::VisibleMap map = index.look({0, 0, 0});
  HtmlPage page("classes");
  page.add(VectorPicture(map, Pictures::MapColors(), {}), map, Visibility::MapShares(map));
  const Json seen = {"Roof </script>, Wall", "Door"};  // the large back first; all of the hidden
  EXPECT_EQ(seen, dataOf(page.text()).at("pictures").at(0).at("classes"));

  HtmlPage plan("plan");
  Visibility::ParallelOptions along;
  along.direction = {1, 0, 0};
  const Visibility::ParallelMap parallel = index.lookAlong(along);
  plan.add(VectorPicture(map, Pictures::MapColors(), {}), parallel, "front");
  EXPECT_EQ((Json{"Roof </script>, Wall", ""}),
            dataOf(plan.text()).at("pictures").at(0).at("classes"));
}

TEST(HtmlPage, ClassesOfWhatIsSeenStandBesideTheRowsOfAShot) {
  Session::LoadedScene scene = frontBackAndHidden();
  scene.setClasses(Session::SurfaceClasses::ofNames({"Wall", "Roof", "Door"}));
  const Session::TakenShot shot = scene.take({});
  const Measure::VisibleShares shares(shot.shot());
  HtmlPage page("classes");
  page.add(VectorPicture(shot.shot()), shares, nullptr, Measure::ShareClasses(scene));
  const Json picture = dataOf(page.text()).at("pictures").at(0);
  EXPECT_EQ((Json{"Roof, Wall", "Door"}), picture.at("classes"));
  EXPECT_EQ("house", picture.at("rows").at(0).at(1));
}

TEST(HtmlPage, SceneWithoutClassesHasNoColumnOfThem) {
  const FourPieces model;
  EXPECT_FALSE(dataOf(pageOf(model)).at("pictures").at(0).contains("classes"));
  const HandMap hand = cubeAroundTheEye();
  HtmlPage page("map");
  page.add(VectorPicture(hand.map, Pictures::MapColors(), {}), hand.map,
           Visibility::MapShares(hand.map));
  EXPECT_FALSE(dataOf(page.text()).at("pictures").at(0).contains("classes"));
}

TEST(HtmlPage, MapOfASphereHasNoViewFactors) {
  const HandMap hand = cubeAroundTheEye();
  Pictures::HtmlPage page("sphere");
  page.add(Pictures::VectorPicture(hand.map, Pictures::MapColors(), {}), hand.map,
           Visibility::MapShares(hand.map));
  const Json picture = dataOf(page.text()).at("pictures").at(0);
  EXPECT_EQ("sphere", picture.at("field"));
  EXPECT_EQ((Json{"solidAngle", "share"}), picture.at("columns"));
  ASSERT_EQ(7U, picture.at("rows").size());
  EXPECT_NEAR(1.0 / 6.0, picture.at("rows").at(3).at(3).get<double>(), 1e-8);
}

// A scene's picture and how right it is.
struct Audited {
  explicit Audited(const std::string& file, const Session::ViewSettings& view)
      : scene(Session::LoadedScene::fromFile(LUMIVANE_SCENES "/" + file)),
        shot(take(scene, view)),
        audit(shot, Visibility::SceneIndex(scene), 1, Measure::WrongParts::Kept) {}

  static Session::TakenShot take(Session::LoadedScene& scene, const Session::ViewSettings& view) {
    const WorkingFolder folder;  // for the report of cyclic overlaps
    return scene.take(view);
  }

  void addTo(HtmlPage& page) const {
    Pictures::VectorOptions options;
    options.width = 900;
    options.extent = 1.02;
    page.add(VectorPicture(shot.shot(), options), Measure::VisibleShares(shot.shot()));
    page.addAudit(audit, options);
  }

  std::string page() const {
    HtmlPage page("audited");
    addTo(page);
    return page.text();
  }

  Session::LoadedScene scene;
  Session::TakenShot shot;
  Measure::ShotAudit audit;
};

Session::ViewSettings viewFrom(const Session::Vector& eye, Base::ViewCameraKind camera) {
  Session::ViewSettings view;
  view.eye = eye;
  view.camera = camera;
  return view;
}

// The drawings of a page, as the documents that they are.
std::vector<pugi::xml_document> svgsOf(const std::string& page) {
  std::vector<pugi::xml_document> svgs;
  for (size_t at = page.find("<svg xmlns"); at != std::string::npos;
       at = page.find("<svg xmlns", at + 1)) {
    const size_t end = page.find("</svg>", at) + 6;
    EXPECT_TRUE(svgs.emplace_back().load_string(page.substr(at, end - at).c_str()));
  }
  return svgs;
}

// What path data enclose, in units of the picture's plane.
double areaOf(const std::string& data) {
  constexpr double PixelsPerUnit = 400.0 / 1.02;
  double twice = 0.0;
  for (size_t at = data.find('M'); at != std::string::npos; at = data.find('M', at + 1)) {
    std::istringstream numbers(data.substr(at + 1, data.find('z', at) - at - 1));
    std::vector<double> line;
    for (double value = 0.0; numbers >> value;) line.push_back(value);
    for (size_t i = 0; i + 1 < line.size(); i += 2) {
      const size_t next = (i + 2) % line.size();
      twice += line[i] * line[next + 1] - line[next] * line[i + 1];
    }
  }
  return -0.5 * twice / (PixelsPerUnit * PixelsPerUnit);  // y runs down
}

TEST(HtmlPage, ShadesWhereAShotIsWrongByTheVeryPiecesThatAreWrong) {
  for (const Base::ViewCameraKind camera :
       {Base::ViewCameraKind::Spherical, Base::ViewCameraKind::Normal}) {
    const Audited ring("ring.json", viewFrom({-4, 0, 0}, camera));
    const std::string page = ring.page();
    const std::vector<pugi::xml_document> svgs = svgsOf(page);
    ASSERT_EQ(1u, svgs.size());
    const pugi::xml_node group = svgs[0].child("svg").last_child();
    EXPECT_STREQ("p1-wrong", group.attribute("id").value());
    EXPECT_STREQ("url(#p1-hatch)", group.attribute("fill").value());
    EXPECT_STREQ("p1-hatch", group.child("pattern").attribute("id").value());
    double shaded = 0.0;
    std::map<int, double> shownWrongly;
    for (const pugi::xml_node path : group.children("path")) {
      const double area = areaOf(path.attribute("d").value());
      EXPECT_GT(area, 0.0);
      shaded += area;
      shownWrongly[path.attribute("data-shown").as_int()] += area;
    }
    EXPECT_GT(ring.audit.wrong(), 0.004);
    EXPECT_NEAR(ring.audit.wrong(), shaded, 1e-4);  // strips along edges are not shaded
    for (const Measure::ObjectAudit& object : ring.audit.objects())
      EXPECT_NEAR(object.shownWrongly, shownWrongly[object.objectNumber], 1e-4);
    const Json audit = dataOf(page).at("audits").at(0);
    EXPECT_NEAR(ring.audit.wrongShare(), audit.at("share").get<double>(), 1e-9);
    EXPECT_NEAR(shaded / ring.audit.covered(), audit.at("shaded").get<double>(), 1e-4);
    EXPECT_LE(audit.at("shaded"), audit.at("share"));
  }
}

TEST(HtmlPage, KnowsHowWrongAShotIsAtEachObjectAndAtTheSky) {
  const Audited ring("ring.json", viewFrom({-4, 0, 0}, Base::ViewCameraKind::Spherical));
  const Json objects = dataOf(ring.page()).at("audits").at(0).at("objects");
  const double covered = ring.audit.covered();
  double shown = 0.0;
  double missing = 0.0;
  for (const Json& row : objects) {
    shown += row.at(2).get<double>();
    missing += row.at(3).get<double>();
    EXPECT_LE(row.at(1).get<double>(), row.at(2).get<double>() + row.at(3).get<double>() + 1e-9);
    const int number = row.at(0);
    if (number == 0) continue;
    const Measure::ObjectAudit& object = ring.audit.objects().at(static_cast<size_t>(number) - 1);
    EXPECT_NEAR(object.shownWrongly / covered, row.at(2).get<double>(), 1e-8);
    EXPECT_NEAR(object.missing / covered, row.at(3).get<double>(), 1e-8);
  }
  // Each wrong place is shown wrongly once, and missing once; the sky counts.
  EXPECT_EQ(0, objects.at(0).at(0));
  EXPECT_NEAR(ring.audit.wrongShare(), shown, 1e-8);
  EXPECT_NEAR(ring.audit.wrongShare(), missing, 1e-8);
}

TEST(HtmlPage, ShadesNothingOfAShotThatIsRight) {
  const Audited small("small.json", viewFrom({-2.6, 0.35, 1.9}, Base::ViewCameraKind::Spherical));
  EXPECT_GT(small.audit.wrong(), 0.0);  // by its chords
  const std::string page = small.page();
  EXPECT_EQ(0u, count(page, "-wrong\" class"));
  EXPECT_EQ(0u, count(page, "data-shown=\""));
  const Json audit = dataOf(page).at("audits").at(0);
  EXPECT_EQ(0.0, audit.at("shaded"));
  EXPECT_LT(audit.at("share"), 1e-4);
}

TEST(HtmlPage, ShadesOnlyThePictureThatTheAuditIsOf) {
  const Audited first("small.json", viewFrom({-2.6, 0.35, 1.9}, Base::ViewCameraKind::Spherical));
  const Audited second("ring.json", viewFrom({-4, 0, 0}, Base::ViewCameraKind::Spherical));
  HtmlPage page("Two");
  page.add(VectorPicture(first.shot.shot()), Measure::VisibleShares(first.shot.shot()));
  second.addTo(page);
  const std::string text = page.text();
  EXPECT_TRUE(dataOf(text).at("audits").at(0).is_null());
  EXPECT_FALSE(dataOf(text).at("audits").at(1).is_null());
  const std::vector<pugi::xml_document> svgs = svgsOf(text);
  ASSERT_EQ(2u, svgs.size());
  EXPECT_TRUE(svgs[0].select_nodes("//path[@data-shown]").empty());
  EXPECT_FALSE(svgs[1].select_nodes("//g[@id='p2-wrong']/path[@data-shown]").empty());
}

TEST(HtmlPage, AnAuditIsOfAShotOfThePageAndHasKeptWhereItIsWrong) {
  const Audited small("small.json", viewFrom({-2.6, 0.35, 1.9}, Base::ViewCameraKind::Spherical));
  HtmlPage page("none");
  EXPECT_THROW(page.addAudit(small.audit, {}), std::logic_error);
  page.add(VectorPicture(small.shot.shot()), Measure::VisibleShares(small.shot.shot()));
  const std::string before = page.text();
  EXPECT_EQ(0u, dataOf(before).count("audits"));
  const Measure::ShotAudit sums(small.shot, Visibility::SceneIndex(small.scene));
  EXPECT_THROW(page.addAudit(sums, {}), std::invalid_argument);
  EXPECT_EQ(before, page.text());
}

}  // namespace
}  // namespace Lumivane::Test
