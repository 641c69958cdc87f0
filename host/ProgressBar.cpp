#include "ProgressBar.h"

#include <lumivane/utils/ProgressbarUtils.h>

#include <chrono>
#include <cstdio>

#include <unistd.h>

namespace Lumivane::Host {
namespace {

constexpr int Width = 40;
constexpr std::chrono::milliseconds Pause(100);

}  // namespace

std::string progressText(double percent) {
  const double bounded = percent > 0.0 ? (percent < 100.0 ? percent : 100.0) : 0.0;
  const int full = static_cast<int>(bounded * Width / 100.0);
  return "[" + std::string(static_cast<size_t>(full), '#') +
         std::string(static_cast<size_t>(Width - full), '.') + "] " +
         std::to_string(static_cast<int>(bounded)) + " %";
}

ProgressBar::ProgressBar() {
  if (isatty(STDERR_FILENO) == 0) return;
  Utils::ProgressbarUtils::getInstance()->reset();
  thread = std::thread([this] { poll(); });
}

ProgressBar::~ProgressBar() {
  if (!thread.joinable()) return;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    end = true;
  }
  ended.notify_one();
  thread.join();
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
}

void ProgressBar::poll() {
  std::unique_lock<std::mutex> lock(mutex);
  do {
    const double percent = Utils::ProgressbarUtils::getInstance()->getProgress();
    std::fprintf(stderr, "\r\033[K%s", progressText(percent).c_str());
    std::fflush(stderr);
  } while (!ended.wait_for(lock, Pause, [this] { return end; }));
}

}  // namespace Lumivane::Host
