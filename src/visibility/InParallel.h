#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace Lumivane::Visibility {

/// How many threads a number from the options means: 0 is one for each processor.
inline size_t threadCount(int wanted) {
  if (wanted > 0) return static_cast<size_t>(wanted);
  return std::max(1u, std::thread::hardware_concurrency());
}

/// Calls `work` in `count` threads at once, of which the calling one is the first; its argument is
/// true for that one. Fewer threads do if no more can be had. Waits for all, then throws what the
/// first that failed has thrown.
template <class Work>
void inParallel(size_t count, Work work) {
  std::mutex mutex;
  std::exception_ptr failure;
  const auto guarded = [&](bool isCaller) {
    try {
      work(isCaller);
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex);
      if (!failure) failure = std::current_exception();
    }
  };
  std::vector<std::thread> threads;
  try {
    for (size_t i = 1; i < count; ++i) threads.emplace_back(guarded, false);
  } catch (const std::system_error&) {
    // Those that are there do it all.
  }
  guarded(true);
  for (std::thread& thread : threads) thread.join();
  if (failure) std::rethrow_exception(failure);
}

/// Calls `visit(i)` once for each i below `count`, in any order and from several threads.
template <class Visit>
void forEachInParallel(size_t count, size_t threads, Visit visit) {
  constexpr size_t Chunk = 256;
  const size_t useful = std::min(threads, (count + Chunk - 1) / Chunk);
  std::atomic<size_t> next{0};
  inParallel(std::max<size_t>(1, useful), [&](bool) {
    for (;;) {
      const size_t from = next.fetch_add(Chunk);
      if (from >= count) return;
      for (size_t i = from; i < std::min(count, from + Chunk); ++i) visit(i);
    }
  });
}

}  // namespace Lumivane::Visibility
