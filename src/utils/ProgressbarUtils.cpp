#include <lumivane/utils/ProgressbarUtils.h>

#include <utility>

namespace Lumivane::Utils {

ProgressbarUtils* ProgressbarUtils::getInstance() {
  // Never destroyed: a host's thread may still poll it while statics are taken down.
  static ProgressbarUtils* const instance = new ProgressbarUtils();
  return instance;
}

void ProgressbarUtils::increaseHandledObjectsCounter() { ++handledObjectsCount; }
int ProgressbarUtils::getHandledObjectsCount() { return handledObjectsCount; }
int ProgressbarUtils::getTotalObjectsCount() { return totalObjectsCount; }
void ProgressbarUtils::setTotalObjectsCount(int count) { totalObjectsCount = count; }

std::string ProgressbarUtils::getStatus() { return status; }
void ProgressbarUtils::setStatus(std::string text) { status = std::move(text); }

double ProgressbarUtils::getProgress() { return progress.load(std::memory_order_relaxed); }

void ProgressbarUtils::setProgress(double percent) {
  progress.store(percent, std::memory_order_relaxed);
}

// Only the working thread writes: a load and a store lose nothing.
void ProgressbarUtils::increaseProgress(double percent) { setProgress(getProgress() + percent); }

void ProgressbarUtils::reset() {
  handledObjectsCount = 0;
  totalObjectsCount = 0;
  status.clear();
  setProgress(0.0);
}

}  // namespace Lumivane::Utils
