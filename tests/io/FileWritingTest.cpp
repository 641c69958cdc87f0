#include "support/TempFolder.h"

#include <lumivane/io/Error.h>
#include <lumivane/io/FileReading.h>
#include <lumivane/io/FileWriting.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::IO {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::fileBytes;
using Lumivane::Test::TempFolder;

size_t entries(const TempFolder& folder) {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder.path(""))) ++count;
  return count;
}

std::string refusal(const std::string& path) {
  try {
    writeFile(path, "text");
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

TEST(Files, NewFileIsWrittenAndNothingElseIsLeft) {
  const TempFolder folder;
  writeFile(folder.path("a"), std::string("x\0y\n", 4));
  EXPECT_EQ(std::string("x\0y\n", 4), fileBytes(folder.path("a")));
  EXPECT_EQ(1u, entries(folder));
}

TEST(Files, OldFileIsReplacedAndKeepsItsMode) {
  const TempFolder folder;
  const std::string path = folder.file("a", "a longer text than the new one");
  chmod(path.c_str(), 0640);
  writeFile(path, "new");
  EXPECT_EQ("new", fileBytes(path));
  struct stat status = {};
  ASSERT_EQ(0, stat(path.c_str(), &status));
  EXPECT_EQ(0640u, status.st_mode & 0777u);
  EXPECT_EQ(1u, entries(folder));
}

TEST(Files, LinkStaysALink) {
  const TempFolder folder;
  const std::string real = folder.file("real", "old");
  fs::create_symlink("real", folder.path("link"));
  writeFile(folder.path("link"), "new");
  EXPECT_TRUE(fs::is_symlink(folder.path("link")));
  EXPECT_EQ("new", fileBytes(real));
}

TEST(Files, MissingFolderIsAnError) {
  const TempFolder folder;
  const std::string path = folder.path("no/a");
  EXPECT_EQ(path + ": cannot be written: No such file or directory", refusal(path));
}

TEST(Files, FolderInTheFilesPlaceIsAnError) {
  const TempFolder folder;
  fs::create_directory(folder.path("a"));
  EXPECT_EQ(folder.path("a") + ": cannot be written: it is a folder", refusal(folder.path("a")));
  EXPECT_EQ(folder.path("b/") + ": cannot be written: it names a folder",
            refusal(folder.path("b/")));
  EXPECT_NE("", refusal(folder.file("c", "") + "/d"));
  EXPECT_NE("", refusal(""));
}

TEST(Files, FullDeviceIsAnError) {
  EXPECT_EQ("/dev/full: cannot be written: No space left on device", refusal("/dev/full"));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(Files, DeviceIsWrittenAndStaysADevice) {
  writeFile("/dev/null", "text");
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

// A limit on the size of files stands for a disk that is full half way through.
[[noreturn]] void writeTooMuch(const std::string& path) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit = {};
  limit.rlim_cur = 1000;
  limit.rlim_max = 1000;
  setrlimit(RLIMIT_FSIZE, &limit);
  try {
    writeFile(path, std::string(5000, 'x'));
  } catch (const Error& error) {
    std::fputs(error.what(), stderr);
    _exit(3);
  }
  _exit(0);
}

TEST(Files, FailedWriteKeepsTheOldFileAndLeavesNothingBeside) {
  const TempFolder folder;
  const std::string path = folder.file("a", "old");
  EXPECT_EXIT(writeTooMuch(path), ::testing::ExitedWithCode(3),
              "a: cannot be written: File too large");
  EXPECT_EQ("old", fileBytes(path));
  EXPECT_EQ(1u, entries(folder));
}

// The limit's signal comes in the middle of a write, with a part of the bytes in the new file.
[[noreturn]] void endInTheMiddleOfAWrite(const std::string& path) {
  std::signal(SIGXFSZ, [](int) {
    removeUnfinishedFiles();
    _exit(4);
  });
  rlimit limit = {};
  limit.rlim_cur = 1000;
  limit.rlim_max = 1000;
  setrlimit(RLIMIT_FSIZE, &limit);
  writeFile(path, std::string(5000, 'x'));
  _exit(0);
}

TEST(Files, HandlerOfASignalRemovesWhatIsBeingWritten) {
  const TempFolder folder;
  const std::string path = folder.file("a", "old");
  EXPECT_EXIT(endInTheMiddleOfAWrite(path), ::testing::ExitedWithCode(4), "");
  EXPECT_EQ("old", fileBytes(path));
  EXPECT_EQ(1u, entries(folder));
}

TEST(Files, WrittenFilesAreNotRemoved) {
  const TempFolder folder;
  writeFile(folder.path("a"), "text");
  removeUnfinishedFiles();
  EXPECT_EQ("text", fileBytes(folder.path("a")));
}

TEST(Files, LongestNameIsWritten) {
  const TempFolder folder;
  const std::string path = folder.path(std::string(255, 'n'));
  writeFile(path, "text");
  EXPECT_EQ("text", fileBytes(path));
}

TEST(Files, ThreadsWriteAtATimeAndTheLastOneStands) {
  const TempFolder folder;
  std::vector<std::thread> threads;
  for (char c = 'a'; c < 'a' + 24; ++c)
    threads.emplace_back([&folder, c] {
      writeFile(folder.path("same"), std::string(3000, c));
      writeFile(folder.path(std::string(1, c)), std::string(1, c));
    });
  for (std::thread& thread : threads) thread.join();
  const std::string same = fileBytes(folder.path("same"));
  ASSERT_EQ(3000u, same.size());
  EXPECT_EQ(std::string::npos, same.find_first_not_of(same[0]));
  EXPECT_EQ("x", fileBytes(folder.path("x")));
  EXPECT_EQ(25u, entries(folder));
}

TEST(Files, NamesOfOneFileAreKnownAsTheSame) {
  const TempFolder folder;
  const std::string path = folder.file("a", "");
  fs::create_symlink("a", folder.path("link"));
  EXPECT_TRUE(sameFile(path, path));
  EXPECT_TRUE(sameFile(path, folder.path("./a")));
  EXPECT_TRUE(sameFile(path, folder.path("link")));
  EXPECT_TRUE(sameFile(folder.path("new"), folder.path("./new")));
  EXPECT_FALSE(sameFile(path, folder.path("b")));
}

// A folder of its own as the working directory, for names without one.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::string& path) : before(fs::current_path()) {
    fs::current_path(path);
  }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() { fs::current_path(before); }

 private:
  fs::path before;
};

TEST(Files, TwoSpellingsOfANewFileAreOneFile) {
  const TempFolder folder;
  const WorkingFolder here(folder.path(""));
  EXPECT_TRUE(sameFile("new", "./new"));
  EXPECT_TRUE(sameFile("new", folder.path("new")));
  EXPECT_TRUE(sameFile("none/../new", "./new"));
  fs::create_symlink("new", "dangling");
  EXPECT_TRUE(sameFile("dangling", "new"));
  EXPECT_FALSE(sameFile("new", "./newer"));
}

TEST(Files, ALinkThatPointsAtNothingStaysALink) {
  const TempFolder folder;
  fs::create_directory(folder.path("sub"));
  fs::create_symlink("sub/second", folder.path("first"));
  fs::create_symlink("real", folder.path("sub/second"));
  writeFile(folder.path("first"), "bytes");
  EXPECT_TRUE(fs::is_symlink(folder.path("first")));
  EXPECT_TRUE(fs::is_symlink(folder.path("sub/second")));
  EXPECT_EQ("bytes", fileBytes(folder.path("sub/real")));
  fs::create_symlink("no/such/folder", folder.path("away"));
  EXPECT_THROW(writeFile(folder.path("away"), "bytes"), Error);
  EXPECT_TRUE(fs::is_symlink(folder.path("away")));
  fs::create_symlink("circle", folder.path("circle"));
  EXPECT_THROW(writeFile(folder.path("circle"), "bytes"), Error);
  EXPECT_TRUE(fs::is_symlink(folder.path("circle")));
}

}  // namespace
}  // namespace Lumivane::IO
