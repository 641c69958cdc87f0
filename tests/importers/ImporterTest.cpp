#include "importers/ImportedRegions.h"
#include "support/TempFolder.h"

#include <lumivane/geometry/Point3d.h>
#include <lumivane/geometry/Points3d.h>
#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Region2d.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/geometry/Regions2dInDrawingOrder.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>
#include <lumivane/shot/Shot2d.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>
#include <set>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Importers::ImportedScene;
using Importers::Importer;
using Importers::ImportOptions;
using Importers::ImportSides;
using Kernel::Vec3;
using Colour = std::array<int, 4>;

std::set<std::string> ids(const ImportedScene& imported) {
  std::set<std::string> result;
  for (const ImportedRegion& region : importedRegions(imported)) result.insert(region.object);
  return result;
}

std::set<Colour> colours(const std::vector<ImportedRegion>& regions) {
  std::set<Colour> result;
  for (const ImportedRegion& region : regions) result.insert(region.colour);
  return result;
}

double area(const std::vector<ImportedRegion>& regions) {
  double sum = 0.0;
  for (const ImportedRegion& region : regions) sum += region.area();
  return sum;
}

// Where a region of a convex body around `middle` is seen from: positive from outside.
double outwardness(const ImportedRegion& region, Vec3 middle) {
  return -Kernel::dot(region.areaVector(), region.corners[0] - middle);
}

size_t drawnFaces(Session::LoadedScene& scene, Session::Vector eye) {
  Session::ViewSettings view;
  view.eye = eye;
  view.forward = {-eye[0], -eye[1], -eye[2]};
  view.up = {0.1, 0.2, 1.0};
  testing::internal::CaptureStdout();
  const Session::TakenShot shot = scene.take(view);
  testing::internal::GetCapturedStdout();
  std::set<std::pair<int, int>> faces;
  for (const Geometry::Region2d* const region : *shot.shot().getRegions()->getRegions())
    if (!region->getPoints()->empty())
      faces.insert({region->getObjectNumber(), region->getFaceNumber()});
  return faces.size();
}

ImportOptions withSides(ImportSides sides) {
  ImportOptions options;
  options.sides = sides;
  return options;
}

TEST(Importer, KnowsItsFilesByTheirNamesAndCityModelsByTheirContent) {
  for (const char* const name : {"a.obj", "a.STL", "b.ply", "b.gltf", "c.glb", "d.cityjson"})
    EXPECT_TRUE(Importer::isImportable(name)) << name;
  EXPECT_TRUE(Importer::isImportable(modelPath("house.city.json")));
  EXPECT_FALSE(Importer::isImportable("scene.txt"));
  EXPECT_FALSE(Importer::isImportable("there is no such file.json"));

  const TempFolder folder;
  EXPECT_TRUE(Importer::isImportable(folder.file("1.json", R"({"version":1,"type":"CityJSON"})")));
  EXPECT_TRUE(Importer::isImportable(folder.file("2.json", R"({"CityObjects":{}})")));
  EXPECT_FALSE(
      Importer::isImportable(folder.file("3.json", R"({"Brushes":[],"type":"CityJSON"})")));
  EXPECT_FALSE(Importer::isImportable(folder.file("4.json", R"({"a":{"CityObjects":{}}})")));
  EXPECT_FALSE(Importer::isImportable(folder.file("5.json", R"({"a":{"type":"CityJSON"}})")));
  EXPECT_FALSE(Importer::isImportable(folder.file("6.json", "no JSON")));
}

TEST(Importer, ObjGroupsBecomeObjectsAndMaterialsBrushes) {
  const ImportedScene imported = importModel("cube.obj");
  EXPECT_EQ("OBJ", imported.report.format);
  EXPECT_EQ((std::set<std::string>{"walls", "lid"}), ids(imported));
  EXPECT_EQ((std::set<Colour>{{204, 102, 51, 255}}), colours(regionsOf(imported, "walls")));
  EXPECT_EQ((std::set<Colour>{{51, 102, 153, 128}}), colours(regionsOf(imported, "lid")));
  EXPECT_EQ(12u, imported.report.sourcePolygons);
  EXPECT_EQ(6u, imported.report.faces);
  EXPECT_EQ(8u, imported.report.points);
  EXPECT_TRUE(imported.report.warnings.empty());
}

