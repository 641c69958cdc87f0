#include "importers/ImportedRegions.h"
#include "support/TempFolder.h"

#include <lumivane/geometry/Region.h>
#include <lumivane/geometry/Regions.h>
#include <lumivane/importers/Importer.h>
#include <lumivane/scene/Object.h>
#include <lumivane/scene/Objects.h>
#include <lumivane/scene/Scene3D.h>

#include <cstddef>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Importers::ImportedScene;
using Importers::Importer;
using Importers::ImportOptions;
using Importers::ImportSides;

// Object and class of all regions, each pair with its number.
using Counts = std::map<std::pair<std::string, std::string>, int>;

Counts countsOf(const ImportedScene& imported) {
  Counts counts;
  std::size_t position = 0;
  const std::vector<std::string> names = imported.scene.classes().namesOfRegions();
  for (const Scene::Object* const object : *imported.scene.scene().getObjects()->getObjects())
    for (std::size_t i = 0; i < object->getRegions()->getRegions()->size(); ++i)
      ++counts[{object->getId(), names.empty() ? "" : names.at(position++)}];
  return counts;
}

Counts countsOf(const std::string& name, const std::string& text,
                const ImportOptions& options = {}) {
  const TempFolder folder;
  return countsOf(Importer::importFile(folder.file(name, text), options));
}

const std::string Square = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";

// Square k of the document's five at the height k, as the boundaries of a surface.
std::string surface(int k) {
  std::string text = "[[";
  for (int i = 0; i < 4; ++i) text += (i > 0 ? "," : "") + std::to_string(4 * k + i);
  return text + "]]";
}

std::string cityModel(const std::string& objects) {
  std::string vertices;
  for (int k = 0; k < 5; ++k) {
    const std::string z = "," + std::to_string(k) + "]";
    vertices += (k > 0 ? ",[0,0" : "[0,0") + z + ",[1,0" + z + ",[1,1" + z + ",[0,1" + z;
  }
  return R"({"type":"CityJSON","version":"2.0","vertices":[)" + vertices +
         R"(],"appearance":{"materials":[{"name":"paint","diffuseColor":[1,0,0]}]},"CityObjects":{)" +
         objects + "}}";
}

