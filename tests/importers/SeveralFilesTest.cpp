// Several files as one scene: tiles of a city, and files of different formats.

#include "importers/ImportedRegions.h"
#include "support/TempFolder.h"

#include <lumivane/importers/Importer.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Importers {
namespace {

using Lumivane::Test::TempFolder;

const std::string West = LUMIVANE_MODELS "/tile-west.city.json";
const std::string East = LUMIVANE_MODELS "/tile-east.city.jsonl";

std::vector<std::string> idsOf(const ImportedScene& imported) {
  std::vector<std::string> ids;
  for (const Scene::Object* const object : *imported.scene.scene().getObjects()->getObjects())
    ids.push_back(object->getId());
  std::sort(ids.begin(), ids.end());
  return ids;
}

bool hasNote(const ImportReport& report, const std::string& note) {
  return std::count(report.warnings.begin(), report.warnings.end(), note) == 1;
}

// A city model of one square with the corner (x, 0, 0), of its own name and reference system.
std::string squareTile(int x, const std::string& id, const std::string& system,
                       const std::string& more = "") {
  const std::string low = std::to_string(x);
  const std::string high = std::to_string(x + 2);
  const std::string metadata =
      system.empty() ? "" : R"("metadata":{"referenceSystem":")" + system + "\"},";
  return R"({"type":"CityJSON","version":"2.0",)" + metadata + R"("CityObjects":{")" + id +
         R"(":{"type":"BuildingPart","geometry":[{"type":"MultiSurface","lod":"1",)" +
         R"("boundaries":[[[0,1,2,3]]]}])" + more + R"(}},"vertices":[[)" + low + ",0,0],[" + high +
         ",0,0],[" + high + ",2,0],[" + low + ",2,0]]}";
}

class SeveralFiles : public ::testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) {
    Session::writeFile(folder.path(name), text);
    return folder.path(name);
  }
  std::string fault(const std::vector<std::string>& files) {
    try {
      Importer::importFiles(files);
    } catch (const Session::Error& error) {
      return error.what();
    }
    return "";
  }

  const TempFolder folder;
};

TEST_F(SeveralFiles, AreMovedByOneShift) {
  const ImportedScene both = Importer::importFiles({West, East});
  EXPECT_EQ((std::array<double, 3>{-84620, -447410, 0}), both.report.shift);
  EXPECT_EQ((std::array<double, 3>{-20, -10, 0}), both.report.lower);
  EXPECT_EQ((std::array<double, 3>{20, 10, 18}), both.report.upper);
  EXPECT_EQ((std::vector<std::string>{West, East}), both.report.files);
  EXPECT_EQ("CityJSON 2.0 + CityJSON 2.0 sequence", both.report.format);
  EXPECT_EQ("https://www.opengis.net/def/crs/EPSG/0/7415", both.report.referenceSystem);
  EXPECT_EQ(14U, both.report.sourcePolygons);
  EXPECT_EQ((std::vector<std::string>{"Ground", "LandUse", "Roof", "Wall"}), [&] {
    std::vector<std::string> names = both.scene.classes().names;
    std::sort(names.begin(), names.end());
    return names;
  }());
}

TEST_F(SeveralFiles, CenterIsThatOfAll) {
  ImportOptions options;
  options.center = true;
  const ImportedScene both = Importer::importFiles({East, West}, options);
  EXPECT_EQ((std::array<double, 3>{-20, -10, 0}), both.report.lower);
  EXPECT_EQ((std::array<double, 3>{20, 10, 18}), both.report.upper);
}

TEST_F(SeveralFiles, NamesThatSeveralHaveStartWithThatOfTheirFile) {
  const ImportedScene both = Importer::importFiles({West, East});
  EXPECT_EQ((std::vector<std::string>{"hall", "tile-east.city.jsonl#ground",
                                      "tile-west.city.json#ground", "tower"}),
            idsOf(both));
  EXPECT_TRUE(hasNote(both.report,
                      "2 objects have a name that stands in several files; theirs now starts with "
                      "that of the file, as \"tile-west.city.json#ground\""));
}

