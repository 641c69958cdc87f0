// `lumivane batch`, run as a process.

#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::Environment;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";
const std::string Failure =
    "name,eye,forward,up\n"
    "good,\"-4,0.35,1.9\",,\n"
    "flat,\"-4,0.35,1.9\",\"0,0,0\",\n"
    "other,\"-3,0.35,1.9\",,\n";

Result run(std::vector<std::string> arguments, bool errorIsTerminal = false) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}}, errorIsTerminal);
}

void write(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

// A table of views of the small scene, from around it.
std::string manyViews(int count) {
  std::string text = "name,eye,forward\n";
  for (int i = 0; i < count; ++i)
    text += "v" + std::to_string(i) + ",\"" + std::to_string(-4 + 0.1 * i) + ",0.35," +
            std::to_string(1.9 + 0.05 * i) + "\",\"1,0.1,-0." + std::to_string(i % 10) + "\"\n";
  return text;
}

std::vector<std::string> batch(const TempFolder& folder, const std::string& out,
                               std::vector<std::string> more = {}) {
  std::vector<std::string> arguments = {"batch", Small, folder.path("views.csv"), "--out-dir",
                                        folder.path(out)};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

std::map<std::string, std::string> filesOf(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file())
      files[fs::relative(entry.path(), folder).string()] = fileBytes(entry.path().string());
  return files;
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

const std::vector<std::string> Outputs = {"--output", "shots/{name}.json"};

std::vector<std::string> with(std::vector<std::string> options,
                              const std::vector<std::string>& more) {
  options.insert(options.end(), more.begin(), more.end());
  return options;
}

TEST(BatchProgram, EachViewGivesItsOutputsAndARow) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(3));
  const Result result = run(batch(folder, "out", Outputs));
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ("", result.err);
  EXPECT_EQ("3 of 3 views made: " + folder.path("out/summary.csv") + "\n", result.out);
  const auto files = filesOf(folder.path("out"));
  EXPECT_EQ(5U, files.size());
  const std::vector<std::string> rows = lines(files.at("summary.csv"));
  ASSERT_EQ(4U, rows.size());
  EXPECT_EQ(0U, rows[0].find("name,status,error,eye_x,eye_y,eye_z,points,regions,"));
  EXPECT_EQ(0U, rows[2].find("v1,ok,,-3.9,0.35,1.95,"));
}

TEST(BatchProgram, AShotOfABatchIsThatOfTheShotCommand) {
  const TempFolder folder;
  write(folder.path("views.csv"), "eye,camera,max_length\n\"-4,0.35,1.9\",normal,0.05\n");
  ASSERT_EQ(0, run(batch(folder, "out", Outputs)).status);
  ASSERT_EQ(0, run({"shot", Small, "--eye=-4,0.35,1.9", "--camera", "normal", "--max-length",
                    "0.05", "-o", folder.path("shot.json")})
                   .status);
  EXPECT_EQ(fileBytes(folder.path("shot.json")), fileBytes(folder.path("out/shots/view1.json")));
}

#ifdef LUMIVANE_HOST_TOOLS
// Objects and faces of a model are listed by their distance from the eye, which decides where faces
// overlap in a cycle.
TEST(BatchProgram, AShotOfAModelIsThatOfTheShotCommandForEveryEye) {
  const TempFolder folder;
  const std::string house = LUMIVANE_MODELS "/house.city.json";
  const std::vector<std::pair<std::string, std::string>> views = {
      {"-20,-21,7", "1,1,-0.2"}, {"22,20,7", "-1,-1,-0.2"}, {"0.3,-20.1,9", "0,1,-0.3"}};
  std::string table = "name,eye,forward\n";
  for (size_t i = 0; i < views.size(); ++i)
    table += std::to_string(i) + ",\"" + views[i].first + "\",\"" + views[i].second + "\"\n";
  write(folder.path("views.csv"), table);
  for (const std::string jobs : {"1", "2"})
    ASSERT_EQ(0, run({"batch", house, folder.path("views.csv"), "--out-dir", folder.path(jobs),
                      "--jobs", jobs, "-o", "{name}.json"})
                     .status);
  for (size_t i = 0; i < views.size(); ++i) {
    const std::string shot = folder.path("shot.json");
    ASSERT_EQ(0, run({"shot", house, "--eye=" + views[i].first, "--forward=" + views[i].second,
                      "-o", shot})
                     .status);
    for (const std::string jobs : {"1", "2"})
      EXPECT_TRUE(fileBytes(shot) ==
                  fileBytes(folder.path(jobs + "/" + std::to_string(i) + ".json")))
          << views[i].first;
  }
}
#endif

