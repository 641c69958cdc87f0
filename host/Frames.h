#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace Lumivane::Host {

/// Bytes that are no frame where one must begin.
class FrameError : public std::runtime_error {
 public:
  FrameError() : std::runtime_error("no length stands where a message begins") {}
};

/// The longest message that is taken; no row of a summary comes near it.
constexpr std::size_t MostFrameBytes = std::size_t{1} << 30U;

/// A message as it goes between processes: its length in decimal digits, a line end, and its bytes,
/// which may be any.
std::string framed(const std::string& message);

/// Takes a message off the front of what was received; false if it is not complete yet.
/// \throws FrameError if what was received does not begin with a length of at most MostFrameBytes
bool takeMessage(std::string& received, std::string& message);

}  // namespace Lumivane::Host
