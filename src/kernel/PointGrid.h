#pragma once

#include "kernel/SamePoint.h"
#include "kernel/Vec.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace Lumivane::Kernel {

/// Tiles of cells by their place: a hash table with open addressing. A tile is a cache line, so
/// that neighbours in the picture are neighbours in memory.
class CellTiles {
 public:
  /// The position of what a cell's chain starts with, or None.
  using Position = std::uint32_t;
  static constexpr Position None = static_cast<Position>(-1);

  CellTiles() : slots(64) {}

  Position at(std::int32_t x, std::int32_t y) const {
    const Slot& slot = slots[slotOf(keyOf(x, y))];
    return slot.tile == None ? None : tiles[slot.tile][cellInTile(x, y)];
  }

  /// The same to be changed; the tile is made if it is not there.
  Position& operator()(std::int32_t x, std::int32_t y) {
    const std::uint64_t key = keyOf(x, y);
    std::size_t position = slotOf(key);
    if (slots[position].tile == None) {
      if (tiles.size() * 2 >= slots.size()) grow();
      position = slotOf(key);
      slots[position] = {key, static_cast<Position>(tiles.size())};
      tiles.emplace_back().fill(None);
    }
    return tiles[slots[position].tile][cellInTile(x, y)];
  }

 private:
  struct Slot {
    std::uint64_t key = 0;
    Position tile = None;
  };
  using Tile = std::array<Position, 16>;  // 4 x 4 cells

  static std::uint64_t keyOf(std::int32_t x, std::int32_t y) {
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(x >> 2)) << 32 |
           static_cast<std::uint32_t>(y >> 2);
  }
  static std::size_t cellInTile(std::int32_t x, std::int32_t y) {
    return static_cast<std::size_t>((x & 3) << 2 | (y & 3));
  }

  // Where a key stands, or the free slot where it would.
  std::size_t slotOf(std::uint64_t key) const {
    const std::uint64_t mixed = (key ^ key >> 32) * 0x9E3779B97F4A7C15U;
    std::size_t position = static_cast<std::size_t>(mixed >> 32) & (slots.size() - 1);
    while (slots[position].tile != None && slots[position].key != key)
      position = (position + 1) & (slots.size() - 1);
    return position;
  }

  void grow() {
    std::vector<Slot> old(slots.size() * 2);
    old.swap(slots);
    for (const Slot& slot : old)
      if (slot.tile != None) slots[slotOf(slot.key)] = slot;
  }

  std::vector<Slot> slots;  // their number is a power of two
  std::vector<Tile> tiles;
};

/// Seven points of one cell, a cache line: how far each is from the low border of the cell in whole
/// steps, which is enough to pass over most that do not agree, all seven at once.
struct alignas(64) PointBlock {
  static constexpr std::size_t Count = 7;
  static constexpr double StepsPerCell = 8192.0;

  using Position = CellTiles::Position;
  /// Eight whole numbers, of which the last one is not used.
  using Steps = std::int16_t __attribute__((vector_size(16)));

  explicit PointBlock(Position nextBlock)
      : x(Steps{} + NoPoint), y(Steps{} + NoPoint), next(nextBlock) {
    positions.fill(CellTiles::None);
  }

  bool isFull() const { return positions.back() != CellTiles::None; }

  void add(Position position, std::int16_t stepX, std::int16_t stepY) {
    const auto place = static_cast<std::size_t>(
        std::find(positions.begin(), positions.end(), CellTiles::None) - positions.begin());
    x[place] = stepX;
    y[place] = stepY;
    positions[place] = position;
  }

  /// Calls `visit(position)` for each point that is at most `reach` steps away on both axes.
  template <class Visit>
  void forEachWithin(std::int16_t reach, std::int16_t stepX, std::int16_t stepY,
                     Visit visit) const {
    const Steps isWithin = (x >= static_cast<std::int16_t>(stepX - reach)) &
                           (x <= static_cast<std::int16_t>(stepX + reach)) &
                           (y >= static_cast<std::int16_t>(stepY - reach)) &
                           (y <= static_cast<std::int16_t>(stepY + reach));
    std::array<std::uint64_t, 2> all{};
    std::memcpy(all.data(), &isWithin, sizeof all);
    if ((all[0] | all[1]) == 0) return;
    for (std::size_t i = 0; i < Count; ++i)
      if (isWithin[i] != 0) visit(positions[i]);
  }

  Steps x;
  Steps y;
  std::array<Position, Count> positions{};
  Position next;  ///< of the blocks of the cell, or None

 private:
  static constexpr std::int16_t NoPoint = 20000;  // further than anything is looked for
};

