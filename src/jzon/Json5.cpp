// Three steps: comments are blanked in a copy of the text, the copy is parsed into a flat list of
// records, and the records are written out. Nesting is kept on stacks of our own, so the depth is
// bounded by memory alone, and every look at the text stops at its end.

#include "jzon/Json5.h"

#include "jzon/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace Jzon {

namespace {

constexpr std::size_t MaxResult = std::size_t{1} << 30U;
constexpr char NoCharacter = '\0';

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isNameStart(char c) { return isLetter(c) || c == '_' || c == '$'; }
bool isNamePart(char c) { return isLetter(c) || isDigit(c) || c == '_'; }
bool isHexOrX(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == 'x' || c == 'X';
}
bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// ---- comments ----

// The position behind the string that opens at `begin`. Deliberate: a backslash guards the quote
// behind it even where it is the second of two.
std::size_t endOfQuoted(const std::string& text, std::size_t begin) {
  const char quote = text[begin];
  std::size_t i = begin + 1;
  while (i < text.size() && text[i] != quote) {
    const bool isGuarded = text[i] == '\\' && i + 1 < text.size() && text[i + 1] == quote;
    i += isGuarded ? 2 : 1;
  }
  return std::min(i + 1, text.size());
}

// The position behind `mark`, searched from `begin`, or the end of the text.
std::size_t endOfMark(const std::string& text, std::string_view mark, std::size_t begin) {
  const std::size_t found = text.find(mark, begin);
  return found == std::string::npos ? text.size() : found + mark.size();
}

void blankComments(std::string& text) {
  std::size_t i = 0;
  while (i < text.size()) {
    std::size_t end = i + 1;
    bool isComment = true;
    if (text.compare(i, 2, "/*") == 0) {
      end = endOfMark(text, "*/", i + 2);
    } else if (text.compare(i, 2, "//") == 0) {
      end = endOfMark(text, "\n", i + 2);
    } else {
      isComment = false;
      if (text[i] == '"' || text[i] == '\'') end = endOfQuoted(text, i);
    }
    if (isComment)
      std::fill(text.begin() + static_cast<std::ptrdiff_t>(i),
                text.begin() + static_cast<std::ptrdiff_t>(end), ' ');
    i = end;
  }
}

// ---- records ----

enum class Json5Type { Object, String, Array, Integer, Real, Null, False, True };

// A value and the name it has in its object. Names and texts are pieces of the copy.
struct Json5Value {
  std::string_view name;
  Json5Type type = Json5Type::Null;
  std::string_view text;
  long integer = 0;
  double real = 0.0;
  std::vector<std::size_t> children;  // positions in the list of records
};

bool isContainer(const Json5Value& value) {
  return value.type == Json5Type::Object || value.type == Json5Type::Array;
}

struct Keyword {
  std::string_view word;
  Json5Type type;
  double real;
};

constexpr double Infinite = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr Keyword keywords[] = {{"true", Json5Type::True, 0.0},
                                {"false", Json5Type::False, 0.0},
                                {"null", Json5Type::Null, 0.0},
                                {"Infinity", Json5Type::Real, Infinite},
                                {"-Infinity", Json5Type::Real, -Infinite},
                                {"NaN", Json5Type::Real, NotANumber},
                                {"-NaN", Json5Type::Real, -NotANumber}};

// Digits with one dot between them, whatever the locale: beyond double infinity or 0.
double realOf(const std::string& digits) {
  double value = 0.0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  return digits.find_first_not_of('0') < digits.find('.') ? Infinite : 0.0;
}

// Deliberate: one power short, so 1.5e3 is 150.
double scaled(double value, std::string_view exponentDigits, bool isNegative) {
  const double factor = isNegative ? 0.1 : 10.0;
  long count = 0;
  const char* const end = exponentDigits.data() + exponentDigits.size();
  const auto result = std::from_chars(exponentDigits.data(), end, count);
  if (result.ec == std::errc::result_out_of_range) count = std::numeric_limits<long>::max();
  for (long i = 1; i < count; ++i) {
    const double next = value * factor;
    if (next == value) break;  // 0 and infinity stay, however large the exponent
    value = next;
  }
  return value;
}

// ---- parser ----

class Json5Parser {
 public:
  explicit Json5Parser(std::string& writableCopy) : text(writableCopy), values(1) {}

  // The records; the first is the top level. An error ends the parse and leaves what came before.
  std::vector<Json5Value> parse() {
    values[0].type = Json5Type::Object;
    open.push_back(0);
    skipSpace();
    if (peek() == '{') ++position;
    while (!open.empty() && parseEntry()) {
    }
    return std::move(values);
  }

