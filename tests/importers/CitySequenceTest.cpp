// Sequences of CityJSON (CityJSONSeq): a document in the first line, a feature in each other one.

#include "support/TempFolder.h"

#include <lumivane/importers/Importer.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>

#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Importers {
namespace {

using Lumivane::Test::TempFolder;

const std::string Transform = R"("transform":{"scale":[0.5,0.5,0.5],"translate":[10,20,0]})";
const std::string First = R"({"type":"CityJSON","version":"2.0",)" + Transform +
                          R"(,"CityObjects":{},"vertices":[],)" +
                          R"("metadata":{"referenceSystem":"EPSG/7415"}})";

std::string objectText(const std::string& id, const std::string& type) {
  return "\"" + id + R"(":{"type":")" + type +
         R"(","geometry":[{"type":"MultiSurface","lod":"1","boundaries":[[[0,1,2,3]]]}]})";
}

// A square of its own, somewhere.
std::string squareText(int x) {
  const std::string low = std::to_string(x);
  const std::string high = std::to_string(x + 4);
  return "[[" + low + ",0,0],[" + high + ",0,0],[" + high + ",4,0],[" + low + ",4,0]]";
}

std::string feature(const std::string& id, int x, const std::string& type = "Building") {
  return R"({"type":"CityJSONFeature","id":")" + id + R"(","CityObjects":{)" +
         objectText(id, type) + R"(},"vertices":)" + squareText(x) + "}";
}

class CitySequence : public ::testing::Test {
 protected:
  ImportedScene import(const std::string& text, const std::string& name = "town.city.jsonl") {
    Session::writeFile(folder.path(name), text);
    return Importer::importFile(folder.path(name));
  }
  std::string fault(const std::string& text) {
    try {
      import(text);
    } catch (const Session::Error& error) {
      return error.cause();
    }
    return "";
  }

  const TempFolder folder;
};

TEST_F(CitySequence, GivesTheSceneOfTheWholeDocument) {
  const std::string whole =
      R"({"type":"CityJSON","version":"2.0",)" + Transform +
      R"(,"metadata":{"referenceSystem":"EPSG/7415"},"CityObjects":{)" +
      objectText("a", "Building") + "," +
      R"("b":{"type":"Road","geometry":[{"type":"MultiSurface","lod":"1","boundaries":[[[4,5,6,7]]]}]}})" +
      R"(,"vertices":[[0,0,0],[4,0,0],[4,4,0],[0,4,0],[8,0,0],[12,0,0],[12,4,0],[8,4,0]]})";
  const ImportedScene one = import(whole, "town.city.json");
  const ImportedScene many =
      import(First + "\n" + feature("a", 0) + "\r\n\n" + feature("b", 8, "Road") + "\n");
  EXPECT_EQ(Importer::sceneText(one.scene.scene()), Importer::sceneText(many.scene.scene()));
  EXPECT_EQ(one.scene.classes().names, many.scene.classes().names);
  EXPECT_EQ(one.report.shift, many.report.shift);
  EXPECT_EQ("CityJSON 2.0 sequence", many.report.format);
  EXPECT_EQ("EPSG/7415", many.report.referenceSystem);
}

TEST_F(CitySequence, TakesObjectsOfItsFirstLineAndPartsOfAFeature) {
  const std::string first = R"({"type":"CityJSON","version":"1.1",)" + Transform +
                            R"(,"CityObjects":{)" + objectText("ground", "LandUse") +
                            R"(},"vertices":)" + squareText(0) + "}";
  const std::string house =
      R"({"type":"CityJSONFeature","id":"h","CityObjects":{"h":{"type":"Building"},)"
      R"("h1":{"type":"BuildingPart","parents":["h"],"geometry":[{"type":"MultiSurface",)"
      R"("lod":"1","boundaries":[[[0,1,2,3]]]}]}},"vertices":)" +
      squareText(8) + "}";
  const ImportedScene scene = import(first + "\n" + house);
  EXPECT_EQ(2U, scene.report.regions);
  EXPECT_EQ("h", scene.report.wholes.at("h1"));
}

TEST_F(CitySequence, CountsWhatIsLeftOutOverAllLines) {
  std::string text = First;
  for (int i = 0; i < 3; ++i) {
    const std::string id = "p" + std::to_string(i);
    text +=
        "\n"
        R"({"type":"CityJSONFeature","id":")" +
        id + R"(","CityObjects":{")" + id +
        R"(":{"type":"Building","geometry":[{"type":"MultiPoint","lod":"0","boundaries":[0]}]}},)" +
        R"("vertices":[[0,0,0]]})";
  }
  const ImportedScene scene = import(text + "\n" + feature("a", 0));
  ASSERT_FALSE(scene.report.warnings.empty());
  EXPECT_EQ("3 geometries of points or lines are left out", scene.report.warnings.front());
}

TEST_F(CitySequence, FaultsNameTheirLine) {
  EXPECT_EQ("it is empty", fault("\n \n"));
  EXPECT_EQ("line 1: is a CityJSONFeature, and the first line is to be of the type CityJSON",
            fault(feature("a", 0) + "\n"));
  EXPECT_EQ("line 3: its \"type\" is not \"CityJSONFeature\"",
            fault(First + "\n" + feature("a", 0) + "\n" + First));
  EXPECT_EQ("line 2: it has no \"vertices\"", fault(First + R"(
{"type":"CityJSONFeature","id":"a","CityObjects":{}})"));
  EXPECT_EQ("line 3: city object \"a\" stands in line 2 as well",
            fault(First + "\n" + feature("a", 0) + "\n" + feature("a", 8)));
  EXPECT_EQ(0U, fault(First + "\n" + feature("a", 0) + "\n{\"type\":").find("line 3: not JSON"));
  std::string wrong = feature("b", 0);
  wrong.replace(wrong.find("[0,1,2,3]"), 9, "[0,1,2,9]");
  EXPECT_EQ(
      0U, fault(First + "\n" + feature("a", 0) + "\n" + wrong).find("line 3: city object \"b\": "));
}

TEST_F(CitySequence, IsKnownByItsEnding) {
  EXPECT_TRUE(Importer::isImportable("town.city.jsonl"));
  EXPECT_TRUE(Importer::isImportable("town.jsonl"));
  EXPECT_FALSE(Importer::isImportable("town.jsonx"));
}

}  // namespace
}  // namespace Lumivane::Importers
