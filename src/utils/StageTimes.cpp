#include <lumivane/utils/StageTimes.h>

#include <array>
#include <cstdint>
#include <ctime>

#include <time.h>  // for clock_gettime

namespace Lumivane::Utils {
namespace {

// What one thread has counted.
struct Clock {
  // In nanoseconds. One more than there are stages: the time of no stage is counted too, and never
  // asked for.
  std::array<std::int64_t, StageTimes::Count + 1> times = {};
  std::size_t current = StageTimes::Count;
  std::int64_t since = 0;
  bool isOn = false;
};

thread_local Clock ofThread;

constexpr std::int64_t NanosecondsPerSecond = 1'000'000'000;

// The time that the processor has spent on this thread.
std::int64_t processorTime() {
  std::timespec time = {};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return time.tv_sec * NanosecondsPerSecond + time.tv_nsec;
}

constexpr std::array<const char*, StageTimes::Count> Names = {
    "read",   "polygon_data",   "clip_and_cull", "projection", "docking",
    "points", "classification", "order",         "write"};

}  // namespace

void StageTimes::enable(bool on) { ofThread.isOn = on; }

bool StageTimes::isEnabled() { return ofThread.isOn; }

void StageTimes::reset() { ofThread.times.fill(0); }

double StageTimes::seconds(Stage stage) {
  return static_cast<double>(ofThread.times.at(static_cast<std::size_t>(stage))) /
         static_cast<double>(NanosecondsPerSecond);
}

const char* StageTimes::name(Stage stage) { return Names.at(static_cast<std::size_t>(stage)); }

std::size_t StageTimes::current() { return ofThread.current; }

void StageTimes::addTo(Nanoseconds& sums) {
  for (std::size_t stage = 0; stage < Count; ++stage) sums[stage] += ofThread.times[stage];
}

void StageTimes::addAll(const Nanoseconds& more) {
  for (std::size_t stage = 0; stage < Count; ++stage) ofThread.times[stage] += more[stage];
}

// Ends the current stage and begins another.
std::size_t StageTimes::enter(std::size_t stage) {
  Clock& clock = ofThread;
  const std::int64_t now = processorTime();
  clock.times[clock.current] += now - clock.since;
  clock.since = now;
  const std::size_t left = clock.current;
  clock.current = stage;
  return left;
}

}  // namespace Lumivane::Utils
