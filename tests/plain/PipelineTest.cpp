// The plain pipeline and the library come to the same bytes: on every expected shot, and on random
// scenes and views.

#include "plain/Pipeline.h"
#include "plain/RandomScenes.h"
#include "scene/City.h"
#include "scene/Sphere.h"
#include "support/Capture.h"
#include "support/ShotScene.h"
#include "support/Vectors.h"

#include <lumivane/cmd/CmdManager.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

namespace Lumivane::Test {
namespace {

namespace fs = std::filesystem;
using Plain::Vector;

std::string fileText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Vector vectorOf(const Json& json, const char* key, const Vector& otherwise) {
  return json.contains(key) ? toVector(json.at(key)) : otherwise;
}

Plain::View viewOf(const Json& json) {
  Plain::View view;
  view.eye = vectorOf(json, "eye", {0, 0, 0});
  view.forward = vectorOf(json, "forward", {1, 0, 0});
  view.up = vectorOf(json, "up", {0, 0, 1});
  view.isSquare = json.value("camera", "spherical") == "normal";
  view.d1 = json.value("d1", 0.01);
  view.d2 = json.value("d2", 1.0);
  view.segments = json.value("sn", 6);
  view.maxLength = json.value("sl", 0.0);
  return view;
}

// --- The expected shots ---

class ExpectedShot : public ::testing::Test {
 public:
  explicit ExpectedShot(fs::path caseStem) : stem(std::move(caseStem)) {}

  void TestBody() override {
    const Json json = Json::parse(fileText(stem.string() + ".view.json"));
    Plain::Pipeline pipeline;
    Plain::Scene scene = pipeline.read(fileText(stem.string() + ".scene.json"));
    for (const Json& before : json.value("before", Json::array())) {
      Plain::View earlier = viewOf(before);
      pipeline.makeShot(scene, earlier);
    }
    Plain::View view = viewOf(json);
    const Plain::Shot shot = pipeline.makeShot(scene, view);
    EXPECT_EQ(fileText(stem.string() + ".shot.json"), pipeline.write(scene, shot));
    expectTold(Json::parse(fileText(stem.string() + ".stats.json")), shot, view);
  }

 private:
  static void expectTold(const Json& stats, const Plain::Shot& shot, const Plain::View& view) {
    EXPECT_EQ(stats.at("eyeAfter"), Json(view.eye));
    if (shot.report) {
      EXPECT_EQ(stats.at("report"), Json(*shot.report));
    } else {
      EXPECT_TRUE(stats.at("report").is_null());
    }
    std::size_t expected = 0;
    for (const auto& [message, count] : stats.at("console").items())
      expected += count.get<std::size_t>() * message.size();
    EXPECT_EQ(expected, shot.messages.size()) << shot.messages;
  }

  fs::path stem;
};

void registerExpectedShots() {
  const std::string ending = ".shot.json";
  std::vector<fs::path> stems;
  for (const fs::directory_entry& entry : fs::directory_iterator(goldenDir())) {
    const std::string path = entry.path().string();
    if (path.size() <= ending.size() || path.substr(path.size() - ending.size()) != ending)
      continue;
    stems.emplace_back(path.substr(0, path.size() - ending.size()));
  }
  std::sort(stems.begin(), stems.end());
  if (stems.empty()) stems.emplace_back("none");  // which fails
  for (const fs::path& stem : stems)
    ::testing::RegisterTest("PlainPipelineOnExpectedShots", stem.filename().c_str(), nullptr,
                            nullptr, __FILE__, __LINE__,
                            [stem]() -> ::testing::Test* { return new ExpectedShot(stem); });
}

// --- Random scenes ---

// Both number the objects of the sort from 1 on, so that their reports can be compared.
Plain::Pipeline& sharedPipeline() {
  static Plain::Pipeline pipeline;
  return pipeline;
}

/// A library's view of the plain one's values, with the statics of the splitting.
struct LibraryView {
  explicit LibraryView(const Plain::View& plain)
      : orientation(new Geometry::Point3d(plain.eye[0], plain.eye[1], plain.eye[2]),
                    new Geometry::Vector3d(plain.forward[0], plain.forward[1], plain.forward[2]),
                    new Geometry::Vector3d(plain.up[0], plain.up[1], plain.up[2])) {
    if (plain.isSquare)
      view.setCamera(&normal);
    else
      view.setCamera(&spherical);
    view.setOrientation(&orientation);
    parameters.setD1(plain.d1);
    parameters.setD2(plain.d2);
    Cmd::CmdManager::minSegmentsNumber = plain.segments;
    Cmd::CmdManager::maxSegmentsLength = plain.maxLength;
  }

