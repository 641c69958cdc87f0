// One shot of a large scene by one thread and by several: wall time of what is shared out, the
// projection of the objects and the classification of pairs, and of the whole. Two processes that
// take the same shot by one thread each, at the same time, show what the machine's second core can
// give.
//
// Usage: bench_shot_threads [COUNT [VIEW [TIMES]]]     (a town of 5000 boxes, air, 9)
//
// The library's messages show where a shot is: "Projecting", and then "Calculating" for the sort.
// Of the time between them that of the points is taken off, and of the time behind them that of the
// order, both the work of one thread; what is left is projection, and classification with the
// collecting of its faces. Times are the least of all shots, so that other work on the machine
// counts little.

#include "scene/City.h"

#include <lumivane/cmd/MessageScope.h>
#include <lumivane/session/LoadedScene.h>
#include <lumivane/session/TakenShot.h>
#include <lumivane/utils/StageTimes.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Lumivane::Session::LoadedScene;
using Lumivane::Session::ViewSettings;
using Lumivane::Utils::Stage;
using Lumivane::Utils::StageTimes;
using Clock = std::chrono::steady_clock;

// Wall seconds of one shot.
struct Times {
  double projection = 1e9;
  double sort = 1e9;
  double whole = 1e9;

  void takeLeast(const Times& other) {
    projection = std::min(projection, other.projection);
    sort = std::min(sort, other.sort);
    whole = std::min(whole, other.whole);
  }
};

double secondsBetween(Clock::time_point from, Clock::time_point to) {
  return std::chrono::duration<double>(to - from).count();
}

double stage(Stage what) { return StageTimes::seconds(what); }

Times timesOf(LoadedScene& scene, const ViewSettings& view) {
  Clock::time_point projecting;
  Clock::time_point sorting;
  const Lumivane::Cmd::MessageScope messages([&](std::string_view text) {
    if (text.substr(0, 10) == "Projecting") projecting = Clock::now();
    if (text.substr(0, 11) == "Calculating") sorting = Clock::now();
  });
  StageTimes::reset();
  StageTimes::enable(true);
  const Clock::time_point start = Clock::now();
  const auto shot = scene.take(view);
  const Clock::time_point end = Clock::now();
  StageTimes::enable(false);
  return {secondsBetween(projecting, sorting) - stage(Stage::Points) - stage(Stage::Docking),
          secondsBetween(sorting, end) - stage(Stage::Order), secondsBetween(start, end)};
}

Times leastOf(LoadedScene& scene, const ViewSettings& view, int count) {
  Times least;
  for (int i = 0; i < count; ++i) least.takeLeast(timesOf(scene, view));
  return least;
}

void print(const char* what, const Times& times, const Times& one) {
  std::printf("%-24s %9.1f %5.2f %9.1f %5.2f %9.1f %5.2f\n", what, times.projection * 1e3,
              one.projection / times.projection, times.sort * 1e3, one.sort / times.sort,
              times.whole * 1e3, one.whole / times.whole);
}

// The mean times of two processes at once, halved: what two shots cost each.
Times halfOfTwo(LoadedScene& scene, const ViewSettings& view, int count) {
  int channel[2];
  if (pipe(channel) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  const Times own = leastOf(scene, view, count);
  if (child == 0) {
    const bool isWritten = write(channel[1], &own, sizeof own) == sizeof own;
    _exit(isWritten ? 0 : 1);
  }
  Times other;
  const bool isRead = read(channel[0], &other, sizeof other) == sizeof other;
  waitpid(child, nullptr, 0);
  if (!isRead) throw std::runtime_error("the other process has failed");
  return {(own.projection + other.projection) / 4, (own.sort + other.sort) / 4,
          (own.whole + other.whole) / 4};
}

void run(const std::vector<std::string>& words) {
  const int boxes = words.empty() ? 5000 : std::stoi(words[0]);
  const std::string name = words.size() > 1 ? words[1] : "air";
  const int times = words.size() > 2 ? std::stoi(words[2]) : 9;
  const Lumivane::Bench::BenchScene town = Lumivane::Bench::city(boxes);
  const auto named = std::find_if(town.views.begin(), town.views.end(),
                                  [&](const auto& view) { return view.name == name; });
  if (named == town.views.end()) throw std::invalid_argument("no view " + name);
  LoadedScene scene = LoadedScene::fromText(sceneText(town.model), "town");
  ViewSettings view;
  view.eye = {named->eye.x, named->eye.y, named->eye.z};
  view.forward = {named->forward.x, named->forward.y, named->forward.z};
  view.up = {named->up.x, named->up.y, named->up.z};
  view.maxLength = 0.0;
  view.checkScene = false;

  std::printf("%-24s %9s %5s %9s %5s %9s %5s\n", "", "project", "times", "classify", "times",
              "whole", "times");
  const Times one = leastOf(scene, view, times);
  print("one thread, ms", one, one);
  view.threads = 2;
  print("two threads, ms", leastOf(scene, view, times), one);
  view.threads = 1;
  print("two processes, ms each", halfOfTwo(scene, view, times), one);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run({argv + 1, argv + argc});
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "Usage: bench_shot_threads [COUNT [VIEW [TIMES]]]\nError: " << error.what()
              << '\n';
    return EXIT_FAILURE;
  }
}
