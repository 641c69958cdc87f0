#include "BatchSummary.h"
#include "HostError.h"
#include "NpyTable.h"
#include "ViewTable.h"
#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"

#include <lumivane/session/Files.h>
#include <lumivane/session/ViewSettings.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::fileBytes;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

class ViewTableTest : public ::testing::Test {
 protected:
  ViewTableTest() {
    setting.scene = "scene.json";
    setting.folder = "/out";
    setting.sceneKey = 7;
  }

  ViewTable read(const std::string& text) {
    Session::writeFile(path, text);
    return ViewTable(path, setting);
  }
  std::string fault(const std::string& text) {
    try {
      read(text);
    } catch (const HostError& error) {
      return error.what();
    }
    return "";
  }

  const TempFolder folder;
  const std::string path = folder.path("views.csv");
  TableSetting setting;
};

TEST_F(ViewTableTest, KeysStandForNameAndAllArguments) {
  setting.options = {"--forward=1,0,0", "--segments=3"};
  const ViewTable table = read("segments,eye_x,eye_y,eye_z,name\n7,1,2.50,-3,a\n,1,2.50,-3,b\n");
  const auto keyOf = [this](const std::string& name, const std::vector<std::string>& arguments) {
    std::uint64_t key = textKey(name, setting.sceneKey);
    for (const std::string& argument : arguments) key = textKey(argument + "\n", key);
    return key;
  };
  ASSERT_EQ(2U, table.size());
  EXPECT_EQ(keyOf("a", {"--forward=1,0,0", "--eye=1,2.50,-3", "--segments=7"}), table.key(0));
  EXPECT_EQ(keyOf("b", {"--forward=1,0,0", "--segments=3", "--eye=1,2.50,-3"}), table.key(1));
  EXPECT_EQ(table.key(1), table[1].key);
}

// A plus sign, or sixteen as the base, is read as a command line is.
TEST_F(ViewTableTest, ValuesAreThoseOfTheCommandLine) {
  for (const std::string& more : std::vector<std::string>{"", "--up=0,1,0", "--forward=0,0,1"}) {
    setting.options = {"--segments=3"};
    if (!more.empty()) setting.options.push_back(more);
    const std::string heading = "eye,forward,up,camera\n";
    const ViewTable plain = read(heading + "\"1,-2e3,0.1\",\"0,0,1\",,square\n" +
                                 "\"1,2,3\",,\"0,0,1\",\n\"1,2,3\",\"0,0,-1\",,\n,,,\n");
    const ViewTable other = read(heading + "\"+1,-2e3,+0.1\",\"+0,0,1\",,square\n" +
                                 "\"0x1,2,3\",,\"+0,0,1\",\n\"+1,2,3\",\"0,0,-0x1\",,\n,,,\n");
    ASSERT_EQ(4U, plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
      const Session::ViewSettings a = plain[i].options.view;
      const Session::ViewSettings b = other[i].options.view;
      EXPECT_EQ(b.eye, a.eye) << i;
      EXPECT_EQ(b.forward, a.forward) << i;
      EXPECT_EQ(b.up, a.up) << i;
      EXPECT_EQ(b.camera, a.camera) << i;
      EXPECT_EQ(3, a.segments);
      EXPECT_EQ(plain[i].name, other[i].name);
    }
  }
}

TEST_F(ViewTableTest, NamesAreNumbersWhereThereAreNone) {
  std::string text = "eye\n";
  for (int i = 0; i < 10; ++i) text += "\"1,2,3\"\n";
  const ViewTable table = read(text);
  EXPECT_EQ("view01", table[0].name);
  EXPECT_EQ("view10", table[9].name);
}

TEST_F(ViewTableTest, CellsOfAGridAreReadAndWhatIsUnderEyesIsPassedOver) {
  const ViewTable table =
      read("name,eye,row,column,cell,inside,object,face\na,\"1,2,3\",4,5,0.5,1,x,2\nb,,,,,,,\n");
  ASSERT_TRUE(table[0].cell.has_value());
  EXPECT_EQ(4U, table[0].cell->row);
  EXPECT_EQ(5U, table[0].cell->column);
  EXPECT_EQ(0.5, table[0].cell->side);
  EXPECT_FALSE(table[1].cell.has_value());
}

TEST_F(ViewTableTest, FilesOfViewsLieInTheFolder) {
  setting.options = {"--output=shots/{name}.json"};
  const ViewTable table = read("name,eye\na,\"1,2,3\"\nb,\"1,2,4\"\n");
  EXPECT_TRUE(table.hasFiles());
  EXPECT_EQ(std::vector<std::string>{"shots/b.json"}, table[1].files);
  EXPECT_EQ("/out/shots/b.json", table[1].options.shot);
  EXPECT_EQ((Session::Vector{1, 2, 4}), table[1].options.view.eye);
}