  Base::ViewSphericalCamera spherical;
  Base::ViewNormalCamera normal;
  Base::ViewOrientation3D orientation;
  Base::View view;
  Algorithm::ShotParameters parameters;
};

/// A working directory of its own, for the report of a cycle.
class Folder {
 public:
  Folder() : before(fs::current_path()) {
    std::string name = (fs::temp_directory_path() / "lumivane-plain-XXXXXX").string();
    path = mkdtemp(name.data());
    fs::current_path(path);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    fs::current_path(before);
    fs::remove_all(path);
  }

 private:
  fs::path before;
  fs::path path;
};

void expectSameShot(const std::string& text, const Plain::View& view) {
  const Folder folder;
  const std::unique_ptr<Scene::Scene3D> scene(IO::DataReader().readSceneString(text));
  LibraryView libraryView(view);
  SharingShot shot;
  const std::string printed = capturedStdout(
      [&] { shot.reset(scene->makeShot(&libraryView.view, &libraryView.parameters)); });
  const std::string actual = IO::DataWriter().writeShotString(shot.get());
  for (Scene::Object* object : *scene->getObjects()->getObjects()) freeWorkingLists(*object);

  Plain::Scene plainScene = sharedPipeline().read(text);
  Plain::View plainView = view;
  const Plain::Shot plainShot = sharedPipeline().makeShot(plainScene, plainView);
  ASSERT_EQ(sharedPipeline().write(plainScene, plainShot), actual);
  ASSERT_EQ(plainShot.messages, printed);
  ASSERT_EQ(plainView.eye, libraryView.orientation.getEyePosition()->toVector());
  ASSERT_EQ(plainShot.report.value_or(""), fileText("log_sort.txt"));
}

Plain::View anyView(Plain::Random& random, double reach) {
  Plain::View view;
  view.eye = random.point(reach);
  view.forward = random.point(1.0);
  view.up = random.point(1.0);
  view.isSquare = random.below(2) == 0;
  view.segments = 1 + random.below(7);
  const double lengths[] = {0.0, 0.0, 0.3, 0.05};
  view.maxLength = lengths[random.below(4)];
  return view;
}

TEST(PlainPipelineProperty, AgreesWithTheLibraryOnTowns) {
  Plain::Random random(71);
  for (int i = 0; i < 15; ++i) {
    SCOPED_TRACE(i);
    const Bench::BenchScene town = Bench::city(1 + random.below(12), random.engine());
    Plain::View view = anyView(random, 60.0);
    view.eye[2] = random.between(0.5, 70.0);
    expectSameShot(sceneText(town.model), view);
  }
}

TEST(PlainPipelineProperty, AgreesWithTheLibraryOnTheViewsOfATown) {
  const Bench::BenchScene town = Bench::city(24);
  for (const Bench::NamedView& named : town.views) {
    SCOPED_TRACE(named.name);
    Plain::View view;
    view.eye = {named.eye.x, named.eye.y, named.eye.z};
    view.forward = {named.forward.x, named.forward.y, named.forward.z};
    view.up = {named.up.x, named.up.y, named.up.z};
    expectSameShot(sceneText(town.model), view);
    view.isSquare = true;
    view.maxLength = 0.2;
    expectSameShot(sceneText(town.model), view);
  }
}

TEST(PlainPipelineProperty, AgreesWithTheLibraryOnABall) {
  Plain::Random random(72);
  const std::string text = sceneText(Bench::sphere(392).model);
  for (int i = 0; i < 8; ++i) {
    SCOPED_TRACE(i);
    expectSameShot(text, anyView(random, 25.0));
  }
}

// Triangles and larger polygons in all directions, concave and repeated points among them, faces of
// several regions, docking edges: whatever runs through whatever.
TEST(PlainPipelineProperty, AgreesWithTheLibraryOnScatteredPolygons) {
  Plain::Random random(73);
  for (int i = 0; i < 60; ++i) {
    SCOPED_TRACE(i);
    expectSameShot(Plain::scatteredScene(random), anyView(random, 6.0));
  }
}

// Coordinates of a coarse grid bring shared edges, planes through the eye and touching polygons.
TEST(PlainPipelineProperty, AgreesWithTheLibraryOnAGrid) {
  Plain::Random random(74);
  for (int i = 0; i < 60; ++i) {
    SCOPED_TRACE(i);
    Plain::View view = anyView(random, 3.0);
    for (double& coordinate : view.eye) coordinate = std::round(coordinate);
    view.segments = 1;  // an eye in a polygon's plane splits its edges 300 times finer
    view.maxLength = 0.0;
    view.forward = random.axis();
    view.up = random.axis();
    if (Plain::length(Plain::cross(view.up, view.forward)) == 0.0) continue;  // no picture
    expectSameShot(Plain::griddedScene(random), view);
  }
}

}  // namespace

/// For Main.cpp of the test support, which registers nothing by itself.
const bool expectedShotsAreRegistered = (registerExpectedShots(), true);

}  // namespace Lumivane::Test
