// A handle points at counted data. Destruction works off a list of its own instead of calling
// itself, so a tree may be as deep as memory allows.

#include "kernel/JsonNumber.h"

#include <lumivane/jzon/Node.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace Jzon {

namespace Kernel = Lumivane::Kernel;

struct Node::NodeData {
  explicit NodeData(Type dataType, std::string text = std::string())
      : refCount(1), type(dataType), valueStr(std::move(text)) {}
  NodeData(const NodeData& other)
      : refCount(1), type(other.type), valueStr(other.valueStr), children(other.children) {}
  NodeData& operator=(const NodeData&) = delete;

  std::uint32_t refCount;
  Type type;
  std::string valueStr;
  std::vector<NamedNode> children;
};

namespace {

bool isValueType(Node::Type type) { return type >= Node::T_NULL && type <= Node::T_BOOL; }
bool isContainerType(Node::Type type) { return type == Node::T_OBJECT || type == Node::T_ARRAY; }

std::string textOf(const char* value) { return value ? std::string(value) : std::string(); }
std::string textOf(bool value) { return value ? "true" : "false"; }

struct Escape {
  char plain;
  char letter;
};

constexpr std::array<Escape, 8> escapes{{{'\\', '\\'},
                                         {'/', '/'},
                                         {'"', '"'},
                                         {'\n', 'n'},
                                         {'\t', 't'},
                                         {'\b', 'b'},
                                         {'\f', 'f'},
                                         {'\r', 'r'}}};

}  // namespace

Node::Node() noexcept : data(nullptr) {}

Node::Node(Type type) : data(type == T_INVALID ? nullptr : new NodeData(type)) {}

Node::Node(const Node& other) noexcept : data(other.data) {
  if (data) ++data->refCount;
}

Node::Node(Type type, const std::string& value) : data(new NodeData(T_NULL)) { set(type, value); }

Node::Node(const std::string& value) : data(new NodeData(T_STRING, value)) {}
Node::Node(const char* value) : data(new NodeData(T_STRING, textOf(value))) {}
Node::Node(int value) : Node(static_cast<long long>(value)) {}
Node::Node(unsigned int value) : Node(static_cast<unsigned long long>(value)) {}
Node::Node(long long value) : data(new NodeData(T_NUMBER, Kernel::numberText(value))) {}
Node::Node(unsigned long long value) : data(new NodeData(T_NUMBER, Kernel::numberText(value))) {}
Node::Node(float value) : Node(static_cast<double>(value)) {}
Node::Node(double value) : data(new NodeData(T_NUMBER, Kernel::numberText(value))) {}
Node::Node(bool value) : data(new NodeData(T_BOOL, textOf(value))) {}

Node::~Node() { release(data); }

Node& Node::operator=(const Node& other) noexcept {
  if (this == &other) return *this;
  // The new data is held before the old goes: `other` may be a child of this node.
  NodeData* const old = data;
  data = other.data;
  if (data) ++data->refCount;
  release(old);
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

Node::Type Node::getType() const noexcept { return data ? data->type : T_INVALID; }
bool Node::isValid() const noexcept { return getType() != T_INVALID; }
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
  const double value = Kernel::readDouble(data->valueStr);
  return value == std::floor(value);
}

std::string Node::toString(const std::string& def) const {
  if (isNull()) return "null";
  return isValue() ? data->valueStr : def;
}

int Node::toInt(int def) const { return isNumber() ? Kernel::readInt(data->valueStr) : def; }

float Node::toFloat(float def) const {
  return isNumber() ? Kernel::readFloat(data->valueStr) : def;
}

double Node::toDouble(double def) const {
  return isNumber() ? Kernel::readDouble(data->valueStr) : def;
}

bool Node::toBool(bool def) const { return isBool() ? data->valueStr == "true" : def; }

void Node::setNull() { setValue(T_NULL, std::string()); }

void Node::set(Type type, const std::string& value) {
  if (isValueType(type)) setValue(type, value);
}

void Node::set(const std::string& value) { setValue(T_STRING, value); }
void Node::set(const char* value) { setValue(T_STRING, textOf(value)); }
void Node::set(int value) { set(static_cast<long long>(value)); }
void Node::set(unsigned int value) { set(static_cast<unsigned long long>(value)); }
void Node::set(long long value) { setValue(T_NUMBER, Kernel::numberText(value)); }
void Node::set(unsigned long long value) { setValue(T_NUMBER, Kernel::numberText(value)); }
void Node::set(float value) { set(static_cast<double>(value)); }
// Deliberate: 6 significant digits, whatever the value has.
void Node::set(double value) { setValue(T_NUMBER, Kernel::numberText(value)); }
void Node::set(bool value) { setValue(T_BOOL, textOf(value)); }

