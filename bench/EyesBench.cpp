// Processor time of each of many eyes, looking up by one thread, in the scene and at the places of
// a table that `lumivane grid` has made.
//
// Usage: bench_eyes SCENE.lumiscene VIEWS.csv [EVERY]     (every EVERYth eye; 1)

#include <lumivane/io/CsvReading.h>
#include <lumivane/session/Files.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/SceneFile.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace Lv = Lumivane;
using Lv::Visibility::Vector;

std::vector<Vector> eyesOf(const std::string& path) {
  const std::vector<Lv::IO::CsvRecord> rows = Lv::IO::readCsv(Lv::Session::readBytes(path), path);
  const std::vector<std::string>& heading = rows.at(0).fields;
  const auto column = std::find(heading.begin(), heading.end(), "eye");
  if (column == heading.end()) throw std::invalid_argument(path + " has no column eye");
  std::vector<Vector> eyes;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    std::istringstream text(rows[i].fields.at(static_cast<std::size_t>(column - heading.begin())));
    Vector eye{};
    char comma = ',';
    if (!(text >> eye[0] >> comma >> eye[1] >> comma >> eye[2]))
      throw std::invalid_argument(path + " has an eye that is not X,Y,Z");
    eyes.push_back(eye);
  }
  return eyes;
}

double threadSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void run(const std::string& scene, const std::string& views, std::size_t every) {
  const Lv::Visibility::SceneFile file(scene);
  const std::vector<Vector> eyes = eyesOf(views);
  Lv::Visibility::LookOptions up;
  up.forward = {0.0, 0.0, 1.0};
  up.threads = 1;
  std::vector<double> milliseconds;
  double sky = 0.0;
  for (std::size_t i = 0; i < eyes.size(); i += every) {
    const double start = threadSeconds();
    sky += Lv::Visibility::MapShares(file.index().look(eyes[i], up)).sky().viewFactor;
    milliseconds.push_back(1e3 * (threadSeconds() - start));
  }
  if (milliseconds.empty()) throw std::invalid_argument(views + " has no eyes");
  std::sort(milliseconds.begin(), milliseconds.end());
  const auto at = [&](double part) {
    return milliseconds[static_cast<std::size_t>(part *
                                                 static_cast<double>(milliseconds.size() - 1))];
  };
  const auto count = static_cast<double>(milliseconds.size());
  std::cout << "| eyes | median ms | mean ms | 95 % ms | most ms | mean sky view factor |\n"
               "|---:|---:|---:|---:|---:|---:|\n| "
            << milliseconds.size() << " | " << at(0.5) << " | "
            << std::accumulate(milliseconds.begin(), milliseconds.end(), 0.0) / count << " | "
            << at(0.95) << " | " << milliseconds.back() << " | " << sky / count << " |\n";
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc < 3) throw std::invalid_argument("too few arguments");
    run(argv[1], argv[2], argc > 3 ? std::stoul(argv[3]) : 1);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "Usage: bench_eyes SCENE.lumiscene VIEWS.csv [EVERY]\nError: " << error.what()
              << '\n';
    return EXIT_FAILURE;
  }
}
