// Takes a shot in a thread of its own, shows how far it has come, and gives up waiting when asked
// to: here, once it has come to a percentage. The library finishes a shot that it has begun; giving
// up means to go on without it and to drop it when it comes.

#include <lumivane/lumivane.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <utility>

namespace Session = Lumivane::Session;

int main(int, char** argv) try {
  const double patience = std::strtod(argv[2], nullptr);
  Session::ViewSettings view;
  view.eye = {-2.6, 0.35, 1.9};

  std::atomic<bool> cancelled = false;  // any thread may set it, as that of a button does
  const Session::Progress progress = [&cancelled, patience](double percent) {
    std::cerr << percent << " %\n";
    if (percent >= patience) cancelled = true;
  };
  // The task owns the scene, so nothing that it needs goes away when nobody waits any more.
  auto take = [scene = Session::LoadedScene::fromFile(argv[1]), view, progress]() mutable {
    return scene.take(view, progress);
  };
  std::future<Session::TakenShot> shot = std::async(std::launch::async, std::move(take));

  while (!cancelled && shot.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready) {
  }
  if (cancelled) {
    std::cerr << "given up\n";  // and on with other work; the future waits when it is destroyed
    return 0;
  }
  std::cerr << "taken: " << shot.get().shot().getRegions()->getRegions()->size() << " regions\n";
} catch (const Session::Error& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
