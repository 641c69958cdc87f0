#pragma once

#include "pictures/MapPlane.h"
#include "pictures/PictureFrame.h"

#include <lumivane/pictures/MapPicture.h>
#include <lumivane/pictures/VectorPicture.h>
#include <lumivane/visibility/VisibleMap.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace Lumivane::Pictures {

/// What a map's cells and edges look like in a picture.
class MapLooks {
 public:
  MapLooks() = default;
  virtual ~MapLooks() = default;
  MapLooks(const MapLooks&) = delete;
  MapLooks& operator=(const MapLooks&) = delete;

  virtual VectorPicture::Color fill(const Visibility::Label& label) const = 0;
  /// Nothing where no line is drawn: then a line of a cell's colour lies under the cells.
  virtual std::optional<VectorPicture::Pen> pen(std::size_t edge) const = 0;
};

/// The picture of a map, but for its background.
/// \throws std::invalid_argument for options out of range; `lines` is not looked at
VectorPicture::Parts mapParts(const Visibility::VisibleMap& map, const MapLooks& looks,
                              const MapPictureOptions& options);

/// The same in any plane; size, title and projection are left to the caller. Of the map only cells,
/// edges and names are looked at.
/// \param atBorder  for each vertex whether the picture ends there; empty: nowhere
/// \param allCells  as `MapPictureOptions::allCells`
VectorPicture::Parts planeParts(const Visibility::VisibleMap& map, const MapLooks& looks,
                                const PictureFrame& frame, MapPlane& plane,
                                const std::vector<char>& atBorder, bool allCells);

}  // namespace Lumivane::Pictures
