// Two passes. The first reads characters into a queue of tokens and a queue of value data; a run of
// characters that is no delimiter, quote, comment or white space is gathered and enters the queues
// at the next delimiter. The second takes the tokens one by one and builds the tree on a stack.

#include "kernel/JsonNumber.h"

#include <lumivane/jzon/Parser.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

namespace Jzon {

namespace {

constexpr int EndOfFile = std::istream::traits_type::eof();

bool isWhiteSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r';  // no vertical tab
}

// Whether the text is the keyword in any case. Only ASCII letters matter, so the locale is left
// out.
bool isKeyword(const std::string& text, std::string_view upperKeyword) {
  const auto isSame = [](char c, char upper) {
    return (c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c) == upper;
  };
  return text.size() == upperKeyword.size() &&
         std::equal(text.begin(), text.end(), upperKeyword.begin(), isSame);
}

}  // namespace

// The containers that are open, from the outermost, each with the name it will be added under.
struct Parser::Assembly {
  std::vector<Node::NamedNode> open;
  std::string name;
  Node root;

  void addToTop(const std::string& childName, const Node& child) {
    Node& top = open.back().second;
    if (top.isObject()) {
      top.add(childName, child);
    } else {
      top.add(child);
    }
  }
};

Node Parser::parseStream(std::istream& stream) {
  TokenQueue tokens;
  DataQueue data;
  tokenize(stream, tokens, data);
  return assemble(tokens, data);
}

Node Parser::parseString(const std::string& json) {
  std::istringstream stream(json);
  return parseStream(stream);
}

Node Parser::parseFile(const std::string& path) {
  std::ifstream stream(path);
  return parseStream(stream);
}

const std::string& Parser::getError() const { return error; }

void Parser::tokenize(std::istream& stream, TokenQueue& tokens, DataQueue& data) {
  std::string run;
  while (stream.peek() != EndOfFile) {
    const char c = static_cast<char>(stream.get());
    // Deliberate: white space neither ends a run nor lets one at the end of the text be flushed.
    if (isWhiteSpace(c)) continue;

    Token token = T_UNKNOWN;
    const bool isDelimiter = takeCharacter(c, stream, token, run, data);
    if (isDelimiter || stream.peek() == EndOfFile) flushRun(run, tokens, data);
    if (isDelimiter) tokens.push(token);
  }
}

// Whether the character is a delimiter or a quote, with its token; all else goes into the run or is
// a comment. Deliberate: a string's data enters its queue here, before that of a run in front of
// it, while the tokens keep the order of the text.
bool Parser::takeCharacter(char character, std::istream& stream, Token& token, std::string& run,
                           DataQueue& data) {
  switch (character) {
    case '{':
      token = T_OBJ_BEGIN;
      return true;
    case '}':
      token = T_OBJ_END;
      return true;
    case '[':
      token = T_ARRAY_BEGIN;
      return true;
    case ']':
      token = T_ARRAY_END;
      return true;
    case ',':
      token = T_SEPARATOR;
      return true;
    case ':':
      token = T_NAME_SEPARATOR;
      return true;
    case '"':
      token = T_VALUE;
      readString(stream, data);
      return true;
    case '/':
      // Deliberate: of `//` the first slash is dropped and the second looked at afresh, so there
      // are no line comments.
      if (stream.peek() == '*') {
        jumpToCommentEnd(stream);
      } else if (stream.peek() != '/') {
        run += character;
      }
      return false;
    default:
      run += character;
      return false;
  }
}

