// What can go wrong with a file that is read: whatever it is, the program ends by itself, well or
// with an error in one line that names the file.

#include "host/FaultWorks.h"
#include "support/Capture.h"
#include "support/Vectors.h"

#include <lumivane/check/SceneChecker.h>
#include <lumivane/io/DataReader.h>
#include <lumivane/session/Error.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/ShotFile.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::Test {
namespace {

namespace fs = std::filesystem;

// Calls a test for each way to read a file, with a folder of its own, where the way writes.
template <class Function>
void forEachInput(Function function) {
  const TempFolder names;
  for (size_t i = 0; i < inputs(names).size(); ++i) {
    const TempFolder folder;
    const Input input = inputs(folder)[i];
    SCOPED_TRACE(input.name);
    function(input, folder);
  }
}

// A name with the ending that says what the file is.
std::string nameLike(const std::string& file) {
  const std::string name = fs::path(file).filename().string();
  return "in" + name.substr(name.find('.'));
}

bool isFirstOutput(const std::string& name) {
  return name == "out.json" || name == "grid.csv" || name.rfind("batch", 0) == 0;
}

size_t outputsIn(const TempFolder& folder) {
  size_t count = 0;
  for (const auto& [name, bytes] : filesIn(folder.path(""))) count += isFirstOutput(name) ? 1 : 0;
  return count;
}

TEST(FaultyInput, EachIsReadWithoutFault) {
  forEachInput([](const Input& input, const TempFolder&) {
    const Result result = lumivane(input.from(input.file));
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ("", result.err);
  });
}

TEST(FaultyInput, MissingFileAndFolderAreReported) {
  forEachInput([](const Input& input, const TempFolder& folder) {
    const std::string missing = folder.path("no-" + nameLike(input.file));
    expectOneLine(lumivane(input.from(missing)),
                  missing + ": cannot be read: No such file or directory");
    const std::string isFolder = folder.path(nameLike(input.file));
    fs::create_directory(isFolder);
    expectOneLine(lumivane(input.from(isFolder)), isFolder + ": cannot be read: it is a folder");
    EXPECT_EQ(0u, outputsIn(folder));
  });
}

TEST(FaultyInput, DeviceThatNeverEndsIsRefused) {
  forEachInput([](const Input& input, const TempFolder& folder) {
    const std::string zero = folder.path(nameLike(input.file));
    fs::create_symlink("/dev/zero", zero);
    expectOneLine(lumivane(input.from(zero)), zero + ": ");
    EXPECT_EQ(0u, outputsIn(folder));
  });
}

TEST(FaultyInput, EmptyFileIsAnErrorOrNothing) {
  forEachInput([](const Input& input, const TempFolder& folder) {
    const std::string empty = folder.file(nameLike(input.file), "");
    expectNoHarm(lumivane(input.from(empty)), empty);
  });
}

// A pipe is read once, from its start to its end.
TEST(FaultyInput, PipeIsReadAsAFileOrRefused) {
  forEachInput([](const Input& input, const TempFolder& folder) {
    const std::string pipe = folder.path(nameLike(input.file));
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    PipeEnd other;
    std::thread writer([&] { other.write(pipe, fileBytes(input.file)); });
    const Result result = lumivane(input.from(pipe));
    other.end();
    writer.join();
    if (input.isReadOnce)
      EXPECT_EQ(0, result.status) << result.err;
    else
      expectOneLine(result, pipe + ": ");
    EXPECT_TRUE(fs::is_fifo(pipe));
  });
}

// It waits for who writes: a signal ends it, and the pipe stays.
TEST(FaultyInput, WaitForAPipeEndsBySignal) {
  for (const std::string command : {"check", "json5", "shot"}) {
    const TempFolder folder;
    const std::string pipe = folder.path("in.json");
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    int writing = -1;
    const Result result =
        runUntil({LUMIVANE_PROGRAM, command, pipe}, {{"DISPLAY", {}}}, SIGTERM, [&] {
          writing = open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
          return writing >= 0;  // only when it has been opened to be read
        });
    close(writing);
    EXPECT_EQ(128 + SIGTERM, result.status) << command;
    EXPECT_FALSE(result.bySignal);
    EXPECT_TRUE(fs::is_fifo(pipe));
  }
}

// What a prefix comes to: nothing, or an error that names the text.
void readPrefix(const std::string& prefix) {
  const auto expectNamed = [](const Session::Error& error) {
    EXPECT_EQ(0u, std::string(error.what()).find("prefix: ")) << error.what();
    EXPECT_EQ(std::string::npos, std::string(error.what()).find('\n')) << error.what();
  };
  try {
    Session::LoadedScene scene = Session::LoadedScene::fromText(prefix, "prefix");
    Session::ViewSettings view;
    view.eye = {-4, 0.35, 1.9};
    EXPECT_FALSE(scene.take(view).text().empty());
  } catch (const Session::Error& error) {
    expectNamed(error);
  }
  try {
    EXPECT_NE(nullptr, Session::readShotText(prefix, "prefix"));
  } catch (const Session::Error& error) {
    expectNamed(error);
  }
  Check::SceneChecker::checkText(prefix);
  IO::DataReader().Json5_to_Json(prefix);
}

TEST(FaultyInput, AnyPrefixOfASceneIsAnErrorOrAScene) {
  const std::string scene = fileBytes(Small);
  std::string joined = scene;
  joined.erase(std::remove(joined.begin(), joined.end(), '\n'), joined.end());
  capturedStdout([&] {
    for (size_t length = 0; length <= scene.size(); ++length) readPrefix(scene.substr(0, length));
    for (size_t length = 0; length <= joined.size(); ++length) readPrefix(joined.substr(0, length));
  });
}

TEST(FaultyInput, AnyPrefixOfAShotIsAnErrorOrAShot) {
  const TempFolder folder;
  const std::string path = folder.path("shot.json");
  ASSERT_EQ(
      0, lumivane({"shot", LUMIVANE_SCENES "/ring.json", "--eye=-4,0.35,1.9", "-o", path}).status);
  const std::string shot = fileBytes(path);
  ASSERT_GT(shot.size(), 500u);
  capturedStdout([&] {
    for (size_t length = 0; length <= shot.size(); length += length < 3000 ? 1 : 97)
      readPrefix(shot.substr(0, length));
  });
}

TEST(FaultyInput, PrefixesReadByTheProgramDoNoHarm) {
  forEachInput([](const Input& input, const TempFolder& folder) {
    const std::string whole = fileBytes(input.file);
    for (size_t part = 0; part < 12; ++part) {
      const size_t length = part < 11 ? whole.size() * part / 11 : whole.size() - 1;
      SCOPED_TRACE(length);
      const std::string cut =
          folder.file(nameLike(input.file), whole.substr(0, std::min(length, whole.size())));
      const std::string out = folder.file("out.json", Old);
      const Result result = lumivane(input.from(cut));
      expectNoHarm(result, cut);
      if (result.status != 0) {
        EXPECT_EQ(Old, fileBytes(out));
      }
    }
  });
}

// Bytes that are no text, in all places of a scene.
TEST(FaultyInput, ForeignBytesAnywhereDoNoHarm) {
  const std::string scene = fileBytes(Small);
  const std::vector<std::string> strange = {
      std::string(1, '\0'),   "\xFF",    "\xC3",         "\xED\xA0\x80",
      "\xF8\x88\x80\x80\x80", "\x1B[2J", "\xEF\xBB\xBF", "\r",
      "\xE2\x80\xA8"};
  capturedStdout([&] {
    for (const std::string& bytes : strange)
      for (size_t at = 0; at <= scene.size(); at += 7)
        readPrefix(std::string(scene).insert(at, bytes));
  });
}

TEST(FaultyInput, ForeignBytesReadByTheProgramDoNoHarm) {
  forEachInput([](const Input& input, const TempFolder& folder) {
    const std::string whole = fileBytes(input.file);
    for (const std::string& bytes :
         std::vector<std::string>{std::string(1, '\0'), "\xFF\xFE", "\xEF\xBB\xBF", "\r\n"})
      for (const size_t at : {size_t{0}, whole.size() / 3, whole.size()}) {
        const std::string path =
            folder.file(nameLike(input.file), std::string(whole).insert(at, bytes));
        expectNoHarm(lumivane(input.from(path)), path);
      }
  });
}

std::string withCarriageReturns(const std::string& text) {
  std::string result;
  for (const char c : text) result += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return result;
}

TEST(FaultyInput, ForeignLineEndsChangeNothing) {
  const TempFolder folder;
  const std::string foreign = folder.file("a.json", withCarriageReturns(fileBytes(Small)));
  for (const std::string& scene : {Small, foreign})
    EXPECT_EQ(0, lumivane({"shot", scene, "--eye=-4,0.35,1.9", "-o",
                           folder.path(scene == Small ? "plain" : "foreign")})
                     .status);
  EXPECT_EQ(fileBytes(folder.path("plain")), fileBytes(folder.path("foreign")));
}

TEST(FaultyInput, ByteOrderMarkIsReported) {
  const TempFolder folder;
  const std::string path = folder.file("a.json", "\xEF\xBB\xBF" + fileBytes(Small));
  for (const std::string command : {"shot", "check"}) {
    const Result result = lumivane({command, path});
    EXPECT_NE(0, result.status);
    EXPECT_NE(std::string::npos, (result.out + result.err).find(path)) << result.err;
  }
}

bool isUtf8(const std::string& text) {
  for (size_t i = 0; i < text.size();) {
    const auto lead = static_cast<unsigned char>(text[i]);
    const size_t length = lead < 0x80   ? 1
                          : lead < 0xC2 ? 0
                          : lead < 0xE0 ? 2
                          : lead < 0xF0 ? 3
                          : lead < 0xF5 ? 4
                                        : 0;
    if (length == 0 || i + length > text.size()) return false;
    for (size_t k = 1; k < length; ++k)
      if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
    i += length;
  }
  return true;
}

#ifdef LUMIVANE_HOST_TOOLS
// An object's name goes into pictures and pages, which are for other programs to read.
TEST(FaultyInput, NamesThatAreNoTextMakeNoOutputUnreadable) {
  const TempFolder folder;
  std::string scene = fileBytes(Small);
  const size_t id = scene.find("\"Id\"");
  const size_t name = scene.find('"', scene.find(':', id)) + 1;
  scene.insert(name, "<&]]>\xFF\xC3\x01\x7F\xED\xA0\x80");
  const std::string path = folder.file("a.json", scene);
  const std::vector<std::string> made = {folder.path("a.svg"), folder.path("a.html"),
                                         folder.path("a.csv"), folder.path("b.json")};
  const Result result = lumivane({"shot", path, "--eye=-4,0.35,1.9", "--svg", made[0], "--html",
                                  made[1], "--visible", made[2]});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_EQ(0, lumivane({"shot", path, "--eye=-4,0.35,1.9", "--visible", made[3]}).status);
  for (const size_t i : {size_t{0}, size_t{1}}) {
    const std::string text = fileBytes(made[i]);
    EXPECT_TRUE(isUtf8(text)) << made[i];
    for (const char c : text)
      ASSERT_TRUE(static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\t') << made[i];
  }
}
#endif

// The text of a document of about 200 MB: a head, a piece again and again, an end.
std::string bigFile(const TempFolder& folder, const std::string& name, const std::string& head,
                    const std::string& piece, const std::string& end) {
  constexpr size_t Bytes = 200'000'000;
  std::string block;
  while (block.size() < 1'000'000) block += piece;
  const std::string path = folder.path(name);
  std::ofstream stream(path, std::ios::binary);
  stream << head;
  for (size_t done = 0; done < Bytes; done += block.size()) stream << block;
  stream << end;
  if (!stream.flush()) throw std::runtime_error("cannot write " + path);
  return path;
}

TEST(FaultyInput, SceneOf200MegabytesIsRead) {
  const TempFolder folder;
  const std::string scene =
      bigFile(folder, "a.json", "{\"Objects\":[],\"Points\":[[0,0,0]",
              ",[1.250000000000000000000,-7.500000000000000000000,1000.000000000000000]", "]}");
  EXPECT_GT(fs::file_size(scene), 200'000'000u);
  const Result shot = lumivane({"shot", scene, "-o", folder.path("out.json")});
  EXPECT_EQ(0, shot.status) << shot.err;
  EXPECT_TRUE(fs::exists(folder.path("out.json")));
  expectNoHarm(lumivane({"check", scene}), scene);
}

TEST(FaultyInput, StringOf200MegabytesDoesNoHarm) {
  const TempFolder folder;
  const std::string text =
      bigFile(folder, "a.json", "{\"Objects\":[],\"Notes\":\"", "word ", "\"}");
  expectNoHarm(lumivane({"shot", text, "-o", folder.path("out.json")}), text);
  expectNoHarm(lumivane({"check", text}), text);
  expectNoHarm(lumivane({"json5", text, "-o", folder.path("out.json")}), text);
}

TEST(FaultyInput, NothingOf200MegabytesIsAnError) {
  const TempFolder folder;
  const std::string blanks = bigFile(folder, "a.json", "", "      \n", "");
  expectOneLine(lumivane({"shot", blanks}), blanks + ": not JSON");
  expectNoHarm(lumivane({"check", blanks}), blanks);
}

#ifdef LUMIVANE_HOST_TOOLS
TEST(FaultyInput, ModelOf200MegabytesIsImported) {
  const TempFolder folder;
  const std::string model = bigFile(folder, "a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\n",
                                    "# a note of some length\nvn 0 0 1\n", "f 1 2 3\n");
  const Result result = lumivane({"import", model, "-o", folder.path("a.json")});
  EXPECT_EQ(0, result.status) << result.err;
}
#endif

#ifndef LUMIVANE_SANITIZED  // which needs far more room itself
// 200 million lists within each other need more than there is.
TEST(FaultyInput, EndOfMemoryIsAnErrorAndLeavesTheOldFile) {
  const TempFolder folder;
  const std::string lists = bigFile(folder, "a.json", "", "[", "");
  const std::string out = folder.file("out.json", Old);
  const std::string within = "exec prlimit --as=2000000000 \"$@\"";
  for (const Arguments& command :
       std::vector<Arguments>{{"shot", lists, "-o", out}, {"check", lists}}) {
    SCOPED_TRACE(command[0]);
    const Result result = lumivaneBy(within, command);
    EXPECT_TRUE(result.status == 1 || result.status == 2) << result.status;
    EXPECT_EQ(0u, result.err.find("lumivane: ")) << result.err;
    EXPECT_EQ(Old, fileBytes(out));
    EXPECT_EQ(2u, filesIn(folder.path("")).size());
  }
}
#endif

#ifndef LUMIVANE_SANITIZED
// What had been built was taken apart by destructors that needed memory, which ended the process.
TEST(Regression, EndOfMemoryEndedTheProgramWithoutAWord) {
  const TempFolder folder;
  const std::string model = LUMIVANE_SCENES "/models/delft.city.json";
  const std::string out = folder.path("out.json");
  int failed = 0;
  // From where nothing works to where all does, whatever the allocator takes at a time.
  for (int megabytes = 90, succeeded = 0; succeeded < 2 && megabytes <= 400; megabytes += 10) {
    SCOPED_TRACE(megabytes);
    succeeded = 0;
    const std::string within =
        "exec prlimit --as=" + std::to_string(megabytes * 1000000) + " \"$@\"";
    if (lumivaneBy(within, {"--version"}).status != 0) continue;  // not even the libraries
    for (const Arguments& command :
         std::vector<Arguments>{{"import", model, "-o", out}, {"check", model}}) {
      SCOPED_TRACE(command[0]);
      const Result result = lumivaneBy(within, command);
      EXPECT_LE(result.status, 2) << result.err;
      if (result.err.empty()) {
        ++succeeded;
        continue;
      }
      ++failed;
      EXPECT_EQ("lumivane: there is not enough memory\n", result.err);
    }
  }
  EXPECT_GT(failed, 0);
}
#endif

TEST(FaultyInput, MillionNestedListsDoNoHarm) {
  const size_t depth = 1'000'000;
  const std::string open(depth, '[');
  const std::string lists = open + std::string(depth, ']');
  std::string objects;
  for (size_t i = 0; i < depth; ++i) objects += "{\"a\":";
  const std::vector<std::string> texts = {lists, open, objects + "1" + std::string(depth, '}'),
                                          "{\"Points\":" + lists + ",\"Objects\":" + lists + "}"};
  forEachInput([&](const Input& input, const TempFolder& folder) {
    const std::string whole = fileBytes(input.file);
    if (whole[0] != '{') return;  // no JSON
    std::vector<std::string> all = texts;
    all.push_back("{\"deep\":" + lists + "," + whole.substr(1));
    for (const std::string& text : all) {
      const std::string path = folder.file(nameLike(input.file), text);
      expectNoHarm(lumivane(input.from(path)), path);
    }
  });
}

// While it lives, a file loses its second half and gets it back, over and over.
class Shrinking {
 public:
  Shrinking(const std::string& file, const std::string& bytes)
      : descriptor(open(file.c_str(), O_WRONLY | O_CLOEXEC)), whole(bytes), worker([this] {
          while (!over) shrinkAndGrow();
        }) {}
  Shrinking(const Shrinking&) = delete;
  Shrinking& operator=(const Shrinking&) = delete;
  ~Shrinking() {
    over = true;
    worker.join();
    close(descriptor);
  }

 private:
  void shrinkAndGrow() {
    const auto half = static_cast<off_t>(whole.size() / 2);
    if (ftruncate(descriptor, half) != 0) over = true;
    if (pwrite(descriptor, whole.data(), whole.size(), 0) < 0) over = true;
  }

  int descriptor;
  std::string whole;
  std::atomic<bool> over = false;
  std::thread worker;
};

TEST(FaultyInput, FileThatShrinksWhileItIsReadDoesNoHarm) {
  forEachInput([](const Input& input, const TempFolder& folder) {
    const std::string bytes = fileBytes(input.file);
    const std::string path = folder.file(nameLike(input.file), bytes);
    const Shrinking shrinking(path, bytes);
    for (int run = 0; run < 10; ++run) {
      const std::string out = folder.file("out.json", Old);
      const Result result = lumivane(input.from(path));
      expectNoHarm(result, path);
      if (result.status != 0) {
        EXPECT_EQ(Old, fileBytes(out));
      }
    }
  });
}

// Its size is given as 0, and it differs from one look to the next.
TEST(FaultyInput, FileOfTheKernelDoesNoHarm) {
  for (const std::string file : {"/proc/self/maps", "/proc/cpuinfo", "/proc/self/mem"})
    for (const std::string command : {"shot", "check", "json5"})
      expectNoHarm(lumivane({command, file}), file);
}

}  // namespace
}  // namespace Lumivane::Test