std::string object(const std::string& id, const std::string& type, const std::string& rest) {
  return "\"" + id + R"(":{"type":")" + type + R"(","geometry":[{"type":"MultiSurface","lod":1,)" +
         rest + "}]}";
}

TEST(Classes, SemanticSurfacesHaveTheirTypeWithoutSurface) {
  const Counts counts = countsOf(Importer::importFile(modelPath("house.city.json"), {}));
  EXPECT_GT(counts.at({"house", "Wall"}), 0);
  EXPECT_EQ(1, counts.at({"house", "Ground"}));
  EXPECT_EQ(2, counts.at({"house", "Roof"}));
  EXPECT_EQ(1, counts.at({"house", "Window"}));
  EXPECT_GT(counts.at({"road", "Road"}), 0);
  EXPECT_EQ(1, counts.at({"shed", "Shed"}));
}

TEST(Classes, SurfacesWithoutSemanticsHaveTheTypeOfTheirObject) {
  const Counts counts = countsOf(
      "a.city.json",
      cityModel(object("part", "BuildingPart", "\"boundaries\":[" + surface(0) + "]") + "," +
                object("place", "Square", "\"boundaries\":[" + surface(1) + "]") + "," +
                object("tree", "SolitaryVegetationObject", "\"boundaries\":[" + surface(2) + "]")));
  EXPECT_EQ((Counts{{{"part", "Building"}, 1},
                    {{"place", "TransportSquare"}, 1},
                    {{"tree", "SolitaryVegetationObject"}, 1}}),
            counts);
}

TEST(Classes, SurfacesOfUnknownSemanticsKeepTheirNames) {
  const std::string semantics =
      R"(,"semantics":{"surfaces":[{"type":"+SolarSurface"},{"type":"OuterCeilingSurface"},)"
      R"({"type":"Surface"}],"values":[0,1,2,null]})";
  const Counts counts = countsOf(
      "a.city.json", cityModel(object("house", "Building",
                                      "\"boundaries\":[" + surface(0) + "," + surface(1) + "," +
                                          surface(2) + "," + surface(3) + "]" + semantics)));
  EXPECT_EQ((Counts{{{"house", "Solar"}, 1},
                    {{"house", "OuterCeiling"}, 1},
                    {{"house", "Surface"}, 1},
                    {{"house", "Building"}, 1}}),
            counts);
}

TEST(Classes, SurfacesOfOneColourAndTwoClassesAreTwoFaces) {
  // Two halves of one square, painted alike.
  const std::string halves =
      R"("boundaries":[[[0,1,2]],[[0,2,3]]],"material":{"t":{"value":0}})"
      R"(,"semantics":{"surfaces":[{"type":"RoofSurface"},{"type":"WallSurface"}],"values":[0,)";
  const auto faces = [&halves](const std::string& second) {
    const TempFolder folder;
    return Importer::importFile(
               folder.file("a.city.json",
                           cityModel(object("house", "Building", halves + second + "]}"))),
               {})
        .report.faces;
  };
  EXPECT_EQ(1U, faces("0"));
  EXPECT_EQ(2U, faces("1"));
}

TEST(Classes, ObjSurfacesHaveTheirMaterialElseTheirGroup) {
  Counts faces;
  const ImportedScene imported = Importer::importFile(modelPath("cube.obj"), {});
  const std::vector<std::string> names = imported.scene.classes().namesOfRegions();
  std::size_t position = 0;
  for (const Scene::Object* const object : *imported.scene.scene().getObjects()->getObjects()) {
    std::set<std::pair<std::string, int>> known;
    for (const Geometry::Region* const region : *object->getRegions()->getRegions())
      known.emplace(names.at(position++), region->getFaceNumber());
    for (const auto& face : known) ++faces[{object->getId(), face.first}];
  }
  EXPECT_EQ((Counts{{{"walls", "brick"}, 5}, {{"lid", "tile"}, 1}}), faces);
  EXPECT_EQ((Counts{{{"a", "a"}, 1}, {{"b", "tin"}, 1}}),
            countsOf("m.obj", Square + "g a\nf 1 2 3\ng b\nusemtl tin\nf 1 3 4\n"));
}

TEST(Classes, ObjSurfacesWithoutNamesHaveNoClass) {
  const TempFolder folder;
  const ImportedScene imported =
      Importer::importFile(folder.file("m.obj", Square + "f 1 2 3\n"), {});
  EXPECT_TRUE(imported.scene.classes().names.empty());
}

TEST(Classes, GltfSurfacesHaveTheirMaterialElseTheirNode) {
  const ImportedScene imported = Importer::importFile(modelPath("boxes.gltf"), {});
  const std::vector<std::string>& names = imported.scene.classes().names;
  EXPECT_FALSE(names.empty());
  for (const auto& [key, count] : countsOf(imported)) EXPECT_NE("", key.second) << key.first;
}

TEST(Classes, BothSidesOfASurfaceHaveItsClassAndMeshesOfNoNamesHaveNone) {
  ImportOptions options;
  options.sides = ImportSides::Both;
  EXPECT_EQ((Counts{{{"a", "tin"}, 2}}),
            countsOf("m.obj", Square + "g a\nusemtl tin\nf 1 2 3\n", options));
  EXPECT_TRUE(Importer::importFile(modelPath("pyramid.ply"), {}).scene.classes().names.empty());
  EXPECT_TRUE(Importer::importFile(modelPath("tetrahedron.stl"), {}).scene.classes().names.empty());
}

TEST(Classes, TheirNumbersDoNotDependOnTheEye) {
  ImportOptions near;
  near.eye = {{-100, -100, 20}};
  ImportOptions far;
  far.eye = {{100, 100, 20}};
  const ImportedScene a = Importer::importFile(modelPath("house.city.json"), near);
  const ImportedScene b = Importer::importFile(modelPath("house.city.json"), far);
  EXPECT_EQ(a.scene.classes().names, b.scene.classes().names);
  EXPECT_NE(a.scene.classes().regions, b.scene.classes().regions);
  EXPECT_EQ(countsOf(a), countsOf(b));
}

}  // namespace
}  // namespace Lumivane::Test
