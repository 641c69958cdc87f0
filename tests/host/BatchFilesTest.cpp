// What `lumivane batch` reads and writes: nothing is lost, nothing wrong is taken for right.

#include "Csv.h"
#include "host/Process.h"
#include "support/TempFolder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";
const std::string Table = "name,eye\na,\"-4,0.35,1.9\"\nb,\"-3,0.35,1.9\"\n";

Result run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

Result batch(const std::string& scene, const std::string& table, const std::string& out,
             std::vector<std::string> more = {"-o", "{name}.json"}) {
  std::vector<std::string> arguments = {"batch", scene, table, "--out-dir", out, "--jobs", "1"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return run(arguments);
}

std::string withIds(const std::string& id) {
  std::string scene = fileBytes(Small);
  for (const std::string known : {"plate", "block", "pyramid"}) {
    const std::string text = "\"Id\":\"" + known;
    scene.replace(scene.find(text), text.size(), "\"Id\":\"" + id + known);
  }
  return scene;
}

// A folder with a scene and a table, and what they hold.
struct Inputs {
  TempFolder folder;
  std::string scene = folder.file("scene.json", fileBytes(Small));
  std::string table = folder.file("views.csv", Table);
  std::string out = folder.path("out");
};

// The cell of a row under the summary's heading.
std::string cell(const std::vector<CsvRecord>& records, size_t row, const std::string& column) {
  const std::vector<std::string>& heading = records.at(0).fields;
  const auto found = std::find(heading.begin(), heading.end(), column);
  return records.at(row).fields.at(static_cast<size_t>(found - heading.begin()));
}

TEST(BatchFiles, ALineEndInAnIdForgesNoRowOfTheSummary) {
  Inputs in;
  in.folder.file("scene.json", withIds(R"(x\nb,ok,,0,0,0,1,1,1,0,0,1,0.5,0.5,forged,1\n\r\t\b\f)"));
  const Result first = batch(in.scene, in.table, in.out);
  ASSERT_EQ(0, first.status) << first.err;
  const std::string summary = fileBytes(in.out + "/summary.csv");
  const std::vector<CsvRecord> records = readCsv(summary, "summary");
  ASSERT_EQ(3U, records.size());
  EXPECT_EQ("a", records[1].fields[0]);
  EXPECT_EQ("b", records[2].fields[0]);
  EXPECT_NE("forged", cell(records, 2, "largest_object"));
  EXPECT_EQ(0U, cell(records, 2, "largest_object").find("x\nb,ok,,0,0,0,"));

  fs::remove(in.out + "/a.json");
  fs::remove(in.out + "/summary.csv");
  const Result again = batch(in.scene, in.table, in.out);
  ASSERT_EQ(0, again.status) << again.err;
  EXPECT_EQ(summary, fileBytes(in.out + "/summary.csv"));
}

TEST(BatchFiles, AnIdOfControlCharactersStaysInItsCell) {
  Inputs in;
  std::string id;
  for (int byte = 1; byte < 0x80; ++byte)
    if (byte != '"' && byte != '\\' && byte != '\n') id += static_cast<char>(byte);
  in.folder.file("scene.json", withIds(id));
  const Result first = batch(in.scene, in.table, in.out);
  ASSERT_EQ(0, first.status) << first.err;
  const std::string summary = fileBytes(in.out + "/summary.csv");
  const std::vector<CsvRecord> records = readCsv(summary, "summary");
  ASSERT_EQ(3U, records.size());
  EXPECT_EQ(0U, cell(records, 1, "largest_object").find(id));
  const Result again = batch(in.scene, in.table, in.out);
  EXPECT_EQ("2 of 2 views made: " + in.out + "/summary.csv\n", again.out);
  EXPECT_EQ(summary, fileBytes(in.out + "/summary.csv"));
}

// One id of another code page that looks like a formula, one with escapes.
TEST(BatchFiles, IdsOfAnyBytesAreShownAsTextInEveryFile) {
  Inputs in;
  in.folder.file("scene.json", withIds("=caf\xE9 \\u00e9 "));
  const std::string shown = "=caf\xEF\xBF\xBD \xC3\xA9 ";
  const std::vector<std::string> outputs = {"-o", "{name}.json", "--visible", "{name}.csv",
                                            "--csv-safe"};
  ASSERT_EQ(0, batch(in.scene, in.table, in.out, outputs).status);
  EXPECT_NE(std::string::npos, fileBytes(in.out + "/summary.csv").find(",'" + shown));
  EXPECT_NE(std::string::npos, fileBytes(in.out + "/a.csv").find("object,1,'" + shown));
  // The bytes of the shot file are those of the scene.
  EXPECT_NE(std::string::npos, fileBytes(in.out + "/a.json").find("=caf\xE9 \\\\u00e9 "));
  ASSERT_EQ(0, batch(in.scene, in.table, in.out, {"--visible", "{name}.json"}).status);
  const auto json = nlohmann::json::parse(fileBytes(in.out + "/a.json"));
  EXPECT_EQ(0U, json.at("objects").at(0).at("id").get<std::string>().find(shown));
  EXPECT_NE(std::string::npos, fileBytes(in.out + "/summary.csv").find("," + shown));
  EXPECT_EQ(std::string::npos, fileBytes(in.out + "/summary.csv").find("'="));
}

TEST(BatchFiles, MessagesAboutIdsOfAnyBytesAreText) {
  const TempFolder folder;
  std::string scene = withIds("caf\xE9\x01 \\u00e9 ");
  scene.replace(scene.find("[1,2,3,4]"), 9, "[99,2,3,4]");
  const std::string file = folder.file("scene.json", scene);
  const std::string shown = "caf\xEF\xBF\xBD";
  const Result shot = run({"shot", file, "--eye=-4,0.35,1.9", "-o", folder.path("a.json")});
  EXPECT_EQ(1, shot.status);
  EXPECT_NE(std::string::npos, shot.err.find("object \"" + shown + "  \xC3\xA9 plate\""))
      << shot.err;
  const Result check = run({"check", "--json", file});
  const auto json = nlohmann::json::parse(check.out);
  EXPECT_EQ(shown + "\xEF\xBF\xBD \xC3\xA9 plate", json.at("findings").at(0).at("object"));
}

TEST(BatchFiles, AFileThatWasCutToZeroIsMadeAgain) {
  Inputs in;
  ASSERT_EQ(0, batch(in.scene, in.table, in.out).status);
  const std::string shot = fileBytes(in.out + "/b.json");
  in.folder.file("out/b.json", "");
  const Result again = batch(in.scene, in.table, in.out);
  EXPECT_EQ(0, again.status) << again.err;
  EXPECT_EQ(
      "1 of 2 views are made again: their outputs are gone or not as they were written\n"
      "2 of 2 views made: " +
          in.out + "/summary.csv\n",
      again.out);
  EXPECT_TRUE(shot == fileBytes(in.out + "/b.json"));
}

TEST(BatchFiles, PicturesOfAnotherTableAreMadeAgain) {
  Inputs in;
  const std::string other =
      in.folder.file("other.csv", "name,eye\na,\"-3.5,0.35,1.9\"\nc,\"-3,0.35,1.9\"\n");
  ASSERT_EQ(0, batch(in.scene, in.table, in.out).status);
  const std::string shot = fileBytes(in.out + "/a.json");
  // As a run that is ended before it puts its parts together: the first journal stays.
  ASSERT_EQ(0, batch(in.scene, other, in.out, {"-o", "{name}.json", "--shard", "1/2"}).status);
  EXPECT_TRUE(shot != fileBytes(in.out + "/a.json"));
  const Result again = batch(in.scene, in.table, in.out);
  EXPECT_EQ(0, again.status) << again.err;
  EXPECT_EQ(0U, again.out.find("1 of 2 views are made again: their outputs are gone or not"))
      << again.out;
  EXPECT_TRUE(shot == fileBytes(in.out + "/a.json"));
}

TEST(BatchFiles, ASceneThatChangedIsMadeAgainAndTheReasonIsPrinted) {
  Inputs in;
  ASSERT_EQ(0, batch(in.scene, in.table, in.out).status);
  in.folder.file("scene.json", withIds("other"));
  const Result again = batch(in.scene, in.table, in.out);
  EXPECT_EQ(0U, again.out.find("2 of 2 views are made again: the scene, a file that it names, or "
                               "the program's version has changed\n"))
      << again.out;
  const Result options = batch(in.scene, in.table, in.out, {"-o", "{name}.json", "--d1", "0.5"});
  EXPECT_EQ(0U, options.out.find("2 of 2 views are made again: they were made with other options "
                                 "(--output={name}.json), not with these (--eye-clearance=0.5 "
                                 "--output={name}.json)\n"))
      << options.out;
}

#ifdef LUMIVANE_HOST_TOOLS
TEST(BatchFiles, AMaterialThatChangedIsMadeAgain) {
  const TempFolder folder;
  const std::string scene = folder.file("cube.obj", fileBytes(LUMIVANE_MODELS "/cube.obj"));
  const std::string colours = fileBytes(LUMIVANE_MODELS "/cube.mtl");
  folder.file("cube.mtl", colours);
  const std::string table = folder.file("views.csv", "name,eye\na,\"-9,0,1\"\n");
  const std::string out = folder.path("out");
  ASSERT_EQ(0, batch(scene, table, out).status);
  const std::string shot = fileBytes(out + "/a.json");
  std::string changed = colours;
  const size_t at = changed.find("Kd ");
  changed.replace(at, changed.find('\n', at) - at, "Kd 0.1 0.2 0.3");
  folder.file("cube.mtl", changed);
  const Result again = batch(scene, table, out);
  EXPECT_EQ(0U, again.out.find("1 of 1 views are made again: the scene, a file")) << again.out;
  EXPECT_TRUE(shot != fileBytes(out + "/a.json"));
}

TEST(BatchFiles, AMaterialOrABufferIsNeverAnOutput) {
  const TempFolder folder;
  const std::string obj =
      folder.file("m.obj", "mtllib \\\nm.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
  const std::string colours = folder.file("m.mtl", "newmtl a\nKd 1 0 0\n");
  const std::string table = folder.file("v.csv", "name,eye\na,\"0,0,9\"\n");
  const Result result = batch(obj, table, folder.path(""), {"-o", "m.mtl"});
  EXPECT_EQ(2, result.status) << result.err;
  EXPECT_NE(std::string::npos,
            result.err.find("m.mtl: is an input, and view \"a\" would overwrite it"))
      << result.err;
  EXPECT_EQ("newmtl a\nKd 1 0 0\n", fileBytes(colours));
  EXPECT_FALSE(fs::exists(folder.path("parts")));

  for (const std::string option : {"-o", "--stats"}) {
    std::vector<std::string> arguments = {"import", obj, option, folder.path("./m.mtl")};
    if (option != "-o") arguments.insert(arguments.end(), {"-o", folder.path("scene.json")});
    EXPECT_EQ(2, run(arguments).status);
    EXPECT_EQ("newmtl a\nKd 1 0 0\n", fileBytes(colours));
  }
  EXPECT_EQ(2, run({"shot", obj, "--eye=0,0,9", "-o", colours}).status);
  EXPECT_EQ("newmtl a\nKd 1 0 0\n", fileBytes(colours));

  const std::string gltf = folder.file(
      "g.gltf", R"({"asset":{"version":"2.0"},"buffers":[{"uri":"a%20b.bin","byteLength":4}]})");
  const std::string buffer = folder.file("a b.bin", "data");
  EXPECT_EQ(2, run({"import", gltf, "-o", buffer}).status);
  EXPECT_EQ(2, batch(gltf, table, folder.path(""), {"-o", "a b.bin"}).status);
  EXPECT_EQ("data", fileBytes(buffer));
}
#endif

TEST(BatchFiles, AnInputIsNeverAnOutputWhateverItsName) {
  Inputs in;
  const std::string here = in.folder.path("");
  fs::create_symlink("scene.json", in.folder.path("link.json"));
  fs::create_hard_link(in.table, in.folder.path("hard.csv"));
  fs::create_directory_symlink(".", in.folder.path("here"));
  for (const std::string cell :
       {"scene.json", "./scene.json", "x/../scene.json", "link.json", "here/scene.json",
        "views.csv", "hard.csv", "here/here/views.csv"}) {
    in.folder.file("views.csv", "name,eye,output\na,\"-4,0.35,1.9\"," + cell + "\n");
    const std::string before = fileBytes(in.table);
    const Result result = batch(in.scene, in.table, here, {});
    EXPECT_EQ(2, result.status) << cell << result.err;
    EXPECT_NE(std::string::npos,
              result.err.find(": is an input, and view \"a\" would overwrite it"))
        << result.err;
    EXPECT_TRUE(fileBytes(Small) == fileBytes(in.scene)) << cell;
    EXPECT_EQ(before, fileBytes(in.table)) << cell;
    EXPECT_FALSE(fs::exists(in.folder.path("summary.csv"))) << cell;
  }
}

TEST(BatchFiles, InputsUnderTheNamesOfTheRunsOwnFilesAreRefused) {
  for (const std::string name : {"summary.csv", "journal.csv", "parts/1-of-1.csv"}) {
    const TempFolder folder;
    fs::create_directory(folder.path("parts"));
    const std::string table = folder.file(name, Table);
    const Result asTable = batch(Small, table, folder.path(""));
    EXPECT_EQ(2, asTable.status) << asTable.err;
    EXPECT_EQ(Table, fileBytes(table));
    const std::string scene = folder.file(name, fileBytes(Small));
    const Result asScene = batch(scene, folder.file("views.csv", Table), folder.path("."));
    EXPECT_EQ(2, asScene.status) << asScene.err;
    EXPECT_TRUE(fileBytes(Small) == fileBytes(scene));
    EXPECT_FALSE(fs::exists(folder.path("a.json")));
  }
}

TEST(BatchFiles, TwoViewsDoNotWriteOneFileThroughALink) {
  Inputs in;
  fs::create_directories(in.out + "/one");
  fs::create_directory_symlink("one", in.out + "/two");
  in.folder.file("views.csv",
                 "name,eye,output\na,\"-4,0.35,1.9\",one/x.json\nb,\"-3,0.35,1.9\",two/x.json\n");
  const Result result = batch(in.scene, in.table, in.out, {});
  EXPECT_EQ(2, result.status);
  EXPECT_NE(std::string::npos,
            result.err.find("two/x.json: is written by view \"b\" and by view \"a\""))
      << result.err;
  EXPECT_TRUE(fs::is_empty(in.out + "/one"));
}

// The summary took the place of the shot, and the shot that of the journal, with status 0.
TEST(Regression, AnOutputThatLedToTheRunsOwnFilesWasLost) {
  for (const std::string target :
       {"summary.csv", "journal.csv", "parts/1-of-1.csv", "here/summary.csv"}) {
    Inputs in;
    fs::create_directories(in.out);
    fs::create_directory_symlink(".", in.out + "/here");
    fs::create_symlink(target, in.out + "/a.json");
    const Result result = batch(in.scene, in.table, in.out);
    EXPECT_EQ(2, result.status) << target << result.err;
    EXPECT_EQ("lumivane: " + in.out +
                  "/a.json: leads to a file that the run writes itself: remove the link\n",
              result.err);
    EXPECT_FALSE(fs::exists(in.out + "/b.json"));
  }
  Inputs in;
  fs::create_directories(in.out);
  fs::create_symlink("summary.csv", in.out + "/journal.csv");
  EXPECT_EQ(2, batch(in.scene, in.table, in.out).status);
}

TEST(BatchFiles, MergeWithOtherOptionsSaysSo) {
  Inputs in;
  for (const std::string shard : {"1/3", "2/3"})
    ASSERT_EQ(0, batch(in.scene, in.table, in.out, {"-o", "{name}.json", "--shard", shard}).status);
  fs::remove(in.out + "/summary.csv");
  const Result other = batch(in.scene, in.table, in.out, {"--merge"});
  EXPECT_EQ(1, other.status);
  EXPECT_EQ("lumivane: " + in.out +
                ": 2 of 2 views cannot be merged: they were made with other options "
                "(--output={name}.json), not with these (none)\n",
            other.err);
  const Result same = batch(in.scene, in.table, in.out, {"-o", "{name}.json", "--merge"});
  EXPECT_EQ(0, same.status) << same.err;
}

TEST(BatchFiles, AMergeAsksForOutputsThatAreGone) {
  Inputs in;
  for (const std::string shard : {"1/3", "2/3"})
    ASSERT_EQ(0, batch(in.scene, in.table, in.out, {"-o", "{name}.json", "--shard", shard}).status);
  fs::remove(in.out + "/a.json");
  const Result merge = batch(in.scene, in.table, in.out, {"-o", "{name}.json", "--merge"});
  EXPECT_EQ(1, merge.status);
  EXPECT_NE(std::string::npos, merge.err.find("1 of 2 views cannot be merged: their outputs are "
                                              "gone or not as they were written"))
      << merge.err;
}

TEST(BatchFiles, APartsFolderThatIsALinkOutOfTheFolderIsNotCleaned) {
  Inputs in;
  fs::create_directories(in.out);
  const fs::path precious = fs::path(in.folder.path("elsewhere")) / "work-1-of-1-0";
  fs::create_directories(precious);
  std::ofstream(precious / "thesis.txt") << "years";
  std::ofstream(precious.parent_path() / "1-of-1.csv") << "a table without a line end";
  fs::create_directory_symlink("../elsewhere", in.out + "/parts");
  const Result result = batch(in.scene, in.table, in.out);
  EXPECT_EQ(2, result.status);
  EXPECT_NE(std::string::npos, result.err.find("out/parts: is a link that leads out of the folder"))
      << result.err;
  EXPECT_EQ("years", fileBytes((precious / "thesis.txt").string()));
  EXPECT_EQ("a table without a line end", fileBytes(in.folder.path("elsewhere/1-of-1.csv")));
}

TEST(BatchFiles, AWorkFolderOrPartThatIsALinkIsNotFollowed) {
  Inputs in;
  fs::create_directories(in.out + "/parts");
  fs::create_directories(in.folder.path("elsewhere"));
  in.folder.file("elsewhere/log_sort.txt", "precious");
  in.folder.file("part.csv", "a table without a line end");
  fs::create_directory_symlink("../../elsewhere", in.out + "/parts/work-1-of-1-0");
  ASSERT_EQ(0, batch(in.scene, in.table, in.out).status);
  EXPECT_EQ("precious", fileBytes(in.folder.path("elsewhere/log_sort.txt")));

  fs::create_directories(in.out + "/parts");
  fs::create_symlink("../../part.csv", in.out + "/parts/1-of-1.csv");
  EXPECT_EQ(1, batch(in.scene, in.table, in.out).status);
  EXPECT_EQ("a table without a line end", fileBytes(in.folder.path("part.csv")));
}

TEST(BatchFiles, ADanglingLinkStaysALink) {
  Inputs in;
  fs::create_directories(in.out);
  fs::create_symlink("../real.json", in.out + "/a.json");
  const Result result = batch(in.scene, in.table, in.out);
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_TRUE(fs::is_symlink(in.out + "/a.json"));
  EXPECT_EQ(fileBytes(in.out + "/a.json"), fileBytes(in.folder.path("real.json")));
}

}  // namespace
}  // namespace Lumivane::Host
