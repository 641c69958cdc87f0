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

/// Items that take a thread as long as it takes to make one, if each takes a tenth of a
/// microsecond.
constexpr size_t ManyQuickItems = 2048;

/// Calls `visit(i, scratch)` once for each i below `count`, in any order and from several threads,
/// each for `worthAThread` of them or more and with a Scratch of its own.
template <class Scratch, class Visit>
void forEachInParallelWith(size_t count, size_t threads, Visit visit, size_t worthAThread = 256) {
  constexpr size_t Chunk = 256;
  const size_t useful = std::min(threads, (count + worthAThread - 1) / worthAThread);
  std::atomic<size_t> next{0};
  inParallel(std::max<size_t>(1, useful), [&](bool) {
    Scratch scratch;
    for (;;) {
      const size_t from = next.fetch_add(Chunk);
      if (from >= count) return;
      for (size_t i = from; i < std::min(count, from + Chunk); ++i) visit(i, scratch);
    }
  });
}

/// The same without anything of a thread's own.
template <class Visit>
void forEachInParallel(size_t count, size_t threads, Visit visit, size_t worthAThread = 256) {
  struct Nothing {};
  forEachInParallelWith<Nothing>(
      count, threads, [&](size_t i, Nothing) { visit(i); }, worthAThread);
}

}  // namespace Lumivane::Visibility
