#pragma once

#include <string>

namespace Lumivane::Kernel {

/// The text that a stream in its default format prints: integers whole, doubles with at most 6
/// significant digits, always with a dot whatever the locale.
std::string numberText(double value);
std::string numberText(long long value);
std::string numberText(unsigned long long value);

/// The number that a stream reads from the front of the text: 0 if there is none; beyond the range
/// of the type its limit, for floating point the largest finite number.
int readInt(const std::string& text);
float readFloat(const std::string& text);
double readDouble(const std::string& text);

/// Whether the JSON parser takes a run of characters for a number. Looser than JSON: no digit is
/// asked for in front of an exponent, and one minus may stand anywhere there.
bool isNumberText(const std::string& text);

}  // namespace Lumivane::Kernel