TEST(BatchProgram, OptionsOfTheCommandLineStandForViewsWithoutTheirOwn) {
  const TempFolder folder;
  write(folder.path("views.csv"),
        "name,camera,eye_x,eye_y,eye_z\na,,-4,0.35,1.9\nb,spherical,-4,0.35,1.9\n");
  ASSERT_EQ(0, run(batch(folder, "out", with(Outputs, {"--camera", "normal"}))).status);
  for (const std::string camera : {"normal", "spherical"}) {
    ASSERT_EQ(
        0, run({"shot", Small, "--eye=-4,0.35,1.9", "--camera", camera, "-o", folder.path(camera)})
               .status);
  }
  EXPECT_EQ(fileBytes(folder.path("normal")), fileBytes(folder.path("out/shots/a.json")));
  EXPECT_EQ(fileBytes(folder.path("spherical")), fileBytes(folder.path("out/shots/b.json")));
}

TEST(BatchProgram, AViewThatFailsIsARowWithItsErrorAndStopsNoOther) {
  const TempFolder folder;
  write(folder.path("views.csv"), Failure);
  const Result result = run(batch(folder, "out", Outputs));
  EXPECT_EQ(1, result.status);
  const std::string summary = folder.path("out/summary.csv");
  EXPECT_EQ("lumivane: " + summary + ": 1 of 3 views failed\n", result.err);
  const std::vector<std::string> rows = lines(fileBytes(summary));
  ASSERT_EQ(4U, rows.size());
  EXPECT_EQ(0U, rows[1].find("good,ok,"));
  EXPECT_EQ(0U, rows[2].find("flat,failed,")) << rows[2];
  EXPECT_NE(std::string::npos, rows[2].find("forward is the zero vector")) << rows[2];
  EXPECT_EQ(0U, rows[3].find("other,ok,"));
}

TEST(BatchProgram, AViewBeyondALimitIsARowWithTheWordsOfTheShotCommand) {
  const TempFolder folder;
  write(folder.path("views.csv"),
        "name,eye,limit-points,segments\n"
        "few,\"-4,0.35,1.9\",50,\n"
        "fine,\"-4,0.35,1.9\",100,200000\n"
        "good,\"-4,0.35,1.9\",,\n");
  EXPECT_EQ(1, run(batch(folder, "out", Outputs)).status);
  const std::vector<std::string> rows = lines(fileBytes(folder.path("out/summary.csv")));
  ASSERT_EQ(4U, rows.size());
  Result alone = run({"shot", Small, "--eye=-4,0.35,1.9", "--limit-points=50"});
  EXPECT_EQ(1, alone.status);
  for (size_t at = 0; (at = alone.err.find('"', at)) != std::string::npos; at += 2)
    alone.err.insert(at, 1, '"');  // as in a cell
  const std::string words = alone.err.substr(std::string("lumivane: ").size());
  EXPECT_EQ(0U, rows[1].find("few,failed,\"" + words.substr(0, words.size() - 1) + "\","))
      << rows[1];
  EXPECT_EQ(0U, rows[2].find("fine,failed,\"")) << rows[2];
  EXPECT_EQ(0U, rows[3].find("good,ok,"));
}

