#pragma once

#include <lumivane/export.h>
#include <lumivane/jzon/Format.h>
#include <lumivane/jzon/Node.h>

#include <cstddef>
#include <iosfwd>
#include <string>

namespace Jzon {

/// Turns a tree of nodes into text.
///
/// Nothing is indented whatever the format says, and no line break stands behind the root. Strings
/// are escaped, names are written as they stand, and an invalid child writes nothing behind its
/// name. Trees of any depth are written without recursion. Errors of a stream or file are not
/// reported.
class LUMIVANE_EXPORT Writer {
 public:
  /// A writer without line breaks and spaces.
  Writer();
  Writer(const Format& format);  ///< A writer with that format.

  void setFormat(const Format& format);  ///< For what is written from now on.

  /// Writes the tree to the stream; an invalid node writes nothing.
  void writeStream(const Node& node, std::ostream& stream) const;
  /// Writes the tree over the front of `json`. Given the empty text, `json` becomes the tree's
  /// text; of a longer text the tail stays.
  void writeString(const Node& node, std::string& json) const;
  /// Writes the tree to a file, replacing what is there. Nothing happens if it cannot be opened.
  void writeFile(const Node& node, const std::string& path) const;

 private:
  class Output;
  struct Position;

  void writeNode(const Node& node, unsigned int level, Output& output) const;
  NodeData* writeObject(Position& position, unsigned int level, Output& output) const;
  NodeData* writeArray(Position& position, unsigned int level, Output& output) const;
  void writeValue(NodeData* value, Output& output) const;
  std::string getIndentation(unsigned int level) const;

  Format format;
  char indentationChar;
  const std::string* newline;
  const std::string* spacing;
};

}  // namespace Jzon
