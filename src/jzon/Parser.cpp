// One pass over a range of characters. A run of characters that is no delimiter, quote, comment or
// white space is gathered and taken at the next delimiter. Each token goes straight to the
// assembly, which keeps the children of all open containers on one stack; where a container ends,
// its children are copied from the top of the stack into a block of their very size.
//
// Two tokens need to know the one behind them, a value (it may be a name) and a comma (it may be
// one too many); so a value waits in the assembly until the next token comes, and a comma leaves a
// flag.

#include "jzon/JsonNumber.h"
#include "jzon/NodeData.h"
#include "jzon/ShortNumber.h"

#include <lumivane/jzon/Parser.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <istream>
#include <utility>
#include <vector>

namespace Jzon {

namespace {

constexpr int EndOfFile = std::istream::traits_type::eof();
constexpr std::size_t BlockSize = std::size_t{1} << 16U;

enum class Kind : unsigned char { Plain, White, Slash, Quote, Delimiter };

constexpr std::array<Kind, 256> makeKinds() {
  std::array<Kind, 256> kinds{};
  // Deliberate: a vertical tab is no white space.
  for (const char c : {' ', '\t', '\n', '\f', '\r'})
    kinds[static_cast<unsigned char>(c)] = Kind::White;
  for (const char c : {'{', '}', '[', ']', ',', ':'})
    kinds[static_cast<unsigned char>(c)] = Kind::Delimiter;
  kinds['/'] = Kind::Slash;
  kinds['"'] = Kind::Quote;
  return kinds;
}
constexpr std::array<Kind, 256> kinds = makeKinds();

Kind kindOf(char c) { return kinds[static_cast<unsigned char>(c)]; }

// Whether the text is the keyword in any case. Only ASCII letters matter, so the locale is left
// out.
bool isKeyword(std::string_view text, std::string_view upperKeyword) {
  const auto isSame = [](char c, char upper) {
    return (c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c) == upper;
  };
  return text.size() == upperKeyword.size() &&
         std::equal(text.begin(), text.end(), upperKeyword.begin(), isSame);
}

// The rest of a stream. Afterwards the stream is as if its characters had been peeked at and read
// one by one, up to a last peek at the end that found the end.
std::string restOf(std::istream& stream) {
  if (!stream.good()) {
    stream.setstate(std::ios::failbit);
    return std::string();
  }
  const std::ios::iostate exceptions = stream.exceptions();
  stream.exceptions(std::ios::goodbit);
  std::string text;
  std::vector<char> block(BlockSize);
  do {
    stream.read(block.data(), static_cast<std::streamsize>(block.size()));
    text.append(block.data(), static_cast<std::size_t>(stream.gcount()));
  } while (stream.good());
  if (stream.eof()) stream.clear(stream.rdstate() & ~std::ios::failbit);
  stream.exceptions(exceptions);
  return text;
}

}  // namespace

// What is still to be read.
struct Parser::Input {
  const char* next;
  const char* end;
  bool askedBeyondEnd = false;  // by a read or a peek other than the one for the next token

  explicit Input(const std::string& text) : next(text.data()), end(text.data() + text.size()) {}

  bool atEnd() const { return next == end; }
  bool finds(char c) const { return next != end && *next == c; }
};

// The containers that are open, the value that waits for the next token, and the root so far.
class Parser::Assembly {
 public:
  Assembly() = default;
  Assembly(const Assembly&) = delete;
  Assembly& operator=(const Assembly&) = delete;
  ~Assembly();

  void begin(Node::Type type);
  void end(Node::Type type);
  void endName();
  void endElement();
  void setValue(Node::Type type, std::string_view text);
  void setNumber(std::uint64_t packed);
  void setText(std::string&& text);
  void setUnknown(std::string_view text);

  /// What has been built; invalid after an error.
  Node finish(std::string& errorText);

 private:
  struct Frame {
    Node::Type type;
    std::size_t first;  // of its words on the stack: a child each, in an object behind its name
  };
  enum class Waiting { Nothing, Text, Value };
  static constexpr std::size_t NameWords = sizeof(Name) / WordSize;

  bool settle();
  void addChild(Word child);
  void addName();
  Word madeContainer(const Frame& frame);
  void dropFrame(const Frame& frame) noexcept;
  bool fail(const std::string& errorText);

  std::vector<Word> words;
  std::vector<Frame> open;
  std::string name;
  Word root = nullptr;

