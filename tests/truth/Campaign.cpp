// Many rays against the maps of scenes, city models, meshes and the hard scenes: a table, and,
// where asked for, the smallest part of each scene that still fails.

#include "truth/Builder.h"
#include "truth/Deviations.h"
#include "truth/HardScenes.h"
#include "truth/Invariants.h"
#include "truth/MapCheck.h"
#include "truth/Reduce.h"
#include "truth/SceneArrays.h"
#include "truth/SceneFaults.h"
#include "truth/SceneFiles.h"
#include "truth/WildScenes.h"

#include <lumivane/session/LoadedScene.h>
#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace {

using namespace Lumivane::Truth;
using Lumivane::Visibility::Field;
using Lumivane::Visibility::LookOptions;
using Lumivane::Visibility::PolygonScene;
using Lumivane::Visibility::SceneIndex;
using Lumivane::Visibility::Vector;
using Lumivane::Visibility::VisibleMap;

constexpr const char* Usage =
    "Usage: truth_campaign all|hard|FILE... [--rays N] [--eyes N] [--street N] [--facade N]\n"
    "                      [--reduce FOLDER]\n"
    "\n"
    "  all              the sample scenes and models, and the hard scenes\n"
    "  hard             the hard scenes; hard:N one of them\n"
    "  wild:N, wild:N-M scenes of stranger kinds, as many as are asked for\n"
    "  FILE             a scene, a mesh or a city model\n"
    "  --rays N         rays for each eye (1000000)\n"
    "  --eyes N         eyes for each file (51 for city models, 9 for others)\n"
    "  --street N       in place of these, N eyes of walkers in the streets of a city model\n"
    "  --facade N       and N eyes just in front of its walls\n"
    "  --reduce FOLDER  writes the smallest part of each scene that fails there\n"
    "\n"
    "Shares that are off by more than 4 standard deviations, as some are of many, are measured "
    "anew\n"
    "with a hundred times as many rays. Exits with 1 if a map is wrong.\n";

/// Beyond as many standard deviations a share is measured anew.
constexpr double DeviationLimit = 4.0;

struct Eye {
  Vector place;
  LookOptions options;
};

struct Order {
  std::vector<std::string> files;
  std::size_t rays = 1000000;
  int eyes = 0;
  int street = 0;
  int facade = 0;
  std::string reduceTo;

  bool isOfStreets() const { return street + facade > 0; }
};

double seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

std::string textOf(const Vector& v) {
  std::ostringstream out;
  out.precision(17);
  out << v[0] << ',' << v[1] << ',' << v[2];
  return out.str();
}

struct Bounds {
  Vector low{HUGE_VAL, HUGE_VAL, HUGE_VAL};
  Vector high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
  double size = 0.0;

  explicit Bounds(const PolygonScene& scene) {
    for (const Vector& point : scene.points)
      for (std::size_t i = 0; i < 3; ++i) {
        low[i] = std::min(low[i], point[i]);
        high[i] = std::max(high[i], point[i]);
      }
    size = static_cast<double>(length(wide(high) - wide(low)));
  }
  double at(std::size_t axis, double part) const {
    return low[axis] + part * (high[axis] - low[axis]);
  }
};

/// Eyes of one file: in turn at a walker's height, just above what is below, far above or around,
/// and in the planes of polygons and on corners.
class EyeChooser {
 public:
  EyeChooser(const Judge& newJudge, bool newCity)
      : judge(newJudge), bounds(newJudge.scene()), city(newCity) {}

  Eye eye(int number) {
    Eye result;
    result.options.forward = forwardOf(number);
    result.options.field = number % 5 == 4 ? Field::Sphere : Field::Hemisphere;
    result.options.twoSided = number % 7 == 6;
    const Vector above = anywhereAbove();
    switch (number % 4) {
      case 0:
        result.place = over(above, city ? 1.7 : 0.02 * bounds.size);
        break;
      case 1:
        result.place = over(above, city ? 0.05 : 0.001 * bounds.size);
        break;
      case 2:
        result.place = {above[0], above[1], bounds.high[2] + (city ? 80.0 : 0.3 * bounds.size)};
        break;
      default:
        result.place = special(number);
    }
    return result;
  }

  /// At a walker's height on ground that is as low as that of streets, looking anywhere ahead.
  Eye street() {
    if (!hasStreetLevel) findStreetLevel();
    for (;;) {
      const Vector eye = over(anywhereAbove(), 1.7);
      if (eye[2] - 1.7 > streetLevel) continue;
      Eye result;
      result.place = eye;
      const double turn = random.between(0.0, 6.28);
      result.options.forward = {std::cos(turn), std::sin(turn), 0};
      return result;
    }
  }

