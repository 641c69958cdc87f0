#pragma once

#include <lumivane/session/Progress.h>

#include <string>

namespace Lumivane::Host {

/// Shows on standard error how far a shot has come. Does nothing when standard error is no
/// terminal. The bar is wiped out at the end.
class ProgressBar {
 public:
  ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  ~ProgressBar();

  /// What draws the bar; empty when standard error is no terminal.
  Session::Progress progress() const;

 private:
  bool isShown;
};

/// The bar for a percentage; what is no number or outside 0 to 100 counts as the nearest end.
std::string progressText(double percent);

}  // namespace Lumivane::Host