bool hasFarNote(const ImportReport& report) {
  return std::any_of(report.warnings.begin(), report.warnings.end(), [](const std::string& note) {
    return note.find(": lies ") != std::string::npos;
  });
}

TEST_F(SeveralFiles, AMeshFarFromTheCityModelGetsANote) {
  const std::string tile = write("tile.city.json", squareTile(0, "roof", "EPSG:7415"));
  const std::string far = write("far.obj", "v 25 0 0\nv 27 0 0\nv 25 1 0\nf 1 2 3\n");
  const std::string near = write("near.obj", "v 21 0 0\nv 23 0 0\nv 21 1 0\nf 1 2 3\n");
  EXPECT_TRUE(hasNote(Importer::importFiles({far, tile}).report,
                      "far.obj: lies 23 from tile.city.json, more than 10 times the size of "
                      "either: if its coordinates are in another system, convert them"));
  EXPECT_FALSE(hasFarNote(Importer::importFiles({near, tile}).report));
}

TEST_F(SeveralFiles, FarFilesWithoutAnyOrWithAllSystemsGetNone) {
  const std::string tile = write("tile.city.json", squareTile(0, "roof", "EPSG:7415"));
  const std::string away = write("away.city.json", squareTile(900, "roof", "EPSG:7415"));
  const std::string far = write("far.obj", "v 25 0 0\nv 27 0 0\nv 25 1 0\nf 1 2 3\n");
  const std::string plain = write("plain.city.json", squareTile(900, "roof", ""));
  EXPECT_FALSE(hasFarNote(Importer::importFiles({tile, away}).report));
  EXPECT_FALSE(hasFarNote(Importer::importFiles({far, plain}).report));
}

TEST_F(SeveralFiles, FilesOfOneNameAreKnownByTheirFolders) {
  std::filesystem::create_directory(folder.path("a"));
  std::filesystem::create_directory(folder.path("b"));
  const std::string first = write("a/tile.city.json", squareTile(0, "roof", ""));
  const std::string second = write("b/tile.city.json", squareTile(4, "roof", ""));
  EXPECT_EQ((std::vector<std::string>{first + "#roof", second + "#roof"}),
            idsOf(Importer::importFiles({first, second})));
}

TEST_F(SeveralFiles, PartsKeepTheirWholesUnderTheNamesOfTheScene) {
  const auto tile = [](int x) {
    std::string text = squareTile(x, "part", "", R"(,"parents":["house"])");
    text.insert(text.find(R"("part")"), R"("house":{"type":"Building"},)");
    return text;
  };
  const ImportedScene both = Importer::importFiles(
      {write("a.city.json", tile(0)), write("b.city.json", tile(4)),
       write("c.city.json", squareTile(8, "c", "", R"(,"parents":["none"])"))});
  EXPECT_EQ((std::map<std::string, std::string>{{"a.city.json#part", "a.city.json#house"},
                                                {"b.city.json#part", "b.city.json#house"}}),
            both.report.wholes);
}

TEST_F(SeveralFiles, OfOneKindGiveTheSceneOfOneFile) {
  const std::string both = write("both.obj",
                                 "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 3 0 0\nv 4 0 0\nv 4 1 1\n"
                                 "o a\nf 1 2 3 4\no b\nf 5 6 7\n");
  const std::string first = write("a.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\no a\nf 1 2 3 4\n");
  const std::string second = write("b.obj", "v 3 0 0\nv 4 0 0\nv 4 1 1\no b\nf 1 2 3\n");
  EXPECT_EQ(Importer::sceneText(Importer::importFile(both).scene.scene()),
            Importer::sceneText(Importer::importFiles({first, second}).scene.scene()));
}

TEST_F(SeveralFiles, ThoseWhoseUpIsYAreTurnedToTheOthers) {
  const std::string glb = LUMIVANE_MODELS "/boxes.glb";
  const std::string flat = write("flat.obj", "v 0 0 -50\nv 1 0 -50\nv 0 1 -50\nf 1 2 3\n");
  const std::array<double, 3> alone = Importer::importFile(glb).report.upper;
  for (const std::vector<std::string>& files : {std::vector<std::string>{glb, flat}, {flat, glb}}) {
    const ImportReport report = Importer::importFiles(files).report;
    EXPECT_EQ(alone[2], report.upper[2]);
    EXPECT_EQ(-50.0, report.lower[2]);
    EXPECT_FALSE(report.turned);
  }
  // Asked for, it is done to all, and once.
  ImportOptions yUp;
  yUp.yUp = true;
  EXPECT_EQ(alone[2], Importer::importFiles({glb, flat}, yUp).report.upper[2]);
  EXPECT_EQ(50.0, Importer::importFiles({glb, flat}, yUp).report.upper[1]);
  EXPECT_TRUE(Importer::importFiles({glb, flat}, yUp).report.turned);
}

