#pragma once

#include <string>
#include <string_view>

/// Cells of tables by RFC 4180.
namespace Lumivane::Kernel {

/// The text as it stands in a table: in quotes if it holds a comma, a quote or a line end, or
/// starts or ends with a blank, which some readers drop.
inline std::string csvField(const std::string& text) {
  const bool needsQuotes = text.find_first_of(",\"\r\n") != std::string::npos ||
                           (!text.empty() && (text.front() == ' ' || text.back() == ' '));
  if (!needsQuotes) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + "\"";
}

/// The text with an apostrophe in front if a spreadsheet would take it for a formula: if it starts
/// with = + - @, a tab or a carriage return.
inline std::string csvSafe(const std::string& text) {
  constexpr std::string_view Leaders = "=+-@\t\r";
  if (text.empty() || Leaders.find(text.front()) == std::string_view::npos) return text;
  return "'" + text;
}

}  // namespace Lumivane::Kernel
