#pragma once

#include "importers/Outline.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Lumivane::Importers {

/// Cuts polygons, with holes or not, into triangles. Corners are only joined, none is made.
class OutlineCutter {
 public:
  explicit OutlineCutter(const std::vector<Kernel::Vec3>& vertices);
  OutlineCutter(const OutlineCutter&) = delete;
  OutlineCutter& operator=(const OutlineCutter&) = delete;
  ~OutlineCutter();

  /// Fills a polygon with triangles, which run the same way round as its outline.
  ///
  /// \param loops  the outline, then its holes, wound either way
  /// \return no triangles if the outline cannot be filled: it crosses itself, or has more
  ///         corners (28,000) or edges side by side than can be cut in seconds, of all polygons of
  ///         the model together
  std::vector<Loop> triangles(const std::vector<Loop>& loops);

 private:
  struct Tesselator;

  const std::vector<Kernel::Vec3>& points;
  std::unique_ptr<Tesselator> tesselator;
  std::int64_t stepsLeft;
};

}  // namespace Lumivane::Importers