TEST(Importer, ClosedMeshShowsItsOutside) {
  for (const char* const name : {"cube.obj", "boxes.gltf"}) {
    SCOPED_TRACE(name);
    ImportedScene imported = importModel(name);
    for (const ImportedRegion& region : importedRegions(imported)) {
      if (region.corners[0].x < 2.0) {
        EXPECT_GT(outwardness(region, {0, 0, 0}), 0.0);
      }
    }
  }
  ImportedScene cube = importModel("cube.obj");
  EXPECT_EQ(1u, drawnFaces(cube.scene, {-6.0, 0.1, 0.2}));
  EXPECT_EQ(3u, drawnFaces(cube.scene, {5.0, 4.0, 6.0}));
}

TEST(Importer, FlipShowsTheInside) {
  ImportedScene cube = importModel("cube.obj", withSides(ImportSides::Inside));
  for (const ImportedRegion& region : importedRegions(cube))
    EXPECT_LT(outwardness(region, {0, 0, 0}), 0.0);
  EXPECT_EQ(5u, drawnFaces(cube.scene, {0.1, 0.0, 0.0}));
}

TEST(Importer, TwoSidedShowsBothInOneFace) {
  const ImportedScene cube = importModel("cube.obj", withSides(ImportSides::Both));
  EXPECT_EQ(24u, cube.report.regions);
  EXPECT_EQ(6u, cube.report.faces);
  const std::vector<ImportedRegion> regions = importedRegions(cube);
  for (size_t i = 0; i < regions.size(); i += 2) {
    EXPECT_EQ(regions[i].face, regions[i + 1].face);
    EXPECT_EQ(regions[i].areaVector(), -regions[i + 1].areaVector());
    EXPECT_EQ(regions[i].drawnLength(), regions[i + 1].drawnLength());
  }
}

TEST(Importer, TextAndBinaryStlAreTheSame) {
  const ImportedScene text = importModel("tetrahedron.stl");
  const ImportedScene binary = importModel("tetrahedron-binary.stl");
  EXPECT_EQ((std::set<std::string>{"tetrahedron"}), ids(text));
  EXPECT_EQ((std::set<std::string>{"tetrahedron-binary"}), ids(binary));
  ASSERT_EQ(4u, importedRegions(text).size());
  for (size_t i = 0; i < 4; ++i)
    EXPECT_EQ(importedRegions(text)[i].corners, importedRegions(binary)[i].corners);
  for (const ImportedRegion& region : importedRegions(text))
    EXPECT_GT(outwardness(region, {0.2, 0.2, 0.2}), 0.0);
}

TEST(Importer, SolidsOfAnStlBecomeObjects) {
  const std::string facet =
      "facet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\n"
      "endfacet\n";
  const ImportedScene imported =
      importText("two.stl", "solid a\n" + facet + "endsolid a\nsolid\n" + facet + "endsolid\n");
  EXPECT_EQ((std::set<std::string>{"a", "two"}), ids(imported));
}

TEST(Importer, ThreeKindsOfPlyAreTheSame) {
  const ImportedScene text = importModel("pyramid.ply");
  EXPECT_EQ((std::set<Colour>{{128, 128, 128, 255}, {200, 60, 40, 255}, {40, 60, 200, 255}}),
            colours(importedRegions(text)));
  EXPECT_EQ(3u, text.report.brushes);
  EXPECT_EQ(4u, importedRegions(text)[0].corners.size());
  for (const char* const name : {"pyramid-little.ply", "pyramid-big.ply"}) {
    const ImportedScene binary = importModel(name);
    ASSERT_EQ(5u, importedRegions(binary).size());
    for (size_t i = 0; i < 5; ++i) {
      EXPECT_EQ(importedRegions(text)[i].corners, importedRegions(binary)[i].corners);
      EXPECT_EQ(importedRegions(text)[i].colour, importedRegions(binary)[i].colour);
    }
  }
}

