#pragma once

#include <chrono>
#include <cstddef>

namespace Lumivane::Host {

/// Shows on standard error how far a batch has come. Does nothing when standard error is no
/// terminal. The line is wiped out at the end.
class BatchProgress {
 public:
  explicit BatchProgress(std::size_t count);
  BatchProgress(const BatchProgress&) = delete;
  BatchProgress& operator=(const BatchProgress&) = delete;
  ~BatchProgress();

  /// Counts a view that was made or failed.
  void count(bool isDone) { ++(isDone ? done : failed); }

  void show() const;

 private:
  bool isShown;
  std::size_t all;
  std::size_t done = 0;
  std::size_t failed = 0;
  std::chrono::steady_clock::time_point start;
};

}  // namespace Lumivane::Host
