// What can go wrong with the files that are written: whatever it is, no file is half-written, what
// was there before is as it was, and nothing else is left.

#include "host/FaultWorks.h"

#include <csignal>
#include <filesystem>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::Test {
namespace {

namespace fs = std::filesystem;

// Calls a test for each way to write a file, with an empty folder for it.
template <class Function>
void forEachOutput(Function function) {
  const TempFolder inputs;
  for (const Output& output : outputs(inputs)) {
    SCOPED_TRACE(output.name);
    const TempFolder folder;
    function(output, folder);
  }
}

TEST(FaultyOutput, AnOutputIsTheOneFileThatIsMade) {
  forEachOutput([](const Output& output, const TempFolder& folder) {
    const std::string path = folder.file("out" + output.ending, Old);
    const Result result = lumivane(output.to(path));
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_GT(fileBytes(path).size(), 200u);
    EXPECT_EQ(1u, filesIn(folder.path("")).size());
  });
}

TEST(FaultyOutput, MissingFolderIsReportedAndNotMade) {
  forEachOutput([](const Output& output, const TempFolder& folder) {
    const std::string path = folder.path("no/out" + output.ending);
    expectOneLine(lumivane(output.to(path)),
                  path + ": cannot be written: No such file or directory");
    EXPECT_TRUE(filesIn(folder.path("")).empty());
  });
}

TEST(FaultyOutput, WhatIsInItsPlaceOrInThatOfItsFolderStays) {
  forEachOutput([](const Output& output, const TempFolder& folder) {
    const std::string isFolder = folder.path("folder" + output.ending);
    fs::create_directory(isFolder);
    expectOneLine(lumivane(output.to(isFolder)), isFolder + ": cannot be written: it is a folder");
    const std::string below = folder.file("file", Old) + "/out" + output.ending;
    expectOneLine(lumivane(output.to(below)), below + ": cannot be written: Not a directory");
    EXPECT_TRUE(fs::is_directory(isFolder));
    EXPECT_EQ(Old, fileBytes(folder.path("file")));
    EXPECT_EQ(2u, filesIn(folder.path("")).size());
  });
}

// Nobody can make a file there, whatever the rights.
TEST(FaultyOutput, FolderThatTakesNoFileIsReported) {
  forEachOutput([](const Output& output, const TempFolder&) {
    const std::string path = "/proc/self/fdinfo/out" + output.ending;
    expectOneLine(lumivane(output.to(path)), path + ": cannot be written: ");
  });
}

TEST(FaultyOutput, FullDeviceIsReportedAndStaysADevice) {
  forEachOutput([](const Output& output, const TempFolder& folder) {
    const std::string path = folder.path("full" + output.ending);
    fs::create_symlink("/dev/full", path);
    expectOneLine(lumivane(output.to(path)), path + ": cannot be written: No space left on device");
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_TRUE(fs::is_character_file(path));
  });
}

// A limit on the size of files, above nothing or half of the file, stands for a disk that is full.
TEST(FaultyOutput, OldFileOutlivesTheEndOfRoom) {
  forEachOutput([](const Output& output, const TempFolder& folder) {
    const std::string path = folder.path("out" + output.ending);
    ASSERT_EQ(0, lumivane(output.to(path)).status);
    const size_t whole = fileBytes(path).size();
    folder.file("out" + output.ending, Old);
    for (const size_t limit : {size_t{0}, size_t{1}, whole / 2}) {
      const Result result =
          lumivaneBy("exec prlimit --fsize=" + std::to_string(limit) + " \"$@\"", output.to(path));
      // A page description is drawn into a file without a name first, which may not grow either.
      const bool isDrawn = output.ending != ".eps";
      expectOneLine(result, path + (isDrawn ? ": cannot be written: File too large" : ": "));
      EXPECT_EQ(Old, fileBytes(path));
      EXPECT_EQ(1u, filesIn(folder.path("")).size());
    }
  });
}

// A disk of 64 KiB of which 4 are free, in a name space of its own, as far as that is permitted: it
// needs no rights on some systems and is forbidden to everybody on others.
constexpr const char* OnSmallDisk =
    "exec unshare --user --map-root-user --mount /bin/sh -c '"
    "disk=$1; shift; "
    "mount -t tmpfs -o size=64k disk \"$disk\" || exit 77; "
    "printf \"what was there before\" > \"$disk/old\"; "
    "head -c 57344 /dev/zero > \"$disk/filler\" || exit 77; "
    "\"$@\"; status=$?; "
    "echo \"on the disk: $(ls -A \"$disk\" | tr \"\\n\" \" \")\"; "
    "echo \"old: $(cat \"$disk/old\")\"; "
    "exit $status' sh ";

std::string bigJson5() {
  std::string text = "{a: [";
  for (int i = 0; i < 20000; ++i) text += std::to_string(i) + ",";
  return text + "]}";
}

TEST(FaultyOutput, OldFileOutlivesAFullDisk) {
  const TempFolder folder;
  const std::string disk = folder.path("disk");
  fs::create_directory(disk);
  const std::string old = disk + "/old";
  const std::string street = LUMIVANE_SCENES "/street.json";
  for (const Arguments& command :
       std::vector<Arguments>{{"shot", street, "--eye=-5.3,-1.37,3.4", "-o", old},
                              {"json5", folder.file("big.json5", bigJson5()), "-o", old},
                              {"grid", street, "--spacing", "0.5", "--height", "1.5", "-o", old}}) {
    SCOPED_TRACE(command[0]);
    const Result result = lumivaneBy(OnSmallDisk + ("'" + disk + "' \"$@\""), command);
    if (result.out.find("on the disk: ") == std::string::npos) {
      // No disk may be mounted here: the limit of file sizes takes its place.
      std::ofstream(old) << Old;
      const Result limited = lumivaneBy("exec prlimit --fsize=4096 \"$@\"", command);
      expectOneLine(limited, old + ": cannot be written: File too large");
      EXPECT_EQ(Old, fileBytes(old));
      EXPECT_EQ(1u, filesIn(disk).size());
      continue;
    }
    expectOneLine(result, old + ": cannot be written: No space left on device");
    EXPECT_NE(std::string::npos, result.out.find("on the disk: filler old \n")) << result.out;
    EXPECT_NE(std::string::npos, result.out.find(std::string("old: ") + Old + "\n")) << result.out;
  }
}

TEST(FaultyOutput, OldFilesOutliveAnInputThatIsNone) {
  const TempFolder inputs;
  const std::string bad = inputs.file("bad.json", "{\"Points\": [[1, 2");
  for (Output output : outputs(inputs)) {
    SCOPED_TRACE(output.name);
    const TempFolder folder;
    output.command[1] = output.name == "JSON" ? inputs.path("") : bad;  // any text is taken for one
    const std::string path = folder.file("out" + output.ending, Old);
    const Result result = lumivane(output.to(path));
    EXPECT_NE(0, result.status);
    EXPECT_EQ(Old, fileBytes(path));
    EXPECT_EQ(1u, filesIn(folder.path("")).size());
  }
}

TEST(FaultyOutput, StandardOutputThatIsFullIsAnError) {
  const TempFolder folder;
  for (const Arguments& command :
       std::vector<Arguments>{{"check", Small},
                              {"check", "--json", Small},
                              {"json5", Small},
                              {"grid", Small, "--spacing", "0.3", "--height", "1.5"},
                              {"shot", Small, "--eye=-4,0.35,1.9", "-o", folder.path("a")},
                              {"shot", Small, "--eye=-4,0.35,1.9", "-o", "/dev/stdout"}}) {
    SCOPED_TRACE(command[0]);
    const Result result = lumivaneBy("exec \"$@\" > /dev/full", command);
    expectOneLine(result, " cannot be written");
  }
  EXPECT_EQ(1u, filesIn(folder.path("")).size());
}

// Else the output would be opened in the place of what is closed, and take what is printed.
TEST(FaultyOutput, ClosedStreamsGoNowhere) {
  const TempFolder folder;
  const std::string closed = folder.path("closed.json");
  const std::string open = folder.path("open.json");
  const Arguments command = {"shot", Small, "--eye=-4,0.35,1.9", "-o"};
  EXPECT_EQ(0, lumivane(command + Arguments{open}).status);
  for (const std::string streams : {">&-", "2>&-", "<&-", "<&- >&- 2>&-"}) {
    SCOPED_TRACE(streams);
    const Result result = lumivaneBy("exec \"$@\" " + streams, command + Arguments{closed});
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ(fileBytes(open), fileBytes(closed));
    fs::remove(closed);
  }
  EXPECT_EQ(1u, filesIn(folder.path("")).size());
}

// Others have it open: it is neither replaced nor cut.
TEST(FaultyOutput, FileBehindStandardOutputIsAppendedTo) {
  const TempFolder folder;
  const std::string log = folder.file("log", "before\n");
  const std::string table = folder.path("table.csv");
  const Arguments grid = {"grid", Small, "--spacing", "1", "--height", "1.5", "-o"};
  ASSERT_EQ(0, lumivane(grid + Arguments{table}).status);
  for (const std::string name : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"}) {
    SCOPED_TRACE(name);
    folder.file("log", "before\n");
    const Result result = lumivaneBy("exec \"$@\" >> '" + log + "'", grid + Arguments{name});
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ("before\n" + fileBytes(table), fileBytes(log));
  }
  expectOneLine(lumivane(grid + Arguments{"/dev/fd/77"}),
                "/dev/fd/77: cannot be written: Bad file descriptor");
  EXPECT_EQ(2u, filesIn(folder.path("")).size());
}

TEST(FaultyOutput, PipeGetsAllBytesAndStaysAPipe) {
  forEachOutput([](const Output& output, const TempFolder& folder) {
    const std::string path = folder.path("pipe" + output.ending);
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    std::string got;
    PipeEnd other;
    std::thread reader([&] { got = other.read(path); });
    const Result result = lumivane(output.to(path));
    other.end();
    reader.join();
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_TRUE(fs::is_fifo(path));
    EXPECT_EQ(1u, filesIn(folder.path("")).size());
    EXPECT_GT(got.size(), 200u);
    if (!output.repeats) return;
    const TempFolder reference;
    ASSERT_EQ(0, lumivane(output.to(reference.path("out" + output.ending))).status);
    EXPECT_EQ(fileBytes(reference.path("out" + output.ending)), got);
  });
}

// Several outputs of one command.
Arguments optionsFor(const TempFolder& folder) {
  Arguments options = {"-o", folder.path("a.json")};
#ifdef LUMIVANE_HOST_TOOLS
  options = options + Arguments{"--visible", folder.path("a.csv")};
#endif
#ifdef LUMIVANE_HOST_TOOLS
  options =
      options + Arguments{"--svg",  folder.path("a.svg"), "--pdf",        folder.path("a.pdf"),
                          "--eps",  folder.path("a.eps"), "--png-vector", folder.path("a.png"),
                          "--html", folder.path("a.html")};
#endif
  return options;
}

bool hasUnfinished(const std::string& folder) {
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().filename().string().rfind(".lumivane.", 0) == 0) return true;
  return false;
}