TEST(Importer, PlyColoursOfVerticesAreMixedToAFewForTheFace) {
  const ImportedScene imported =
      importText("v.ply",
                 "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
                 "property float z\nproperty uchar red\nproperty uchar green\nproperty uchar blue\n"
                 "element face 1\nproperty list uchar int vertex_indices\nend_header\n"
                 "0 0 0 255 0 0\n1 0 0 255 0 0\n0 1 0 255 90 0\n3 0 1 2\n");
  EXPECT_EQ((std::set<Colour>{{255, 34, 0, 255}}), colours(importedRegions(imported)));
}

TEST(Importer, GltfNodesStandWhereTheirTreePutsThemWithZUp) {
  const ImportedScene imported = importModel("boxes.gltf");
  EXPECT_EQ((std::set<std::string>{"house", "annex"}), ids(imported));
  // Base colours are shares of light: half the light is 188 of 255 on a screen.
  EXPECT_EQ((std::set<Colour>{{255, 188, 124, 255}}), colours(regionsOf(imported, "house")));
  EXPECT_EQ((std::set<Colour>{{0, 0, 255, 102}}), colours(regionsOf(imported, "annex")));
  double lowest = 9.0;
  double highest = -9.0;
  for (const ImportedRegion& region : regionsOf(imported, "annex"))
    for (const Vec3& corner : region.corners) {
      EXPECT_EQ(1.0, std::abs(corner.x - 4.0));
      lowest = std::min(lowest, corner.z);
      highest = std::max(highest, corner.z);
    }
  EXPECT_EQ(-0.5, lowest);
  EXPECT_EQ(0.5, highest);
}

TEST(Importer, TextAndBinaryGltfAreTheSame) {
  const std::vector<ImportedRegion> text = importedRegions(importModel("boxes.gltf"));
  const std::vector<ImportedRegion> binary = importedRegions(importModel("boxes.glb"));
  ASSERT_EQ(text.size(), binary.size());
  for (size_t i = 0; i < text.size(); ++i) {
    EXPECT_EQ(text[i].corners, binary[i].corners);
    EXPECT_EQ(text[i].colour, binary[i].colour);
  }
}

TEST(Importer, MirroredGltfNodeStillShowsItsOutside) {
  std::string text = fileBytes(modelPath("boxes.gltf"));
  const std::string before = "\"name\": \"house\",";
  text.replace(text.find(before), before.size(), before + "\"scale\":[-1,1,1],");
  for (const ImportedRegion& region : regionsOf(importText("m.gltf", text), "house"))
    EXPECT_GT(outwardness(region, {0, 0, 0}), 0.0);
}

TEST(Importer, WallOfACityModelHasItsHole) {
  const ImportedScene imported = importModel("house.city.json");
  EXPECT_EQ("CityJSON 2.0", imported.report.format);
  double front = 0.0;
  for (const ImportedRegion& region : regionsOf(imported, "house"))
    if (region.areaVector().y > 0.0 && region.colour == Colour{238, 226, 204, 255})
      front += region.area();
  EXPECT_NEAR(6.0 * 3.0 - 2.0 * 1.0, front, 1e-4);
  EXPECT_EQ(1u, imported.report.splitPolygons);
  EXPECT_EQ(0u, imported.report.unfilledPolygons);
}

TEST(Importer, CutsOfAWallAroundItsHoleAreNotDrawn) {
  double drawn = 0.0;
  for (const ImportedRegion& region : regionsOf(importModel("house.city.json"), "house"))
    if (region.areaVector().y > 0.0 && region.colour == Colour{238, 226, 204, 255})
      drawn += region.drawnLength();
  EXPECT_NEAR(2.0 * (6.0 + 3.0) + 2.0 * (2.0 + 1.0), drawn, 1e-4);
}

