#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Number texts in a word: up to 15 characters of 4 bits each, the first lowest, above a lowest
/// digit of 1. A text of 6 significant digits always fits.
namespace Jzon {

constexpr std::size_t ShortNumberLength = 15;
constexpr std::uint64_t ShortNumberTag = 1;

/// The characters of number texts, each at the place of its code; code 0 ends a text.
constexpr std::string_view ShortNumberCharacters("\0000123456789-.eE+", 16);

constexpr std::array<std::uint8_t, 256> makeShortNumberCodes() {
  std::array<std::uint8_t, 256> codes{};
  for (std::size_t i = 1; i < ShortNumberCharacters.size(); ++i)
    codes[static_cast<unsigned char>(ShortNumberCharacters[i])] = static_cast<std::uint8_t>(i);
  return codes;
}
constexpr std::array<std::uint8_t, 256> ShortNumberCodes = makeShortNumberCodes();

/// The word of a text; 0 if the text is too long or has other characters.
inline std::uint64_t packShortNumber(std::string_view text) {
  if (text.size() > ShortNumberLength) return 0;
  std::uint64_t word = ShortNumberTag;
  unsigned int shift = 4;
  for (const char c : text) {
    const std::uint64_t code = ShortNumberCodes[static_cast<unsigned char>(c)];
    if (code == 0) return 0;
    word |= code << shift;
    shift += 4;
  }
  return word;
}

/// The word of a text of an optional minus, digits, and an optional dot with digits, of which all
/// may be missing: such a text is a number for the parser. 0 for any other text, and one that is
/// too long or empty.
inline std::uint64_t packPlainNumber(std::string_view text) {
  if (text.empty() || text.size() > ShortNumberLength) return 0;
  std::uint64_t word = ShortNumberTag;
  unsigned int shift = 4;
  bool hasDot = false;
  for (const char c : text) {
    const bool isDigit = c >= '0' && c <= '9';
    const bool isAllowed = isDigit || (c == '-' && shift == 4) || (c == '.' && !hasDot);
    if (!isAllowed) return 0;
    hasDot = hasDot || c == '.';
    word |= static_cast<std::uint64_t>(ShortNumberCodes[static_cast<unsigned char>(c)]) << shift;
    shift += 4;
  }
  return word;
}

/// Writes the text of a word to `out`, which has room for 15 characters.
/// \return the length of the text
inline std::size_t unpackShortNumber(std::uint64_t word, char* out) {
  std::size_t length = 0;
  for (std::uint64_t rest = word >> 4; rest != 0; rest >>= 4)
    out[length++] = ShortNumberCharacters[rest & 15];
  return length;
}

}  // namespace Jzon
