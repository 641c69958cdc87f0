#pragma once

#include <lumivane/utils/StageTimes.h>

namespace Lumivane::Utils {

// Counts the time from its construction to its end to a stage, and not to a stage around it.
// Reading the clock takes about half a microsecond: one scope for an object is fine, one for an
// edge is not.
class StageScope {
 public:
  explicit StageScope(Stage stage) : counts(StageTimes::isEnabled()) {
    if (counts) outer = StageTimes::enter(static_cast<std::size_t>(stage));
  }
  StageScope(const StageScope&) = delete;
  StageScope& operator=(const StageScope&) = delete;
  ~StageScope() {
    if (counts) StageTimes::enter(outer);
  }

 private:
  bool counts;
  std::size_t outer = StageTimes::None;
};

}  // namespace Lumivane::Utils
