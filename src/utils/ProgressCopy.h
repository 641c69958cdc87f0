#pragma once

#include <atomic>

namespace Lumivane::Utils {

/// While it lives, the progress that the calling thread writes to the record of the process is
/// written to a place of its own as well, so that each of several shots at a time has one.
class ProgressCopy {
 public:
  /// The place must live as long.
  explicit ProgressCopy(std::atomic<double>& copy);
  ProgressCopy(const ProgressCopy&) = delete;
  ProgressCopy& operator=(const ProgressCopy&) = delete;
  ~ProgressCopy();

 private:
  std::atomic<double>* outer;
};

}  // namespace Lumivane::Utils
