#pragma once

#include "kernel/JsonText.h"

#include <string>
#include <string_view>
#include <utility>

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

/// One record of a table, field by field.
class CsvRow {
 public:
  /// \param isSafe  texts that a spreadsheet would take for formulas get an apostrophe in front
  explicit CsvRow(bool isSafe) : safe(isSafe) {}

  /// A text of any bytes: with U+FFFD for what is not UTF-8, in quotes if it needs them.
  CsvRow& text(const std::string& value) {
    const std::string clean = utf8Text(value);
    return add(csvField(safe ? csvSafe(clean) : clean));
  }
  CsvRow& number(int value) { return add(std::to_string(value)); }
  /// As few digits as read back to the same double, and a point whatever the locale.
  CsvRow& number(double value) {
    std::string digits;
    appendShortest(digits, value);
    return add(digits);
  }
  CsvRow& empty() { return add(""); }  ///< A field that does not apply.

  /// The record so far, with a line end; the row is empty then.
  std::string take() {
    isFirst = true;
    return std::exchange(record, std::string()) + "\n";
  }

 private:
  CsvRow& add(const std::string& field) {
    if (!std::exchange(isFirst, false)) record += ',';
    record += field;
    return *this;
  }

  bool safe;
  bool isFirst = true;
  std::string record;
};

}  // namespace Lumivane::Kernel