  /// A tenth of a metre in front of an upright wall, looking away from it.
  Eye facade() {
    for (;;) {
      const Eye walker = street();
      const Vector& ahead = walker.options.forward;
      const Verdict wall = judge.seen(walker.place, ahead);
      if (wall.outline < 0) continue;
      const LongVector normal = normalOf(wall.outline);
      if (std::fabs(normal.z) > 0.1L || std::fabs(dot(normal, wide(ahead))) < 0.2L) continue;
      const LongVector outward = normal * (dot(normal, wide(ahead)) > 0.0L ? -1.0L : 1.0L);
      const LongVector hit = wide(walker.place) + wide(ahead) * wall.distance;
      Eye result;
      result.place = narrow(hit + outward * 0.1L);
      result.options.forward = narrow(unit({outward.x, outward.y, 0.0L}));
      return result;
    }
  }

 private:
  Vector forwardOf(int number) {
    if (number % 4 == 2) return {0.3, 0.2, -1.0};
    if (number % 3 == 0) return {0, 0, 1};
    const double turn = random.between(0.0, 6.28);
    return {std::cos(turn), std::sin(turn), 0};
  }
  LongVector normalOf(int outline) const {
    for (const Piece& piece : judge.pieces().list)
      if (static_cast<int>(piece.outline) == outline) return piece.normal;
    return {0.0L, 0.0L, 1.0L};
  }
  Vector anywhereAbove() {
    return {bounds.at(0, random.between(0.15, 0.85)), bounds.at(1, random.between(0.15, 0.85)),
            bounds.high[2] + bounds.size};
  }
  void findStreetLevel() {
    std::vector<double> grounds(400);
    for (double& ground : grounds) ground = over(anywhereAbove(), 0.0)[2];
    std::sort(grounds.begin(), grounds.end());
    streetLevel = grounds[grounds.size() * 2 / 5];
    hasStreetLevel = true;
  }
  Vector over(const Vector& above, double height) const {
    const Verdict below = judge.seen(above, {0, 0, -1}, true);
    const double ground = below.outline < 0 ? bounds.low[2] : above[2] - below.distance;
    return {above[0], above[1], ground + height};
  }
  Vector special(int number) {
    const std::vector<Vector>& points = judge.scene().points;
    const Vector& corner =
        points[static_cast<std::size_t>(random.below(static_cast<int>(points.size())))];
    if (number % 8 == 3) return corner;
    // In the planes of what is upright or level there, and a little off it.
    return {corner[0] + 0.01 * bounds.size, corner[1], corner[2]};
  }

  const Judge& judge;
  Bounds bounds;
  bool city;
  bool hasStreetLevel = false;
  double streetLevel = 0.0;
  Random random{23};
};

class Campaign {
 public:
  explicit Campaign(const Order& newOrder) : order(newOrder) {}

  bool run() {
    std::printf("%-34s %8s %7s %7s %6s %6s %9s %6s %8s %8s\n", "scene and eye", "outlines", "cells",
                "edges", "wrong", "near", "area", "worst", "look s", "rays s");
    for (const std::string& file : order.files) {
      if (file == "hard")
        for (std::size_t i = 0; i < HardSceneCount; ++i) hard(i);
      else if (file.rfind("hard:", 0) == 0)
        hard(std::stoul(file.substr(5)));
      else if (file.rfind("wild:", 0) == 0)
        wild(file.substr(5));
      else
        model(file);
    }
    std::printf("%zu looks, %zu with a fault\n%s", looks, bad, deviations.text().c_str());
    std::printf("%d shares beyond %.0f measured anew, %d of them beyond it again\n", measuredAnew,
                DeviationLimit, stillOff);
    return bad == 0;
  }

 private:
  void hard(std::size_t number) { hard(number, hardScene(number)); }

  void wild(const std::string& range) {
    const std::size_t dash = range.find('-');
    const std::size_t from = std::stoul(range);
    const std::size_t to = dash == std::string::npos ? from : std::stoul(range.substr(dash + 1));
    for (std::size_t i = from; i <= to; ++i) hard(i, wildScene(i));
  }

  void hard(std::size_t number, const HardScene& scene) {
    const Judge judge(scene.scene);
    try {
      const SceneIndex index(scene.scene);
      const Eye eye{scene.eye, scene.options};
      const std::string name = std::to_string(number) + " " + scene.name;
      if (scene.truth == HardScene::Truth::Judge)
        check(index, judge, eye, name);
      else
        checkAlone(index, eye, name, scene.truth);
    } catch (const std::exception& error) {
      failed(scene.name, error.what());
    }
  }

