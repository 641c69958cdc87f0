#include "ProgressBar.h"

#include <cstdio>

#include <unistd.h>

namespace Lumivane::Host {
namespace {

constexpr int Width = 40;

void draw(const std::string& text) {
  std::fprintf(stderr, "\r\033[K%s", text.c_str());
  std::fflush(stderr);
}

}  // namespace

std::string progressText(double percent) {
  const double bounded = percent > 0.0 ? (percent < 100.0 ? percent : 100.0) : 0.0;
  const int full = static_cast<int>(bounded * Width / 100.0);
  return "[" + std::string(static_cast<size_t>(full), '#') +
         std::string(static_cast<size_t>(Width - full), '.') + "] " +
         std::to_string(static_cast<int>(bounded)) + " %";
}

ProgressBar::ProgressBar() : isShown(isatty(STDERR_FILENO) != 0) {}

ProgressBar::~ProgressBar() {
  if (isShown) draw("");
}

Session::Progress ProgressBar::progress() const {
  if (!isShown) return {};
  return [](double percent) { draw(progressText(percent)); };
}

}  // namespace Lumivane::Host