TEST(BatchProgram, AnEyeInsideABodyIsReportedAndMarkedInItsRow) {
  const TempFolder folder;
  write(folder.path("views.csv"), "name,eye\nin,\"1,0.9,0.3\"\nout,\"-4,0.35,1.9\"\n");
  const Result result = run(batch(folder, "out", {"--jobs", "1"}));
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(
      "lumivane: view in: warning: the eye is inside a body, which is not drawn from there: what "
      "is visible is as if it were not there\n",
      result.err);
  const std::vector<std::string> rows = lines(fileBytes(folder.path("out/summary.csv")));
  ASSERT_EQ(3U, rows.size());
  EXPECT_NE(std::string::npos, rows[0].find(",cycle,inside,objects_visible,"));
  const auto cell = [](const std::string& row, int column) {
    std::istringstream stream(row);
    std::string text;
    for (int i = 0; i <= column; ++i) std::getline(stream, text, ',');
    return text;
  };
  EXPECT_EQ("1", cell(rows[1], 11)) << rows[1];
  EXPECT_EQ("0", cell(rows[2], 11)) << rows[2];
}

TEST(BatchProgram, CoordinatesFarFromTheOriginAreAWarning) {
  const TempFolder folder;
  Json scene = Json::parse(fileBytes(Small));
  for (Json& point : scene.at("Points")) point[0] = point[0].get<double>() + 4500000.0;
  const std::string far = folder.file("far.json", scene.dump());
  const std::string table = folder.file("v.csv", "name,eye\na,\"4499996,0.35,1.9\"\n");
  std::vector<std::string> arguments = {"batch",  far, table, "--out-dir", folder.path("out"),
                                        "--jobs", "1"};
  const Result result = run(arguments);
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(0U, result.err.find("lumivane: " + far + ": warning: object \"")) << result.err;
  EXPECT_NE(std::string::npos, result.err.find("its corners lie up to 4.5e+06 from the origin"));
  EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n'));
  arguments[4] = folder.path("centred");
  arguments.emplace_back("--center");
  EXPECT_EQ("", run(arguments).err);
}

TEST(BatchProgram, VeryManySegmentsOfAViewAskForALimit) {
  const TempFolder folder;
  write(folder.path("views.csv"), "name,segments\na,6\nb,100001\n");
  const Result result = run(batch(folder, "out", Outputs));
  EXPECT_EQ(
      "lumivane: " + folder.path("views.csv") +
          ": line 3: column --segments: 100001 is above 100000: say with --limit-points N how "
          "many point references the shot may have\n",
      result.err);
}

TEST(BatchProgram, TheFolderIsTheSameWhateverJobsAndShards) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(11) + "bad,,\"0,0,0\"\n");
  EXPECT_EQ(1, run(batch(folder, "one", with(Outputs, {"--jobs", "1"}))).status);
  EXPECT_EQ(1, run(batch(folder, "two", with(Outputs, {"--jobs", "2"}))).status);
  for (const std::string shard : {"3/3", "1/3", "2/3"})
    run(batch(folder, "shards", with(Outputs, {"--shard", shard, "--jobs", "2"})));
  const auto expected = filesOf(folder.path("one"));
  EXPECT_EQ(13U, expected.size());
  EXPECT_EQ(expected, filesOf(folder.path("two")));
  EXPECT_EQ(expected, filesOf(folder.path("shards")));
}

TEST(BatchProgram, ShardsTellWhatIsMissingAndMergeOnRequest) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(5));
  const Result first = run(batch(folder, "out", {"--shard", "1/2"}));
  EXPECT_EQ(0, first.status) << first.err;
  EXPECT_EQ("3 of 3 views made, 2 of other shards are missing for the summary\n", first.out);
  const Result early = run(batch(folder, "out", {"--merge"}));
  EXPECT_EQ(1, early.status);
  EXPECT_EQ(
      "lumivane: " + folder.path("out") + ": 2 of 5 views are not made yet: cannot be merged\n",
      early.err);
  EXPECT_FALSE(fs::exists(folder.path("out/summary.csv")));
  EXPECT_EQ(0, run(batch(folder, "out", {"--shard", "2/2"})).status);
  const std::string summary = fileBytes(folder.path("out/summary.csv"));
  fs::remove(folder.path("out/summary.csv"));
  EXPECT_EQ(0, run(batch(folder, "out", {"--merge"})).status);
  EXPECT_EQ(summary, fileBytes(folder.path("out/summary.csv")));
}