// The signal comes as soon as a file is under way: in some runs within it, in others just after.
void expectWholeFiles(int signal) {
  const Arguments shot = {LUMIVANE_PROGRAM, "shot", LUMIVANE_SCENES "/street.json",
                          "--eye=-5.3,-1.37,3.4"};
  const Environment noDisplay = {{"DISPLAY", {}}};
  const TempFolder reference;
  ASSERT_EQ(0, runProcess(shot + optionsFor(reference), noDisplay).status);
  const std::map<std::string, std::string> whole = filesIn(reference.path(""));
  int ended = 0;
  for (int run = 0; run < 8; ++run) {
    const TempFolder folder;
    for (const auto& [name, bytes] : whole) folder.file(name, Old);
    const auto first = folder.path("a.json");
    const Result result =
        runUntil(shot + optionsFor(folder), noDisplay, signal, [&folder, &first, run] {
          return run % 2 == 0 ? hasUnfinished(folder.path("")) : fileBytes(first) != Old;
        });
    EXPECT_FALSE(result.bySignal);
    EXPECT_TRUE(result.status == 0 || result.status == 128 + signal) << result.status;
    ended += result.status != 0 ? 1 : 0;
    const std::map<std::string, std::string> files = filesIn(folder.path(""));
    EXPECT_EQ(whole.size(), files.size());
    for (const auto& [name, bytes] : files)
      EXPECT_TRUE(bytes == Old || bytes == whole.at(name)) << name;
  }
  EXPECT_GT(ended, 0);
}

