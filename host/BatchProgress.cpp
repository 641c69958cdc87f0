#include "BatchProgress.h"

#include "ProgressBar.h"

#include <cmath>
#include <cstdio>
#include <string>

#include <unistd.h>

namespace Lumivane::Host {
namespace {

std::string duration(double seconds) {
  const long whole = std::lround(seconds);
  char text[40];
  if (whole < 3600)
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
  else
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
  return text;
}

}  // namespace

BatchProgress::BatchProgress(std::size_t count)
    : isShown(isatty(STDERR_FILENO) != 0), all(count), start(std::chrono::steady_clock::now()) {}

BatchProgress::~BatchProgress() {
  if (isShown) std::fputs("\r\033[K", stderr);
}

void BatchProgress::show() const {
  if (!isShown) return;
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  const size_t made = done + failed;
  std::string text = progressText(100.0 * static_cast<double>(made) / static_cast<double>(all)) +
                     "  " + std::to_string(made) + "/" + std::to_string(all) + " views";
  if (made > 0) {
    char rate[40];
    std::snprintf(rate, sizeof rate, ", %.1f a second", static_cast<double>(made) / seconds);
    text += rate;
    text += ", " + duration(seconds * static_cast<double>(all - made) / static_cast<double>(made)) +
            " left";
  }
  if (failed > 0) text += ", " + std::to_string(failed) + " failed";
  std::fprintf(stderr, "\r\033[K%s", text.c_str());
  std::fflush(stderr);
}

}  // namespace Lumivane::Host