TEST(BatchProgram, AKilledRunGoesOnWhereItStopped) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(150));
  ASSERT_EQ(0, run(batch(folder, "whole", Outputs)).status);

  std::vector<std::string> command = batch(folder, "out", with(Outputs, {"--jobs", "1"}));
  command.insert(command.begin(), LUMIVANE_PROGRAM);
  const fs::path fifth = folder.path("out/shots/v5.json");
  Lumivane::Test::runUntil(command, {{"DISPLAY", {}}}, SIGKILL,
                           [&fifth] { return fs::exists(fifth); });
  ASSERT_FALSE(fs::exists(folder.path("out/summary.csv"))) << "it ended before it was killed";
  ASSERT_TRUE(fs::exists(fifth));

  // What is there is not made again: its time stays.
  const fs::path firstFile = folder.path("out/shots/v0.json");
  const auto before = fs::last_write_time(firstFile);
  const Result again = run(batch(folder, "out", with(Outputs, {"--jobs", "2"})));
  ASSERT_EQ(0, again.status) << again.err;
  EXPECT_EQ(before, fs::last_write_time(firstFile));
  EXPECT_EQ(filesOf(folder.path("whole")), filesOf(folder.path("out")));
}

// The processes that a program with this word among its arguments has made of itself.
std::vector<pid_t> copiesOf(const std::string& word) {
  std::vector<pid_t> all;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    std::ifstream file(entry.path() / "cmdline");
    const std::string line{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (line.find(word) != std::string::npos) all.push_back(static_cast<pid_t>(std::stol(name)));
  }
  std::vector<pid_t> copies;
  for (const pid_t process : all) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(file, line);
    std::istringstream fields(line.substr(std::min(line.size(), line.rfind(')') + 1)));
    std::string state;
    pid_t parent = 0;
    fields >> state >> parent;
    if (std::count(all.begin(), all.end(), parent) > 0) copies.push_back(process);
  }
  return copies;
}

// As when memory ends, and the system picks one.
TEST(BatchProgram, AProcessThatDiesCostsItsViewOnly) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(400));
  ASSERT_EQ(0, run(batch(folder, "whole", Outputs)).status);

  std::vector<std::string> command = batch(folder, "out", with(Outputs, {"--jobs", "2"}));
  command.insert(command.begin(), LUMIVANE_PROGRAM);
  bool isKilled = false;
  const Result result =
      Lumivane::Test::runUntil(command, {{"DISPLAY", {}}}, SIGKILL, [&folder, &isKilled] {
        if (isKilled || !fs::exists(folder.path("out/shots/v5.json"))) return false;
        const std::vector<pid_t> copies = copiesOf(folder.path("out"));
        if (!copies.empty()) isKilled = kill(copies.front(), SIGKILL) == 0;
        return false;  // the run itself goes on to its end
      });
  ASSERT_TRUE(isKilled) << "it ended before";
  EXPECT_EQ(1, result.status);
  EXPECT_FALSE(result.bySignal);
  const std::string summary = fileBytes(folder.path("out/summary.csv"));
  const std::vector<std::string> rows = lines(summary);
  ASSERT_EQ(401U, rows.size());
  const auto has = [](const std::string& word) {
    return [word](const std::string& row) { return row.find(word) != std::string::npos; };
  };
  EXPECT_EQ(399, std::count_if(rows.begin(), rows.end(), has(",ok,")));
  EXPECT_EQ(1,
            std::count_if(rows.begin(), rows.end(), has(",failed,its process ended by signal 9,")));

  ASSERT_EQ(0, run(batch(folder, "out", Outputs)).status);
  EXPECT_EQ(filesOf(folder.path("whole")), filesOf(folder.path("out")));
}

TEST(BatchProgram, ATornLineOfTheJournalCountsAsNone) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(3));
  ASSERT_EQ(0, run(batch(folder, "whole")).status);
  fs::create_directories(folder.path("out/parts"));
  const std::string journal = fileBytes(folder.path("whole/journal.csv"));
  write(folder.path("out/parts/1-of-1.csv"), journal.substr(0, journal.find('\n') + 40));
  ASSERT_EQ(0, run(batch(folder, "out")).status);
  EXPECT_EQ(filesOf(folder.path("whole")), filesOf(folder.path("out")));
}

