#pragma once

#include <lumivane/export.h>
#include <lumivane/jzon/Node.h>

#include <iosfwd>
#include <string>
#include <string_view>

namespace Jzon {

/// Turns text into a tree of nodes.
///
/// The grammar is looser than JSON: white space does not end a value (`12 34` is the number
/// `1234`), keywords have any case, `1-2` and `.` count as numbers, an object may have stray
/// commas, and block comments are skipped. Line comments are not known. Trees of any depth are
/// parsed without recursion. Nothing is thrown or printed: the caller sees an invalid node.
class LUMIVANE_EXPORT Parser {
 public:
  /// Parses all of the stream.
  /// \return the last complete outermost container; an invalid node on an error (see getError),
  ///         for a text without containers and for one with an unclosed container
  Node parseStream(std::istream& stream);
  /// Parses a text, as parseStream does.
  Node parseString(const std::string& json);
  /// Parses a file, as parseStream does; a file that cannot be opened counts as empty.
  Node parseFile(const std::string& path);

  /// The text of the last error. It outlives a good parse, so it means something only after an
  /// invalid result.
  const std::string& getError() const;

 private:
  enum Token : int {
    T_UNKNOWN = 0,
    T_OBJ_BEGIN = 1,
    T_OBJ_END = 2,
    T_ARRAY_BEGIN = 3,
    T_ARRAY_END = 4,
    T_SEPARATOR = 5,
    T_NAME_SEPARATOR = 6,
    T_VALUE = 7
  };
  class Assembly;
  struct Input;
  struct Value {
    Node::Type type;
    std::string_view text;
  };

  Node parse(Input& input);
  static void tokenize(Input& input, Assembly& assembly);
  static void takeSlash(Input& input, std::string& run);
  static void takeString(Input& input, std::string& run, Assembly& assembly);
  static void flushRun(std::string& run, Assembly& assembly);
  static void jumpToNext(char character, std::istream& stream);
  static void jumpToCommentEnd(Input& input);
  static std::string readString(Input& input);
  static Value interpretValue(std::string_view run);
  static Token tokenOf(char delimiter);
  static void assemble(Token token, Assembly& assembly);

  std::string error;
};

}  // namespace Jzon
