#pragma once

#include <string>

namespace Jzon {

/// A JSON5 text in plain JSON. Whatever stands in front of the first error is converted, and an
/// error leaves no trace. Escape sequences of strings are kept as written.
///
/// Work and memory grow with the text and the result; the result's indentation grows with the
/// square of the depth.
///
/// \throws std::length_error if the result would pass 1 GiB
std::string json5ToJson(const std::string& text);

}  // namespace Jzon