TEST(BatchProgram, AnOutputThatIsGoneIsMadeAgainAndSoIsAViewThatChanged) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(3));
  ASSERT_EQ(0, run(batch(folder, "out", Outputs)).status);
  const auto expected = filesOf(folder.path("out"));
  fs::remove(folder.path("out/shots/v1.json"));
  ASSERT_EQ(0, run(batch(folder, "out", Outputs)).status);
  EXPECT_EQ(expected, filesOf(folder.path("out")));

  std::string changed = manyViews(3);
  changed.replace(changed.find("-3.9"), 4, "-3.8");
  write(folder.path("views.csv"), changed);
  ASSERT_EQ(0, run(batch(folder, "out", Outputs)).status);
  EXPECT_NE(expected.at("shots/v1.json"), fileBytes(folder.path("out/shots/v1.json")));
  EXPECT_EQ(expected.at("shots/v2.json"), fileBytes(folder.path("out/shots/v2.json")));
}

TEST(BatchProgram, AViewThatFailedIsTriedAgain) {
  const TempFolder folder;
  write(folder.path("views.csv"), "name,png,eye\na,a.png,\"-4,0.35,1.9\"\n");
  EXPECT_EQ(1, run(batch(folder, "out")).status);
  EXPECT_NE(std::string::npos,
            fileBytes(folder.path("out/summary.csv")).find("a,failed,\"a.png: "));
  const Lumivane::Test::VirtualDisplay display;
  std::vector<std::string> command = batch(folder, "out");
  command.insert(command.begin(), LUMIVANE_PROGRAM);
  const Result result = Lumivane::Test::runProcess(command, {{"DISPLAY", display.name()}});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_NE(std::string::npos, fileBytes(folder.path("out/summary.csv")).find("a,ok,"));
}

TEST(BatchProgram, ATerminalShowsHowFarTheRunHasCome) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(4));
  const Result result = run(batch(folder, "out"), true);
  EXPECT_EQ(0, result.status);
  EXPECT_NE(std::string::npos, result.err.find("0/4 views")) << result.err;
  EXPECT_NE(std::string::npos, result.err.find("4/4 views")) << result.err;
  EXPECT_NE(std::string::npos, result.err.find(" a second, 0:00 left")) << result.err;
}

// Tables that are wrong, and what is said of them.
TEST(BatchProgram, AWrongTableIsReportedByLineAndColumn) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "is empty: a heading with the columns is missing"},
      {"name,eye\n", "has a heading, but no view"},
      {"name,colour\na,red\n",
       "line 1: column \"colour\" is neither \"name\" nor an option of shot"},
      {"name,x,y,z\na,1,2,3\n",
       "line 1: column \"x\" is neither \"name\" nor an option of shot; coordinates of the eye are "
       "eye_x, eye_y and eye_z"},
      {"eye,eye\na,b\n", "line 1: column \"eye\" is there twice"},
      {"d1,eye_clearance\n1,1\n", "line 1: column \"eye_clearance\" is there twice"},
      {"stats\na\n", "line 1: column \"stats\" is neither \"name\" nor an option of shot"},
      {"eye_x,eye_y\n1,2\n",
       "line 1: of the columns \"eye_x\", \"eye_y\" and \"eye_z\" there must be all or none"},
      {"eye,eye_x,eye_y,eye_z\n,1,2,3\n", "line 1: column \"eye\" is there as one and as three"},
      {"eye_x,eye_y,eye_z\n1,,3\n", "line 2: eye has 2 of three coordinates"},
      {"name,eye\na,\"1,2,3\"\nb\n", "line 3: 1 fields for 2 columns"},
      {"name,eye\n\na,\"1,2\"\n", "line 3: column --eye: \"1,2\" is not three numbers X,Y,Z"},
      {"name,camera\na,fish\n",
       "line 2: column --camera: fish not in "
       "{fisheye,equirectangular,spherical,radial,normal,square}"},
      {"name\na\nb\na\n", "line 4: column \"name\": \"a\" is the name of line 2 as well"},
      {"name\na/b\n", "line 2: column \"name\": \"a/b\" cannot be part of a file name"},
      {"name,eye\n,\"1,2,3\"\n", "line 2: column \"name\": there is none"},
      {"name,output\na,x.json\nb,x.json\n",
       "line 3: column --output: \"x.json\" is written by line 2 as well; {name} in it stands for "
       "the view's name"},
      {"name,output\na,../x.json\n",
       "line 2: column --output: \"../x.json\" is not a name inside the folder of outputs"},
      {"name,output\na,/x.json\n",
       "line 2: column --output: \"/x.json\" is not a name inside the folder of outputs"},
      {"name,output\na,summary.csv\n",
       "line 2: column --output: \"summary.csv\" is kept for the run's own files"},
      {"name\n\"a\n", "line 2: the quote that starts a field is never closed"},
      {"name\n\"a\"b\n", "line 2: a closing quote must end its field"},
      {"name\na\"b\n", "line 2: a quote inside a field that does not start with one"},
  };
  const TempFolder folder;
  for (const auto& [table, error] : cases) {
    write(folder.path("views.csv"), table);
    const Result result = run(batch(folder, "out"));
    EXPECT_EQ(1, result.status) << table;
    EXPECT_EQ("lumivane: " + folder.path("views.csv") + ": " + error + "\n", result.err);
    EXPECT_FALSE(fs::exists(folder.path("out"))) << table;
  }
}