TEST(FaultyOutput, InterruptWhileFilesAreWrittenLeavesEachOldOrNew) { expectWholeFiles(SIGINT); }

TEST(FaultyOutput, RequestToEndWhileFilesAreWrittenLeavesEachOldOrNew) {
  expectWholeFiles(SIGTERM);
}

// The run is asked to end as its first shots are there; the next one goes on and completes it.
TEST(FaultyOutput, BatchThatIsAskedToEndHasWholeFilesAndGoesOn) {
  for (const int signal : {SIGINT, SIGTERM}) {
    const TempFolder folder;
    std::string views = "name,eye\n";
    for (int i = 0; i < 16; ++i)
      views += "v" + std::to_string(i) + ",\"-5.3,-1.37," + std::to_string(3 + 0.01 * i) + "\"\n";
    const std::string table = folder.file("views.csv", views);
    const auto command = [&table](const std::string& out) {
      return Arguments{LUMIVANE_PROGRAM,
                       "batch",
                       LUMIVANE_SCENES "/street.json",
                       table,
                       "--out-dir",
                       out,
                       "--output",
                       "{name}.json",
                       "--jobs",
                       "2"};
    };
    const Environment noDisplay = {{"DISPLAY", {}}};
    const std::string out = folder.path("out");
    const Result result =
        runUntil(command(out), noDisplay, signal, [&out] { return fs::exists(out + "/v3.json"); });
    EXPECT_EQ(128 + signal, result.status);
    EXPECT_FALSE(result.bySignal);
    const std::map<std::string, std::string> half = filesIn(out);
    EXPECT_EQ(0, runProcess(command(out), noDisplay).status);
    EXPECT_EQ(0, runProcess(command(folder.path("reference")), noDisplay).status);
    const std::map<std::string, std::string> reference = filesIn(folder.path("reference"));
    EXPECT_EQ(reference, filesIn(out));
    for (const auto& [name, bytes] : half) {
      EXPECT_EQ(std::string::npos, name.find(".lumivane.")) << name;
      if (fs::path(name).extension() == ".json") {
        EXPECT_EQ(reference.at(name), bytes) << name;
      }
    }
  }
}