  void model(const std::string& file) {
    const std::string name = nameOfFile(file);
    const Lumivane::Session::LoadedScene loaded = sceneOfFile(file);
    const Judge judge(arraysOf(loaded.scene()));
    double start = seconds();
    const SceneIndex index(loaded);
    std::printf("%s: index %.3f s\n", name.c_str(), seconds() - start);
    compareCounts(index, judge, name);
    EyeChooser chooser(judge, isCity(file));
    if (order.isOfStreets()) {
      for (int i = 0; i < order.street; ++i)
        checkSafely(index, judge, chooser.street(), name + " street " + std::to_string(i));
      for (int i = 0; i < order.facade; ++i)
        checkSafely(index, judge, chooser.facade(), name + " facade " + std::to_string(i));
      return;
    }
    const int eyes = order.eyes > 0 ? order.eyes : isCity(file) ? 51 : 9;
    for (int i = 0; i < eyes; ++i)
      checkSafely(index, judge, chooser.eye(i), name + " eye " + std::to_string(i));
  }

  void checkSafely(const SceneIndex& index, const Judge& judge, const Eye& eye,
                   const std::string& name) {
    try {
      check(index, judge, eye, name);
    } catch (const std::exception& error) {
      failed(name + " " + textOf(eye.place), error.what());
    }
  }

  void compareCounts(const SceneIndex& index, const Judge& judge, const std::string& name) {
    const auto compare = [&](const char* what, std::size_t of, std::size_t expected) {
      if (of != expected)
        std::printf("  %s: the index has %zu %s, the judge %zu\n", name.c_str(), of, what,
                    expected);
    };
    compare("dropped regions", index.droppedRegionCount(), judge.pieces().dropped);
    compare("regions in triangles", index.triangulatedRegionCount(), judge.pieces().triangulated);
    compare("layers", index.layerCount(), judge.pieces().layers);
  }

  void check(const SceneIndex& index, const Judge& judge, const Eye& eye, const std::string& name) {
    const double start = seconds();
    const VisibleMap map = index.look(eye.place, eye.options);
    const double lookSeconds = seconds() - start;
    const std::vector<std::string> faults = faultsOf(map);
    const RayReport report = checkByRays(judge, map, order.rays, 1 + looks);
    std::printf("%-34s %8zu %7zu %7zu %6zu %6zu %9.1e %6.2f %8.4f %8.3f\n", name.c_str(),
                judge.pieces().list.size(), map.cells.size(), map.edges.size(), report.wrong.size(),
                report.nearEdges, areaError(map), report.worstShare, lookSeconds,
                report.judgeSeconds + report.locateSeconds);
    ++looks;
    const std::string sceneFaults = sceneFaultText(judge, map);
    const bool isOff = hasWrongShare(judge, map, report);
    const bool isBad = isOff || !sceneFaults.empty() || !faults.empty() || !report.wrong.empty() ||
                       report.wrongDistances > 0;
    if (isBad) {
      ++bad;
      for (const std::string& fault : faults) std::printf("    %s\n", fault.c_str());
      if (!sceneFaults.empty()) std::printf("    %s", sceneFaults.c_str());
      if (!report.wrong.empty()) std::printf("    %s", report.text().c_str());
      if (report.wrongDistances > 0)
        std::printf("    %zu distances beyond those of their cell\n", report.wrongDistances);
      std::printf("    --eye %s --forward %s%s%s\n", textOf(eye.place).c_str(),
                  textOf(eye.options.forward).c_str(),
                  eye.options.field == Field::Sphere ? " --field sphere" : "",
                  eye.options.twoSided ? " --two-sided" : "");
      if (!order.reduceTo.empty()) reduce(judge.scene(), eye, name, report, faults);
    }
    std::fflush(stdout);
  }

  /// What can be said where the definition leaves something open.
  void checkAlone(const SceneIndex& index, const Eye& eye, const std::string& name,
                  HardScene::Truth truth) {
    const VisibleMap map = index.look(eye.place, eye.options);
    // An eye within the thickness of an outline may be behind all that it sees of it.
    const std::string faults = truth == HardScene::Truth::Nobody ? "" : faultText(map);
    const std::size_t differences = truth == HardScene::Truth::Single
                                        ? differencesFromSingle(index, map, order.rays, 1 + looks)
                                        : 0;
    ++looks;
    std::printf("%-34s %zu cells, %zu differences\n%s", name.c_str(), map.cells.size(), differences,
                faults.c_str());
    bad += faults.empty() && differences == 0 && std::abs(areaError(map)) <= 1e-9 ? 0 : 1;
    std::fflush(stdout);
  }

