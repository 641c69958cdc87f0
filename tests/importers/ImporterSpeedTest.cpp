// Inputs that cost more than their size: each ends within seconds, as a scene or in one clear line.

#include "importers/ImportedRegions.h"

#include <chrono>
#include <cmath>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Importers::ImportedScene;

// Sanitizers and debug builds are slower by far; what is quadratic takes minutes in any.
constexpr double MostSeconds = 30.0;

class ImporterSpeed : public testing::Test {
 protected:
  void TearDown() override {
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_LT(taken.count(), MostSeconds);
  }

 private:
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

std::string joined(size_t count, const std::function<std::string(size_t)>& part) {
  std::string text;
  for (size_t i = 0; i < count; ++i) text.append(i > 0 ? "," : "").append(part(i));
  return text;
}

std::string cityModel(const std::string& objects, const std::string& vertices,
                      const std::string& more = "") {
  return R"({"type":"CityJSON","version":"2.0","CityObjects":{)" + objects + R"(},"vertices":[)" +
         vertices + "]" + more + "}";
}

std::string surface(const std::string& rings) {
  return R"({"type":"Building","geometry":[{"type":"MultiSurface","lod":"1","boundaries":[[)" +
         rings + "]]}]}";
}

// A glTF with one triangle, its nodes, primitives and the nodes of its scene.
std::string gltf(const std::string& nodes, const std::string& sceneNodes,
                 const std::string& primitives) {
  return R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[)" + sceneNodes + R"(]}],"nodes":[)" +
         nodes + R"(],"meshes":[{"primitives":[)" + primitives + "]}]," +
         R"("accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],)" +
         R"("bufferViews":[{"buffer":0,"byteLength":36}],"buffers":[{"byteLength":36,)" +
         R"("uri":"data:;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAA"}]})";
}
const std::string Primitive = R"({"attributes":{"POSITION":0}})";

TEST_F(ImporterSpeed, ThousandHolesInOnePolygonAreCutOut) {
  constexpr size_t Side = 32;
  std::string vertices = "[0,0,0],[320,0,0],[320,320,0],[0,320,0]";
  std::string rings = "[0,1,2,3]";
  for (size_t i = 0; i < Side * Side; ++i) {
    const double x = 10.0 * static_cast<double>(i % Side) + 3.0;
    const double y = 10.0 * static_cast<double>(i / Side) + 3.0;
    std::ostringstream hole;
    hole << ",[" << x << "," << y << ",0],[" << x << "," << y + 4 << ",0],[" << x + 4 << ","
         << y + 4 << ",0],[" << x + 4 << "," << y << ",0]";
    vertices += hole.str();
    const size_t n = 4 + 4 * i;
    rings += ",[" + std::to_string(n) + "," + std::to_string(n + 1) + "," + std::to_string(n + 2) +
             "," + std::to_string(n + 3) + "]";
  }
  const ImportedScene imported =
      importText("h.city.json", cityModel("\"b\":" + surface(rings), vertices));
  double area = 0.0, drawn = 0.0;
  for (const ImportedRegion& region : importedRegions(imported)) {
    area += region.area();
    drawn += region.drawnLength();
  }
  EXPECT_NEAR(320.0 * 320.0 - 16.0 * Side * Side, area, 1e-3);
  EXPECT_NEAR(4 * 320.0 + 16.0 * Side * Side, drawn, 1e-3);
  EXPECT_EQ(1u, imported.report.faces);
}

TEST_F(ImporterSpeed, ChainOfManyNodesIsWalkedOnce) {
  constexpr size_t Count = 200000;
  const std::string nodes = joined(Count, [](size_t i) {
    return i + 1 < Count ? "{\"children\":[" + std::to_string(i + 1) + "]}" : "{\"mesh\":0}";
  });
  EXPECT_EQ(1u, importText("c.gltf", gltf(nodes, "0", Primitive)).report.regions);
}