void Node::setValue(Type type, std::string text) {
  if (!isValue()) return;
  detach();
  data->type = type;
  data->valueStr = std::move(text);
}

void Node::add(const Node& node) {
  if (!isArray()) return;
  // The entry is made first: if `node` is this one, its handle makes detach keep the old data.
  NamedNode entry(std::string(), node);
  detach();
  data->children.push_back(std::move(entry));
}

void Node::add(const std::string& name, const Node& node) {
  if (!isObject()) return;
  NamedNode entry(name, node);
  detach();
  data->children.push_back(std::move(entry));
}

void Node::append(const Node& other) {
  if (!isContainer() || getType() != other.getType()) return;
  const Node source(other);  // a handle of our own: `other` may be this node or a child of it
  detach();
  const auto& added = source.data->children;
  data->children.insert(data->children.end(), added.begin(), added.end());
}

void Node::remove(std::size_t index) {
  if (!isContainer() || index >= getCount()) return;
  detach();
  data->children.erase(data->children.begin() + static_cast<std::ptrdiff_t>(index));
}

void Node::remove(const std::string& name) {
  if (const NamedNode* const found = find(name)) remove(static_cast<std::size_t>(found - begin()));
}

void Node::clear() {
  if (getCount() == 0) return;
  detach();
  data->children.clear();
}

bool Node::has(const std::string& name) const { return find(name) != nullptr; }

std::size_t Node::getCount() const noexcept { return data ? data->children.size() : 0; }

Node Node::get(const std::string& name) const {
  const NamedNode* const found = find(name);
  return found ? found->second : Node();
}

Node Node::get(std::size_t index) const {
  return isContainer() && index < getCount() ? data->children[index].second : Node();
}

Node Node::get_key(std::size_t index) const {
  return isContainer() && index < getCount() ? Node(data->children[index].first) : Node();
}

Node::NamedNode& Node::getNamedNode(const std::string& name) {
  if (!has(name)) return *new NamedNode();  // Deliberate: left to nobody, as every caller expects
  detach();
  return *find(name);
}

Node::iterator Node::begin() noexcept { return getCount() ? data->children.data() : nullptr; }
Node::iterator Node::end() noexcept { return getCount() ? begin() + getCount() : nullptr; }

Node::const_iterator Node::begin() const noexcept {
  return getCount() ? data->children.data() : nullptr;
}

Node::const_iterator Node::end() const noexcept {
  return getCount() ? begin() + getCount() : nullptr;
}

bool Node::operator==(const Node& other) const noexcept {
  if (data == other.data) return true;
  return isValue() && getType() == other.getType() && data->valueStr == other.data->valueStr;
}

bool Node::operator!=(const Node& other) const noexcept { return !(*this == other); }

// Handles that a dying node holds are dropped here one by one, never by their destructors, which
// would come back to this function once for each level.
void Node::release(NodeData* data) noexcept {
  if (!data || --data->refCount > 0) return;
  std::vector<NodeData*> doomed;
  for (;;) {
    for (NamedNode& child : data->children) {
      NodeData* const held = std::exchange(child.second.data, nullptr);
      if (held && --held->refCount == 0) doomed.push_back(held);
    }
    delete data;
    if (doomed.empty()) return;
    data = doomed.back();
    doomed.pop_back();
  }
}

void Node::detach() {
  if (!data || data->refCount < 2) return;
  NodeData* const own = new NodeData(*data);
  --data->refCount;
  data = own;
}

Node::NamedNode* Node::find(const std::string& name) const noexcept {
  if (!isObject()) return nullptr;
  for (NamedNode& child : data->children) {
    if (child.first == name) return &child;
  }
  return nullptr;
}

Node invalid() { return Node(); }
Node null() { return Node(Node::T_NULL); }
Node object() { return Node(Node::T_OBJECT); }
Node array() { return Node(Node::T_ARRAY); }

std::string escapeString(const std::string& value) {
  std::string escaped;
  escaped.reserve(value.size());
  for (const char c : value) {
    char letter = 0;
    for (const Escape& escape : escapes) {
      if (c == escape.plain) letter = escape.letter;
    }
    if (letter) escaped += '\\';
    escaped += letter ? letter : c;
  }
  return escaped;
}

std::string unescapeString(const std::string& value) {
  std::string plain;
  plain.reserve(value.size());
  for (std::size_t i = 0; i < value.size(); ++i) {
    char c = value[i];
    if (c == '\\' && i + 1 < value.size()) {
      for (const Escape& escape : escapes) {
        if (value[i + 1] != escape.letter) continue;
        c = escape.plain;
        ++i;
        break;
      }
    }
    plain += c;
  }
  return plain;
}

}  // namespace Jzon