TEST(Importer, SemanticSurfacesTypesAndMaterialsOfACityModelHaveTheirColours) {
  const ImportedScene imported = importModel("house.city.json");
  EXPECT_EQ(
      (std::set<Colour>{
          {190, 96, 78, 255}, {238, 226, 204, 255}, {150, 142, 130, 255}, {122, 164, 204, 255}}),
      colours(regionsOf(imported, "house")));
  EXPECT_EQ((std::set<Colour>{{178, 178, 182, 255}}), colours(regionsOf(imported, "road")));
  EXPECT_EQ((std::set<Colour>{{0, 153, 102, 204}}), colours(regionsOf(imported, "shed")));
}

TEST(Importer, HighestLevelOfDetailIsTakenAndTheRestIsReported) {
  const ImportedScene imported = importModel("house.city.json");
  EXPECT_EQ(5.5, imported.report.upper[2]);  // the gable, above the block of the lower level
  EXPECT_EQ(2u, imported.report.warnings.size());
}

TEST(Importer, InstancesOfATemplateStandAtTheirPoints) {
  const ImportedScene imported = importModel("house.city.json");
  for (const auto& [id, x] : {std::pair("lamp west", -5.0), std::pair("lamp east", 5.0)}) {
    const std::vector<ImportedRegion> lamp = regionsOf(imported, id);
    ASSERT_EQ(3u, lamp.size());
    double highest = 0.0;
    for (const ImportedRegion& region : lamp)
      for (const Vec3& corner : region.corners) {
        EXPECT_NEAR(x, corner.x, 0.21);
        highest = std::max(highest, corner.z);
      }
    EXPECT_EQ(1.0 + 2.0 * 2.0, highest);  // the matrix doubles the height
  }
}

TEST(Importer, FarCoordinatesAreMovedByWholeUnitsAndReported) {
  const ImportedScene imported = importModel("house.city.json");
  EXPECT_EQ((std::array<double, 3>{-84603.0, -447399.0, 0.0}), imported.report.shift);
  EXPECT_EQ((std::array<double, 3>{-7.0, -5.0, 1.0}), imported.report.lower);
}

TEST(Importer, NearCoordinatesStay) {
  const ImportedScene imported = importText("n.obj", "v 900 0 0\nv 901 0 0\nv 900 1 0\nf 1 2 3\n");
  EXPECT_EQ((std::array<double, 3>{0.0, 0.0, 0.0}), imported.report.shift);
  EXPECT_EQ(900.0, imported.report.lower[0]);
}

TEST(Importer, FarMillimetresOfAnObjSurvive) {
  const ImportedScene imported =
      importText("far.obj",
                 "v 84616.125 447423.5 1\nv 84617.125 447423.5 1\nv 84616.125 447424.625 1\n"
                 "f 1 2 3\n");
  EXPECT_NEAR(0.5 * 1.0 * 1.125, area(importedRegions(imported)), 1e-9);
}

TEST(Importer, CenterPutsTheModelOnItsOrigin) {
  ImportOptions options;
  options.center = true;
  const ImportedScene imported = importModel("pyramid.ply", options);
  EXPECT_EQ((std::array<double, 3>{-1.0, -1.0, 0.0}), imported.report.lower);
  EXPECT_EQ((std::array<double, 3>{1.0, 1.0, 1.5}), imported.report.upper);
}

TEST(Importer, ScaleAndYUpTurnBeforeTheShift) {
  ImportOptions options;
  options.scale = 2.0;
  options.yUp = true;
  const ImportedScene imported = importModel("pyramid.ply", options);
  EXPECT_EQ((std::array<double, 3>{0.0, -3.0, 0.0}), imported.report.lower);
  EXPECT_EQ((std::array<double, 3>{4.0, 0.0, 4.0}), imported.report.upper);
  for (const ImportedRegion& region : importedRegions(imported))
    EXPECT_GT(outwardness(region, {2.0, -1.0, 2.0}), 0.0);
}

