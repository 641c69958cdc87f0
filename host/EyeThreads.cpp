#include "EyeThreads.h"

#include "ProgressBar.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace Lumivane::Host {

void forEachEye(std::size_t count, int wanted, const std::function<void(std::size_t)>& visit) {
  const ProgressBar bar;
  const Session::Progress show = bar.progress();
  std::atomic<std::size_t> next{0};
  std::mutex mutex;
  std::exception_ptr failure;
  const auto work = [&](bool isCaller) {
    try {
      for (std::size_t i = next.fetch_add(1); i < count; i = next.fetch_add(1)) {
        if (isCaller && show) show(100.0 * static_cast<double>(i) / static_cast<double>(count));
        visit(i);
      }
    } catch (...) {
      next.store(count);
      const std::lock_guard<std::mutex> lock(mutex);
      if (!failure) failure = std::current_exception();
    }
  };
  const std::size_t most = wanted > 0 ? static_cast<std::size_t>(wanted)
                                      : std::max(1U, std::thread::hardware_concurrency());
  std::vector<std::thread> threads;
  try {
    for (std::size_t i = 1; i < std::min(most, count); ++i) threads.emplace_back(work, false);
  } catch (const std::system_error&) {
    // Those that are there do it all.
  }
  work(true);
  for (std::thread& thread : threads) thread.join();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace Lumivane::Host
