// Damaged files: each ends in one clear line, and nothing is spilled on standard error.

#include "importers/ImportedRegions.h"

#include <random>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Importers::Importer;

const char* const Models[] = {"cube.obj",    "tetrahedron.stl", "tetrahedron-binary.stl",
                              "pyramid.ply", "pyramid-big.ply", "pyramid-little.ply",
                              "boxes.gltf",  "boxes.glb",       "house.city.json"};

std::string endingOf(const std::string& name) {
  return name == "house.city.json" ? ".city.json" : name.substr(name.rfind('.'));
}

// Imports the bytes; an error must be one line with the file's name and a cause.
void importOrFail(const TempFolder& folder, const std::string& ending, const std::string& bytes) {
  const std::string path = folder.file("damaged" + ending, bytes);
  try {
    const Importers::ImportedScene imported = Importer::importFile(path);
    ASSERT_GT(imported.report.regions, 0u);
  } catch (const Session::Error& error) {
    const std::string text = error.what();
    ASSERT_EQ(path, error.subject());
    ASSERT_FALSE(error.cause().empty());
    ASSERT_LT(error.cause().size(), 300u);
    ASSERT_EQ(std::string::npos, text.find_first_of("\r\n"));
  }
}

class ImporterDamage : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    bytes = fileBytes(modelPath(GetParam()));
    ending = endingOf(GetParam());
    testing::internal::CaptureStderr();
  }
  void TearDown() override { EXPECT_EQ("", testing::internal::GetCapturedStderr()); }

  TempFolder folder;
  std::string bytes;
  std::string ending;
};

TEST_P(ImporterDamage, AnyTruncationEndsInOneLineOrAScene) {
  for (size_t length = 0; length < bytes.size(); length += 1 + bytes.size() / 400)
    ASSERT_NO_FATAL_FAILURE(importOrFail(folder, ending, bytes.substr(0, length)))
        << "length " << length;
}

TEST_P(ImporterDamage, AnyChangedByteEndsInOneLineOrAScene) {
  std::mt19937_64 random(20240613);
  for (int i = 0; i < 500; ++i) {
    std::string changed = bytes;
    const size_t count = 1 + random() % 3;
    for (size_t k = 0; k < count; ++k)
      changed[random() % changed.size()] = static_cast<char>(random() % 256);
    ASSERT_NO_FATAL_FAILURE(importOrFail(folder, ending, changed)) << "case " << i;
  }
}

TEST_P(ImporterDamage, AnyChangedNumberEndsInOneLineOrAScene) {
  static const char* const values[] = {"-1",         "0",          "7",
                                       "999999",     "4294967295", "1e999",
                                       "nan",        "-inf",       "99999999999999999999",
                                       "0.5",        "null",       "\"\"",
                                       "[]",         "1e300",      "{}",
                                       "2147483647", "true"};
  std::mt19937_64 random(20240614);
  for (int i = 0; i < 500; ++i) {
    const size_t from = bytes.find_first_of("0123456789", random() % bytes.size());
    if (from == std::string::npos) continue;
    size_t to = bytes.find_first_not_of("0123456789.-", from);
    if (to == std::string::npos) to = bytes.size();
    const std::string changed =
        bytes.substr(0, from) + values[random() % std::size(values)] + bytes.substr(to);
    ASSERT_NO_FATAL_FAILURE(importOrFail(folder, ending, changed)) << "case " << i;
  }
}

TEST_P(ImporterDamage, LostOrDoubledPiecesEndInOneLineOrAScene) {
  std::mt19937_64 random(20240615);
  for (int i = 0; i < 300; ++i) {
    const size_t from = random() % bytes.size();
    const size_t count = 1 + random() % 60;
    std::string changed = bytes;
    if (i % 2 == 0)
      changed.erase(from, count);
    else
      changed.insert(random() % bytes.size(), bytes.substr(from, count));
    ASSERT_NO_FATAL_FAILURE(importOrFail(folder, ending, changed)) << "case " << i;
  }
}

