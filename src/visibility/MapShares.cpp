#include "kernel/Planar.h"

#include <lumivane/visibility/MapShares.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <utility>

// Sums of a map's cells. They keep what additions round off, so that the order of the cells, and
// with it the number of threads, does not change a sum that is printed.
namespace Lumivane::Visibility {
namespace {

using Kernel::Pi;

// A sum that keeps what additions round off (A. Neumaier, 1974): the order of the cells hardly
// matters.
class Sum {
 public:
  void add(double value) {
    const double next = sum + value;
    const bool isLarger = std::abs(sum) >= std::abs(value);
    rest += isLarger ? (sum - next) + value : (value - next) + sum;
    sum = next;
  }
  double value() const { return sum + rest; }

 private:
  double sum = 0.0;
  double rest = 0.0;
};

class ShareSum {
 public:
  void add(const VisibleMap::Cell& cell) {
    solidAngle.add(cell.solidAngle);
    viewFactor.add(cell.viewFactor);
    minDistance = isAny ? std::min(minDistance, cell.minDistance) : cell.minDistance;
    maxDistance = isAny ? std::max(maxDistance, cell.maxDistance) : cell.maxDistance;
    isAny = true;
  }
  ViewShare share() const {
    // What takes all of the hemisphere may come out a rounding above 1, which no view factor is.
    return {solidAngle.value(), std::min(viewFactor.value(), 1.0), minDistance, maxDistance};
  }

 private:
  Sum solidAngle;
  Sum viewFactor;
  double minDistance = 0.0;
  double maxDistance = 0.0;
  bool isAny = false;
};

// Object, then face or region.
using Numbers = std::pair<int, int>;

// The class that all regions of something have; -1 if they differ or there are none.
class CommonClass {
 public:
  void add(int number) {
    common = isAny && common != number ? -1 : number;
    isAny = true;
  }
  int number() const { return common; }

 private:
  int common = -1;
  bool isAny = false;
};

// What the map's names say of classes; a map made by hand may have none.
class Classes {
 public:
  explicit Classes(const VisibleMap& map) : names(map.names.get()) {}

  int ofRegion(const Label& label) const {
    if (names == nullptr) return -1;
    const auto& regions = names->regions;
    const auto found =
        std::lower_bound(regions.begin(), regions.end(), label, [](const Label& a, const Label& b) {
          return Numbers(a.object, a.region) < Numbers(b.object, b.region);
        });
    return found == regions.end() ? -1 : ofPosition(found - regions.begin());
  }

  // Of all regions, seen or not, of each object that has a name.
  std::vector<CommonClass> ofObjects() const {
    std::vector<CommonClass> result(static_cast<std::size_t>(objectCount()));
    for (std::size_t i = 0; i < count(); ++i) {
      const int object = names->regions[i].object;
      if (object >= 1 && object <= objectCount())
        result[static_cast<std::size_t>(object) - 1].add(
            ofPosition(static_cast<std::ptrdiff_t>(i)));
    }
    return result;
  }
  CommonClass ofObject(int object) const {
    CommonClass result;
    for (std::size_t i = firstOf(object); i < count() && names->regions[i].object == object; ++i)
      result.add(ofPosition(static_cast<std::ptrdiff_t>(i)));
    return result;
  }
  // Of faces that are seen, by all their regions.
  std::map<Numbers, CommonClass> ofFaces(const std::map<Numbers, ShareSum>& seen) const {
    std::map<Numbers, CommonClass> result;
    for (auto face = seen.begin(); face != seen.end();) {
      const int object = face->first.first;
      for (std::size_t i = firstOf(object); i < count() && names->regions[i].object == object;
           ++i) {
        const Numbers numbers(object, names->regions[i].face);
        if (seen.count(numbers) != 0)
          result[numbers].add(ofPosition(static_cast<std::ptrdiff_t>(i)));
      }
      while (face != seen.end() && face->first.first == object) ++face;
    }
    return result;
  }
  int nameCount() const {
    return names == nullptr ? 0 : static_cast<int>(names->classNames.size());
  }
  int objectCount() const {
    return names == nullptr ? 0 : static_cast<int>(names->objectIds.size());
  }

