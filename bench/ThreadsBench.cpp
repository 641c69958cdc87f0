// Shots of several scenes at a time: `bench_threads SCENE SHOTS` takes SHOTS shots of the scene, by
// one thread and by two that have a copy of it each, three times in turn. Prints the seconds that
// went by and those that the processors spent: on a machine with idle processors the first halve
// with two threads, and the second stay the same.

#include <lumivane/cmd/MessageScope.h>
#include <lumivane/session/LoadedScene.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace Session = Lumivane::Session;

constexpr int Rounds = 3;
constexpr int MostThreads = 2;

Session::ViewSettings viewOf(int shot) {
  Session::ViewSettings view;
  view.eye = {-5.3 + 0.013 * (shot % 50), -1.37, 3.4};
  return view;
}

void takeShots(Session::LoadedScene& scene, int shots) {
  const Lumivane::Cmd::MessageScope quiet({});
  for (int i = 0; i < shots; ++i) scene.take(viewOf(i));
}

void measure(std::vector<Session::LoadedScene>& scenes, int threads, int shots) {
  const auto start = std::chrono::steady_clock::now();
  const std::clock_t processors = std::clock();
  std::vector<std::thread> others;
  for (int i = 0; i < threads; ++i)
    others.emplace_back([&scenes, i, share = shots / threads] {
      takeShots(scenes[static_cast<std::size_t>(i)], share);
    });
  for (std::thread& other : others) other.join();
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  std::printf("%d threads: %.3f s went by, %.3f s of processors\n", threads, passed.count(),
              static_cast<double>(std::clock() - processors) / CLOCKS_PER_SEC);
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::fprintf(stderr, "usage: bench_threads SCENE SHOTS\n");
    return 2;
  }
  std::vector<Session::LoadedScene> scenes;
  {
    const Lumivane::Cmd::MessageScope quiet({});
    for (int i = 0; i < MostThreads; ++i) scenes.push_back(Session::LoadedScene::fromFile(argv[1]));
  }
  for (int round = 0; round < Rounds; ++round)
    for (int threads = 1; threads <= MostThreads; ++threads)
      measure(scenes, threads, std::atoi(argv[2]));
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