TEST_P(ImporterDamage, JunkEndsInOneLine) {
  std::mt19937_64 random(20240616);
  for (int i = 0; i < 60; ++i) {
    std::string junk(random() % 600, '\0');
    for (char& c : junk) c = static_cast<char>(random() % 256);
    if (i % 3 == 0) junk.insert(0, bytes, 0, random() % 100);
    ASSERT_NO_FATAL_FAILURE(importOrFail(folder, ending, junk)) << "case " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Models, ImporterDamage, testing::ValuesIn(Models),
                         [](const testing::TestParamInfo<const char*>& model) {
                           std::string name = model.param;
                           for (char& c : name)
                             if (c == '.' || c == '-') c = 'X';
                           return name;
                         });

TEST(ImporterErrors, ObjFaultsNameTheirLine) {
  const std::string vertices = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
  EXPECT_EQ("line 4: face refers to vertex 4, but there are 3",
            importFault("a.obj", vertices + "f 1 2 4\n"));
  EXPECT_EQ("line 4: face refers to vertex 0, but there are 3",
            importFault("a.obj", vertices + "f 0 1 2\n"));
  EXPECT_EQ("line 4: face refers to vertex -4, but there are 3",
            importFault("a.obj", vertices + "f -4 1 2\n"));
  EXPECT_EQ("line 4: face refers to normal 1, but there are 0",
            importFault("a.obj", vertices + "f 1//1 2//1 3//1\n"));
  EXPECT_EQ("line 4: a face has fewer than 3 corners", importFault("a.obj", vertices + "f 1 2\n"));
  EXPECT_EQ("line 1: vertex coordinate \"nan\" is not a finite number",
            importFault("a.obj", "v 0 nan 0\n"));
  EXPECT_EQ("line 1: \"hello\" is not an OBJ statement", importFault("a.obj", "hello\n"));
  EXPECT_EQ("there is no polygon in it", importFault("a.obj", vertices));
  EXPECT_EQ("it is empty", importFault("a.obj", ""));
}

TEST(ImporterErrors, MissingMaterialsAreReportedAndDoNoHarm) {
  const Importers::ImportedScene imported =
      importText("a.obj", "mtllib gone.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl red\nf 1 2 3\n");
  EXPECT_EQ((std::vector<std::string>{"material library \"gone.mtl\" cannot be read",
                                      "material \"red\" is in no material library"}),
            imported.report.warnings);
}

TEST(ImporterErrors, StlFaultsAreClear) {
  EXPECT_EQ("it is too short for an STL file", importFault("a.stl", "no mesh"));
  EXPECT_EQ("it declares 808464432 facets, but the file has 100 bytes",
            importFault("a.stl", std::string(100, '0')));
  EXPECT_EQ("line 2: \"vertex\" where \"facet\" or \"endsolid\" is due",
            importFault("a.stl", "solid a\nvertex 0 0 0\n"));
  EXPECT_EQ("line 1: the file ends before \"endsolid\"", importFault("a.stl", "solid a\n"));
}

TEST(ImporterErrors, PlyFaultsAreClear) {
  const std::string text = fileBytes(modelPath("pyramid.ply"));
  const auto changed = [&text](const std::string& from, const std::string& to) {
    std::string result = text;
    result.replace(result.find(from), from.size(), to);
    return importFault("a.ply", result);
  };
  EXPECT_EQ("face 1: refers to vertex 9, but there are 5", changed("4 0 3 2 1", "4 0 3 2 9"));
  EXPECT_EQ("the file ends too early", changed("element face 5", "element face 6"));
  EXPECT_EQ("\"nan\" is not a finite number", changed("1 1 1.5", "1 nan 1.5"));
  EXPECT_EQ("header: the vertices have no x, y and z",
            changed("property float z", "property float w"));
  EXPECT_EQ("it does not start with \"ply\"", importFault("a.ply", "obj"));
}

TEST(ImporterErrors, GltfFaultsAreClear) {
  const std::string text = fileBytes(modelPath("boxes.gltf"));
  const auto changed = [&text](const std::string& from, const std::string& to) {
    std::string result = text;
    result.replace(result.find(from), from.size(), to);
    return importFault("a.gltf", result);
  };
  EXPECT_EQ("nodes 0, mesh: 7 is none of the 2 meshes", changed("\"mesh\": 0", "\"mesh\": 7"));
  EXPECT_EQ("bufferViews 0: goes beyond its buffer",
            changed("\"byteLength\": 96", "\"byteLength\": 960"));
  EXPECT_EQ("accessors 0: goes beyond its buffer view", changed("\"count\": 8", "\"count\": 9"));
  EXPECT_EQ("it is not glTF 2.0", changed("\"2.0\"", "\"1.0\""));
  EXPECT_EQ("nodes 1: child 1 has another parent already",
            changed("\"name\": \"annex\",", "\"name\": \"annex\", \"children\": [1],"));
  EXPECT_EQ("it needs the extension \"KHR_draco_mesh_compression\", which is not read",
            changed("\"scene\": 0,",
                    "\"scene\": 0, \"extensionsRequired\": [\"KHR_draco_mesh_compression\"],"));
}

TEST(ImporterErrors, MissingTexturesOfAGltfDoNoHarm) {
  std::string text = fileBytes(modelPath("boxes.gltf"));
  const std::string before = "\"baseColorFactor\": [\n     1,";
  ASSERT_NE(std::string::npos, text.find(before));
  text.replace(text.find(before), before.size(), "\"baseColorTexture\": {\"index\": 0}, " + before);
  const std::string scene = "\"scene\": 0,";
  text.replace(text.find(scene), scene.size(),
               scene + R"("textures":[{"source":0}],"images":[{"uri":"gone.png"}],)");
  testing::internal::CaptureStderr();
  EXPECT_EQ("", importFault("a.gltf", text));
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST(ImporterErrors, CityJsonFaultsNameTheObject) {
  const auto fault = [](const std::string& object, const std::string& vertices = "[0,0,0]") {
    return importFault("a.city.json", R"({"type":"CityJSON","version":"2.0","CityObjects":{"b":)" +
                                          object + R"(},"vertices":[)" + vertices + "]}");
  };
  const auto surface = [](const std::string& boundaries) {
    return R"({"type":"Building","geometry":[{"type":"MultiSurface","lod":"1","boundaries":)" +
           boundaries + "}]}";
  };
  EXPECT_EQ("city object \"b\": a point number 3 is not among the 1",
            fault(surface("[[[0,0,3]]]")));
  EXPECT_EQ("city object \"b\": an outline of a surface has fewer than 3 points",
            fault(surface("[[[0,0]]]")));
  EXPECT_EQ("city object \"b\": its boundaries are nested deeper than its type asks for",
            fault(surface("[[[[0,0,0],[0,0,0],[0,0,0]]]]")));
  EXPECT_EQ("a coordinate of vertex 0 is not a finite number",
            fault(surface("[[[0,0,0]]]"), "[0,\"x\",0]"));
  EXPECT_EQ("all its polygons lie in one point", fault(surface("[[[0,0,0]]]")));
  EXPECT_EQ("not JSON: damaged at byte 5 of 4", importFault("a.city.json", "{\"a\""));
  EXPECT_EQ("its version is \"3.0\"; 1.0, 1.1 and 2.0 are read",
            importFault("a.city.json", R"({"type":"CityJSON","version":"3.0"})"));
}

// Trees are copied within the readers, level by level.
TEST(ImporterErrors, DepthOfADocumentIsBounded) {
  const auto nested = [](size_t depth) {
    return std::string(depth, '[') + "\"[[\\\"[\"" + std::string(depth, ']');
  };
  for (const std::string name : {"a.city.json", "a.gltf"}) {
    const std::string tooDeep = R"({"asset":0,"extras":)" + nested(1000000) + R"(,"type":0})";
    EXPECT_EQ("its lists and objects lie deeper than 500 levels within each other",
              importFault(name, tooDeep));
    const std::string deep = R"({"asset":0,"extras":)" + nested(499) + R"(,"type":0})";
    EXPECT_EQ(std::string::npos, importFault(name, deep).find("deeper"));
    EXPECT_NE("", importFault(name, deep));
  }
}

TEST(ImporterErrors, UnknownAndUnreadableFilesAreNamed) {
  EXPECT_EQ(
      "\".abc\" is not a known kind of file; these are: .obj, .stl, .ply, .gltf, "
      ".glb, .city.json, .cityjson, .city.jsonl",
      importFault("a.abc", "text"));
  try {
    Importer::importFile("/there/is/none.obj");
    FAIL() << "nothing thrown";
  } catch (const Session::Error& error) {
    EXPECT_EQ("/there/is/none.obj", error.subject());
  }
}

}  // namespace
}  // namespace Lumivane::Test