// What is reported of a disk that is full half way, and that nothing is lost by it.
TEST(FaultyOutput, BatchWithoutRoomTellsAndGoesOnWithRoom) {
  const TempFolder folder;
  const std::string table =
      folder.file("views.csv", "name,eye\na,\"-4,0.35,1.9\"\nb,\"-3,0.35,1.9\"\n");
  const Arguments command = {"batch",    Small,        table, "--out-dir", folder.path("out"),
                             "--output", "{name}.json"};
  const Result limited = lumivaneBy("exec prlimit --fsize=600 \"$@\"", command);
  EXPECT_EQ(1, limited.status) << limited.out;
  EXPECT_EQ(0u, limited.err.find("lumivane: ")) << limited.err;
  for (const auto& [name, bytes] : filesIn(folder.path("out"))) {
    EXPECT_NE(".json", fs::path(name).extension()) << name;
    EXPECT_EQ(std::string::npos, name.find(".lumivane.")) << name;
  }
  const Result free = lumivane(command);
  EXPECT_EQ(0, free.status) << free.err;
  EXPECT_TRUE(fs::exists(folder.path("out/a.json")) && fs::exists(folder.path("out/b.json")));
}

TEST(FaultyOutput, PictureByTheDisplayIsWholeOrNotThere) {
  const VirtualDisplay display;
  const Environment there = {{"DISPLAY", display.name()}};
  const TempFolder folder;
  const std::string path = folder.file("a.png", Old);
  const Arguments command = {LUMIVANE_PROGRAM, "shot", Small, "--eye=-4,0.35,1.9", "--png", path};
  const Result limited = runProcess(Arguments{"prlimit", "--fsize=100"} + command, there);
  expectOneLine(limited, path + ": cannot be written: File too large");
  EXPECT_EQ(Old, fileBytes(path));
  EXPECT_EQ(1u, filesIn(folder.path("")).size());
  EXPECT_EQ(0, runProcess(command, there).status);
  EXPECT_EQ(0u, fileBytes(path).find("\x89PNG"));
  EXPECT_EQ(1u, filesIn(folder.path("")).size());
}

}  // namespace
}  // namespace Lumivane::Test