  Waiting waiting = Waiting::Nothing;
  Word word = nullptr;
  std::string text;
  bool behindComma = false;
  bool failed = false;
  std::string error;
};

Parser::Assembly::~Assembly() {
  release(root);
  release(word);
  for (; !open.empty(); open.pop_back()) dropFrame(open.back());
}

// The name and the value are kept for what follows: an error is seen when the next token comes.
void Parser::Assembly::begin(Node::Type type) {
  if (!settle()) return;
  if (!open.empty() && open.back().type == Node::T_OBJECT) addName();
  name.clear();
  open.push_back({type, words.size()});
}

// Deliberate: only a comma right before `]` is one too many; what is named last keeps its name for
// the next value, also beyond the end of its object.
void Parser::Assembly::end(Node::Type type) {
  const bool endsObject = type == Node::T_OBJECT;
  const bool isExtraComma = behindComma && !endsObject;
  if (!settle()) return;
  if (isExtraComma) {
    fail("Extra comma in array");
  } else if (open.empty()) {
    fail("Found end of object or array without beginning");
  } else if (open.back().type != type) {
    fail(endsObject ? "Mismatched end and beginning of object"
                    : "Mismatched end and beginning of array");
  } else {
    const Word closed = madeContainer(open.back());
    words.resize(open.back().first);
    open.pop_back();
    if (open.empty()) {
      release(std::exchange(root, closed));  // of several outermost containers the last one wins
    } else {
      words.push_back(closed);
    }
  }
}

// A name and its colon are taken anywhere, also in arrays, where the name is of no use. A colon
// that stands alone means nothing.
void Parser::Assembly::endName() {
  if (failed) return;
  behindComma = false;
  if (waiting == Waiting::Nothing) return;
  if (waiting == Waiting::Value) {
    fail("A name has to be a string");
    return;
  }
  name.swap(text);
  waiting = Waiting::Nothing;
}

void Parser::Assembly::endElement() {
  if (settle()) behindComma = true;
}

void Parser::Assembly::setValue(Node::Type type, std::string_view valueText) {
  if (!settle()) return;
  word = makeValue(type, valueText);
  waiting = Waiting::Value;
}

void Parser::Assembly::setNumber(std::uint64_t packed) {
  if (!settle()) return;
  word = shortNumber(packed);
  waiting = Waiting::Value;
}

void Parser::Assembly::setText(std::string&& valueText) {
  if (!settle()) return;
  text.swap(valueText);
  waiting = Waiting::Text;
}

void Parser::Assembly::setUnknown(std::string_view unknown) {
  if (settle()) fail("Unknown token: " + std::string(unknown));
}

// Deliberate: what is still open at the end is dropped without an error.
Node Parser::Assembly::finish(std::string& errorText) {
  settle();
  if (failed) {
    errorText = error;
    return Node();
  }
  return NodeAccess::adopt(std::exchange(root, nullptr));
}

// Gives the value that waits its place, now that it is known to be no name.
bool Parser::Assembly::settle() {
  if (failed) return false;
  behindComma = false;
  if (waiting == Waiting::Nothing) return true;
  if (open.empty()) return fail("Outermost node must be an object or array");
  if (waiting == Waiting::Text) word = makeValue(Node::T_STRING, text);
  waiting = Waiting::Nothing;
  addChild(std::exchange(word, nullptr));
  return true;
}

void Parser::Assembly::addChild(Word child) {
  if (open.back().type == Node::T_OBJECT) addName();
  name.clear();
  words.push_back(child);
}

void Parser::Assembly::addName() {
  const Name made = makeName(name);
  words.resize(words.size() + NameWords);
  std::memcpy(words.data() + words.size() - NameWords, &made, sizeof made);
}

Word Parser::Assembly::madeContainer(const Frame& frame) {
  const std::size_t size = words.size() - frame.first;
  const std::size_t count = frame.type == Node::T_OBJECT ? size / (NameWords + 1) : size;
  const Word container = makeContainer(frame.type, count);
  container->children.count = static_cast<std::uint32_t>(count);
  if (count > 0) std::memcpy(container->text(), words.data() + frame.first, size * WordSize);
  return container;
}

// The last name of an object may still be without its value.
void Parser::Assembly::dropFrame(const Frame& frame) noexcept {
  const std::size_t step = frame.type == Node::T_OBJECT ? NameWords : 0;
  for (std::size_t i = frame.first; i + step <= words.size() && i < words.size(); i += step + 1) {
    if (step > 0) {
      Name dropped;
      std::memcpy(&dropped, words.data() + i, sizeof dropped);
      destroyName(dropped);
    }
    if (i + step < words.size()) release(words[i + step]);
  }
  words.resize(frame.first);
}

bool Parser::Assembly::fail(const std::string& errorText) {
  error = errorText;
  failed = true;
  return false;
}

Node Parser::parseStream(std::istream& stream) {
  const std::string text = restOf(stream);
  Input input(text);
  const Node root = parse(input);
  if (input.askedBeyondEnd) stream.setstate(std::ios::failbit);
  return root;
}

Node Parser::parseString(const std::string& json) {
  Input input(json);
  return parse(input);
}

Node Parser::parseFile(const std::string& path) {
  std::ifstream stream(path);
  return parseStream(stream);
}

const std::string& Parser::getError() const { return error; }

Node Parser::parse(Input& input) {
  Assembly assembly;
  tokenize(input, assembly);
  return assembly.finish(error);
}

void Parser::tokenize(Input& input, Assembly& assembly) {
  std::string run;
  while (!input.atEnd()) {
    const char* const begin = input.next++;
    switch (kindOf(*begin)) {
      case Kind::White:
        // Deliberate: white space neither ends a run nor lets one at the end of the text be
        // flushed.
        continue;
      case Kind::Delimiter:
        flushRun(run, assembly);
        assemble(tokenOf(*begin), assembly);
        continue;
      case Kind::Quote:
        takeString(input, run, assembly);
        continue;
      case Kind::Slash:
        takeSlash(input, run);
        break;
      case Kind::Plain:
        while (!input.atEnd() && kindOf(*input.next) == Kind::Plain) ++input.next;
        // Nearly always the run is a plain number that ends here, and need not be gathered.
        if (run.empty() && !input.atEnd() && kindOf(*input.next) == Kind::Delimiter) {
          const std::uint64_t number =
              packPlainNumber({begin, static_cast<std::size_t>(input.next - begin)});
          if (number != 0) {
            assembly.setNumber(number);
            continue;
          }
        }
        run.append(begin, input.next);
        break;
    }
    if (!input.atEnd()) continue;
    input.askedBeyondEnd = true;
    flushRun(run, assembly);
  }
}

// Deliberate: of `//` the first slash is dropped and the second looked at afresh, so there are no
// line comments.
void Parser::takeSlash(Input& input, std::string& run) {
  if (input.finds('*')) {
    jumpToCommentEnd(input);
  } else if (!input.finds('/')) {
    run += '/';
  }
}

// Deliberate: a run and the string right behind it change places, and where the run is no value the
// error names the string.
void Parser::takeString(Input& input, std::string& run, Assembly& assembly) {
  std::string text = readString(input);
  if (run.empty()) {
    assembly.setText(std::move(text));
  } else if (const Value value = interpretValue(run); value.type != Node::T_INVALID) {
    assembly.setText(std::move(text));
    assembly.setValue(value.type, value.text);
  } else {
    assembly.setUnknown(text);
  }
  run.clear();
}

void Parser::flushRun(std::string& run, Assembly& assembly) {
  if (run.empty()) return;
  const Value value = interpretValue(run);
  if (value.type != Node::T_INVALID) {
    assembly.setValue(value.type, value.text);
  } else {
    assembly.setUnknown(run);
  }
  run.clear();
}

// Reads up to the character and leaves it to be read next.
void Parser::jumpToNext(char character, std::istream& stream) {
  for (int c = stream.get(); c != EndOfFile; c = stream.get()) {
    if (static_cast<char>(c) != character) continue;
    stream.putback(character);
    return;
  }
}

// The star is skipped first: `/*/` opens a comment and does not close it.
void Parser::jumpToCommentEnd(Input& input) {
  const std::string_view rest(input.next, static_cast<std::size_t>(input.end - input.next));
  const std::size_t close = rest.find("*/", 1);
  input.next = close == std::string_view::npos ? input.end : input.next + close + 2;
}

std::string Parser::readString(Input& input) {
  const char* const begin = input.next;
  bool hasEscape = false;
  while (!input.finds('"')) {
    if (input.atEnd()) {
      input.askedBeyondEnd = true;
      break;
    }
    const bool isEscape = *input.next++ == '\\';
    if (isEscape && !input.atEnd()) ++input.next;
    hasEscape = hasEscape || isEscape;
  }
  std::string text(begin, input.next);
  if (!input.atEnd()) ++input.next;
  return hasEscape ? unescapeString(text) : text;
}

// The value that a run of characters is; of type T_INVALID if it is none.
Parser::Value Parser::interpretValue(std::string_view run) {
  if (isNumberText(run)) return {Node::T_NUMBER, run};
  if (isKeyword(run, "NULL")) return {Node::T_NULL, {}};
  if (isKeyword(run, "TRUE")) return {Node::T_BOOL, "true"};
  if (isKeyword(run, "FALSE")) return {Node::T_BOOL, "false"};
  return {Node::T_INVALID, {}};
}

Parser::Token Parser::tokenOf(char delimiter) {
  switch (delimiter) {
    case '{':
      return T_OBJ_BEGIN;
    case '}':
      return T_OBJ_END;
    case '[':
      return T_ARRAY_BEGIN;
    case ']':
      return T_ARRAY_END;
    case ',':
      return T_SEPARATOR;
    case ':':
      return T_NAME_SEPARATOR;
    default:
      return T_UNKNOWN;
  }
}

void Parser::assemble(Token token, Assembly& assembly) {
  switch (token) {
    case T_OBJ_BEGIN:
      return assembly.begin(Node::T_OBJECT);
    case T_OBJ_END:
      return assembly.end(Node::T_OBJECT);
    case T_ARRAY_BEGIN:
      return assembly.begin(Node::T_ARRAY);
    case T_ARRAY_END:
      return assembly.end(Node::T_ARRAY);
    case T_SEPARATOR:
      return assembly.endElement();
    case T_NAME_SEPARATOR:
      return assembly.endName();
    case T_UNKNOWN:
    case T_VALUE:
      return;  // no delimiters: they come with a text
  }
}

}  // namespace Jzon
