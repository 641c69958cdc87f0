// The operations of a handle: each looks at the kind of its word and hands over to the data.

#include "jzon/Building.h"
#include "jzon/JsonNumber.h"
#include "jzon/NodeData.h"

#include <lumivane/jzon/Node.h>

#include <array>
#include <cmath>
#include <utility>

namespace Jzon {

namespace {

std::string_view textOf(const char* value) { return value ? value : std::string_view(); }
std::string_view textOf(bool value) { return value ? "true" : "false"; }

// The digits of a number, on the stack.
class NumberText {
 public:
  template <class Number>
  explicit NumberText(Number value) {
    length = writeNumber(value, characters.data());
  }
  std::string_view get() const { return {characters.data(), length}; }

 private:
  std::array<char, NumberTextLength> characters;
  std::size_t length;
};

template <class Number>
Word makeNumber(Number value) {
  return makeValue(Node::T_NUMBER, NumberText(value).get());
}

Word makeNode(Node::Type type) {
  if (type == Node::T_INVALID) return nullptr;
  return isContainerType(type) ? makeContainer(type, 0) : makeValue(type, {});
}

}  // namespace

Node::Node() noexcept : data(nullptr) {}
Node::Node(Type type) : data(makeNode(type)) {}
Node::Node(const Node& other) noexcept : data(hold(other.data)) {}

Node::Node(Type type, const std::string& value)
    : data(isValueType(type) ? makeValue(type, value) : makeValue(T_NULL, {})) {}

Node::Node(const std::string& value) : data(makeValue(T_STRING, value)) {}
Node::Node(const char* value) : data(makeValue(T_STRING, textOf(value))) {}
Node::Node(int value) : Node(static_cast<long long>(value)) {}
Node::Node(unsigned int value) : Node(static_cast<unsigned long long>(value)) {}
Node::Node(long long value) : data(makeNumber(value)) {}
Node::Node(unsigned long long value) : data(makeNumber(value)) {}
Node::Node(float value) : Node(static_cast<double>(value)) {}
Node::Node(double value) : data(makeNumber(value)) {}
Node::Node(bool value) : data(makeValue(T_BOOL, textOf(value))) {}

Node::~Node() { release(data); }

Node& Node::operator=(const Node& other) noexcept {
  if (this == &other) return *this;
  // The new data is held before the old goes: `other` may be a child of this node.
  release(std::exchange(data, hold(other.data)));
  return *this;
}

Node& Node::operator=(const std::string& value) { return set(value), *this; }
Node& Node::operator=(const char* value) { return set(value), *this; }
Node& Node::operator=(int value) { return set(value), *this; }
Node& Node::operator=(unsigned int value) { return set(value), *this; }
Node& Node::operator=(long long value) { return set(value), *this; }
Node& Node::operator=(unsigned long long value) { return set(value), *this; }
Node& Node::operator=(float value) { return set(value), *this; }
Node& Node::operator=(double value) { return set(value), *this; }
Node& Node::operator=(bool value) { return set(value), *this; }

Node::Type Node::getType() const noexcept { return typeOf(data); }
bool Node::isValid() const noexcept { return data != nullptr; }
bool Node::isObject() const noexcept { return getType() == T_OBJECT; }
bool Node::isArray() const noexcept { return getType() == T_ARRAY; }
bool Node::isNull() const noexcept { return getType() == T_NULL; }
bool Node::isString() const noexcept { return getType() == T_STRING; }
bool Node::isNumber() const noexcept { return getType() == T_NUMBER; }
bool Node::isBool() const noexcept { return getType() == T_BOOL; }
bool Node::isContainer() const noexcept { return isContainerType(getType()); }
bool Node::isValue() const noexcept { return isValueType(getType()); }

bool Node::isInteger() const {
  if (!isNumber()) return false;
  const double value = toDouble();
  return value == std::floor(value);
}

std::string Node::toString(const std::string& def) const {
  if (isNull()) return "null";
  return isValue() ? std::string(ValueText(data).get()) : def;
}

int Node::toInt(int def) const { return isNumber() ? readInt(ValueText(data).get()) : def; }

float Node::toFloat(float def) const { return isNumber() ? readFloat(ValueText(data).get()) : def; }

double Node::toDouble(double def) const {
  return isNumber() ? readDouble(ValueText(data).get()) : def;
}

bool Node::toBool(bool def) const { return isBool() ? ValueText(data).get() == "true" : def; }

void Node::setNull() { setValue(T_NULL, {}); }

void Node::set(Type type, const std::string& value) {
  if (isValueType(type)) setValue(type, value);
}

void Node::set(const std::string& value) { setValue(T_STRING, value); }
void Node::set(const char* value) { setValue(T_STRING, textOf(value)); }
void Node::set(int value) { set(static_cast<long long>(value)); }
void Node::set(unsigned int value) { set(static_cast<unsigned long long>(value)); }
void Node::set(long long value) { setValue(T_NUMBER, NumberText(value).get()); }
void Node::set(unsigned long long value) { setValue(T_NUMBER, NumberText(value).get()); }
void Node::set(float value) { set(static_cast<double>(value)); }
// Deliberate: 6 significant digits, whatever the value has.
void Node::set(double value) { setValue(T_NUMBER, NumberText(value).get()); }
void Node::set(bool value) { setValue(T_BOOL, textOf(value)); }

// Other handles keep the old value, since this one takes a new.
void Node::setValue(Type type, std::string_view text) {
  if (isValue()) release(std::exchange(data, makeValue(type, text)));
}

// The child is held first: if it is this node, makeOwn keeps the old data for it.
void Node::add(const Node& node) {
  if (!isArray()) return;
  const Node child(node);
  makeOwn(data, 1);
  appendElement(data, hold(child.data));
}

void Node::add(const std::string& name, const Node& node) {
  if (!isObject()) return;
  const Node child(node);
  makeOwn(data, 1);
  appendMember(data, makeName(name), hold(child.data));
}

void Node::append(const Node& other) {
  if (!isContainer() || getType() != other.getType()) return;
  const Node source(other);  // a handle of our own: `other` may be this node or a child of it
  const std::size_t count = source.getCount();
  makeOwn(data, count);
  for (std::size_t i = 0; i < count; ++i) {
    const Word child = childAt(source.data, i);
    if (isArray()) {
      appendElement(data, hold(child));
    } else {
      appendMember(data, makeName(nameAt(source.data, i)), hold(child));
    }
  }
}

void Node::remove(std::size_t index) {
  if (index >= getCount()) return;
  makeOwn(data, 0);
  eraseChild(data, index);
}

void Node::remove(const std::string& name) {
  const std::size_t index = findName(data, name);
  if (index != NotFound) remove(index);
}

void Node::clear() {
  if (getCount() > 0) release(std::exchange(data, makeContainer(getType(), 0)));
}

bool Node::has(const std::string& name) const { return findName(data, name) != NotFound; }

std::size_t Node::getCount() const noexcept { return countOf(data); }

Node Node::get(const std::string& name) const { return get(findName(data, name)); }

Node Node::get(std::size_t index) const {
  return index < getCount() ? NodeAccess::adopt(hold(childAt(data, index))) : Node();
}

Node Node::get_key(std::size_t index) const {
  return index < getCount() ? Node(std::string(nameAt(data, index))) : Node();
}

Node::NamedNode& Node::getNamedNode(const std::string& name) {
  const std::size_t index = findName(data, name);
  // Deliberate: left to nobody, as every caller expects.
  if (index == NotFound) return *new NamedNode();
  makeOwn(data, 0);
  return unpacked(data)[index];
}

Node::iterator Node::begin() { return getCount() ? unpacked(data).data() : nullptr; }
Node::iterator Node::end() { return getCount() ? begin() + getCount() : nullptr; }
Node::const_iterator Node::begin() const { return getCount() ? unpacked(data).data() : nullptr; }
Node::const_iterator Node::end() const { return getCount() ? begin() + getCount() : nullptr; }

bool Node::operator==(const Node& other) const noexcept {
  if (data == other.data) return true;
  return isValue() && getType() == other.getType() &&
         ValueText(data).get() == ValueText(other.data).get();
}

bool Node::operator!=(const Node& other) const noexcept { return !(*this == other); }

Node invalid() { return Node(); }
Node null() { return Node(Node::T_NULL); }
Node object() { return Node(Node::T_OBJECT); }
Node array() { return Node(Node::T_ARRAY); }

Node arrayWithRoom(std::size_t room) {
  return NodeAccess::adopt(makeContainer(Node::T_ARRAY, room));
}

Node objectWithRoom(std::size_t room) {
  return NodeAccess::adopt(makeContainer(Node::T_OBJECT, room));
}

Node takenChild(Node& container, std::size_t index) {
  const Word word = NodeAccess::wordOf(container);
  if (index >= countOf(word)) return Node();
  return NodeAccess::adopt(takeOrHold(word, index));
}

Node takenChild(Node& object, const std::string& name) {
  return takenChild(object, findName(NodeAccess::wordOf(object), name));
}

}  // namespace Jzon
