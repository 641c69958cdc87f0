#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Texts of any bytes, as ids and file names are, made fit to be shown and to stand in files of
/// text: the one place in which what is not UTF-8 is replaced.
namespace Lumivane::Kernel {

/// U+FFFD, which stands for what is no character.
constexpr std::string_view ReplacementCharacter = "\xEF\xBF\xBD";

/// The length in bytes of the well-formed UTF-8 character at a place, and its code; 0 if there is
/// none: a byte that starts no character, a cut or overlong one, half of a surrogate pair, or a
/// code above U+10FFFF.
inline std::size_t utf8Length(std::string_view bytes, std::size_t at, std::uint32_t& code) {
  const auto first = static_cast<unsigned char>(bytes[at]);
  code = first;
  if (first < 0x80) return 1;
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || at + length > bytes.size()) return 0;
  code = first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const auto next = static_cast<unsigned char>(bytes[at + i]);
    if ((next & 0xC0U) != 0x80) return 0;
    code = (code << 6U) | (next & 0x3FU);
  }
  constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < smallest[length] || code > 0x10FFFF || isSurrogate ? 0 : length;
}

/// The bytes with U+FFFD in the place of each byte that is no part of a UTF-8 character.
inline std::string utf8Text(std::string_view bytes) {
  std::string result;
  result.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    std::uint32_t code = 0;
    const std::size_t length = utf8Length(bytes, at, code);
    result += length == 0 ? ReplacementCharacter : bytes.substr(at, length);
    at += length == 0 ? 1 : length;
  }
  return result;
}

/// Appends a character by its code; U+FFFD for half of a surrogate pair and for U+0000, which ends
/// a text in many programs.
inline void appendUtf8(std::string& text, std::uint32_t code) {
  if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
    text += ReplacementCharacter;
  } else if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0U | code >> 6U);
    text += static_cast<char>(0x80U | (code & 0x3FU));
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0U | code >> 12U);
    text += static_cast<char>(0x80U | (code >> 6U & 0x3FU));
    text += static_cast<char>(0x80U | (code & 0x3FU));
  } else {
    text += static_cast<char>(0xF0U | code >> 18U);
    text += static_cast<char>(0x80U | (code >> 12U & 0x3FU));
    text += static_cast<char>(0x80U | (code >> 6U & 0x3FU));
    text += static_cast<char>(0x80U | (code & 0x3FU));
  }
}

/// Reads "\uXXXX" at a place; false if there is none.
inline bool readEscape(std::string_view text, std::size_t at, std::uint32_t& code) {
  constexpr std::size_t Length = 6;
  if (at + Length > text.size() || text[at] != '\\' || text[at + 1] != 'u') return false;
  code = 0;
  for (std::size_t i = 2; i < Length; ++i) {
    const char c = text[at + i];
    const bool isDigit = c >= '0' && c <= '9';
    const char letter = static_cast<char>(c | 0x20);
    if (!isDigit && (letter < 'a' || letter > 'f')) return false;
    code = code << 4U | static_cast<std::uint32_t>(isDigit ? c - '0' : letter - 'a' + 10);
  }
  return true;
}

/// An id as it is shown: with the characters that its "\uXXXX" escapes stand for, which the JSON
/// layer keeps as they are, surrogate pairs joined, and U+FFFD for what is not UTF-8.
inline std::string idText(std::string_view id) {
  constexpr std::size_t Length = 6;
  std::string result;
  result.reserve(id.size());
  for (std::size_t at = 0; at < id.size();) {
    std::uint32_t code = 0;
    if (readEscape(id, at, code)) {
      at += Length;
      std::uint32_t low = 0;
      if (code >= 0xD800 && code < 0xDC00 && readEscape(id, at, low) && low >= 0xDC00 &&
          low < 0xE000) {
        code = 0x10000 + ((code - 0xD800) << 10U) + (low - 0xDC00);
        at += Length;
      }
      appendUtf8(result, code);
      continue;
    }
    const std::size_t length = utf8Length(id, at, code);
    result += length == 0 ? ReplacementCharacter : id.substr(at, length);
    at += length == 0 ? 1 : length;
  }
  return result;
}

}  // namespace Lumivane::Kernel