TEST_F(ImporterSpeed, NodeInItsSceneAMillionTimesIsRefused) {
  const std::string thousand = joined(1000, [](size_t) { return "0"; });
  EXPECT_EQ("scenes 0: node 0 occurs twice in it",
            importFault("n.gltf", gltf("{\"mesh\":0}",
                                       joined(1000, [&](size_t) { return thousand; }), Primitive)));
}

TEST_F(ImporterSpeed, ManyNodesAndPrimitivesAreReadOrRefused) {
  const std::string primitives = joined(50000, [](size_t) { return Primitive; });
  EXPECT_EQ(50000u,
            importText("p.gltf", gltf("{\"mesh\":0}", "0", primitives)).report.sourcePolygons);
  const std::string nodes = joined(100, [](size_t) { return "{\"mesh\":0}"; });
  const std::string all = joined(100, [](size_t i) { return std::to_string(i); });
  EXPECT_NE(std::string::npos,
            importFault("m.gltf", gltf(nodes, all, primitives)).find("repeat what they show"));
}

TEST_F(ImporterSpeed, ManyNodesOfOneNameGetTheirNumbers) {
  constexpr size_t Count = 50000;
  const std::string nodes = joined(Count, [](size_t) { return "{\"mesh\":0,\"name\":\"tree\"}"; });
  const std::string all = joined(Count, [](size_t i) { return std::to_string(i); });
  EXPECT_EQ(Count, importText("t.gltf", gltf(nodes, all, Primitive)).report.objects);
}

TEST_F(ImporterSpeed, LibraryNamedAHundredThousandTimesIsReadOnce) {
  const TempFolder folder;
  std::string library;
  for (int i = 0; i < 2000; ++i) library += "newmtl m" + std::to_string(i) + "\nKd 1 0 0\n";
  folder.file("l.mtl", library);
  std::string text;
  for (int i = 0; i < 100000; ++i) text += i % 2 == 0 ? "mtllib l.mtl\n" : "mtllib l.mtl l.mtl\n";
  text += "v 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl m7\nf 1 2 3\n";
  const ImportedScene imported = Importers::Importer::importFile(folder.file("l.obj", text));
  EXPECT_EQ(255, importedRegions(imported).at(0).colour[0]);
  EXPECT_TRUE(imported.report.warnings.empty());
}

TEST_F(ImporterSpeed, NotesOfEveryLineAreShortened) {
  std::string text = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
  for (int i = 0; i < 20000; ++i) text += "usemtl m" + std::to_string(i) + "\nf 1 2 3\n";
  const ImportedScene imported = importText("w.obj", text);
  EXPECT_LT(imported.report.warnings.size(), 110u);
  EXPECT_NE(std::string::npos, imported.report.warnings.at(100).find("19900 more notes"));
}

TEST_F(ImporterSpeed, FaceOfCornersRepeatedWithoutEndIsLeftOut) {
  std::string text = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 2 2 0\nf 1 2 4\nf";
  for (int i = 0; i < 300000; ++i) text += " 1 2 3";
  const ImportedScene imported = importText("f.obj", text + "\n");
  EXPECT_EQ(1u, imported.report.regions);
  EXPECT_EQ(1u, imported.report.unfilledPolygons);
}

TEST_F(ImporterSpeed, TangleOfManyEdgesIsLeftOut) {
  std::string text;
  std::string face = "f";
  constexpr int Count = 100000;
  for (int i = 0; i < Count; ++i) {
    // A star whose edges all cross each other.
    const double angle = 2.0 * 3.14159265358979 * (i * 49999.0) / Count;
    text += "v " + std::to_string(1000.0 * std::cos(angle)) + " " +
            std::to_string(1000.0 * std::sin(angle)) + " 0\n";
    face += " " + std::to_string(i + 1);
  }
  const std::string triangle = "\nf 1 30000 60000\n";
  EXPECT_EQ(1u, importText("t.obj", text + face + triangle).report.unfilledPolygons);
}