 private:
  // Where the regions of an object start, which stand in the order of objects.
  std::size_t firstOf(int object) const {
    if (names == nullptr) return 0;
    const auto& regions = names->regions;
    const auto found =
        std::lower_bound(regions.begin(), regions.end(), object,
                         [](const Label& label, int number) { return label.object < number; });
    return static_cast<std::size_t>(found - regions.begin());
  }
  std::size_t count() const { return names == nullptr ? 0 : names->regions.size(); }
  int ofPosition(std::ptrdiff_t i) const {
    const auto position = static_cast<std::size_t>(i);
    return position < names->classes.size() ? names->classes[position] : -1;
  }

  const VisibleMap::Names* names;
};

struct Sums {
  std::map<int, ShareSum> objects;  // seen ones
  std::map<Numbers, ShareSum> faces;
  std::map<Numbers, ShareSum> regions;
  std::map<Numbers, int> faceOfRegion;
  std::map<int, ShareSum> classes;
  ShareSum sky;
  ShareSum all;  // but the sky
};

Sums sumsOf(const VisibleMap& map, const Classes& classes) {
  Sums sums;
  for (int i = -1; i < classes.nameCount(); ++i) sums.classes[i];
  for (const VisibleMap::Cell& cell : map.cells) {
    const Label& label = cell.label;
    if (label.object == 0) {
      sums.sky.add(cell);
      continue;
    }
    sums.all.add(cell);
    sums.objects[label.object].add(cell);
    sums.faces[{label.object, label.face}].add(cell);
    sums.regions[{label.object, label.region}].add(cell);
    sums.faceOfRegion[{label.object, label.region}] = label.face;
    sums.classes[classes.ofRegion(label)].add(cell);
  }
  return sums;
}

double fractionOf(double visible, double alone) {
  return alone > 0.0 ? std::min(visible / alone, 1.0) : 0.0;
}

}  // namespace

double ViewShare::area() const { return Pi * viewFactor; }
double ViewShare::hemisphereShare() const { return solidAngle / (2.0 * Pi); }

MapShares::MapShares(const VisibleMap& map) : MapShares(map, Objects::All) {}

MapShares::MapShares(const VisibleMap& map, Objects which) {
  const Classes classes(map);
  Sums sums = sumsOf(map, classes);
  const std::vector<CommonClass> common =
      which == Objects::All ? classes.ofObjects() : std::vector<CommonClass>();
  // A map made by hand may show objects that have no names.
  const auto addSeen = [&](const std::pair<const int, ShareSum>& seen) {
    theObjects.push_back(
        {{seen.first, 0, 0}, seen.second.share(), classes.ofObject(seen.first).number()});
  };
  theObjects.reserve(common.size() + sums.objects.size());
  auto seen = sums.objects.begin();
  for (; seen != sums.objects.end() && seen->first < 1; ++seen) addSeen(*seen);
  for (std::size_t i = 0; i < common.size(); ++i) {
    const int number = static_cast<int>(i) + 1;
    const bool isSeen = seen != sums.objects.end() && seen->first == number;
    theObjects.push_back(
        {{number, 0, 0}, isSeen ? (seen++)->second.share() : ViewShare(), common[i].number()});
  }
  for (; seen != sums.objects.end(); ++seen) addSeen(*seen);
  auto faceClasses = classes.ofFaces(sums.faces);
  for (const auto& [face, sum] : sums.faces)
    theFaces.push_back({{face.first, face.second, 0}, sum.share(), faceClasses[face].number()});
  for (const auto& [region, sum] : sums.regions) {
    const Label label{region.first, sums.faceOfRegion[region], region.second};
    theRegions.push_back({label, sum.share(), classes.ofRegion(label)});
  }
  for (int i = 0; i < classes.nameCount(); ++i) theClasses.push_back({i, sums.classes[i].share()});
  theClasses.push_back({-1, sums.classes[-1].share()});

  theSky = sums.sky.share();
  theWhole = sums.all.share();
  theWhole.solidAngle = map.fieldSolidAngle();
  theWhole.viewFactor = map.field == Field::Hemisphere ? 1.0 : 0.0;
  for (const Row& row : theObjects) {
    const auto i = static_cast<std::size_t>(row.label.object) - 1;
    if (i < map.alone.size())
      theFractions.push_back(fractionOf(row.share.solidAngle, map.alone[i]));
  }
}

}  // namespace Lumivane::Visibility