TEST(Importer, ScaleThatIsNoneIsRefused) {
  for (const double scale : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
    ImportOptions options;
    options.scale = scale;
    EXPECT_EQ("the scale is not above 0", importFault("a.obj", "v 0 0 0", options));
  }
}

TEST(Importer, NamesOfObjectsDiffer) {
  const std::string box = fileBytes(modelPath("boxes.gltf"));
  std::string text = box;
  text.replace(text.find("annex"), 5, "house");
  EXPECT_EQ((std::set<std::string>{"house", "house (2)"}), ids(importText("t.gltf", text)));
}

TEST(Importer, SceneTextGivesTheSceneBackToTheBit) {
  const ImportedScene imported = importModel("house.city.json");
  Scene::Scene3D& scene = imported.scene.scene();
  const Session::LoadedScene read =
      Session::LoadedScene::fromText(Importer::sceneText(scene), "text");
  const auto& before = *scene.getPoints()->getPoints();
  const auto& after = *read.scene().getPoints()->getPoints();
  ASSERT_EQ(before.size(), after.size());
  for (size_t i = 0; i < before.size(); ++i) EXPECT_EQ(before[i]->toVector(), after[i]->toVector());
  EXPECT_EQ(scene.getObjects()->getObjects()->size(),
            read.scene().getObjects()->getObjects()->size());
}

TEST(Importer, DockingEdgesStayHiddenToTheirEnds) {
  // Corners that are not exact in single precision before they are imported.
  ImportedScene imported =
      importText("w.obj",
                 "v 258.801 10 0.1\nv 258.801 16.123 0.1\nv 258.801 16.123 9.3\nv 258.801 10 9.3\n"
                 "f 1 3 2\nf 1 4 3\n");
  Session::ViewSettings view;
  view.eye = {240.7, 13.3, 2.2};
  view.segments = 5;
  view.maxLength = 0.0;
  testing::internal::CaptureStdout();
  const Session::TakenShot shot = imported.scene.take(view);
  testing::internal::GetCapturedStdout();
  const auto& regions = *shot.shot().getRegions()->getRegions();
  ASSERT_EQ(2u, regions.size());
  for (const Geometry::Region2d* const region : regions) {
    EXPECT_EQ(15u, region->getPoints()->size());
    EXPECT_EQ(5u, region->getDockingEdges()->size());
  }
}

std::vector<std::string> idsInOrder(const ImportedScene& imported) {
  std::vector<std::string> result;
  for (const Scene::Object* const object : *imported.scene.scene().getObjects()->getObjects())
    result.push_back(object->getId());
  return result;
}

TEST(ImporterOrder, GroundComesFirstElseTheFilesOrderStays) {
  EXPECT_EQ((std::vector<std::string>{"road", "house", "shed", "lamp west", "lamp east"}),
            idsInOrder(importModel("house.city.json")));
}

TEST(ImporterOrder, ObjectsComeFromFarToNearOfAnEye) {
  ImportOptions options;
  options.eye = {20.0, -4.0, 2.0};
  EXPECT_EQ((std::vector<std::string>{"road", "lamp west", "house", "lamp east", "shed"}),
            idsInOrder(importModel("house.city.json", options)));
  options.eye = {-20.0, -4.0, 2.0};
  EXPECT_EQ((std::vector<std::string>{"road", "shed", "lamp east", "house", "lamp west"}),
            idsInOrder(importModel("house.city.json", options)));
}

TEST(ImporterOrder, FacesOfAnObjectComeFromFarToNearOfAnEye) {
  ImportOptions options;
  options.eye = {-9.0, 0.1, 0.2};
  std::vector<double> sides;  // where the walls across the view stand, in their order
  for (const ImportedRegion& region : regionsOf(importModel("cube.obj", options), "walls"))
    if (region.areaVector().y == 0.0 && region.areaVector().z == 0.0)
      sides.push_back(region.corners[0].x);
  EXPECT_EQ((std::vector<double>{1.0, 1.0, -1.0, -1.0}), sides);
}

