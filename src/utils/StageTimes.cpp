#include <lumivane/utils/StageTimes.h>

#include <array>
#include <ctime>

namespace Lumivane::Utils {
namespace {

// One more than there are stages: the time of no stage is counted too, and never asked for.
std::array<std::clock_t, StageTimes::Count + 1> ticks = {};
std::size_t current = StageTimes::Count;
std::clock_t since = 0;

constexpr std::array<const char*, StageTimes::Count> Names = {
    "read",   "polygon_data",   "clip_and_cull", "projection", "docking",
    "points", "classification", "order",         "write"};

}  // namespace

bool StageTimes::isOn = false;

void StageTimes::enable(bool on) { isOn = on; }

void StageTimes::reset() { ticks.fill(0); }

double StageTimes::seconds(Stage stage) {
  return static_cast<double>(ticks.at(static_cast<std::size_t>(stage))) / CLOCKS_PER_SEC;
}

const char* StageTimes::name(Stage stage) { return Names.at(static_cast<std::size_t>(stage)); }

// Ends the current stage and begins another.
std::size_t StageTimes::enter(std::size_t stage) {
  const std::clock_t now = std::clock();
  ticks[current] += now - since;
  since = now;
  const std::size_t left = current;
  current = stage;
  return left;
}

}  // namespace Lumivane::Utils
