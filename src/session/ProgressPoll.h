#pragma once

#include <lumivane/session/Progress.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace Lumivane::Session {

/// Polls the library's progress record from a thread of its own, from its construction to its end,
/// and tells the callback. Without a callback there is no thread.
class ProgressPoll {
 public:
  explicit ProgressPoll(const Progress& callback);
  ProgressPoll(const ProgressPoll&) = delete;
  ProgressPoll& operator=(const ProgressPoll&) = delete;
  ~ProgressPoll();

  /// To be called when the shot is made: the last call tells 100 then.
  void finish();

  /// Whether the calling thread is one of a callback.
  static bool isThisThread();

 private:
  void poll();
  void tell(double percent);

  const Progress& progress;
  double told = 0.0;
  std::mutex mutex;
  std::condition_variable ended;
  bool end = false;
  bool made = false;
  std::thread thread;
};

}  // namespace Lumivane::Session