TEST(Importer, OpenBodiesAreNamedWithTheirOpenEdges) {
  EXPECT_TRUE(importModel("cube.obj").report.openBodies.empty());
  const std::string box =
      "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 1 0 1\nv 1 1 1\nv 0 1 1\n"
      "o shed\nf 4 3 2 1\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\n";
  const ImportedScene open = importText("s.obj", box + "f 4 1 5 8\n");
  ASSERT_EQ(1u, open.report.openBodies.size());
  EXPECT_EQ("shed", open.report.openBodies[0].object);
  EXPECT_EQ(4u, open.report.openBodies[0].openEdges);
  // A body may be spread over several groups.
  for (const char* const group : {"", "o roof\n"})
    EXPECT_TRUE(
        importText("c.obj", box + "f 4 1 5 8\n" + group + "f 5 6 7 8\n").report.openBodies.empty());
}

TEST(ImporterRealModels, BlockOfRotterdamIsReadWhole) {
  const ImportedScene imported =
      Importer::importFile(LUMIVANE_SCENES "/models/rotterdam.city.json");
  EXPECT_EQ(248u, imported.report.sourcePolygons);
  EXPECT_EQ(12u, imported.report.emptyPolygons);  // walls between a point and itself, in the file
  EXPECT_EQ(0u, imported.report.unfilledPolygons);
  EXPECT_EQ(16u, imported.report.objects);
  EXPECT_EQ(16u, ids(imported).size());
  EXPECT_EQ((std::array<double, 3>{-90728.0, -435832.0, 0.0}), imported.report.shift);
}

TEST(ImporterRealModels, PieceOfDelftIsReadWhole) {
  const ImportedScene imported = Importer::importFile(LUMIVANE_SCENES "/models/delft.city.json");
  EXPECT_EQ(36271u, imported.report.sourcePolygons);
  EXPECT_EQ(570u, imported.report.objects);
  EXPECT_EQ(0u, imported.report.unfilledPolygons);
  EXPECT_LT(imported.report.faces, imported.report.regions);
  // Its solids are closed and wound outwards: what is seen of each roof is seen from above.
  size_t roofs = 0;
  for (const ImportedRegion& region : importedRegions(imported))
    if (region.colour == Colour{190, 96, 78, 255}) {
      EXPECT_LT(region.areaVector().z, 0.0);
      ++roofs;
    }
  EXPECT_GT(roofs, 1000u);
}

TEST(ImportedModel, ItsSceneForAnEyeIsThatOfAnImportForTheEyeWhateverCameBefore) {
  const std::string file = LUMIVANE_MODELS "/house.city.json";
  const Importers::ImportedModel model(file);
  const auto text = [](const ImportedScene& imported) {
    return Importer::sceneText(imported.scene.scene());
  };
  std::set<std::string> texts;
  for (const std::optional<std::array<double, 3>> eye : {std::optional<std::array<double, 3>>{},
                                                         {{-90.0, -80.0, 5.0}},
                                                         {{90.0, 80.0, 5.0}},
                                                         {{0.0, 0.0, 50.0}},
                                                         {{-90.0, -80.0, 5.0}},
                                                         {}}) {
    ImportOptions options;
    options.eye = eye;
    const std::string expected = text(Importer::importFile(file, options));
    EXPECT_TRUE(expected == text(model.sceneFor(eye)));
    texts.insert(expected);
  }
  EXPECT_GT(texts.size(), 2U);
}

