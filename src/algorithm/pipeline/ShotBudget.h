#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

/// How large a shot may grow. Everything is counted before it is made.
namespace Lumivane::Algorithm {

/// The limits of the shots of a thread; 0 for none, as for whoever calls the raw classes.
struct ShotLimits {
  std::int64_t points = 0;  ///< point references: places in the polygons of the shot
  std::int64_t memory = 0;  ///< bytes of memory, as estimated from the counts
  int threads = 1;          ///< how many may project and sort; 0 for one for each processor
};

/// The limits in force in the calling thread, to be set by who makes a shot.
ShotLimits& shotLimits();

/// The limit of memory in words: "--limit-memory (...) of N bytes".
std::string memoryLimitText(std::int64_t bytes);

/// What is left of the limits of one shot.
class ShotBudget {
 public:
  static constexpr std::int64_t Any = std::numeric_limits<std::int64_t>::max();

  /// Bytes of memory that a point reference takes while a shot is made and written, and that a
  /// different point takes besides.
  static constexpr std::int64_t BytesPerReference = 30;
  static constexpr std::int64_t BytesPerPoint = 100;
  /// And that a pair of faces takes in the depth sort if they lie over each other.
  static constexpr std::int64_t BytesPerRelation = 40;

  /// Without limits.
  ShotBudget() = default;
  /// \param mergeDistance  points closer than this become one, which bounds their number
  ShotBudget(const ShotLimits& shotLimits, double mergeDistance);

  /// How many point references there is still room for.
  std::int64_t left() const { return most == Any ? Any : most - used; }
  /// Takes some of them, which are not more than there is room for.
  void take(std::int64_t references) { used += references; }
  /// The limit that comes first, in words: "--limit-points (...) leaves N".
  std::string limitText() const;

 private:
  ShotLimits limits;
  std::int64_t most = Any;
  std::int64_t used = 0;
  bool isMemory = false;  // whether memory comes first
};

}  // namespace Lumivane::Algorithm
