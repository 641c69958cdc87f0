#include "pictures/SeenClasses.h"

#include <lumivane/measure/ShareClasses.h>
#include <lumivane/measure/VisibleShares.h>
#include <lumivane/visibility/MapShares.h>
#include <lumivane/visibility/ParallelMap.h>
#include <lumivane/visibility/VisibleMap.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace Lumivane::Pictures {
namespace {

using Visibility::Label;

std::string nameIn(const Visibility::VisibleMap::Names* names, int number) {
  const bool isAny = names != nullptr && number >= 0 &&
                     static_cast<std::size_t>(number) < names->classNames.size();
  return isAny ? names->classNames[static_cast<std::size_t>(number)] : "";
}

std::string nameOfRegion(const Visibility::VisibleMap::Names& names, const Label& label) {
  const auto isBefore = [](const Label& a, const Label& b) {
    return std::make_pair(a.object, a.region) < std::make_pair(b.object, b.region);
  };
  const auto found = std::lower_bound(names.regions.begin(), names.regions.end(), label, isBefore);
  const auto at = static_cast<std::size_t>(found - names.regions.begin());
  return at < names.classes.size() ? nameIn(&names, names.classes[at]) : "";
}

}  // namespace

SeenClasses::SeenClasses(const Measure::VisibleShares& shares,
                         const Measure::ShareClasses& classes) {
  for (const Measure::RegionShare& region : shares.regions())
    add(region.objectNumber, classes.ofRegion(region.objectNumber, region.sourceRegionNumber),
        region.share.solidAngle);
}

SeenClasses::SeenClasses(const Visibility::VisibleMap& map, const Visibility::MapShares& shares) {
  for (const Visibility::MapShares::Row& region : shares.regions())
    add(region.label.object, nameOf(map, region.classNumber), region.share.solidAngle);
}

SeenClasses::SeenClasses(const Visibility::ParallelMap& map) {
  if (map.names == nullptr) return;
  for (const Visibility::ParallelMap::Cell& cell : map.cells)
    if (cell.label.object > 0)
      add(cell.label.object, nameOfRegion(*map.names, cell.label), cell.area);
}

std::string SeenClasses::nameOf(const Visibility::VisibleMap& map, int number) {
  return nameIn(map.names.get(), number);
}

void SeenClasses::add(int object, const std::string& name, double amount) {
  if (!name.empty() && amount > 0.0) amounts[object][name] += amount;
}

std::string SeenClasses::text(int object, const std::string& own) const {
  const auto found = amounts.find(object);
  if (found == amounts.end()) return own;
  std::vector<std::pair<double, std::string>> parts;
  for (const auto& part : found->second) parts.emplace_back(-part.second, part.first);
  std::sort(parts.begin(), parts.end());
  std::string result;
  for (const auto& part : parts) result += (result.empty() ? "" : ", ") + part.second;
  return result;
}

}  // namespace Lumivane::Pictures
