// The tree is walked with a stack of open containers, so it may be as deep as memory allows.

#include <lumivane/jzon/Writer.h>

#include <fstream>
#include <sstream>
#include <vector>

namespace Jzon {

namespace {

const std::string nothing;
const std::string space(" ");
const std::string lineFeed("\n");

}  // namespace

// A container that is being written and the child that comes next.
struct Writer::Position {
  const Node* container;
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
  writeNode(node, 0, stream);
}

void Writer::writeString(const Node& node, std::string& json) const {
  std::ostringstream stream(json);  // positioned at the front
  writeStream(node, stream);
  json = stream.str();
}

void Writer::writeFile(const Node& node, const std::string& path) const {
  std::ofstream stream(path, std::ios::out | std::ios::trunc);
  if (stream.is_open()) writeStream(node, stream);
}

void Writer::writeNode(const Node& node, unsigned int level, std::ostream& stream) const {
  std::vector<Position> open;
  const Node* next = &node;
  for (;;) {
    if (next->isContainer()) {
      open.push_back({next, 0});
    } else if (next->isValue()) {
      writeValue(*next, stream);
    }

    for (next = nullptr; !next; open.pop_back()) {
      if (open.empty()) return;
      const bool isObject = open.back().container->isObject();
      const auto step = isObject ? &Writer::writeObject : &Writer::writeArray;
      next = (this->*step)(open.back(), level + static_cast<unsigned int>(open.size()), stream);
      if (next) break;
    }
  }
}

// Writes what stands in front of the next child and returns that child, or writes the end and
// returns null. Deliberate: the level has no effect, and names are not escaped.
const Node* Writer::writeObject(Position& position, unsigned int /*level*/,
                                std::ostream& stream) const {
  const Node& object = *position.container;
  if (position.next == 0) stream << '{' << *newline;
  if (position.next == object.getCount()) {
    stream << *newline << '}';
    return nullptr;
  }
  if (position.next > 0) stream << ',' << *newline;
  const Node::NamedNode& child = object.begin()[position.next++];
  stream << '"' << child.first << '"' << ':' << *spacing;
  return &child.second;
}

// The same for an array, which stays on one line.
const Node* Writer::writeArray(Position& position, unsigned int /*level*/,
                               std::ostream& stream) const {
  const Node& array = *position.container;
  if (position.next == 0) stream << '[';
  if (position.next == array.getCount()) {
    stream << ']';
    return nullptr;
  }
  if (position.next > 0) stream << ',';
  return &array.begin()[position.next++].second;
}

void Writer::writeValue(const Node& node, std::ostream& stream) const {
  if (node.isString()) {
    stream << '"' << escapeString(node.toString()) << '"';
  } else {
    stream << node.toString();
  }
}

// No caller: nothing is indented.
std::string Writer::getIndentation(unsigned int level) const {
  if (!format.newline) return std::string();
  return std::string(static_cast<std::size_t>(level) * format.indentSize, indentationChar);
}

}  // namespace Jzon