TEST(ImportedModel, ClassesThatAreSetGoWithTheirRegionsIntoEachOrder) {
  Importers::ImportedModel model(LUMIVANE_MODELS "/house.city.json");
  // By the coordinates of its corners, each region is known again.
  const auto classes = [&model](const std::optional<std::array<double, 3>>& eye) {
    const ImportedScene imported = model.sceneFor(eye);
    const std::vector<std::string> names = imported.scene.classes().namesOfRegions();
    std::map<std::string, std::string> result;
    std::size_t next = 0;
    const auto& points = *imported.scene.scene().getPoints()->getPoints();
    for (const Scene::Object* object : *imported.scene.scene().getObjects()->getObjects())
      for (const Geometry::Region* region : *object->getRegions()->getRegions()) {
        std::string key;
        for (const int number : *region->getPoints()) {
          const Geometry::Point3d& p = *points[static_cast<std::size_t>(number) - 1];
          key += std::to_string(p.getX()) + " " + std::to_string(p.getY()) + " " +
                 std::to_string(p.getZ()) + ";";
        }
        result[key] = names.at(next++);
      }
    return result;
  };
  const std::size_t count = model.sceneFor({}).scene.classes().regions.size();
  std::vector<std::string> names;
  for (std::size_t i = 0; i < count; ++i) names.push_back(i % 3 == 0 ? "" : std::to_string(i));
  const std::map<std::string, std::string> before = classes({});
  model.setClasses(Session::SurfaceClasses::ofNames(names));
  const std::map<std::string, std::string> plain = classes({});
  EXPECT_NE(before, plain);
  EXPECT_EQ(names, model.sceneFor({}).scene.classes().namesOfRegions());
  EXPECT_EQ(plain, classes({{-90.0, -80.0, 5.0}}));
  EXPECT_EQ(plain, classes({{90.0, 80.0, 5.0}}));
  names.pop_back();
  EXPECT_THROW(model.setClasses(Session::SurfaceClasses::ofNames(names)), Session::Error);
  model.setClasses({});
  EXPECT_TRUE(model.sceneFor({}).scene.classes().regions.empty());
}

TEST(ImportedModel, AnEyeThatIsNotFiniteIsNone) {
  const Importers::ImportedModel model(LUMIVANE_MODELS "/house.city.json");
  const auto text = [&model](double x) {
    return Importer::sceneText(model.sceneFor({{x, 0.0, 0.0}}).scene.scene());
  };
  const std::string none = Importer::sceneText(model.sceneFor({}).scene.scene());
  EXPECT_TRUE(none == text(std::nan("")));
  EXPECT_TRUE(none == text(std::numeric_limits<double>::infinity()));
}

TEST(Importer, FilesThatAModelNamesAreInputFilesAsFarAsTheyAreThere) {
  const TempFolder folder;
  const auto names = [&folder](const std::string& file) {
    std::set<std::string> result;
    for (const std::string& path : Importer::inputFiles(folder.path(file)))
      result.insert(std::filesystem::relative(path, folder.path("")).string());
    return result;
  };
  using Names = std::set<std::string>;
  for (const std::string name : {"a.mtl", "b c.mtl", "d.mtl", "e.bin", "f g.bin"})
    folder.file(name, "");
  folder.file("m.obj", "mtllib a.mtl none.mtl\r\nmtllib b c.mtl\nmtllib \\\n d.mtl");
  EXPECT_EQ((Names{"m.obj", "a.mtl", "b c.mtl", "d.mtl"}), names("m.obj"));
  folder.file("m.gltf", R"({"buffers":[{"uri":"e.bin"},{"uri":"f%20g.bin"},{"uri":"none"},
                           {"uri":"data:,x"},{"uri":7},8,{}]})");
  EXPECT_EQ((Names{"m.gltf", "e.bin", "f g.bin"}), names("m.gltf"));
  const std::string document = R"({"buffers":[{"uri":"e.bin"}]})";
  folder.file("m.glb", "glTF" + std::string(8, '\0') + static_cast<char>(document.size()) +
                           std::string(3, '\0') + "JSON" + document + "rest");
  EXPECT_EQ((Names{"m.glb", "e.bin"}), names("m.glb"));
  folder.file("bad.gltf", "{");
  EXPECT_EQ(Names{"bad.gltf"}, names("bad.gltf"));
  folder.file("deep.gltf", std::string(100000, '['));
  EXPECT_EQ(Names{"deep.gltf"}, names("deep.gltf"));
  EXPECT_EQ(Names{"a.stl"}, names("a.stl"));
}

}  // namespace
}  // namespace Lumivane::Test