TEST(BatchProgram, TablesMayHaveQuotesMarksAndForeignLineEnds) {
  const TempFolder folder;
  write(folder.path("views.csv"),
        "\xEF\xBB\xBFname,\"--eye\"\r\n\"a \"\"b\"\", c\",\"-4,0.35,1.9\"\r\n\r\nd,\"-4,0.35,2\"");
  const Result result = run(batch(folder, "out"));
  ASSERT_EQ(0, result.status) << result.err;
  const std::vector<std::string> rows = lines(fileBytes(folder.path("out/summary.csv")));
  ASSERT_EQ(3U, rows.size());
  EXPECT_EQ(0U, rows[1].find("\"a \"\"b\"\", c\",ok,"));
  EXPECT_EQ(0U, rows[2].find("d,ok,"));
}

TEST(BatchProgram, WrongArgumentsAreReported) {
  const TempFolder folder;
  write(folder.path("views.csv"), manyViews(1));
  for (const std::string shard : {"0/2", "3/2", "1", "a/b", "1/2x", "-1/2"}) {
    const Result result = run(batch(folder, "out", {"--shard", shard}));
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("lumivane: --shard: \"" + shard + "\" is not I/K with 1 <= I <= K (see --help)\n",
              result.err);
  }
  EXPECT_EQ(2, run(batch(folder, "out", {"--stats", "s.json"})).status);
  EXPECT_EQ(2, run({"batch", Small, folder.path("views.csv")}).status);
  const Result missing = run({"batch", Small, folder.path("none.csv"), "--out-dir", "x"});
  EXPECT_EQ(1, missing.status);
  EXPECT_EQ(0U, missing.err.find("lumivane: " + folder.path("none.csv") + ": ")) << missing.err;
}

TEST(BatchProgram, TwoRunsDoNotWorkOnOneShard) {
  const TempFolder folder;
  std::string longWork = "name,eye,forward\n";  // seconds more than the second run takes to start
  for (int i = 0; i < 20000; ++i)
    longWork += "v" + std::to_string(i) + ",\"-2.6,0.35,1.9\",\"1,-0.06,-0.45\"\n";
  write(folder.path("views.csv"), longWork);
  std::vector<std::string> command = batch(folder, "out", {"--jobs", "1"});
  command.insert(command.begin(), LUMIVANE_PROGRAM);
  Result second;
  Lumivane::Test::runUntil(command, {{"DISPLAY", {}}}, SIGTERM, [&] {
    if (!fs::exists(folder.path("out/parts/1-of-1.csv")) ||
        fs::file_size(folder.path("out/parts/1-of-1.csv")) == 0)
      return false;
    second = run(batch(folder, "out"));
    return true;
  });
  EXPECT_EQ(1, second.status);
  EXPECT_EQ("lumivane: " + folder.path("out/parts/1-of-1.csv") + ": another run is at work on it\n",
            second.err);
}

}  // namespace
}  // namespace Lumivane::Host
