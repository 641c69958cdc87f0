#pragma once

#include "utils/ProgressCopy.h"

#include <lumivane/session/Progress.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Lumivane::Session {

/// From its construction to its end, looks how far the shot of the constructing thread has come, in
/// a thread of its own, and reports it to the callback. Without a callback there is no thread.
class ProgressPoll {
 public:
  explicit ProgressPoll(const Progress& callback);
  ProgressPoll(const ProgressPoll&) = delete;
  ProgressPoll& operator=(const ProgressPoll&) = delete;
  ~ProgressPoll();

  /// To be called when the shot is made: the last call reports 100 then.
  void finish();

  /// Whether the calling thread is one of a callback.
  static bool isThisThread();

 private:
  void poll();
  void report(double percent);

  const Progress& progress;
  std::atomic<double> written = 0.0;  // by the thread that takes the shot
  Utils::ProgressCopy copy{written};
  double reported = 0.0;
  std::mutex mutex;
  std::condition_variable ended;
  bool end = false;
  bool made = false;
  std::thread thread;
};

}  // namespace Lumivane::Session
