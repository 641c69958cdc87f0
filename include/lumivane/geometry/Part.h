#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Geometry {

/// A group of regions of one scene object: the numbers of the regions in its Regions. No number is
/// checked.
///
/// Owns its vector. Copies share it: of two copies, destroy one.
class LUMIVANE_EXPORT Part : public Base::BaseLibClass {
 public:
  Part();                                  ///< An empty vector.
  Part(const Part&) = default;             ///< Shares the vector.
  Part& operator=(const Part&) = default;  ///< Shares the vector; frees nothing.
  ~Part();                                 ///< Frees the vector.

  /// Region numbers from 1: the held vector, still the record's.
  std::vector<int>* getRegions() const { return regions; }
  /// Takes over the vector; the old one is not freed.
  void setRegions(std::vector<int>* numbers) { regions = numbers; }
  /// The number at a position from 0. \throws std::out_of_range
  int getRegion(int index) const;
  void addRegion(int number);  ///< Appends.
  /// Inserts before `index`, the count appending. \throws std::out_of_range
  void insertRegion(int index, int number);
  void removeRegionByIndex(int index);  ///< Erases that position. \throws std::out_of_range
  void removeRegion(int number);        ///< Erases every occurrence of the number.
  void clear();                         ///< Empties the vector and keeps it.

  /// An object with "Regions", an array of the numbers; an empty object if there are none.
  Jzon::Node serialize() override;
  /// Appends the numbers of "Regions", skipping what is no number.
  Base::BaseLibClass* deserialize(Jzon::Node node) override;

 private:
  std::vector<int>* regions;
};

}  // namespace Lumivane::Geometry
