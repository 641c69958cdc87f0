#pragma once

#include "kernel/SamePoint.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Lumivane::Kernel {

/// A growing list of plane points in which a point is looked up by a tolerance per axis. The answer
/// is always the first point, in the order of adding, that agrees; NaN and infinities agree with
/// nothing.
///
/// How: a grid of square cells, each with the chain of its points in the order of adding. What
/// agrees with a point lies in the cells between its coordinates less and more a margin a little
/// above the tolerance. Subtraction, division and floor are monotone, rounding included, so no cell
/// is missed. Points beyond the grid's range stand in a list of their own.
class PointPool {
 public:
  /// The position of no point.
  static constexpr std::size_t None = static_cast<std::size_t>(-1);

  explicit PointPool(double agreement)
      : tolerance(agreement),
        margin(agreement * 1.01),
        cellSize(agreement * 4.0),
        hasGrid(agreement > 1e-100 && agreement < 1e100) {}

  std::size_t size() const { return points.size(); }

  /// The position of the first point that agrees, or None.
  std::size_t find(Vec2 point) const {
    if (!isInGrid(point)) return findInOrder(point);
    std::size_t first = None;
    for (const std::size_t position : outside)
      if (agrees(position, point)) first = std::min(first, position);
    const Cell low = cellOf({point.x - margin, point.y - margin});
    const Cell high = cellOf({point.x + margin, point.y + margin});
    for (std::int32_t x = low.x; x <= high.x; ++x)
      for (std::int32_t y = low.y; y <= high.y; ++y)
        first = std::min(first, findInCell({x, y}, point));
    return first;
  }

  /// Appends a point and returns its position.
  std::size_t add(Vec2 point) {
    const std::size_t position = points.size();
    points.push_back(point);
    nextInCell.push_back(None);
    if (isInGrid(point))
      addToCell(cellOf(point), position);
    else if (std::isfinite(point.x) && std::isfinite(point.y))
      outside.push_back(position);
    return position;
  }

 private:
  struct Cell {
    std::int32_t x;
    std::int32_t y;
  };
  struct Chain {
    std::size_t first;
    std::size_t last;
  };

  // Cell numbers, the margin included, stay far within their type.
  bool isInGrid(Vec2 point) const {
    const double range = cellSize * 1e8;
    return hasGrid && std::abs(point.x) <= range && std::abs(point.y) <= range;
  }

  Cell cellOf(Vec2 point) const {
    return {static_cast<std::int32_t>(std::floor(point.x / cellSize)),
            static_cast<std::int32_t>(std::floor(point.y / cellSize))};
  }

  static std::uint64_t keyOf(Cell cell) {
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(cell.x)) << 32 |
           static_cast<std::uint32_t>(cell.y);
  }

  bool agrees(std::size_t position, Vec2 point) const {
    return samePoint(point, points[position], tolerance);
  }

  std::size_t findInOrder(Vec2 point) const {
    for (std::size_t i = 0; i < points.size(); ++i)
      if (agrees(i, point)) return i;
    return None;
  }

  std::size_t findInCell(Cell cell, Vec2 point) const {
    const auto chain = cells.find(keyOf(cell));
    if (chain == cells.end()) return None;
    for (std::size_t i = chain->second.first; i != None; i = nextInCell[i])
      if (agrees(i, point)) return i;
    return None;
  }

  void addToCell(Cell cell, std::size_t position) {
    const auto [chain, isNew] = cells.try_emplace(keyOf(cell), Chain{position, position});
    if (isNew) return;
    nextInCell[chain->second.last] = position;
    chain->second.last = position;
  }

  double tolerance;
  double margin;
  double cellSize;
  bool hasGrid;
  std::vector<Vec2> points;
  std::vector<std::size_t> nextInCell;  // the next point of the same cell, or None
  std::vector<std::size_t> outside;     // finite, but beyond the grid
  std::unordered_map<std::uint64_t, Chain> cells;
};

}  // namespace Lumivane::Kernel