  /// Whether a share that is off by more than chance allows often is so again with more rays.
  bool hasWrongShare(const Judge& judge, const VisibleMap& map, const RayReport& report) {
    bool isOff = false;
    for (const ShareDeviation& deviation : report.deviations) {
      deviations.add(deviation.by);
      if (std::abs(deviation.by) <= DeviationLimit) continue;
      constexpr double More = 100.0;
      const std::size_t most = 20 * order.rays;
      const ShareDeviation again =
          deviationWithin(judge, map, deviation.object, More * static_cast<double>(order.rays),
                          most, 1000003 + looks);
      ++measuredAnew;
      const bool isStillOff = std::abs(again.by) > DeviationLimit;
      stillOff += isStillOff ? 1 : 0;
      isOff = isOff || isStillOff;
      std::printf("    object %d with a share of %.3e is off by %.2f, with more rays by %.2f\n",
                  deviation.object, deviation.share, deviation.by, again.by);
    }
    return isOff;
  }

  void failed(const std::string& name, const std::string& cause) {
    ++looks;
    ++bad;
    std::printf("%-34s %s\n", name.c_str(), cause.c_str());
    std::fflush(stdout);
  }

  /// Writes the part of the scene that still fails in the same way: with the first wrong direction
  /// if there is one, else with the first fault.
  void reduce(const PolygonScene& scene, const Eye& eye, const std::string& name,
              const RayReport& report, const std::vector<std::string>& faults) {
    const auto kindOf = [](const std::string& fault) {
      const std::size_t from = fault.find(" x ") + 3;
      return fault.substr(from, fault.find(", e.g.") - from);
    };
    const auto isBad = [&](const PolygonScene& part) {
      try {
        const VisibleMap map = SceneIndex(part).look(eye.place, eye.options);
        if (report.wrong.empty()) {
          for (const std::string& fault : faultsOf(map))
            if (!faults.empty() && kindOf(fault) == kindOf(faults.front())) return true;
          return false;
        }
        return !checkDirection(Judge(part), map, report.wrong.front().direction);
      } catch (const std::exception&) {
        return false;
      }
    };
    const PolygonScene part = reduced(scene, isBad);
    std::string file = name;
    std::replace(file.begin(), file.end(), ' ', '-');
    const std::string path = order.reduceTo + "/" + file + ".json";
    std::ofstream(path) << sceneFileText(part);
    std::ofstream readme(order.reduceTo + "/README", std::ios::app);
    readme << file << ".json: --eye " << textOf(eye.place) << " --forward "
           << textOf(eye.options.forward)
           << (eye.options.field == Field::Sphere ? " --field sphere" : "")
           << (eye.options.twoSided ? " --two-sided" : "") << " : "
           << (report.wrong.empty() ? faults.empty() ? "distances" : faults.front() : report.text())
           << '\n';
    std::printf("    reduced to %zu outlines: %s\n", part.labels.size(), path.c_str());
  }

  Order order;
  std::size_t looks = 0;
  std::size_t bad = 0;
  Deviations deviations;
  int measuredAnew = 0;
  int stillOff = 0;
};

std::vector<std::string> filesOf(const std::string& word) {
  if (word != "all") return {word};
  std::vector<std::string> files = sampleFiles(LUMIVANE_SCENES);
  files.emplace_back("hard");
  return files;
}

Order orderOf(const std::vector<std::string>& words) {
  Order order;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& option = words[i];
    const auto value = [&] {
      if (++i == words.size()) throw std::invalid_argument(option + " needs a value");
      return words[i];
    };
    const auto count = [&] {
      const std::string text = value();
      int number = 0;
      const char* const end = text.data() + text.size();
      const auto read = std::from_chars(text.data(), end, number);
      if (read.ec != std::errc{} || read.ptr != end || number < 0)
        throw std::invalid_argument(option + ": \"" + text + "\" is not a whole number");
      return number;
    };
    if (option == "--rays") {
      order.rays = static_cast<std::size_t>(count());
    } else if (option == "--eyes") {
      order.eyes = count();
    } else if (option == "--street") {
      order.street = count();
    } else if (option == "--facade") {
      order.facade = count();
    } else if (option == "--reduce") {
      order.reduceTo = value();
    } else {
      for (const std::string& file : filesOf(words[i])) order.files.push_back(file);
    }
  }
  if (order.files.empty()) throw std::invalid_argument("nothing to check");
  return order;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "--help") {
    std::cout << Usage;
    return EXIT_SUCCESS;
  }
  try {
    return Campaign(orderOf({argv + 1, argv + argc})).run() ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::cerr << Usage << "\nError: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