TEST_F(SeveralFiles, OneReferenceSystemHasSeveralNames) {
  const std::string plain = write("plain.city.json", squareTile(0, "a", "EPSG:7415"));
  const auto isSame = [&](const std::string& name) {
    return fault({plain, write("other.city.json", squareTile(4, "b", name))}).empty();
  };
  for (const char* same : {"urn:ogc:def:crs:EPSG::7415", "epsg:7415", "EPSG/7415",
                           "http://www.opengis.net/def/crs/EPSG/0/7415",
                           "https://www.opengis.net/def/crs/epsg/9.9/7415"})
    EXPECT_TRUE(isSame(same)) << same;
  for (const char* other :
       {"EPSG:7416", "urn:ogc:def:crs:OGC:1.3:7415", "local: 7415", "RD", "7415",
        "https://example.org/systems/EPSG/7415", "urn:ogc:def:crs:7415"})
    EXPECT_FALSE(isSame(other)) << other;
}

TEST_F(SeveralFiles, OfDifferentReferenceSystemsAreRefused) {
  const std::string a = write("a.city.json", squareTile(0, "a", "EPSG:28992"));
  const std::string b = write("b.city.json", squareTile(4, "b", "urn:ogc:def:crs:EPSG::28992"));
  const std::string c = write("c.city.json", squareTile(4, "b", "EPSG:7415"));
  EXPECT_EQ("", fault({a, b}));
  EXPECT_EQ(c + ": its coordinates are in EPSG:7415, and those of " + a +
                " in EPSG:28992: the files of one scene need one coordinate reference system",
            fault({a, b, c}));
}

TEST_F(SeveralFiles, ThatNameNoReferenceSystemLieInThatOfTheOthers) {
  const std::string a = write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
  const std::string b = write("b.city.json", squareTile(4, "b", "EPSG:7415"));
  const std::string c = write("c.city.json", squareTile(8, "c", ""));
  const ImportReport report = Importer::importFiles({a, b, c}).report;
  EXPECT_EQ("EPSG:7415", report.referenceSystem);
  EXPECT_TRUE(hasNote(report,
                      "a.obj and 1 more file: no coordinate reference system is named, and that of "
                      "b.city.json is assumed"));
  EXPECT_TRUE(Importer::importFiles({a, c}).report.warnings.empty());
}

TEST_F(SeveralFiles, MayBeEmptyTiles) {
  const std::string empty =
      write("empty.city.json", R"({"type":"CityJSON","version":"2.0","CityObjects":{},)"
                               R"("vertices":[]})");
  const std::string other =
      write("other.city.json", R"({"type":"CityJSON","version":"2.0","CityObjects":{},)"
                               R"("vertices":[]})");
  EXPECT_TRUE(hasNote(Importer::importFiles({empty, West}).report,
                      "empty.city.json: there is no polygon in it"));
  EXPECT_EQ(empty + " and 1 more file: there is no polygon in it", fault({empty, other}));
}

TEST_F(SeveralFiles, FaultsNameTheFileConcerned) {
  const std::string damaged = write("damaged.city.json", "{\"type\":\"CityJSON\"");
  EXPECT_EQ(0U, fault({West, damaged, East}).find(damaged + ": not JSON"));
  EXPECT_EQ(0U, fault({West, folder.path("missing.obj")}).find(folder.path("missing.obj") + ": "));
  EXPECT_EQ(West + ": is named twice among the files of one scene: leave it out once",
            fault({West, East, West}));
  EXPECT_EQ("import: no file is named", fault({}));
}

}  // namespace
}  // namespace Lumivane::Importers