 private:
  char peek() const { return position < text.size() ? text[position] : NoCharacter; }

  void skipSpace() {
    while (isWhiteSpace(peek())) ++position;
  }

  template <class Test>
  std::string_view take(Test test) {
    const std::size_t begin = position;
    while (position < text.size() && test(text[position])) ++position;
    return std::string_view(text).substr(begin, position - begin);
  }

  // The next thing in the innermost container: its end, a separator or a value.
  bool parseEntry() {
    skipSpace();
    const bool inObject = values[open.back()].type == Json5Type::Object;
    const char c = peek();
    if (c == (inObject ? '}' : ']')) {
      ++position;
      open.pop_back();
      return open.empty() || endEntry();
    }
    // Deliberate: in an object a `,` or `]` just goes on with the next entry.
    if (inObject && (c == ',' || c == ']')) {
      ++position;
      return true;
    }
    Json5Value value;
    return (!inObject || parseName(value)) && parseValue(value) && addValue(value);
  }

  // Adds the value to the innermost container and opens it if it is one itself.
  bool addValue(Json5Value& value) {
    const bool opens = isContainer(value);
    values[open.back()].children.push_back(values.size());
    if (opens) open.push_back(values.size());
    values.push_back(std::move(value));
    return opens || endEntry();
  }

  // What stands behind a value: its container goes on at a separator or ends.
  bool endEntry() {
    skipSpace();
    const bool inObject = values[open.back()].type == Json5Type::Object;
    const char c = peek();
    if (c == ',' || (inObject && c == ']')) {
      ++position;
      return true;
    }
    return c == (inObject ? '}' : ']');
  }

  bool parseName(Json5Value& value) {
    const char c = peek();
    if (c == '"' || c == '\'') {
      value.name = takeString();
    } else if (isNameStart(c)) {
      const std::size_t begin = position++;
      value.name = std::string_view(text).substr(begin, 1 + take(isNamePart).size());
    } else {
      return false;  // a `[` as well: an array has no name here
    }
    skipSpace();
    if (peek() != ':') return false;
    ++position;
    skipSpace();
    return true;
  }

  bool parseValue(Json5Value& value) {
    const char c = peek();
    if (c == '{' || c == '[') {
      value.type = c == '{' ? Json5Type::Object : Json5Type::Array;
      ++position;
      return true;
    }
    if (c == '"' || c == '\'' || c == '`') {
      value.type = Json5Type::String;
      value.text = takeString();
      return true;
    }
    return parseKeyword(value) || parseNumber(value);
  }

  // By prefix: what follows a keyword is looked at as what follows a value.
  bool parseKeyword(Json5Value& value) {
    for (const Keyword& keyword : keywords) {
      if (text.compare(position, keyword.word.size(), keyword.word) != 0) continue;
      position += keyword.word.size();
      value.type = keyword.type;
      value.real = keyword.real;
      return true;
    }
    return false;
  }

  // The inside of the string that opens here, as written. Deliberate: the closing quote is the
  // first without a backslash before it, even where that is the second of two.
  std::string_view takeString() {
    const char quote = text[position++];
    const std::size_t begin = position;
    for (; position < text.size() && (text[position] != quote || text[position - 1] == '\\');
         ++position) {
      const bool isLineEnd = text[position] == '\r' || text[position] == '\n';
      if (isLineEnd && quote != '`' && position > begin && text[position - 1] == '\\') {
        text[position - 1] = ' ';
      }
    }
    const std::size_t end = position;
    if (position < text.size()) ++position;  // the quote; missing at the end of the text
    return std::string_view(text).substr(begin, end - begin);
  }

  bool parseNumber(Json5Value& value) {
    const char sign = peek();
    if (!isDigit(sign) && sign != '+' && sign != '-' && sign != '.') return false;
    const bool isNegative = sign == '-';
    if (isNegative || sign == '+') ++position;

    const std::size_t begin = position;
    const std::string_view whole = take(isDigit);
    if (peek() == '.') return parseReal(value, whole, isNegative);
    position = begin;
    return parseInteger(value, isNegative);
  }

  // Deliberate: `e` is a hexadecimal digit and so no exponent, 1e3 is read as 1.
  bool parseInteger(Json5Value& value, bool isNegative) {
    const std::string_view digits = take(isHexOrX);
    if (digits.empty()) return false;
    value.type = Json5Type::Integer;
    value.integer =
        std::strtol(((isNegative ? "-" : "") + std::string(digits)).c_str(), nullptr, 0);
    return true;
  }

