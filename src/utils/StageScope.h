#pragma once

#include <lumivane/utils/StageTimes.h>

#include <mutex>

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

// The stages of threads that help the one that made this, to which their times are added at the
// end.
class HelperStages {
 public:
  HelperStages() : counts(StageTimes::isEnabled()), stage(StageTimes::current()) {}
  HelperStages(const HelperStages&) = delete;
  HelperStages& operator=(const HelperStages&) = delete;
  ~HelperStages() {
    if (counts) StageTimes::addAll(sums);
  }

  // Stands in a helping thread while it works.
  class Scope {
   public:
    explicit Scope(HelperStages& stages) : of(stages) {
      StageTimes::enable(of.counts);
      if (of.counts) StageTimes::enter(of.stage);
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope() {
      if (!of.counts) return;
      StageTimes::enter(StageTimes::None);
      const std::lock_guard<std::mutex> lock(of.mutex);
      StageTimes::addTo(of.sums);
    }

   private:
    HelperStages& of;
  };

 private:
  bool counts;
  std::size_t stage;
  std::mutex mutex;
  StageTimes::Nanoseconds sums = {};
};

}  // namespace Lumivane::Utils
