#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace Lumivane::Fuzz {

/// Takes values off the front of a fuzzer's input; zeros once it is used up.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : next(data), left(size) {}

  bool empty() const { return left == 0; }

  template <class Value>
  Value take() {
    Value value{};
    const std::size_t count = left < sizeof value ? left : sizeof value;
    std::memcpy(&value, next, count);
    next += count;
    left -= count;
    return value;
  }

  /// A coordinate: mostly a multiple of 1/16 from a small range, so that points and lines often
  /// coincide; sometimes an end of the doubles' range, or any double at all.
  double coordinate() {
    using Limits = std::numeric_limits<double>;
    constexpr double Ends[] = {Limits::infinity(),
                               -Limits::infinity(),
                               Limits::quiet_NaN(),
                               Limits::max(),
                               -Limits::max(),
                               Limits::min(),
                               -0.0,
                               Limits::denorm_min(),
                               Limits::epsilon()};
    const auto kind = take<std::uint8_t>();
    if (kind == 255) return take<double>();
    if (kind == 254) return Ends[take<std::uint8_t>() % std::size(Ends)];
    return (kind - 127) / 16.0;
  }

  std::string rest() {
    std::string text(reinterpret_cast<const char*>(next), left);
    left = 0;
    return text;
  }

 private:
  const std::uint8_t* next;
  std::size_t left;
};

/// Sends what the library prints to nowhere; the fuzzer itself prints to standard error.
inline void silence() {
  static const bool done = [] {
    const int nowhere = open("/dev/null", O_WRONLY);
    return nowhere >= 0 && dup2(nowhere, STDOUT_FILENO) >= 0;
  }();
  if (!done) __builtin_trap();
}

/// A result that must not be: ends the process, so that the fuzzer keeps the input.
inline void require(bool holds) {
  if (!holds) __builtin_trap();
}

}  // namespace Lumivane::Fuzz
