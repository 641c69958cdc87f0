#pragma once

#include "visibility/MapParts.h"
#include "visibility/TileStart.h"
#include "visibility/Watch.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <vector>

namespace Lumivane::Visibility {

/// A tile that one thread offers to the others, and what has become of it.
struct alignas(64) TileJob {
  enum class State { Offered, Taken, Done };

  TileStart start;
  MapParts parts;
  Sides sides;
  State state = State::Offered;
};

/// The threads of a look. One that divides a tile offers half of it if another one has nothing to
/// do; who waits for such a half does other tiles meanwhile (R. D. Blumofe and C. E. Leiserson,
/// Scheduling Multithreaded Computations by Work Stealing, 1999). Parts are joined in the order of
/// the tiles, so that the map does not depend on who did what.
class TileTeam {
 public:
  /// Ends the work of a thread after another one has failed.
  struct Stopped {};

  /// `cancelled` may be null and `progress` empty, which is called by the thread that has made the
  /// team alone.
  TileTeam(const std::atomic<bool>* cancelFlag, const std::function<void(double)>& progress)
      : cancelled(cancelFlag), report(progress) {}

  /// Throws Cancelled or Stopped where the work is to end.
  void check() const;

  /// Whether a thread waits for work that nobody has offered yet.
  bool wantsWork() const {
    return idle.load(std::memory_order_relaxed) > offered.load(std::memory_order_relaxed);
  }
  TileJob& offer(TileStart start);
  /// Takes a job back. \return false if another thread has it
  bool takeBack(TileJob& job);
  /// Waits for a job. \return another one to do meanwhile, or null once it is done
  TileJob* waitFor(const TileJob& job);
  /// Waits for any job. \return null when the work is over
  TileJob* next();
  void finish(TileJob& job);

  /// The work is over: nobody waits any more.
  void end();
  /// Ends it with the exception at hand, of which the first counts.
  void fail();
  void throwFailure() const;

  /// Adds a tile that was reached by so many divisions of a face.
  void countTile(int level);

 private:
  template <class IsOver>
  TileJob* wait(IsOver isOver);

  const std::atomic<bool>* cancelled;
  ProgressReport report;
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<TileJob> jobs;     // stay where they are
  std::vector<TileJob*> queue;  // those that nobody has taken
  // Each in a cache line of its own: they are asked, or counted, at every tile.
  alignas(64) std::atomic<std::size_t> idle{0};
  std::atomic<std::size_t> offered{0};  // size of the queue
  std::atomic<bool> stopped{false};
  alignas(64) std::atomic<std::uint64_t> done{0};
  bool over = false;
  std::exception_ptr failure;
};

}  // namespace Lumivane::Visibility
