#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Jzon {

/// The text that a stream in its default format prints: integers whole, doubles with at most 6
/// significant digits, always with a dot whatever the locale.
std::string numberText(double value);
std::string numberText(long long value);
std::string numberText(unsigned long long value);

/// Room for every text of a number.
constexpr std::size_t NumberTextLength = 24;

/// The same text, written to `out`, which has room for NumberTextLength characters.
/// \return the length of the text
std::size_t writeNumber(double value, char* out);
std::size_t writeNumber(long long value, char* out);
std::size_t writeNumber(unsigned long long value, char* out);

/// The number that a stream reads from the front of the text: 0 if there is none; beyond the range
/// of the type its limit, for floating point the largest finite number.
int readInt(std::string_view text);
float readFloat(std::string_view text);
double readDouble(std::string_view text);

/// Whether the JSON parser takes a run of characters for a number. Looser than JSON: no digit is
/// asked for in front of an exponent, and one minus may stand anywhere there.
bool isNumberText(std::string_view text);

}  // namespace Jzon
