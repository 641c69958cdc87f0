#include "utils/ProgressCopy.h"

#include <lumivane/utils/ProgressbarUtils.h>

#include <utility>

namespace Lumivane::Utils {
namespace {

thread_local std::atomic<double>* copyOfThread = nullptr;

}  // namespace

ProgressCopy::ProgressCopy(std::atomic<double>& copy) : outer(std::exchange(copyOfThread, &copy)) {}

ProgressCopy::~ProgressCopy() { copyOfThread = outer; }

ProgressbarUtils* ProgressbarUtils::getInstance() {
  // Never destroyed: a host's thread may still poll it while statics are taken down.
  static ProgressbarUtils* const instance = new ProgressbarUtils();
  return instance;
}

void ProgressbarUtils::increaseHandledObjectsCounter() { ++handledObjectsCount; }
int ProgressbarUtils::getHandledObjectsCount() { return handledObjectsCount; }
int ProgressbarUtils::getTotalObjectsCount() { return totalObjectsCount; }
void ProgressbarUtils::setTotalObjectsCount(int count) { totalObjectsCount = count; }

std::string ProgressbarUtils::getStatus() {
  const std::lock_guard<std::mutex> lock(statusLock);
  return status;
}

void ProgressbarUtils::setStatus(std::string text) {
  const std::lock_guard<std::mutex> lock(statusLock);
  status = std::move(text);
}

double ProgressbarUtils::getProgress() { return progress.load(std::memory_order_relaxed); }

void ProgressbarUtils::setProgress(double percent) {
  progress.store(percent, std::memory_order_relaxed);
  if (copyOfThread != nullptr) copyOfThread->store(percent, std::memory_order_relaxed);
}

// Of two threads that add at once, one may be lost: what they add up would mean nothing.
void ProgressbarUtils::increaseProgress(double percent) { setProgress(getProgress() + percent); }

void ProgressbarUtils::reset() {
  handledObjectsCount = 0;
  totalObjectsCount = 0;
  setStatus("");
  setProgress(0.0);
}

}  // namespace Lumivane::Utils