/// Plane points, found by a tolerance per axis. NaN and infinities agree with nothing.
///
/// How: a grid of square cells, each with the chain of its points in blocks. What agrees with a
/// point lies in the cells between its coordinates less and more a margin a little above the
/// tolerance. Subtraction, multiplication by a positive number and floor are monotone, rounding
/// included, so no cell is missed. What is passed over within a cell is further away than the
/// tolerance by a step at least, and all that rounds adds up to less than a thousandth of a step.
/// Points beyond the grid's range stand in a list of their own. A tolerance far below the size of
/// the picture does not make the cells smaller, or most of it would lie there.
class PointGrid {
 public:
  explicit PointGrid(double agreement)
      : tolerance(agreement),
        margin(agreement * 1.01),
        cellsPerLength(1.0 / cellSide(agreement)),
        range(cellSide(agreement) * 1e8),
        reach(reachOf(agreement)),
        hasGrid(agreement > 0.0 && agreement < 1e100) {}

  std::size_t size() const { return points.size(); }

  /// Appends a point and returns its position.
  std::size_t add(Vec2 point) {
    const auto position = static_cast<Position>(points.size());
    points.push_back(point);
    if (isInGrid(point)) {
      const std::int32_t x = cellOf(point.x);
      const std::int32_t y = cellOf(point.y);
      blockOf(cells(x, y)).add(position, stepOf(point.x, x), stepOf(point.y, y));
    } else if (std::isfinite(point.x) && std::isfinite(point.y)) {
      outside.push_back(position);
    }
    return position;
  }

  /// Calls `visit(position)` once for each point that agrees, in no promised order.
  template <class Visit>
  void forEachNear(Vec2 point, Visit visit) const {
    if (!isAnythingNear(point)) return;
    if (!isInGrid(point)) {
      for (std::size_t i = 0; i < points.size(); ++i) visitIfNear(point, i, visit);
      return;
    }
    for (const Position i : outside) visitIfNear(point, i, visit);
    const std::int32_t highX = cellOf(point.x + margin);
    const std::int32_t highY = cellOf(point.y + margin);
    for (std::int32_t x = cellOf(point.x - margin); x <= highX; ++x)
      for (std::int32_t y = cellOf(point.y - margin); y <= highY; ++y)
        for (Position i = cells.at(x, y); i != CellTiles::None; i = blocks[i].next)
          blocks[i].forEachWithin(reach, stepOf(point.x, x), stepOf(point.y, y),
                                  [&](Position found) { visitIfNear(point, found, visit); });
  }

 private:
  using Position = CellTiles::Position;
  static constexpr double CellSide = 4.0;         // in tolerances
  static constexpr double SmallestCell = 4.0e-7;  // so that the range is the picture at least

  static double cellSide(double agreement) { return std::max(agreement * CellSide, SmallestCell); }

  // Of the steps in a block: the tolerance, and two for what is cut off of two points.
  static std::int16_t reachOf(double agreement) {
    if (!(agreement > 0.0 && agreement < 1e100)) return 0;  // there is no grid
    const double steps = agreement / cellSide(agreement) * PointBlock::StepsPerCell;
    return static_cast<std::int16_t>(steps + 3.0);
  }

  // Whether some point may agree at all.
  bool isAnythingNear(Vec2 point) const {
    return tolerance > 0.0 && std::isfinite(point.x) && std::isfinite(point.y);
  }

  // Cell numbers, the margin included, stay far within their type.
  bool isInGrid(Vec2 point) const {
    return hasGrid && std::abs(point.x) <= range && std::abs(point.y) <= range;
  }

  std::int32_t cellOf(double coordinate) const {
    const double position = coordinate * cellsPerLength;
    const auto towardsZero = static_cast<std::int32_t>(position);
    return position < towardsZero ? towardsZero - 1 : towardsZero;
  }

  // Steps from the low border of a cell to a coordinate in it or near it.
  std::int16_t stepOf(double coordinate, std::int32_t cell) const {
    const double inCell = coordinate * cellsPerLength - cell;
    return static_cast<std::int16_t>(static_cast<int>(inCell * PointBlock::StepsPerCell));
  }

  // A block with room, which the chain starts with.
  PointBlock& blockOf(Position& first) {
    if (first == CellTiles::None || blocks[first].isFull()) {
      blocks.emplace_back(first);
      first = static_cast<Position>(blocks.size() - 1);
    }
    return blocks[first];
  }

  template <class Visit>
  void visitIfNear(Vec2 point, std::size_t position, Visit& visit) const {
    if (samePoint(point, points[position], tolerance)) visit(position);
  }

  double tolerance;
  double margin;
  double cellsPerLength;
  double range;
  std::int16_t reach;
  bool hasGrid;
  std::vector<Vec2> points;
  std::vector<PointBlock> blocks;
  std::vector<Position> outside;  // finite, but beyond the grid
  CellTiles cells;
};

}  // namespace Lumivane::Kernel
