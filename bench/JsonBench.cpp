// The JSON layer and the way of documents through it, on texts of about 10 MB made here: parsing,
// destroying, writing, reading a scene and writing a shot, by string and by file.
// The library prints its lines between the results; --benchmark_out=FILE keeps them apart.

#include <lumivane/lumivane.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

namespace {

namespace Lv = Lumivane;
using Random = std::mt19937_64;

constexpr int Boxes = 7000;
constexpr int Regions = 29000;

std::string number(Random& random, double size) {
  return Jzon::Node(std::uniform_real_distribution<double>(-size, size)(random)).toString();
}

/// "[a,b,...]" of what `entry` makes of each index.
template <class Entry>
std::string listOf(int count, Entry entry) {
  std::string text = "[";
  for (int i = 0; i < count; ++i) text += (i > 0 ? "," : "") + entry(i);
  return text + "]";
}

std::string numbersFrom(int first, int count) {
  return listOf(count, [first](int i) { return std::to_string(first + i); });
}

/// Boxes of 8 points and 6 faces each; the geometry is of no account.
std::string sceneText() {
  Random random(1);
  const auto coordinate = [&random](int) { return number(random, 5000.0); };
  const auto region = [](int i) {
    return "{\n\"Brush\": 1,\n\"Face\": " + std::to_string(i + 1) +
           ",\n\"Points\": " + numbersFrom(i * 4 + 1, 4) + "\n}";
  };
  const auto face = [&random](int i) {
    return "{\n\"Regions\": [" + std::to_string(i + 1) +
           "],\n\"Normal\": " + listOf(3, [&random](int) { return number(random, 1.0); }) + "\n}";
  };
  const auto object = [&](int i) {
    return "{\n\"Id\": \"building-" + std::to_string(i) +
           "\",\n\"PartsCount\": 1,\n\"Pen\": 1,\n\"Faces\": " + listOf(6, face) +
           ",\n\"Parts\": [{\n\"Regions\": [1,2,3,4,5,6]\n}],\n\"Regions\": " + listOf(6, region) +
           ",\n\"Overlays\": []\n}";
  };
  const auto point = [&coordinate](int) { return listOf(3, coordinate); };
  return "{\n\"Brushes\": [[200,200,200,255]],\n\"Pens\": [[0,0,0,255,1]],\n\"Points\": " +
         listOf(8 * Boxes, point) + ",\n\"Objects\": " + listOf(Boxes, object) + "\n}";
}

/// Polygons of 10 points of their own.
std::string shotText() {
  Random random(2);
  const auto point = [&random](int) {
    return listOf(2, [&random](int) { return number(random, 1.0); });
  };
  const auto region = [](int i) {
    return "{\n\"Object\": 1,\n\"Pen\": 1,\n\"Brush\": 1,\n\"Face\": 1,\n\"SourceRegion\": 1,\n"
           "\"Points\": " +
           numbersFrom(10 * i + 1, 10) + ",\n\"DockingEdges\": [1,3]\n}";
  };
  return "{\n\"Brushes\": [[200,200,200,255]],\n\"Pens\": [[0,0,0,255,1]],\n\"Points\": " +
         listOf(10 * Regions, point) + ",\n\"Regions\": " + listOf(Regions, region) +
         ",\n\"Objects\": [{\n\"Id\": \"A\",\n\"Faces\": [{\n\"Regions\": [1]\n}]\n}]\n}";
}

const std::string& theScene() {
  static const std::string text = sceneText();
  return text;
}
const std::string& theShot() {
  static const std::string text = shotText();
  return text;
}

void countBytes(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(state.iterations() * static_cast<long>(text.size()));
}

/// A file of its own in the folder for such, gone at the end.
struct BenchFile {
  explicit BenchFile(const std::string& text)
      : path((std::filesystem::temp_directory_path() / "lumivane-json-bench").string()) {
    std::ofstream(path) << text;
  }
  BenchFile(const BenchFile&) = delete;
  BenchFile& operator=(const BenchFile&) = delete;
  ~BenchFile() { std::remove(path.c_str()); }
  const std::string path;
};

void parse(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(Jzon::Parser().parseString(theScene()));
  countBytes(state, theScene());
}
BENCHMARK(parse)->Unit(benchmark::kMillisecond);

void writeTree(benchmark::State& state) {
  const Jzon::Node root = Jzon::Parser().parseString(theScene());
  for (auto _ : state) {
    std::string text;
    Jzon::Writer(Jzon::Format{true, true, true, 1}).writeString(root, text);
    benchmark::DoNotOptimize(text.data());
  }
  countBytes(state, theScene());
}
BENCHMARK(writeTree)->Unit(benchmark::kMillisecond);

void readSceneString(benchmark::State& state) {
  for (auto _ : state) delete Lv::IO::DataReader().readSceneString(theScene());
  countBytes(state, theScene());
}
BENCHMARK(readSceneString)->Unit(benchmark::kMillisecond);

void readSceneFile(benchmark::State& state) {
  const BenchFile file(theScene());
  for (auto _ : state) delete Lv::IO::DataReader().readSceneFile(file.path);
  countBytes(state, theScene());
}
BENCHMARK(readSceneFile)->Unit(benchmark::kMillisecond);

void writeShotString(benchmark::State& state) {
  const std::unique_ptr<Lv::Shot::Shot2d> shot(Lv::IO::DataReader().readShotString(theShot()));
  for (auto _ : state)
    benchmark::DoNotOptimize(Lv::IO::DataWriter().writeShotString(shot.get()).data());
  countBytes(state, theShot());
}
BENCHMARK(writeShotString)->Unit(benchmark::kMillisecond);

void writeShotFile(benchmark::State& state) {
  const std::unique_ptr<Lv::Shot::Shot2d> shot(Lv::IO::DataReader().readShotString(theShot()));
  const BenchFile file("");
  for (auto _ : state) Lv::IO::DataWriter().writeShotFile(shot.get(), file.path);
  countBytes(state, theShot());
}
BENCHMARK(writeShotFile)->Unit(benchmark::kMillisecond);

}  // namespace
