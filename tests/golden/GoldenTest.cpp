// One test per case of the golden folder, twice: GoldenLibrary makes the shot by the public
// classes (program golden_case), GoldenProgram by the command `lumivane shot`.

#include "support/Vectors.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Lumivane::Test::Json;

std::string caseProgram;
std::string lumivaneProgram;

std::string textOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

Json jsonOf(const fs::path& path) {
  const std::string text = textOf(path);
  return text.empty() ? Json() : Json::parse(text);
}

std::string shellQuoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}

/// A folder of its own for each case: the report of a cycle goes to the working directory.
class Scratch {
 public:
  Scratch() {
    std::string name = (fs::temp_directory_path() / "lumivane-golden-XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() { fs::remove_all(path_); }
  const fs::path& path() const { return path_; }
  int run(const std::string& command) const {
    return std::system(("cd " + shellQuoted(path_.string()) + " && " + command).c_str());
  }

 private:
  fs::path path_;
};

void expectSameText(const fs::path& expected, const fs::path& actual) {
  ASSERT_TRUE(fs::exists(actual)) << "no shot file was written";
  const std::string a = textOf(expected);
  const std::string b = textOf(actual);
  if (a == b) return;
  const auto differ = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  const auto at = static_cast<size_t>(differ.first - a.begin());
  const size_t from = at < 60 ? 0 : at - 60;
  FAIL() << "shots differ at byte " << at << " of " << a.size()
         << "\nexpected: " << a.substr(from, 160) << "\n     got: " << b.substr(from, 160);
}

void expectPrinted(const Json& console, const std::string& printed) {
  size_t expected = 0;
  for (const auto& [message, count] : console.items()) {
    size_t found = 0;
    for (size_t at = printed.find(message); at != std::string::npos;
         at = printed.find(message, at + message.size()))
      ++found;
    EXPECT_EQ(count.get<size_t>(), found) << message;
    expected += found * message.size();
  }
  EXPECT_EQ(expected, printed.size()) << "more was printed than expected:\n" << printed;
}

/// The last shift of each object is what its record keeps.
Json lastShifts(const Json& shifts) {
  Json result = Json::object();
  for (const Json& shift : shifts) result[shift.at(0).get<std::string>()] = shift.at(1);
  return result;
}

void expectStats(const Json& expected, const Json& actual, const fs::path& folder) {
  for (const char* key : {"points", "regions", "emptyRegions", "objects", "faces", "eyeAfter",
                          "progress", "property", "scale", "overrideColors"})
    if (expected.contains(key)) {
      EXPECT_EQ(expected.at(key), actual.at(key)) << key;
    }
  if (expected.contains("console")) expectPrinted(expected.at("console"), actual.at("printed"));
  if (expected.contains("cameraShifts") && !expected.at("cameraShifts").empty()) {
    EXPECT_EQ(lastShifts(expected.at("cameraShifts")), actual.at("cameraRegions"));
  }
  if (expected.contains("report")) {
    const fs::path report = folder / "log_sort.txt";
    EXPECT_EQ(!expected.at("report").is_null(), fs::exists(report));
    if (fs::exists(report)) {
      EXPECT_EQ(expected.at("report").get<std::string>(), textOf(report));
    }
  }
}

void checkLibrary(const fs::path& folder, const std::string& name) {
  const Scratch scratch;
  ASSERT_EQ(0, scratch.run(shellQuoted(caseProgram) + " " + shellQuoted(folder.string()) + " " +
                           shellQuoted(name) + " out >console.txt"))
      << textOf(scratch.path() / "console.txt");
  const Json expected = jsonOf(folder / (name + ".stats.json"));
  const Json actual = jsonOf(scratch.path() / "out.stats.json");
  const fs::path shot = folder / (name + ".shot.json");
  if (expected.contains("throws") || expected.contains("shot")) {
    EXPECT_EQ(expected, actual);
    return;
  }
  ASSERT_FALSE(actual.contains("throws")) << actual;
  ASSERT_FALSE(actual.contains("shot")) << "the shot was not made";
  expectSameText(shot, scratch.path() / "out.shot.json");
  if (!expected.is_null()) expectStats(expected, actual, scratch.path());
}

std::string coordinates(const Json& json, const char* key, const std::string& otherwise) {
  if (!json.contains(key)) return otherwise;
  std::string result;
  for (const Json& value : json.at(key))
    result +=
        (result.empty() ? "" : ",") + (value.is_string() ? value.get<std::string>() : value.dump());
  return result;
}

std::string shotCommand(const fs::path& folder, const std::string& name, const Json& view) {
  std::ostringstream command;
  command << shellQuoted(lumivaneProgram) << " shot "
          << shellQuoted((folder / (name + ".scene.json")).string())
          << " --eye=" << coordinates(view, "eye", "0,0,0")
          << " --forward=" << coordinates(view, "forward", "1,0,0")
          << " --up=" << coordinates(view, "up", "0,0,1") << " --camera "
          << view.value("camera", "spherical") << " --d1 " << view.value("d1", Json(0.01)).dump()
          << " --d2 " << view.value("d2", Json(1.0)).dump() << " --segments "
          << view.value("sn", Json(6)).dump() << " --max-length "
          << view.value("sl", Json(0.0)).dump();
  // Some cases are scenes with errors, of which a shot comes out all the same.
  command << " --no-check -o out.shot.json --stats stats.json >console.txt 2>errors.txt";
  return command.str();
}

void checkProgram(const fs::path& folder, const std::string& name) {
  const Scratch scratch;
  const Json view = jsonOf(folder / (name + ".view.json"));
  std::string command = shotCommand(folder, name, view);
  // The program does not colour by values: it refuses to, so no scale can be wrong for it.
  const bool isColoured = view.value("property", -1) > 0 && view.value("scale", -1) > 0;
  if (isColoured && !fs::exists(folder / (name + ".shot.json"))) command += " --scale 1";
  const int status = scratch.run(command);
  const std::string errors = textOf(scratch.path() / "errors.txt");
  const fs::path shot = folder / (name + ".shot.json");
  if (!fs::exists(shot)) {
    EXPECT_NE(0, status);
    EXPECT_EQ(1, std::count(errors.begin(), errors.end(), '\n')) << errors;
    EXPECT_FALSE(fs::exists(scratch.path() / "out.shot.json"));
    return;
  }
  ASSERT_EQ(0, status) << errors;
  expectSameText(shot, scratch.path() / "out.shot.json");
  const Json expected = jsonOf(folder / (name + ".stats.json"));
  if (!expected.is_null()) {
    const Json actual = jsonOf(scratch.path() / "stats.json");
    EXPECT_EQ(expected.at("points"), actual.at("points"));
    EXPECT_EQ(expected.at("regions"), actual.at("regions"));
    EXPECT_EQ(expected.at("faces"), actual.at("faces_drawn"));
    EXPECT_EQ(expected.at("hiddenFaces"), actual.at("faces_hidden"));
    EXPECT_EQ(expected.at("objects"), actual.at("objects"));
  }
}

class GoldenCheck : public ::testing::Test {
 public:
  GoldenCheck(void (*check)(const fs::path&, const std::string&), fs::path folder, std::string name)
      : check_(check), folder_(std::move(folder)), name_(std::move(name)) {}
  void TestBody() override { check_(folder_, name_); }

 private:
  void (*check_)(const fs::path&, const std::string&);
  fs::path folder_;
  std::string name_;
};

void addTest(const char* suite, const std::string& name,
             void (*check)(const fs::path&, const std::string&), const fs::path& folder) {
  ::testing::RegisterTest(
      suite, name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
      [=]() -> ::testing::Test* { return new GoldenCheck(check, folder, name); });
}

void failEmpty(const fs::path& folder, const std::string&) { FAIL() << "no case in " << folder; }

/// What the program takes no option for: face values, earlier shots, a camera without a kind.
bool fitsProgram(const Json& view) {
  return !view.contains("faceValues") && !view.contains("before") &&
         view.value("camera", "spherical") != "undefined";
}

void registerCases(const fs::path& folder) {
  const std::string ending = ".view.json";
  std::vector<std::string> names;
  if (fs::is_directory(folder))
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
      const std::string file = entry.path().filename().string();
      if (file.size() > ending.size() &&
          file.compare(file.size() - ending.size(), ending.size(), ending) == 0)
        names.push_back(file.substr(0, file.size() - ending.size()));
    }
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    addTest("GoldenLibrary", name, checkLibrary, folder);
    if (fitsProgram(jsonOf(folder / (name + ".view.json"))))
      addTest("GoldenProgram", name, checkProgram, folder);
  }
  if (names.empty()) {
    addTest("GoldenLibrary", "HasCases", failEmpty, folder);
    addTest("GoldenProgram", "HasCases", failEmpty, folder);
  }
}

bool takeOption(const std::string& argument, const std::string& option, std::string& value) {
  if (argument.compare(0, option.size(), option) != 0) return false;
  value = argument.substr(option.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i)
    if (!takeOption(argv[i], "--case-program=", caseProgram) &&
        !takeOption(argv[i], "--lumivane=", lumivaneProgram))
      return 2;
  registerCases(fs::absolute(Lumivane::Test::goldenDir()));
  return RUN_ALL_TESTS();
}
