#pragma once

#include <map>
#include <string>

namespace Lumivane::Measure {
class ShareClasses;
class VisibleShares;
}  // namespace Lumivane::Measure

namespace Lumivane::Visibility {
class MapShares;
struct ParallelMap;
struct VisibleMap;
}  // namespace Lumivane::Visibility

namespace Lumivane::Pictures {

/// The classes of what is seen of each object, as pages show them. An object may be of several, as
/// a house of walls and roofs is, where a table for programs has none.
class SeenClasses {
 public:
  SeenClasses(const Measure::VisibleShares& shares, const Measure::ShareClasses& classes);
  SeenClasses(const Visibility::VisibleMap& map, const Visibility::MapShares& shares);
  explicit SeenClasses(const Visibility::ParallelMap& map);

  /// The classes of an object, that of the greatest part first.
  /// \param own  for an object of which nothing with a class is seen
  std::string text(int object, const std::string& own) const;

  /// A class of a map by its number; empty for none.
  static std::string nameOf(const Visibility::VisibleMap& map, int number);

 private:
  void add(int object, const std::string& name, double amount);

  std::map<int, std::map<std::string, double>> amounts;
};

}  // namespace Lumivane::Pictures
