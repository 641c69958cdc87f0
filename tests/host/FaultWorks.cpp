#include "host/FaultWorks.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace Lumivane::Test {
namespace {

namespace fs = std::filesystem;

const Arguments Shot = {"shot", Small, "--eye=-4,0.35,1.9"};
const Arguments Program = {"timeout", "120", LUMIVANE_PROGRAM};

// Over a kilobyte, so that a part of it can be written.
std::string json5Text() {
  std::string text = "// numbers\n{a: [";
  for (int i = 0; i < 500; ++i) text += std::to_string(i) + ", ";
  return text + "]}\n";
}

std::vector<Output> shotOutputs() {
  return {
      {"shot", Shot + Arguments{"-o"}, ".json"},
      {"statistics", Shot + Arguments{"--stats"}, ".json", false},
#ifdef LUMIVANE_HOST_TOOLS
      {"shares", Shot + Arguments{"--visible"}, ".csv"},
      {"shares as JSON", Shot + Arguments{"--visible"}, ".json"},
#endif
#ifdef LUMIVANE_HOST_TOOLS
      {"SVG", Shot + Arguments{"--svg"}, ".svg"},
      {"PDF", Shot + Arguments{"--pdf"}, ".pdf"},
      {"EPS", Shot + Arguments{"--eps"}, ".eps"},
      {"PNG", Shot + Arguments{"--png-vector"}, ".png"},
      {"page", Shot + Arguments{"--html"}, ".html"},
      {"page with both", Shot + Arguments{"--html-both", "--html"}, ".html"},
#endif
  };
}

}  // namespace

Arguments operator+(Arguments first, const Arguments& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Result lumivane(const Arguments& arguments) {
  return runProcess(Program + arguments, {{"DISPLAY", {}}});
}

Result lumivaneBy(const std::string& shell, const Arguments& arguments) {
  return runProcess(Arguments{"/bin/sh", "-c", shell, "sh"} + Program + arguments,
                    {{"DISPLAY", {}}});
}

std::vector<Output> outputs(const TempFolder& inputs) {
  std::vector<Output> result = shotOutputs();
  result.push_back({"JSON", {"json5", inputs.file("numbers.json5", json5Text()), "-o"}, ".json"});
  result.push_back({"table", {"grid", Small, "--spacing", "0.3", "--height", "1.5", "-o"}, ".csv"});
#ifdef LUMIVANE_HOST_TOOLS
  const std::string house = LUMIVANE_MODELS "/house.city.json";
  // A model without classes: others have a table of them beside the scene.
  result.push_back({"scene", {"import", LUMIVANE_MODELS "/pyramid.ply", "-o"}, ".json"});
  result.push_back({"report", {"import", house, "-o", "/dev/null", "--stats"}, ".json"});
#endif
  return result;
}

std::vector<Input> inputs(const TempFolder& made) {
  const std::string out = made.path("out.json");
  std::vector<Input> result = {
      {"shot", {"shot"}, {"--eye=-4,0.35,1.9", "-o", out}, Small},
      {"check", {"check"}, {}, Small},
      {"grid", {"grid"}, {"--spacing", "1", "--height", "1.5", "-o", made.path("grid.csv")}, Small},
      {"json5", {"json5"}, {"-o", out}, Small, false},
      {"batch",
       {"batch"},
       {made.file("views.csv", "name,eye\na,\"-4,0.35,1.9\"\n"), "--out-dir", made.path("batch"),
        "--output", "{name}.json"},
       Small,
       true,
       false},
      {"views",
       {"batch", Small},
       {"--out-dir", made.path("batch"), "--output", "{name}.json"},
       made.path("views.csv"),
       false},
  };
#ifdef LUMIVANE_HOST_TOOLS
  for (const std::string name :
       {"house.city.json", "cube.obj", "pyramid.ply", "pyramid-big.ply", "tetrahedron.stl",
        "tetrahedron-binary.stl", "boxes.gltf", "boxes.glb"})
    result.push_back(
        {"import of " + name, {"import"}, {"-o", out}, LUMIVANE_MODELS "/" + name, false});
#endif
  return result;
}

std::map<std::string, std::string> filesIn(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    files[fs::relative(entry.path(), folder).string()] =
        entry.is_regular_file() ? fileBytes(entry.path().string()) : "";
  return files;
}

void PipeEnd::write(const std::string& pipe, const std::string& bytes) {
  std::signal(SIGPIPE, SIG_IGN);  // the program may not want all of it
  int end = -1;
  while ((end = open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) < 0 && !over) usleep(1000);
  if (end < 0) return;
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t count = ::write(end, bytes.data() + done, bytes.size() - done);
    if (count < 0 && (errno != EAGAIN || over)) break;
    if (count < 0)
      usleep(1000);
    else
      done += static_cast<size_t>(count);
  }
  close(end);
}

std::string PipeEnd::read(const std::string& pipe) {
  const int end = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  std::string bytes;
  char buffer[65536];
  for (bool last = false; !last;) {
    last = over;  // what is there by then is the rest
    ssize_t count = 0;
    while ((count = ::read(end, buffer, sizeof buffer)) > 0)
      bytes.append(buffer, static_cast<size_t>(count));
    usleep(1000);
  }
  close(end);
  return bytes;
}

void expectOneLine(const Result& result, const std::string& words) {
  EXPECT_FALSE(result.bySignal);
  EXPECT_TRUE(result.status == 1 || result.status == 2) << result.status;
  EXPECT_EQ(0u, result.err.find("lumivane: ")) << result.err;
  EXPECT_NE(std::string::npos, result.err.find(words)) << result.err << " lacks " << words;
  EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n')) << result.err;
}

void expectNoHarm(const Result& result, const std::string& file) {
  EXPECT_FALSE(result.bySignal);
  if (result.status == 0) return;
  // The checks of a scene are reported on standard output.
  if (result.err.empty())
    EXPECT_NE(std::string::npos, result.out.find(file + ": ")) << result.out;
  else
    expectOneLine(result, file);
}

}  // namespace Lumivane::Test
