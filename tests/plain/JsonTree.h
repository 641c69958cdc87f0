#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <ostream>
#include <queue>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// The JSON layer in its plain form: handles on counted data with all children in vectors of pairs,
/// a parser that reads a stream character by character into two queues, and a writer that prints
/// into a stream. The reference for the packed trees and the parser and writer of one pass.
namespace Lumivane::Plain {

enum class JsonType { Invalid, Object, Array, Null, String, Number, Bool };

/// A handle; writing detaches it from the handles that share its data.
class JsonTree {
 public:
  using Child = std::pair<std::string, JsonTree>;

  JsonTree() = default;
  explicit JsonTree(JsonType type, std::string text = std::string())
      : data(type == JsonType::Invalid ? nullptr
                                       : std::make_shared<Data>(Data{type, std::move(text), {}})) {}

  JsonType type() const { return data ? data->type : JsonType::Invalid; }
  bool isContainer() const { return type() == JsonType::Object || type() == JsonType::Array; }
  bool isValue() const { return data && !isContainer(); }
  std::string text() const { return data ? data->text : std::string(); }

  std::size_t count() const { return data ? data->children.size() : 0; }
  /// The children that all handles on the data share.
  std::vector<Child>& children() { return data->children; }
  const std::vector<Child>& children() const { return data->children; }
  /// The position of the first member of that name; the count if there is none.
  std::size_t find(const std::string& name) const {
    std::size_t i = 0;
    while (i < count() && (type() != JsonType::Object || data->children[i].first != name)) ++i;
    return i;
  }
  JsonTree get(std::size_t index) const {
    return index < count() ? data->children[index].second : JsonTree();
  }

  void set(JsonType type, const std::string& text) {
    if (!isValue()) return;
    detach();
    data->type = type;
    data->text = text;
  }
  void add(const std::string& name, JsonTree child) {
    if (!isContainer()) return;
    detach();
    data->children.emplace_back(type() == JsonType::Object ? name : std::string(),
                                std::move(child));
  }
  void append(JsonTree other) {
    if (!isContainer() || type() != other.type()) return;
    detach();
    const std::vector<Child> added = other.data->children;
    data->children.insert(data->children.end(), added.begin(), added.end());
  }
  void remove(std::size_t index) {
    if (index >= count()) return;
    detach();
    data->children.erase(data->children.begin() + static_cast<std::ptrdiff_t>(index));
  }
  void clear() {
    if (count() == 0) return;
    detach();
    data->children.clear();
  }
  void detach() {
    if (data && data.use_count() > 1) data = std::make_shared<Data>(*data);
  }

  bool operator==(const JsonTree& other) const {
    if (data == other.data) return true;
    return isValue() && type() == other.type() && data->text == other.data->text;
  }

 private:
  struct Data {
    JsonType type;
    std::string text;
    std::vector<Child> children;
  };
  std::shared_ptr<Data> data;
};

inline std::string escapedJson(const std::string& text) {
  static const std::string plain = "\\/\"\n\t\b\f\r";
  static const std::string letters = "\\/\"ntbfr";
  std::string escaped;
  for (const char c : text) {
    const std::size_t i = plain.find(c);
    if (i != std::string::npos) escaped += '\\';
    escaped += i == std::string::npos ? c : letters[i];
  }
  return escaped;
}

inline std::string unescapedJson(const std::string& text) {
  static const std::string plain = "\\/\"\n\t\b\f\r";
  static const std::string letters = "\\/\"ntbfr";
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t letter =
        text[i] == '\\' && i + 1 < text.size() ? letters.find(text[i + 1]) : std::string::npos;
    result += letter == std::string::npos ? text[i] : plain[letter];
    if (letter != std::string::npos) ++i;
  }
  return result;
}

/// Writes a tree by recursion, with these pieces behind `{`, members and colons.
inline void writeJson(const JsonTree& node, const std::string& newline, const std::string& spacing,
                      std::ostream& out) {
  const bool isObject = node.type() == JsonType::Object;
  if (node.type() == JsonType::String) out << '"' << escapedJson(node.text()) << '"';
  if (node.type() == JsonType::Null) out << "null";
  if (node.type() == JsonType::Number || node.type() == JsonType::Bool) out << node.text();
  if (!node.isContainer()) return;
  out << (isObject ? '{' : '[');
  if (isObject) out << newline;
  for (std::size_t i = 0; i < node.count(); ++i) {
    if (i > 0) out << ',';
    if (i > 0 && isObject) out << newline;
    if (isObject) out << '"' << node.children()[i].first << "\":" << spacing;
    writeJson(node.children()[i].second, newline, spacing, out);
  }
  if (isObject) out << newline;
  out << (isObject ? '}' : ']');
}

/// Two passes: a stream into queues of tokens and data, and those into a tree.
class JsonParser {
 public:
  std::string error;

  JsonTree parse(std::istream& stream) {
    tokenize(stream);
    JsonTree root = assemble();
    tokens = {};
    data = {};
    return root;
  }

