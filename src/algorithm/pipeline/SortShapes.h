#pragma once

#include "kernel/Classify.h"

#include <lumivane/algorithm/ObjectData.h>

#include <cstddef>
#include <vector>

namespace Lumivane::Algorithm {

/// The polygons of the objects of a sort, face k those of object k as the list of objects was made,
/// and the places of its regions in the shot. A name of its own, so that public headers need not
/// know the kernels.
class SortShapes : public Kernel::FaceShapes {
 public:
  void beginFace() {
    addFace();
    firstRegions.push_back(regions.size());
  }
  void addRegion(std::size_t position) { regions.push_back(position); }  ///< To the last face.
  void dropFace() {  ///< The last one, without pieces and sources.
    dropLastFace();
    regions.resize(firstRegions.back());
    firstRegions.pop_back();
  }

  struct Positions {
    const std::size_t* first;
    const std::size_t* last;
    const std::size_t* begin() const { return first; }
    const std::size_t* end() const { return last; }
  };

  Positions regionsOf(std::size_t face) const {
    const bool isLast = face + 1 == firstRegions.size();
    return {regions.data() + firstRegions[face],
            regions.data() + (isLast ? regions.size() : firstRegions[face + 1])};
  }

  /// Makes room for the faces of that many regions.
  void reserve(std::size_t regionCount, std::size_t pointCount) {
    outlines.reserve(regionCount, pointCount);
    sources.reserve(regionCount);
    faces.reserve(regionCount);
    firstRegions.reserve(regionCount);
    regions.reserve(regionCount);
  }

  /// The regions of the shot, until they are put into their order.
  const ObjectData::Regions* shotRegions = nullptr;

 private:
  std::vector<std::size_t> firstRegions;  // per face
  std::vector<std::size_t> regions;
};

}  // namespace Lumivane::Algorithm
