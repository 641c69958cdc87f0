#pragma once

#include "utils/StageScope.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

/// Work in several threads whose results come together as those of one.
namespace Lumivane::Utils {

/// How many threads a number from the settings means: 0 is one for each processor.
inline std::size_t threadCount(int wanted) {
  if (wanted > 0) return static_cast<std::size_t>(wanted);
  return std::max(1U, std::thread::hardware_concurrency());
}

/// Parts that several threads make in any order, and the calling one joins in theirs.
template <class Part>
class PartsInOrder {
 public:
  explicit PartsInOrder(std::size_t count) : slots(count) {}

  /// Makes the next parts until there are none or the work is stopped; `afterEach` is called after
  /// each one.
  template <class Maker, class AfterEach>
  void make(Maker& maker, AfterEach afterEach) {
    while (!isStopped.load(std::memory_order_relaxed)) {
      const std::size_t index = next.fetch_add(1, std::memory_order_relaxed);
      if (index >= slots.size()) return;
      Slot& slot = slots[index];
      try {
        slot.part.emplace(maker(index));
      } catch (...) {
        slot.failure = std::current_exception();
      }
      slot.isMade.store(true, std::memory_order_release);
      afterEach();
    }
  }

  /// Joins the parts that stand next in the order and are made. What a part has thrown is thrown
  /// here, at its turn. Called by one thread alone.
  template <class Join>
  void joinMade(Join& join) {
    while (!hasEnded && joined < slots.size() &&
           slots[joined].isMade.load(std::memory_order_acquire)) {
      Slot& slot = slots[joined];
      if (slot.failure) std::rethrow_exception(slot.failure);
      hasEnded = !join(std::move(*slot.part), joined);
      slot.part.reset();
      ++joined;
      if (hasEnded) stop();
    }
  }

  void stop() { isStopped.store(true, std::memory_order_relaxed); }

 private:
  struct Slot {
    std::optional<Part> part;
    std::exception_ptr failure;
    std::atomic<bool> isMade{false};
  };

  std::vector<Slot> slots;
  std::atomic<std::size_t> next{0};
  std::atomic<bool> isStopped{false};
  std::size_t joined = 0;  // of the calling thread alone, as is the next one
  bool hasEnded = false;
};

/// Threads that are waited for, however their scope is left.
template <class Parts>
class HelpersOf {
 public:
  explicit HelpersOf(Parts& partsOfAll) : parts(partsOfAll) {}
  HelpersOf(const HelpersOf&) = delete;
  HelpersOf& operator=(const HelpersOf&) = delete;
  ~HelpersOf() {
    parts.stop();
    wait();
  }

  /// Starts up to `count` threads; fewer do if no more can be had.
  template <class Work>
  void start(std::size_t count, const Work& work) {
    try {
      while (threads.size() < count) threads.emplace_back(work);
    } catch (const std::system_error&) {
      // Those that are there do it all.
    }
  }

  void wait() {
    for (std::thread& thread : threads) thread.join();
    threads.clear();
  }

 private:
  Parts& parts;
  std::vector<std::thread> threads;
};

/// Makes the parts 0 to `count` - 1 in up to `threads` threads, of which the calling one is the
/// first, and joins them in the calling one, in their order: what comes out does not depend on the
/// number of threads. By one thread each part is joined before the next one is made.
///
/// \param newMaker  called once in each thread, gives what makes parts there: `maker(index)`
/// \param join      `join(part, index)`, gives whether to go on; if not, no more parts are joined
/// \throws what joining throws, and what making a part has thrown when all before it are joined
template <class NewMaker, class Join>
void makeInOrder(std::size_t count, std::size_t threads, NewMaker newMaker, Join join) {
  using Maker = decltype(newMaker());
  using Part = decltype(std::declval<Maker&>()(std::size_t{}));
  Maker maker = newMaker();
  if (threads <= 1 || count <= 1) {
    for (std::size_t index = 0; index < count; ++index)
      if (!join(maker(index), index)) return;
    return;
  }
  HelperStages stages;
  PartsInOrder<Part> parts(count);
  HelpersOf<PartsInOrder<Part>> helpers(parts);
  helpers.start(std::min(threads, count) - 1, [&parts, &newMaker, &stages] {
    const HelperStages::Scope stagesOfHelper(stages);
    try {
      Maker ownMaker = newMaker();
      parts.make(ownMaker, [] {});
    } catch (...) {
      // Without memory of its own a thread does nothing: the others do it all.
    }
  });
  parts.make(maker, [&] { parts.joinMade(join); });
  helpers.wait();
  parts.joinMade(join);
}

}  // namespace Lumivane::Utils
