#include "pictures/SvgText.h"

#include "kernel/DisplayText.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

// Texts and numbers as SVG has them: what XML cannot hold is replaced, and numbers have whole steps
// of a decimal, so that two paths with a common vertex name it alike.
namespace Lumivane::Pictures {
namespace {

bool isXmlCharacter(std::uint32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code != 0xFFFE && code != 0xFFFF;
}

}  // namespace

SvgNumbers::SvgNumbers(int decimalCount) : decimals(decimalCount) {
  for (int i = 0; i < decimals; ++i) steps *= 10.0;
}

SvgNumbers SvgNumbers::forHeight(int pictureHeight) {
  const double largestStep = pictureHeight * 0.5 * 1e-6;
  int decimals = 0;
  for (double step = 1.0; step > largestStep && decimals < 6; step /= 10.0) ++decimals;
  return SvgNumbers(decimals);
}

// By whole steps, so that no locale has a say and a number reads the same wherever it stands. From
// 2^53 steps on a double has no decimals to round, and soon no integer holds it: it stands with the
// digits that read back to it.
void SvgNumbers::append(std::string& target, double value) const {
  constexpr double MostSteps = 9007199254740992.0;
  if (!(std::abs(value * steps) < MostSteps)) {
    char digits[32];
    const double number = std::isfinite(value) ? value : 0.0;
    target.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    return;
  }
  const long long scaled = std::llround(value * steps);
  if (scaled < 0) target += '-';
  const auto steps64 = static_cast<long long>(steps);
  const long long size = std::llabs(scaled);
  const long long whole = size / steps64;
  long long rest = size % steps64;
  if (whole != 0 || rest == 0) target += std::to_string(whole);
  if (rest == 0) return;
  std::string digits = std::to_string(rest);
  digits.insert(0, static_cast<std::size_t>(decimals) - digits.size(), '0');
  digits.erase(digits.find_last_not_of('0') + 1);
  target += '.';
  target += digits;
}

std::string SvgNumbers::text(double value) const {
  std::string result;
  append(result, value);
  return result;
}

std::string SvgNumbers::data(const VectorPicture::Path& path) const {
  std::string result;
  for (const VectorPicture::Line& line : path.lines) {
    char before = 'M';
    for (const VectorPicture::Point& point : line) {
      result += before;
      append(result, point.x);
      result += ' ';
      append(result, point.y);
      before = ' ';
    }
    if (path.closed) result += 'z';
  }
  return result;
}

std::string svgColor(const VectorPicture::Color& color) {
  constexpr const char* digits = "0123456789abcdef";
  const int components[] = {color.red, color.green, color.blue};
  bool isShort = true;
  for (const int component : components) isShort = isShort && component % 17 == 0;
  std::string result = "#";
  for (const int component : components) {
    result += digits[component / 16];
    if (!isShort) result += digits[component % 16];
  }
  return result;
}

std::string xmlText(const std::string& bytes) {
  std::string result;
  for (std::size_t at = 0; at < bytes.size();) {
    std::uint32_t code = 0;
    const std::size_t length = Kernel::utf8Length(bytes, at, code);
    const bool isText = length > 0 && isXmlCharacter(code);
    result += isText ? std::string_view(bytes).substr(at, length) : Kernel::ReplacementCharacter;
    at += isText ? length : 1;
  }
  return result;
}

std::string htmlText(const std::string& bytes) {
  std::string result;
  for (const char c : xmlText(bytes)) {
    if (c == '&')
      result += "&amp;";
    else if (c == '<')
      result += "&lt;";
    else if (c == '>')
      result += "&gt;";
    else
      result += c;
  }
  return result;
}

}  // namespace Lumivane::Pictures