void Parser::flushRun(std::string& run, TokenQueue& tokens, DataQueue& data) {
  if (run.empty()) return;
  if (interpretValue(run, data)) {
    tokens.push(T_VALUE);
  } else {
    data.emplace(Node::T_STRING, run);
    tokens.push(T_UNKNOWN);
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
void Parser::jumpToCommentEnd(std::istream& stream) {
  stream.ignore();
  int previous = 0;
  for (int c = stream.get(); c != EndOfFile; c = stream.get()) {
    if (previous == '*' && c == '/') return;
    previous = c;
  }
}

void Parser::readString(std::istream& stream, DataQueue& data) {
  std::string text;
  bool isEscaped = false;  // by an unescaped backslash right before
  for (int next = stream.get(); next != EndOfFile; next = stream.get()) {
    const char c = static_cast<char>(next);
    if (c == '"' && !isEscaped) break;
    isEscaped = c == '\\' && !isEscaped;
    text += c;
  }
  data.emplace(Node::T_STRING, unescapeString(text));
}

bool Parser::interpretValue(const std::string& value, DataQueue& data) {
  if (isKeyword(value, "NULL")) {
    data.emplace(Node::T_NULL, std::string());
  } else if (isKeyword(value, "TRUE")) {
    data.emplace(Node::T_BOOL, "true");
  } else if (isKeyword(value, "FALSE")) {
    data.emplace(Node::T_BOOL, "false");
  } else if (Lumivane::Kernel::isNumberText(value)) {
    data.emplace(Node::T_NUMBER, value);
  } else {
    return false;
  }
  return true;
}

// Deliberate: what is still open at the end is dropped without an error, and of several outermost
// containers the last one wins.
Node Parser::assemble(TokenQueue& tokens, DataQueue& data) {
  Assembly assembly;
  while (!tokens.empty()) {
    const Token token = tokens.front();
    tokens.pop();
    if (!assembleToken(token, tokens, data, assembly)) return Node();
  }
  return assembly.root;
}

bool Parser::assembleToken(Token token, TokenQueue& tokens, DataQueue& data, Assembly& assembly) {
  switch (token) {
    case T_OBJ_BEGIN:
    case T_ARRAY_BEGIN:
      assembly.open.emplace_back(assembly.name, token == T_OBJ_BEGIN ? object() : array());
      assembly.name.clear();
      return true;
    case T_OBJ_END:
    case T_ARRAY_END:
      return assembleEnd(token, assembly);
    case T_VALUE:
      return assembleValue(tokens, data, assembly);
    case T_SEPARATOR:
      // Deliberate: only a comma right before `]` is one too many.
      return tokens.empty() || tokens.front() != T_ARRAY_END || fail("Extra comma in array");
    case T_NAME_SEPARATOR:
      return true;
    case T_UNKNOWN:
      break;
  }
  return fail("Unknown token: " + (data.empty() ? std::string() : data.front().second));
}

bool Parser::assembleEnd(Token token, Assembly& assembly) {
  if (assembly.open.empty()) return fail("Found end of object or array without beginning");
  const bool endsObject = token == T_OBJ_END;
  if (assembly.open.back().second.isObject() != endsObject) {
    return fail(endsObject ? "Mismatched end and beginning of object"
                           : "Mismatched end and beginning of array");
  }

  const Node::NamedNode closed = std::move(assembly.open.back());
  assembly.open.pop_back();
  if (assembly.open.empty()) {
    assembly.root = closed.second;
  } else if (assembly.open.back().second.isContainer()) {
    assembly.addToTop(closed.first, closed.second);
  } else {
    return fail("Can only add elements to objects and arrays");
  }
  return true;
}

// A name and its colon are taken anywhere, also in arrays, where the name is of no use.
bool Parser::assembleValue(TokenQueue& tokens, DataQueue& data, Assembly& assembly) {
  if (data.empty()) return fail("Missing data for value");
  const auto [type, text] = std::move(data.front());
  data.pop();

  if (!tokens.empty() && tokens.front() == T_NAME_SEPARATOR) {
    tokens.pop();
    if (type != Node::T_STRING) return fail("A name has to be a string");
    assembly.name = text;
    return true;
  }
  if (assembly.open.empty()) return fail("Outermost node must be an object or array");
  assembly.addToTop(assembly.name, Node(type, text));
  assembly.name.clear();
  return true;
}

bool Parser::fail(const std::string& text) {
  error = text;
  return false;
}

}  // namespace Jzon