// A wheel with so many cogs.
std::string wheel(int corners) {
  std::string text;
  std::string face = "f";
  for (int i = 0; i < corners; ++i) {
    const double angle = 2.0 * 3.14159265358979 * i / corners;
    const double radius = i % 2 == 0 ? 10000.0 : 9999.0;
    text += "v " + std::to_string(radius * std::cos(angle)) + " " +
            std::to_string(radius * std::sin(angle)) + " 0\n";
    face += " " + std::to_string(i + 1);
  }
  return text + face + "\n";
}

TEST_F(ImporterSpeed, OutlineOfManyCornersIsCutAndOneOfVeryManyIsLeftOut) {
  const ImportedScene imported = importText("w.obj", wheel(10000));
  EXPECT_EQ(1u, imported.report.splitPolygons);
  EXPECT_EQ(0u, imported.report.unfilledPolygons);
  EXPECT_EQ("none of its polygons has an area that can be shown",
            importFault("w.obj", wheel(900000)));
}

TEST_F(ImporterSpeed, EdgeInManyTrianglesIsMatchedOnce) {
  std::string text = "v 0 0 0\nv 0 0 1\n";
  constexpr int Count = 50000;
  for (int i = 0; i < Count; ++i)
    text += "v " + std::to_string(1 + i) + " " + std::to_string(i % 7) + " 0.5\n";
  for (int i = 0; i < Count; ++i)
    text += (i % 2 == 0 ? "f 1 2 " : "f 2 1 ") + std::to_string(i + 3) + "\n";
  EXPECT_EQ(size_t{Count}, importText("e.obj", text).report.regions);
}

TEST_F(ImporterSpeed, CityModelOfManyObjectsAndMaterialsIsReadInOrder) {
  constexpr size_t Count = 60000;
  const std::string objects = joined(Count, [](size_t i) {
    return "\"o" + std::to_string(Count - i) + "\":" + surface("[0,1,2]");
  });
  const ImportedScene imported =
      importText("m.city.json", cityModel(objects, "[0,0,0],[1,0,0],[0,1,0]"));
  EXPECT_EQ(Count, imported.report.objects);
  EXPECT_EQ("o60000", imported.scene.scene().getObjects()->getObject(0)->getId());
  EXPECT_EQ("o59999", imported.scene.scene().getObjects()->getObject(1)->getId());
}

TEST_F(ImporterSpeed, InstancesTakeOnlyTheVerticesTheyUseAndTooManyAreRefused) {
  const std::string instance =
      R"({"type":"SolitaryVegetationObject","geometry":[{"type":"GeometryInstance","template":0,)"
      R"("boundaries":[0],"transformationMatrix":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]}]})";
  const auto model = [&](size_t trees, size_t vertices) {
    const std::string points =
        joined(vertices, [](size_t i) { return "[" + std::to_string(i % 9) + ",1,0]"; });
    return cityModel(
        joined(trees, [&](size_t i) { return "\"t" + std::to_string(i) + "\":" + instance; }),
        "[5,5,5]",
        R"(,"geometry-templates":{"templates":[{"type":"MultiSurface","lod":"1","boundaries":)"
        R"([[[0,1,2]]]}],"vertices-templates":[[0,0,0],[1,0,0],[0,1,0],)" +
            points + "]}");
  };
  EXPECT_EQ(3u, importText("i.city.json", model(1000, 10000)).report.points);
  EXPECT_NE(std::string::npos,
            importFault("j.city.json", model(10000, 30000)).find("again and again"));
}

TEST_F(ImporterSpeed, CrowdOfFacetsInACornerOfAnStlIsReadQuickly) {
  std::ostringstream text;
  text << "solid crowd\n";
  const auto facet = [&text](double x, double y) {
    text << "facet normal 0 0 1\nouter loop\nvertex " << x << " " << y << " 0\nvertex " << x + 1
         << " " << y << " 0\nvertex " << x << " " << y + 1 << " 0\nendloop\nendfacet\n";
  };
  facet(1e6, 1e6);
  for (int i = 0; i < 60000; ++i) facet(2.0 * (i % 250), 2.0 * (i / 250));
  text << "endsolid\n";
  EXPECT_EQ(60001u, importText("s.stl", text.str()).report.sourcePolygons);
}

}  // namespace
}  // namespace Lumivane::Test
