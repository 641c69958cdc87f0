#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace Lumivane::Host {

/// Shows on standard error how far the shot has come, from its construction to its end, by polling
/// the library's progress record from a thread of its own. Does nothing when standard error is no
/// terminal. The bar is wiped out at the end.
class ProgressBar {
 public:
  ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  ~ProgressBar();

 private:
  void poll();

  std::mutex mutex;
  std::condition_variable ended;
  bool end = false;
  std::thread thread;
};

/// The bar for a percentage; what is no number or outside 0 to 100 counts as the nearest end.
std::string progressText(double percent);

}  // namespace Lumivane::Host
