// What it takes to make a scene ready for exact looks: processor time and memory of an index of a
// town of boxes, each size in a process of its own.
//
// Usage: bench_visibility [FACES...]     (10000 100000 1000000)
//        bench_visibility --write FILE FACES     the index as a file that looks start with
//        (.lumiscene)

#include "scene/City.h"

#include <lumivane/visibility/SceneIndex.h>

#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace Lv = Lumivane;
using Lv::Visibility::PolygonScene;
using Lv::Visibility::SceneIndex;

/// A town with five polygons a box and one a lot.
PolygonScene town(int faces) {
  const Lv::Bench::Model model = Lv::Bench::city(faces / 6).model;
  PolygonScene scene;
  for (const Lv::Bench::Point& point : model.points)
    scene.points.push_back({point.x, point.y, point.z});
  scene.offsets.push_back(0);
  int object = 0;
  for (const Lv::Bench::Thing& thing : model.things) {
    ++object;
    int region = 0;
    for (const Lv::Bench::Face& face : thing.faces) {
      for (const int number : face.points) scene.corners.push_back(number - 1);
      scene.offsets.push_back(scene.corners.size());
      ++region;
      scene.labels.push_back({object, region, region});
    }
    scene.objectIds.push_back(thing.id);
  }
  return scene;
}

double seconds() { return static_cast<double>(std::clock()) / static_cast<double>(CLOCKS_PER_SEC); }

/// The most memory that the process has had so far.
double peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void measure(int faces, const std::string& file) {
  PolygonScene scene = town(faces);
  const std::size_t count = scene.labels.size();
  const double before = peakMegabytes();
  const double start = seconds();
  const SceneIndex index(std::move(scene));
  const double taken = seconds() - start;
  std::cout << "| " << count << " | " << taken << " | " << peakMegabytes() << " | " << before
            << " | " << index.layerCount() << " |" << std::endl;
  if (!file.empty()) index.write(file);
}

/// In a process of its own, so that memory is not that of another size.
void measureApart(int faces, const std::string& file) {
  const pid_t child = fork();
  if (child == 0) {
    measure(faces, file);
    _exit(EXIT_SUCCESS);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || status != 0)
    throw std::runtime_error("a run of " + std::to_string(faces) + " faces failed");
}

void run(std::vector<std::string> words) {
  std::string file;
  if (words.size() == 3 && words[0] == "--write") {
    file = words[1];
    words.erase(words.begin(), words.begin() + 2);
  }
  std::vector<int> sizes;
  for (const std::string& word : words) sizes.push_back(std::stoi(word));
  if (sizes.empty()) sizes = {10000, 100000, 1000000};
  std::cout
      << "| faces | index s | peak MB | of it before MB | layers |\n|---:|---:|---:|---:|---:|"
      << std::endl;
  for (const int size : sizes) measureApart(size, file);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run({argv + 1, argv + argc});
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "Usage: bench_visibility [--write FILE] [FACES...]\nError: " << error.what()
              << '\n';
    return EXIT_FAILURE;
  }
}
