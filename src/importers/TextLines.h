#pragma once

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

namespace Lumivane::Importers {

/// The words of one line, separated by blanks.
inline std::vector<std::string_view> wordsOf(std::string_view line) {
  std::vector<std::string_view> words;
  constexpr const char* blanks = " \t\r\v\f";
  for (size_t start = line.find_first_not_of(blanks); start != std::string_view::npos;) {
    const size_t end = line.find_first_of(blanks, start);
    words.push_back(line.substr(start, end - start));
    start = line.find_first_not_of(blanks, end);
  }
  return words;
}

/// Takes the next line off the front of `text`, without its end. False at the end of the text.
inline bool nextLine(std::string_view& text, std::string_view& line) {
  if (text.empty()) return false;
  const size_t end = text.find('\n');
  line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return true;
}

/// The whole word as a finite number.
inline bool readNumber(std::string_view word, double& number) {
  if (!word.empty() && word.front() == '+') word.remove_prefix(1);
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  return error == std::errc() && end == word.data() + word.size() && std::isfinite(number);
}

/// The whole word as an integer.
inline bool readNumber(std::string_view word, long long& number) {
  if (!word.empty() && word.front() == '+') word.remove_prefix(1);
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  return error == std::errc() && end == word.data() + word.size();
}

/// A piece of the file for a message: short, printable, in quotes.
inline std::string inQuotes(std::string_view text) {
  std::string result = "\"";
  for (const char c : text.substr(0, 40)) result += (c >= 0x20 && c < 0x7F) ? c : '?';
  return result + (text.size() > 40 ? "...\"" : "\"");
}

}  // namespace Lumivane::Importers
