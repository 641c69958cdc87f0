// The tree is walked with a stack of open containers, so it may be as deep as memory allows. The
// text is gathered in one string, which is handed to a stream block by block.

#include "jzon/NodeData.h"

#include <lumivane/jzon/Writer.h>

#include <fstream>
#include <ostream>
#include <string_view>
#include <utility>
#include <vector>

namespace Jzon {

namespace {

const std::string nothing;
const std::string space(" ");
const std::string lineFeed("\n");

constexpr std::size_t BlockSize = std::size_t{1} << 16U;

}  // namespace

// Where the text goes: into a stream, or without one into a string that is taken at the end.
class Writer::Output {
 public:
  explicit Output(std::ostream* target) : stream(target) {
    if (stream) text.reserve(2 * BlockSize);
  }

  void add(char c) { text += c; }
  void add(std::string_view piece) { text.append(piece); }
  void endPiece() {
    if (stream && text.size() >= BlockSize) flush();
  }
  void flush() {
    stream->write(text.data(), static_cast<std::streamsize>(text.size()));
    text.clear();
  }
  std::string take() { return std::move(text); }

 private:
  std::ostream* stream;
  std::string text;
};

// A container that is being written and the child that comes next.
struct Writer::Position {
  NodeData* container;
  std::size_t count;
  std::size_t next;
};

Writer::Writer() : Writer(Format{false, false, false, 0}) {}

Writer::Writer(const Format& initialFormat) { setFormat(initialFormat); }

void Writer::setFormat(const Format& newFormat) {
  format = newFormat;
  indentationChar = format.useTabs ? '\t' : ' ';
  spacing = format.spacing ? &space : &nothing;
  newline = format.newline ? &lineFeed : spacing;
}

void Writer::writeStream(const Node& node, std::ostream& stream) const {
  Output output(&stream);
  writeNode(node, 0, output);
  output.flush();
}

// Deliberate: the text goes over the front of the old one, of which a longer tail stays.
void Writer::writeString(const Node& node, std::string& json) const {
  Output output(nullptr);
  writeNode(node, 0, output);
  std::string text = output.take();
  if (text.size() < json.size()) text.append(json, text.size(), std::string::npos);
  json = std::move(text);
}

void Writer::writeFile(const Node& node, const std::string& path) const {
  std::ofstream stream(path, std::ios::out | std::ios::trunc);
  if (stream.is_open()) writeStream(node, stream);
}

void Writer::writeNode(const Node& node, unsigned int level, Output& output) const {
  std::vector<Position> open;
  Word next = NodeAccess::wordOf(node);
  for (;;) {
    const Node::Type type = typeOf(next);
    if (isContainerType(type)) {
      open.push_back({next, countOf(next), 0});
    } else if (isValueType(type)) {
      writeValue(next, output);
    }

    output.endPiece();
    for (bool isChild = false; !isChild;) {
      if (open.empty()) return;
      Position& position = open.back();
      isChild = position.next < position.count;
      const auto step =
          typeOf(position.container) == Node::T_OBJECT ? &Writer::writeObject : &Writer::writeArray;
      next = (this->*step)(position, level + static_cast<unsigned int>(open.size()), output);
      if (!isChild) open.pop_back();
    }
  }
}

// Writes what stands in front of the next child and returns that child, or writes the end.
// Deliberate: the level has no effect, and names are not escaped.
NodeData* Writer::writeObject(Position& position, unsigned int /*level*/, Output& output) const {
  if (position.next == 0) {
    output.add('{');
    output.add(*newline);
  }
  if (position.next == position.count) {
    output.add(*newline);
    output.add('}');
    return nullptr;
  }
  if (position.next > 0) {
    output.add(',');
    output.add(*newline);
  }
  output.add('"');
  output.add(nameAt(position.container, position.next));
  output.add("\":");
  output.add(*spacing);
  return childAt(position.container, position.next++);
}

// The same for an array, which stays on one line.
NodeData* Writer::writeArray(Position& position, unsigned int /*level*/, Output& output) const {
  if (position.next == 0) output.add('[');
  if (position.next == position.count) {
    output.add(']');
    return nullptr;
  }
  if (position.next > 0) output.add(',');
  return childAt(position.container, position.next++);
}

void Writer::writeValue(NodeData* value, Output& output) const {
  const ValueText text(value);
  switch (typeOf(value)) {
    case Node::T_NULL:
      return output.add("null");
    case Node::T_STRING:
      output.add('"');
      output.add(escapeString(std::string(text.get())));
      return output.add('"');
    default:
      return output.add(text.get());
  }
}

// No caller: nothing is indented.
std::string Writer::getIndentation(unsigned int level) const {
  if (!format.newline) return std::string();
  return std::string(static_cast<std::size_t>(level) * format.indentSize, indentationChar);
}

}  // namespace Jzon