  bool parseReal(Json5Value& value, std::string_view whole, bool isNegative) {
    ++position;  // the dot
    const std::string_view fraction = take(isDigit);
    const std::string digits = (whole.empty() ? "0" : std::string(whole)) + "." +
                               (fraction.empty() ? "0" : std::string(fraction));
    const double size = realOf(digits);
    value.type = Json5Type::Real;
    value.real = isNegative ? -size : size;
    if (peek() != 'e' && peek() != 'E') return true;

    ++position;
    const bool isSmaller = peek() == '-';
    if (isSmaller || peek() == '+') ++position;
    value.real = scaled(value.real, take(isDigit), isSmaller);
    return true;
  }

  std::string& text;
  std::size_t position = 0;
  std::vector<Json5Value> values;
  std::vector<std::size_t> open;  // the containers around the position
};

// ---- writer ----

// Measures the result, so that it is allocated once.
class Measure {
 public:
  void add(std::string_view piece) { grow(piece.size()); }
  void addSpaces(std::size_t count) { grow(count); }
  std::size_t size() const { return total; }

 private:
  void grow(std::size_t count) {
    total += count;
    if (total > MaxResult) throw std::length_error("JSON text too long");
  }

  std::size_t total = 0;
};

class Text {
 public:
  explicit Text(std::size_t size) { text.reserve(size); }
  void add(std::string_view piece) { text.append(piece); }
  void addSpaces(std::size_t count) { text.append(count, ' '); }
  std::string take() { return std::move(text); }

 private:
  std::string text;
};

constexpr std::size_t TopIndent = 1;
constexpr std::size_t IndentStep = 4;

template <class Output>
class Json5Writer {
 public:
  Json5Writer(const std::vector<Json5Value>& records, Output& output)
      : values(records), out(output) {}

  void write() {
    begin(values.front(), TopIndent);
    while (!open.empty()) step();
  }

 private:
  struct Position {
    const Json5Value* container;
    std::size_t indent;  // an array has that of the object around it
    std::size_t next = 0;
  };

  void begin(const Json5Value& container, std::size_t indent) {
    out.add(container.type == Json5Type::Object ? "{\n" : "[");
    open.push_back({&container, indent});
  }

  // Writes the next child of the innermost container, or its end.
  void step() {
    Position& position = open.back();
    const bool isObject = position.container->type == Json5Type::Object;
    const std::vector<std::size_t>& children = position.container->children;
    if (position.next == children.size()) {
      end(position, isObject);
      return;
    }
    const Json5Value& child = values[children[position.next]];
    if (position.next++ > 0) out.add(isObject ? ",\n" : ", ");
    if (isObject) {
      out.addSpaces(position.indent + IndentStep);
      addQuoted(child.name);
      out.add(": ");
    }
    writeChild(child, position.indent);
  }

  void end(const Position& position, bool isObject) {
    if (isObject) {
      if (!position.container->children.empty()) out.add("\n");
      out.addSpaces(position.indent);
    }
    out.add(isObject ? "}" : "]");
    if (isObject && position.indent < TopIndent) out.add("\n");
    open.pop_back();
  }

  void writeChild(const Json5Value& child, std::size_t indent) {
    switch (child.type) {
      case Json5Type::Object:
        if (indent > IndentStep) out.addSpaces(indent - IndentStep);
        begin(child, indent + IndentStep);
        return;
      case Json5Type::Array:
        begin(child, indent);
        return;
      case Json5Type::String:
        addQuoted(child.text);
        return;
      case Json5Type::Integer:
        out.add(numberText(static_cast<long long>(child.integer)));
        return;
      case Json5Type::Real:
        out.add(numberText(child.real));
        return;
      case Json5Type::Null:
        out.add("null");
        return;
      case Json5Type::False:
        out.add("false");
        return;
      case Json5Type::True:
        out.add("true");
        return;
    }
  }

  void addQuoted(std::string_view piece) {
    out.add("\"");
    out.add(piece);
    out.add("\"");
  }

  const std::vector<Json5Value>& values;
  Output& out;
  std::vector<Position> open;
};

template <class Output>
void writeTo(Output& output, const std::vector<Json5Value>& values) {
  Json5Writer<Output>(values, output).write();
}

}  // namespace

std::string json5ToJson(const std::string& text) {
  std::string copy = text;
  blankComments(copy);
  const std::vector<Json5Value> values = Json5Parser(copy).parse();

  Measure measure;
  writeTo(measure, values);
  Text result(measure.size());
  writeTo(result, values);
  return result.take();
}

}  // namespace Jzon
