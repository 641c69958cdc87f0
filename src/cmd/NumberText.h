#pragma once

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>

/// Numbers out of text, read as the runtime library reads them: leading white space and a sign are
/// taken, and what follows the number is ignored. The texts of the exceptions are ours, the same
/// on every platform.
namespace Lumivane::Cmd {

/// The base-10 integer that `text` starts with.
///
/// \throws std::invalid_argument "invalid stoi argument" if there is none
/// \throws std::out_of_range "stoi argument out of range" if it is no `int`
inline int parseInt(const std::string& text) {
  const char* start = text.c_str();
  char* end = nullptr;
  errno = 0;
  const long value = std::strtol(start, &end, 10);
  if (end == start) throw std::invalid_argument("invalid stoi argument");
  if (errno == ERANGE || value < std::numeric_limits<int>::min() ||
      value > std::numeric_limits<int>::max())
    throw std::out_of_range("stoi argument out of range");
  return static_cast<int>(value);
}

/// The floating-point number that `text` starts with; "nan" and "inf" are numbers.
///
/// \throws std::invalid_argument "invalid stod argument" if there is none
/// \throws std::out_of_range "stod argument out of range" if it is too large or too small
inline double parseDouble(const std::string& text) {
  const char* start = text.c_str();
  char* end = nullptr;
  errno = 0;
  const double value = std::strtod(start, &end);
  if (end == start) throw std::invalid_argument("invalid stod argument");
  if (errno == ERANGE) throw std::out_of_range("stod argument out of range");
  return value;
}

}  // namespace Lumivane::Cmd
