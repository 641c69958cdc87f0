// What it takes to measure visible shares against what the shot itself takes, by turns in one
// process.
//
// Usage: bench_shares SCENE EYE FORWARD [RUNS]     (vectors as X,Y,Z; 9 runs)

#include <lumivane/measure/VisibleShares.h>
#include <lumivane/session/LoadedScene.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <vtkSMPTools.h>

namespace {

namespace Lv = Lumivane;
using Lv::Base::ViewCameraKind;
using Lv::Session::ViewSettings;

Lv::Session::Vector vectorOf(const std::string& text) {
  Lv::Session::Vector vector{};
  char comma = ',';
  std::istringstream words(text);
  if (!(words >> vector[0] >> comma >> vector[1] >> comma >> vector[2]))
    throw std::invalid_argument("no vector: " + text);
  return vector;
}

/// Processor seconds of all runs of two kinds of work done by turns.
struct Seconds {
  std::vector<double> shot, shares;
};

class Clock {
 public:
  double seconds() const {
    return static_cast<double>(std::clock() - start) / static_cast<double>(CLOCKS_PER_SEC);
  }

 private:
  std::clock_t start = std::clock();
};

Seconds measure(Lv::Session::LoadedScene& scene, const ViewSettings& view, int runs) {
  Seconds seconds;
  for (int i = 0; i < runs; ++i) {
    const Clock shotClock;
    const Lv::Session::TakenShot shot = scene.take(view);
    seconds.shot.push_back(shotClock.seconds());
    const Clock sharesClock;
    const Lv::Measure::VisibleShares shares(shot.shot());
    seconds.shares.push_back(sharesClock.seconds());
  }
  return seconds;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

double least(const std::vector<double>& values) {
  return *std::min_element(values.begin(), values.end());
}

void printRow(std::ostream& table, const ViewSettings& view, const Seconds& seconds) {
  const bool round = view.camera == ViewCameraKind::Spherical;
  table << "| " << (round ? "round" : "square") << " | " << std::setprecision(4) << view.maxLength
        << std::fixed << std::setprecision(1);
  table << " | " << 1000.0 * least(seconds.shot) << " | " << 1000.0 * least(seconds.shares);
  table << " | " << 1000.0 * median(seconds.shot) << " | " << 1000.0 * median(seconds.shares);
  table << " |\n" << std::defaultfloat;
}

void run(const std::vector<std::string>& words) {
  const int runs = words.size() > 3 ? std::stoi(words[3]) : 9;
  if (runs < 1) throw std::invalid_argument("no runs");
  auto scene = Lv::Session::LoadedScene::fromFile(words.at(0));
  ViewSettings view;
  view.eye = vectorOf(words.at(1));
  view.forward = vectorOf(words.at(2));
  std::ostringstream table;
  table << "| picture | limit | shot ms, least | shares ms, least | shot ms, median "
           "| shares ms, median |\n|---|---:|---:|---:|---:|---:|\n";
  for (const ViewCameraKind camera : {ViewCameraKind::Spherical, ViewCameraKind::Normal})
    for (const double limit : {0.0, 0.02, 0.005}) {
      view.camera = camera;
      view.maxLength = limit;
      printRow(table, view, measure(scene, view, runs));
    }
  std::cout << table.str();
}

}  // namespace

int main(int argc, char** argv) {
  vtkSMPTools::Initialize(1);  // the time of several threads would count several times
  try {
    run({argv + 1, argv + argc});
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "Usage: bench_shares SCENE EYE FORWARD [RUNS]\nError: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
