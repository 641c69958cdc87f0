#include "session/ProgressPoll.h"

#include <algorithm>
#include <chrono>

namespace Lumivane::Session {
namespace {

constexpr std::chrono::milliseconds Pause(100);
constexpr double Whole = 100.0;

thread_local bool tellsProgress = false;

}  // namespace

bool ProgressPoll::isThisThread() { return tellsProgress; }

ProgressPoll::ProgressPoll(const Progress& callback) : progress(callback) {
  if (!progress) return;
  thread = std::thread([this] { poll(); });
}

ProgressPoll::~ProgressPoll() {
  if (!thread.joinable()) return;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    end = true;
  }
  ended.notify_one();
  thread.join();
}

void ProgressPoll::finish() {
  const std::lock_guard<std::mutex> lock(mutex);
  made = true;
}

// The lock is open during the calls, so that the taking thread never waits for one but at the end.
void ProgressPoll::poll() {
  tellsProgress = true;
  try {
    report(0.0);
    for (std::unique_lock<std::mutex> lock(mutex);;) {
      if (ended.wait_for(lock, Pause, [this] { return end; })) break;
      lock.unlock();
      report(written.load(std::memory_order_relaxed));
      lock.lock();
    }
    if (made) report(Whole);
  } catch (...) {
    // Dropped, as promised: the shot is made all the same.
  }
}

void ProgressPoll::report(double percent) {
  reported = std::max(reported, std::min(percent, Whole));
  progress(reported);
}

}  // namespace Lumivane::Session