TEST_F(ViewTableTest, FaultsNameTheirLine) {
  EXPECT_EQ(path + ": line 4: column \"name\": \"a\" is the name of line 2 as well",
            fault("name,eye\na,\"1,2,3\"\nb,\"1,2,3\"\na,\"1,2,3\"\nb,\"1,2,3\"\n"));
  EXPECT_EQ(path + ": line 3: column --eye: \"1,2\" is not three numbers X,Y,Z",
            fault("eye\n\"1,2,3\"\n\"1,2\"\n"));
  EXPECT_EQ(path + ": line 2: eye has 2 of three coordinates", fault("eye_x,eye_y,eye_z\n1,,3\n"));
  EXPECT_EQ(path + ": line 3: 1 fields for 2 columns", fault("name,eye\na,\"1,2,3\"\nb\n"));
  EXPECT_EQ(path + ": line 2: of \"row\", \"column\" and \"cell\" there must be all or none",
            fault("eye,row,column,cell\n\"1,2,3\",1,1,\n"));
}

Result run(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), LUMIVANE_PROGRAM);
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

TEST(ViewsRange, RangesComeTogetherAsTheWhole) {
  const TempFolder folder;
  const std::string scene = LUMIVANE_SCENES "/room.json";
  std::string text = "name,eye,forward\n";
  for (int i = 1; i <= 5; ++i)
    text += "v" + std::to_string(i) + ",\"0." + std::to_string(i) + ",0.3,1.6\",\"1,0,0\"\n";
  Session::writeFile(folder.path("views.csv"), text);
  const auto batch = [&](const std::string& to, std::vector<std::string> more) {
    more.insert(more.begin(), {"batch", scene, folder.path("views.csv"), "-o", "{name}.json",
                               "--out-dir", folder.path(to), "--jobs", "1"});
    return run(more);
  };
  ASSERT_EQ(0, batch("whole", {}).status);
  const Result first = batch("parts", {"--views-range", "2:3"});
  EXPECT_EQ(0, first.status) << first.err;
  EXPECT_EQ("2 of 2 views made, 3 of other shards are missing for the summary\n", first.out);
  EXPECT_EQ(0, batch("parts", {"--views-range", "4:5"}).status);
  const Result last = batch("parts", {"--views-range", "1:1"});
  EXPECT_EQ(0, last.status) << last.err;
  for (const char* file : {"/summary.csv", "/journal.csv", "/v4.json"})
    EXPECT_EQ(fileBytes(folder.path("whole") + file), fileBytes(folder.path("parts") + file));
  EXPECT_EQ("lumivane: --views-range: ends at 6, but there are 5 views\n",
            batch("parts", {"--views-range", "5:6"}).err);
  EXPECT_EQ(2, batch("parts", {"--views-range", "0:2"}).status);
}

TEST(NpyTable, IsWhatNumpyReads) {
  const TempFolder folder;
  const std::string heading = "name,eye_x,view_factor_of_it's,largest_object";
  const std::string bytes =
      npyOfTable(heading, {"a,1.5,,7", "\"b,\xC3\xA9\",-2,0.1,\xF0\x9F\x8C\xB3"});
  EXPECT_EQ("\x93NUMPY\x01", bytes.substr(0, 7));
  EXPECT_EQ(0U, (bytes.size() - 2 * (3 * 4 + 8 + 8 + 4)) % 64);
  Session::writeFile(folder.path("a.npy"), bytes);
  const Result without = Lumivane::Test::runProcess({"/usr/bin/python3", "-c", "import numpy"});
  if (without.status != 0) GTEST_SKIP() << "numpy is not there";
  const Result result = Lumivane::Test::runProcess(
      {"/usr/bin/python3", "-c",
       "import numpy, sys\n"
       "a = numpy.load(sys.argv[1])\n"
       "print(a.dtype.names, a.shape, a['name'][1] == 'b,\\xe9', a['eye_x'].tolist(),\n"
       "      numpy.isnan(a['view_factor_of_it\\'s'][0]), a[\"view_factor_of_it's\"][1],\n"
       "      a['largest_object'][1] == '\\U0001f333', a['largest_object'][0])\n",
       folder.path("a.npy")});
  EXPECT_EQ(
      "('name', 'eye_x', \"view_factor_of_it's\", 'largest_object') (2,) True [1.5, -2.0] True 0.1 "
      "True 7\n",
      result.out)
      << result.err;
}

TEST(NpyTable, StandsInTheFolderOfABatch) {
  const TempFolder folder;
  Session::writeFile(folder.path("views.csv"), "name,eye\na,\"0.1,0.3,1.6\"\n");
  const std::string scene = LUMIVANE_SCENES "/room.json";
  const auto batch = [&](const std::string& file) {
    return run({"batch", scene, folder.path("views.csv"), "-o", "{name}.json", "--out-dir",
                folder.path("out"), "--npy", file});
  };
  EXPECT_EQ(0, batch("summary.npy").status);
  std::string summary = fileBytes(folder.path("out/summary.csv"));
  const std::size_t end = summary.find('\n');
  const std::string row = summary.substr(end + 1, summary.size() - end - 2);
  EXPECT_EQ(npyOfTable(summary.substr(0, end), {row}), fileBytes(folder.path("out/summary.npy")));
  EXPECT_EQ(2, batch("summary.txt").status);
  EXPECT_EQ(2, batch("../summary.npy").status);
}

}  // namespace
}  // namespace Lumivane::Host
