#pragma once

#include <cstddef>

/// How loops over flat arrays are laid out so that the compiler turns them into vector
/// instructions: arrays are padded to whole groups of lanes with values that change nothing, and no
/// formula branches.
///
/// Every lane does the operations of the plain formula in their order, so the results are those of
/// one value after the other, to the bit, however wide the machine is.
namespace Lumivane::Kernel {

constexpr std::size_t Lanes = 8;  ///< doubles in the widest registers

/// `count` rounded up to whole groups of lanes.
constexpr std::size_t padded(std::size_t count) { return (count + Lanes - 1) / Lanes * Lanes; }

}  // namespace Lumivane::Kernel

/// Before a function: it is compiled once for each width, with all that it calls inside, and the
/// machine at hand chooses when the program is loaded.
#if defined(__x86_64__) && defined(__gnu_linux__) && defined(__GNUC__) && !defined(__clang__) && \
    defined(__OPTIMIZE__)
#define LUMIVANE_LANES __attribute__((flatten, target_clones("avx512f", "avx2", "default")))
#else
#define LUMIVANE_LANES
#endif
