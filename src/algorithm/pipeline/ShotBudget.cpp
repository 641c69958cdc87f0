#include "algorithm/pipeline/ShotBudget.h"

#include <algorithm>
#include <cmath>

namespace Lumivane::Algorithm {
namespace {

// The square that holds every picture.
constexpr double PictureSide = 2.0;

// How many different points a picture may have, by the boxes of the merge distance that fit in.
double mostPoints(double mergeDistance) {
  const double side = PictureSide / mergeDistance;
  return side * side;
}

// How many references memory has room for, if as many of them as possible are different points.
std::int64_t referencesIn(std::int64_t memory, double mergeDistance) {
  const auto bytes = static_cast<double>(memory);
  const double allDifferent = static_cast<double>(ShotBudget::BytesPerReference) +
                              static_cast<double>(ShotBudget::BytesPerPoint);
  const double different = mostPoints(mergeDistance);
  if (!(bytes / allDifferent > different)) return std::llround(std::floor(bytes / allDifferent));
  const double rest = bytes - different * static_cast<double>(ShotBudget::BytesPerPoint);
  return std::llround(std::floor(rest / static_cast<double>(ShotBudget::BytesPerReference)));
}

}  // namespace

ShotLimits& shotLimits() {
  thread_local ShotLimits limits;
  return limits;
}

std::string memoryLimitText(std::int64_t bytes) {
  return "--limit-memory (ViewSettings::limitMemory) of " + std::to_string(bytes) + " bytes";
}

ShotBudget::ShotBudget(const ShotLimits& shotLimits, double mergeDistance) : limits(shotLimits) {
  if (limits.points > 0) most = limits.points;
  if (limits.memory <= 0) return;
  const std::int64_t inMemory = referencesIn(limits.memory, mergeDistance);
  isMemory = inMemory < most;
  most = std::min(most, inMemory);
}

std::string ShotBudget::limitText() const {
  const std::string room = std::to_string(std::max<std::int64_t>(left(), 0));
  if (!isMemory) return "--limit-points (ViewSettings::limitPoints) leaves " + room;
  return memoryLimitText(limits.memory) + " leaves room for " + room;
}

}  // namespace Lumivane::Algorithm
