#pragma once

#include <string>

namespace Lumivane::IO {

/// What printf prints for `format` when every conversion meets a zero: numbers are 0, characters
/// are the byte 0, strings and pointers are null. `%n` gives nothing, and what is no conversion
/// stands as it is, an unfinished one at the end included. Nothing but `format` is ever read.
///
/// The conversions are those of Debian 12's C library (glibc 2.36): besides the standard's also
/// `%b` and `%B` (binary), `%C`, `%S` and `%m`, and the length prefixes `q` and `Z`.
///
/// Widths and precisions above 65536 count as 65536, so that no text of a few characters asks for
/// more memory than there is.
std::string formatWithZeros(const std::string& format);

}  // namespace Lumivane::IO
