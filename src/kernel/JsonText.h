#pragma once

#include "kernel/DisplayText.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

/// Texts in JSON documents, and documents that are written from the front to the end: the tables
/// and maps of the components. (Trees are written by Jzon, whose form of scenes and shots is
/// fixed.)
namespace Lumivane::Kernel {

/// A text of any bytes as a JSON string, in quotes, with what must be escaped, and with U+FFFD for
/// what is not UTF-8.
inline std::string jsonString(std::string_view text) {
  std::string result = "\"";
  for (const char c : utf8Text(text)) {
    char escape[8];
    if (c == '"' || c == '\\') {
      result += {'\\', c};
    } else if (static_cast<unsigned char>(c) < 0x20) {
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
      result += escape;
    } else {
      result += c;
    }
  }
  return result + "\"";
}

/// Appends a number with as few digits as read back to the same double, and a point whatever the
/// locale; -0 as 0.
inline void appendShortest(std::string& text, double value) {
  char buffer[40];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, value + 0.0);
  text.append(buffer, end.ptr);
}

/// Writes a document in one pass. It puts the commas; everything else comes in the order of the
/// calls, and whether they make sense is the caller's care.
class JsonWriter {
 public:
  JsonWriter& beginObject() { return begin('{'); }
  JsonWriter& endObject() { return end('}'); }
  JsonWriter& beginArray() { return begin('['); }
  JsonWriter& endArray() { return end(']'); }

  /// The name of the member whose value comes next; nothing in it needs an escape.
  JsonWriter& key(std::string_view name) {
    start();
    bytes.append("\"").append(name).append("\":");
    needsComma = false;
    return *this;
  }

  JsonWriter& text(std::string_view value) {
    start();
    bytes += jsonString(value);
    return *this;
  }
  JsonWriter& number(int value) { return whole(value); }
  JsonWriter& number(std::size_t value) { return whole(value); }
  /// As few digits as read back to the same double; null for what is not finite.
  JsonWriter& number(double value) {
    start();
    if (std::isfinite(value))
      appendShortest(bytes, value);
    else
      bytes += "null";
    return *this;
  }
  /// The same with up to 17 digits, whether or not fewer would do.
  JsonWriter& longNumber(double value) {
    start();
    char buffer[40];
    const std::to_chars_result last =
        std::to_chars(buffer, buffer + sizeof buffer, value + 0.0, std::chars_format::general, 17);
    if (std::isfinite(value))
      bytes.append(buffer, last.ptr);
    else
      bytes += "null";
    return *this;
  }

  /// Begins a line with what comes next: a member, an element or an end.
  JsonWriter& newLine() {
    breaksLine = true;
    return *this;
  }

  /// The document so far, with a line end; the writer is empty then.
  std::string take() {
    needsComma = false;
    breaksLine = false;
    return std::exchange(bytes, std::string()) + "\n";
  }

 private:
  void start() {
    if (needsComma) bytes += ',';
    breakLine();
    needsComma = true;
  }

  void breakLine() {
    if (breaksLine) bytes += '\n';
    breaksLine = false;
  }

  JsonWriter& begin(char bracket) {
    start();
    bytes += bracket;
    needsComma = false;
    return *this;
  }

  JsonWriter& end(char bracket) {
    breakLine();
    bytes += bracket;
    needsComma = true;
    return *this;
  }

  template <class Number>
  JsonWriter& whole(Number value) {
    start();
    bytes += std::to_string(value);
    return *this;
  }

  std::string bytes;
  bool needsComma = false;
  bool breaksLine = false;
};

}  // namespace Lumivane::Kernel
