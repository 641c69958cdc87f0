#pragma once

#include <lumivane/export.h>
#include <lumivane/utils/Stage.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace Lumivane::Utils {

class HelperStages;
class StageScope;

/// How long each stage of the work has taken in the calling thread, for measurements. Off at first
/// in every thread, and then next to free; what the library does is the same on and off.
///
/// The times are those that the processor spent on the thread, which other programs on the machine
/// disturb less than the time of day. A stage begun within another stops the outer one meanwhile,
/// so the times add up. Threads that help an operation count to the one that called it. All
/// operations concern the calling thread alone.
class LUMIVANE_EXPORT StageTimes {
 public:
  static constexpr std::size_t Count = 9;  ///< number of stages

  /// Switches on or off from the next stage on. The times so far are kept.
  static void enable(bool on);
  /// Sets every time to 0.
  static void reset();
  /// \return processor seconds of a stage since the last reset
  static double seconds(Stage stage);
  /// \return the name of a stage in lower case, as in "polygon_data"
  static const char* name(Stage stage);

 private:
  friend class HelperStages;
  friend class StageScope;
  static constexpr std::size_t None = Count;
  using Nanoseconds = std::array<std::int64_t, Count>;

  static bool isEnabled();
  static std::size_t current();
  static std::size_t enter(std::size_t stage);
  static void addTo(Nanoseconds& sums);         // those of the calling thread
  static void addAll(const Nanoseconds& more);  // to the calling thread
};

}  // namespace Lumivane::Utils
