#include "io/ZeroFormat.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

// Each conversion is cut out of the text, brought to a form whose argument type is known, and
// printed by the runtime library with a zero of that type. So the library's own rules for flags,
// width and precision hold, and there is never an argument list to run out of.

namespace Lumivane::IO {
namespace {

constexpr int WidestField = 65536;

struct Conversion {
  std::string flags;
  int width = 0;
  int precision = -1;  // -1: none is given
  char letter = '\0';  // 0: the text ends before the conversion does
  size_t end = 0;      // behind the conversion's last character
};

bool isOneOf(const char* set, char c) { return c != '\0' && std::strchr(set, c) != nullptr; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

int readNumber(const std::string& text, size_t& i) {
  int number = 0;
  for (; i < text.size() && isDigit(text[i]); ++i)
    number = std::min(WidestField, number * 10 + (text[i] - '0'));
  return number;
}

// A width or precision: digits, or `*`, whose argument is a zero like all others.
int readField(const std::string& text, size_t& i) {
  if (i >= text.size() || text[i] != '*') return readNumber(text, i);
  ++i;
  readNumber(text, i);
  if (i < text.size() && text[i] == '$') ++i;
  return 0;
}

// `start` is the position of the per cent sign.
Conversion readConversion(const std::string& text, size_t start) {
  Conversion result;
  size_t i = start + 1;
  const size_t digits = i;
  readNumber(text, i);
  if (i == digits || i >= text.size() || text[i] != '$')
    i = digits;  // no "1$": which argument it is makes no difference, as all are zero
  else
    ++i;

  for (; i < text.size() && isOneOf("-+ #0'I", text[i]); ++i)
    if (text[i] != 'I') result.flags += text[i];
  result.width = readField(text, i);
  if (i < text.size() && text[i] == '.') result.precision = readField(text, ++i);
  while (i < text.size() && isOneOf("hlLqjztZ", text[i])) ++i;
  if (i < text.size()) result.letter = text[i++];
  result.end = i;
  return result;
}

template <class Zero>
std::string print(const Conversion& conversion, const char* letters, Zero zero) {
  std::string format = "%" + conversion.flags;
  if (conversion.width > 0) format += std::to_string(conversion.width);
  if (conversion.precision >= 0) format += "." + std::to_string(conversion.precision);
  format += letters;

  // Deliberate: the one format of ours that is no literal. A path is one, and its conversion has
  // been made to suit the argument.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  const int length = std::snprintf(nullptr, 0, format.c_str(), zero);
  if (length < 0) return "";
  std::string result(static_cast<size_t>(length) + 1, '\0');
  std::snprintf(result.data(), result.size(), format.c_str(), zero);
#pragma GCC diagnostic pop
  result.pop_back();
  return result;
}

std::string printedZero(const Conversion& conversion, const std::string& asItStands) {
  const char c = conversion.letter;
  const char letters[] = {c, '\0'};
  const char wide[] = {'j', c, '\0'};
  if (c == '%') return "%";
  if (c == 'n') return "";
  if (c == 'm') return std::strerror(0);
  if (isOneOf("di", c)) return print(conversion, wide, std::intmax_t{0});
  if (isOneOf("ouxXbB", c)) return print(conversion, wide, std::uintmax_t{0});
  if (isOneOf("eEfFgGaA", c)) return print(conversion, letters, 0.0);
  if (isOneOf("cC", c)) return print(conversion, "c", 0);
  if (isOneOf("sS", c)) return print(conversion, "s", static_cast<const char*>(nullptr));
  if (c == 'p') return print(conversion, letters, static_cast<const void*>(nullptr));
  return asItStands;
}

}  // namespace

std::string formatWithZeros(const std::string& format) {
  const std::string text = format.substr(0, format.find('\0'));
  std::string result;
  for (size_t i = 0; i < text.size();) {
    if (text[i] != '%') {
      result += text[i++];
      continue;
    }
    const Conversion conversion = readConversion(text, i);
    result += printedZero(conversion, text.substr(i, conversion.end - i));
    i = conversion.end;
  }
  return result;
}

}  // namespace Lumivane::IO
