#pragma once

#include <lumivane/export.h>

#include <atomic>
#include <mutex>
#include <string>

namespace Lumivane::Utils {

/// The process-wide record of how far a shot has come. The shot creation writes the progress and a
/// host reads it, from another thread if it likes. The other fields are there for the host alone.
///
/// Any thread may use it at any time. If two threads make shots at once, the record holds now what
/// the one has written and now what the other has; a callback of `Session::LoadedScene::take` gets
/// the progress of its own shot.
class LUMIVANE_EXPORT ProgressbarUtils {
 public:
  /// The one instance, created at first use; it lives to the end of the process. Do not delete it.
  static ProgressbarUtils* getInstance();

  ProgressbarUtils(const ProgressbarUtils&) = delete;
  ProgressbarUtils& operator=(const ProgressbarUtils&) = delete;

  /// Adds 1 to the count of objects done.
  void increaseHandledObjectsCounter();
  /// The count of objects done.
  int getHandledObjectsCount();

  /// The count of objects in all.
  int getTotalObjectsCount();
  /// Sets the count of objects in all.
  void setTotalObjectsCount(int count);

  /// Free text of the current stage.
  std::string getStatus();
  /// Sets the text of the current stage.
  void setStatus(std::string text);

  /// The percentage of the whole shot, from 0 to 100. A finished shot leaves it at its last value,
  /// below 100.
  double getProgress();
  /// Sets the percentage; it is not checked.
  void setProgress(double percent);
  /// Adds to the percentage.
  void increaseProgress(double percent);

  /// Sets both counts to 0, the status to the empty text and the progress to 0.
  void reset();

 private:
  ProgressbarUtils() = default;

  std::atomic<int> handledObjectsCount = 0;
  std::atomic<int> totalObjectsCount = 0;
  std::mutex statusLock;
  std::string status;
  std::atomic<double> progress = 0.0;  // written by the working thread, polled by another
};

}  // namespace Lumivane::Utils