 private:
  enum Token { Unknown, ObjectBegin, ObjectEnd, ArrayBegin, ArrayEnd, Comma, Colon, Value };
  using Datum = std::pair<JsonType, std::string>;
  static constexpr int End = std::istream::traits_type::eof();

  void tokenize(std::istream& stream) {
    std::string run;
    while (stream.peek() != End) {
      const char c = static_cast<char>(stream.get());
      if (c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r') continue;
      const Token token = take(c, stream, run);
      if ((token != Unknown || stream.peek() == End) && !run.empty()) flush(run);
      if (token != Unknown) tokens.push(token);
    }
  }

  // The token of a delimiter or quote; anything else goes into the run or is a comment.
  Token take(char c, std::istream& stream, std::string& run) {
    static const std::string delimiters = "{}[],:";
    const std::size_t delimiter = delimiters.find(c);
    if (delimiter != std::string::npos) return static_cast<Token>(ObjectBegin + delimiter);
    if (c == '"') {
      readString(stream);
      return Value;
    }
    if (c == '/' && stream.peek() == '*') {
      skipComment(stream);
    } else if (c != '/' || stream.peek() != '/') {
      run += c;
    }
    return Unknown;
  }

  static void skipComment(std::istream& stream) {
    stream.ignore();
    int previous = 0;
    for (int c = stream.get(); c != End; c = stream.get()) {
      if (previous == '*' && c == '/') return;
      previous = c;
    }
  }

  void readString(std::istream& stream) {
    std::string text;
    bool isEscaped = false;
    for (int next = stream.get(); next != End; next = stream.get()) {
      const char c = static_cast<char>(next);
      if (c == '"' && !isEscaped) break;
      isEscaped = c == '\\' && !isEscaped;
      text += c;
    }
    data.emplace(JsonType::String, unescapedJson(text));
  }

  void flush(std::string& run) {
    const bool isValue = interpret(run);
    if (!isValue) data.emplace(JsonType::String, run);
    tokens.push(isValue ? Value : Unknown);
    run.clear();
  }

  bool interpret(const std::string& run) {
    std::string upper = run;
    for (char& c : upper) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    if (upper == "NULL") {
      data.emplace(JsonType::Null, "");
    } else if (upper == "TRUE") {
      data.emplace(JsonType::Bool, "true");
    } else if (upper == "FALSE") {
      data.emplace(JsonType::Bool, "false");
    } else if (isNumber(upper)) {
      data.emplace(JsonType::Number, run);
    } else {
      return false;
    }
    return true;
  }

  static bool isNumber(const std::string& upper) {
    bool dot = false, minus = false, exponent = false, sign = false, digit = false;
    for (const char c : upper) {
      const bool isSign = c == '+' || c == '-';
      if (c == '+' && !exponent) return false;
      bool* flag = nullptr;
      if (isSign) flag = exponent ? &sign : &minus;
      if (c == '.') flag = &dot;
      if (c == 'E') flag = &exponent;
      if (flag && *flag) return false;
      if (flag) *flag = true;
      if (!flag && (c < '0' || c > '9')) return false;
      if (!flag && exponent) digit = true;
    }
    return !exponent || digit;
  }

  JsonTree assemble() {
    std::vector<JsonTree::Child> open;
    std::string name;
    JsonTree root;
    while (!tokens.empty()) {
      const Token token = tokens.front();
      tokens.pop();
      const bool behind = !tokens.empty();
      if (token == ObjectBegin || token == ArrayBegin) {
        open.emplace_back(name,
                          JsonTree(token == ObjectBegin ? JsonType::Object : JsonType::Array));
        name.clear();
      } else if (token == ObjectEnd || token == ArrayEnd) {
        if (open.empty()) return fail("Found end of object or array without beginning");
        const bool isObject = token == ObjectEnd;
        if ((open.back().second.type() == JsonType::Object) != isObject)
          return fail(std::string("Mismatched end and beginning of ") +
                      (isObject ? "object" : "array"));
        const JsonTree::Child closed = open.back();
        open.pop_back();
        if (open.empty()) root = closed.second;
        if (!open.empty()) open.back().second.add(closed.first, closed.second);
      } else if (token == Value) {
        if (data.empty()) return fail("Missing data for value");
        const Datum datum = data.front();
        data.pop();
        if (behind && tokens.front() == Colon) {
          tokens.pop();
          if (datum.first != JsonType::String) return fail("A name has to be a string");
          name = datum.second;
          continue;
        }
        if (open.empty()) return fail("Outermost node must be an object or array");
        open.back().second.add(name, JsonTree(datum.first, datum.second));
        name.clear();
      } else if (token == Comma) {
        if (behind && tokens.front() == ArrayEnd) return fail("Extra comma in array");
      } else if (token == Unknown) {
        return fail("Unknown token: " + data.front().second);
      }
    }
    return root;
  }

  JsonTree fail(const std::string& text) {
    error = text;
    return JsonTree();
  }

  std::queue<Token> tokens;
  std::queue<Datum> data;
};

}  // namespace Lumivane::Plain
