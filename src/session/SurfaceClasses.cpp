#include <lumivane/session/SurfaceClasses.h>

#include <algorithm>
#include <iterator>
#include <set>

namespace Lumivane::Session {

SurfaceClasses SurfaceClasses::ofNames(const std::vector<std::string>& nameOfRegion) {
  std::set<std::string> found(nameOfRegion.begin(), nameOfRegion.end());
  found.erase("");
  SurfaceClasses classes;
  if (found.empty()) return classes;
  classes.names.assign(found.begin(), found.end());
  classes.regions.reserve(nameOfRegion.size());
  for (const std::string& name : nameOfRegion) {
    const auto place = std::lower_bound(classes.names.begin(), classes.names.end(), name);
    classes.regions.push_back(name.empty() ? -1 : static_cast<int>(place - classes.names.begin()));
  }
  return classes;
}

std::vector<std::string> SurfaceClasses::namesOfRegions() const {
  std::vector<std::string> result;
  result.reserve(regions.size());
  std::transform(regions.begin(), regions.end(), std::back_inserter(result), [this](int number) {
    return number < 0 ? std::string() : names[static_cast<std::size_t>(number)];
  });
  return result;
}

}  // namespace Lumivane::Session
