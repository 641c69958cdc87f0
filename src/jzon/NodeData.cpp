// Destruction works off a list of its own instead of calling itself, so a tree may be as deep as
// memory allows.

#include "jzon/NodeData.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace Jzon {

namespace {

constexpr char LongName = static_cast<char>(0xFF);
constexpr std::size_t ShortNameLength = 15;
constexpr std::size_t FirstRoom = 4;

Word makeBlock(Node::Type type, NodeData::Form form, std::size_t bytes) {
  if (bytes > std::numeric_limits<std::size_t>::max() / 2) throw std::bad_alloc();
  const auto data = static_cast<Word>(::operator new(sizeof(NodeData) + bytes));
  data->refCount = 1;
  data->type = static_cast<std::uint8_t>(type);
  data->form = form;
  return data;
}

void destroyBlock(Word data) noexcept { ::operator delete(static_cast<void*>(data)); }

Word makeText(Node::Type type, std::string_view text) {
  const Word data = makeBlock(type, NodeData::Form::Text, text.size());
  data->length = text.size();
  if (!text.empty()) std::memcpy(data->text(), text.data(), text.size());
  return data;
}

bool isLong(const Name& name) { return name.bytes.back() == LongName; }

Word blockOf(const Name& name) {
  Word block = nullptr;
  std::memcpy(&block, name.bytes.data(), WordSize);
  return block;
}

std::size_t childSize(Word container) {
  return container->type == Node::T_OBJECT ? sizeof(Member) : WordSize;
}

bool isPlain(Word container) { return container->form == NodeData::Form::Plain; }

// Moves the handles of all children to the list if they were the last, and drops the others.
void dropChildren(Word container, std::vector<Word>& doomed) {
  const auto drop = [&doomed](Word child) {
    if (isCounted(child) && --child->refCount == 0) doomed.push_back(child);
  };
  if (isPlain(container)) {
    for (Node::NamedNode& child : *container->plain())
      drop(std::exchange(NodeAccess::wordOf(child.second), nullptr));
    delete container->plain();
    return;
  }
  const bool isObject = container->type == Node::T_OBJECT;
  for (std::size_t i = 0; i < container->children.count; ++i) {
    if (isObject) destroyName(container->members()[i].name);
    drop(childAt(container, i));
  }
}

// A packed copy that shares the children.
Word packedCopy(Word container, std::size_t more) {
  const std::size_t count = countOf(container);
  Node copy = NodeAccess::adopt(makeContainer(typeOf(container), count + more));
  const Word word = NodeAccess::wordOf(copy);
  for (std::size_t i = 0; i < count; ++i) {
    const Word child = childAt(container, i);
    if (word->type == Node::T_OBJECT) {
      appendMember(word, makeName(nameAt(container, i)), hold(child));
    } else {
      appendElement(word, hold(child));
    }
  }
  return std::exchange(NodeAccess::wordOf(copy), nullptr);
}

// A packed container with room for twice as many children, into which these are moved.
Word grown(Word container, std::size_t more) {
  const std::size_t count = container->children.count;
  const Word roomy =
      makeContainer(typeOf(container), std::max({FirstRoom, 2 * count, count + more}));
  roomy->children.count = container->children.count;
  std::memcpy(roomy->text(), container->text(), count * childSize(container));
  destroyBlock(container);
  return roomy;
}

}  // namespace

void release(Word word) noexcept {
  if (!isCounted(word) || --word->refCount > 0) return;
  std::vector<Word> doomed;
  for (;;) {
    if (word->form != NodeData::Form::Text) dropChildren(word, doomed);
    destroyBlock(word);
    if (doomed.empty()) return;
    word = doomed.back();
    doomed.pop_back();
  }
}

Word makeValue(Node::Type type, std::string_view text) {
  const std::uint64_t bits = type == Node::T_NUMBER ? packShortNumber(text) : 0;
  if (bits != 0) return shortNumber(bits);
  return makeText(type, text);
}

Name makeName(std::string_view text) {
  Name name{};
  if (text.size() <= ShortNameLength) {
    if (!text.empty()) std::memcpy(name.bytes.data(), text.data(), text.size());
    name.bytes.back() = static_cast<char>(ShortNameLength - text.size());
  } else {
    const Word block = makeText(Node::T_STRING, text);
    std::memcpy(name.bytes.data(), &block, WordSize);
    name.bytes.back() = LongName;
  }
  return name;
}

std::string_view textOf(const Name& name) {
  if (isLong(name)) return {blockOf(name)->text(), blockOf(name)->length};
  return {name.bytes.data(), ShortNameLength - static_cast<std::size_t>(name.bytes.back())};
}

void destroyName(const Name& name) noexcept {
  if (isLong(name)) destroyBlock(blockOf(name));
}

Word makeContainer(Node::Type type, std::size_t room) {
  if (room > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
  const std::size_t size = type == Node::T_OBJECT ? sizeof(Member) : WordSize;
  const Word data = makeBlock(type, NodeData::Form::Packed, room * size);
  data->children = {0, static_cast<std::uint32_t>(room)};
  return data;
}

std::size_t countOf(Word word) {
  if (!isContainerType(typeOf(word))) return 0;
  return isPlain(word) ? word->plain()->size() : word->children.count;
}

Word childAt(Word container, std::size_t index) {
  if (isPlain(container))
    return NodeAccess::wordOf(std::as_const((*container->plain())[index].second));
  return container->type == Node::T_OBJECT ? container->members()[index].value
                                           : container->elements()[index];
}

std::string_view nameAt(Word container, std::size_t index) {
  if (isPlain(container)) return (*container->plain())[index].first;
  if (container->type != Node::T_OBJECT) return {};
  return textOf(container->members()[index].name);
}

Word takeOrHold(Word container, std::size_t index) {
  if (container->refCount > 1 || isPlain(container)) return hold(childAt(container, index));
  return std::exchange(container->type == Node::T_OBJECT ? container->members()[index].value
                                                         : container->elements()[index],
                       nullptr);
}

// Short names are compared as a whole, without a look at their lengths.
std::size_t findName(Word word, std::string_view name) {
  if (typeOf(word) != Node::T_OBJECT) return NotFound;
  const std::size_t count = countOf(word);
  if (isPlain(word) || name.size() > ShortNameLength) {
    for (std::size_t i = 0; i < count; ++i)
      if (nameAt(word, i) == name) return i;
    return NotFound;
  }
  const Name wanted = makeName(name);
  const Member* const members = word->members();
  for (std::size_t i = 0; i < count; ++i)
    if (std::memcmp(&members[i].name, &wanted, sizeof wanted) == 0) return i;
  return NotFound;
}

void makeOwn(Word& container, std::size_t more) {
  if (container->refCount > 1) {
    const Word own = packedCopy(container, more);
    --container->refCount;
    container = own;
  } else if (!isPlain(container) &&
             container->children.capacity - container->children.count < more) {
    container = grown(container, more);
  }
}

void appendElement(Word container, Word child) {
  if (isPlain(container)) {
    container->plain()->emplace_back(std::string(), NodeAccess::adopt(child));
  } else {
    container->elements()[container->children.count++] = child;
  }
}

void appendMember(Word container, const Name& name, Word child) {
  if (isPlain(container)) {
    container->plain()->emplace_back(std::string(textOf(name)), NodeAccess::adopt(child));
    destroyName(name);
  } else {
    container->members()[container->children.count++] = {name, child};
  }
}

void eraseChild(Word container, std::size_t index) {
  if (isPlain(container)) {
    container->plain()->erase(container->plain()->begin() + static_cast<std::ptrdiff_t>(index));
    return;
  }
  const Word child = childAt(container, index);
  if (container->type == Node::T_OBJECT) destroyName(container->members()[index].name);
  const std::size_t size = childSize(container);
  char* const place = container->text() + index * size;
  std::memmove(place, place + size, (--container->children.count - index) * size);
  release(child);
}

PlainChildren& unpacked(Word container) {
  if (isPlain(container)) return *container->plain();
  const std::size_t count = container->children.count;
  auto plain = std::make_unique<PlainChildren>();
  plain->reserve(count);
  for (std::size_t i = 0; i < count; ++i)
    plain->emplace_back(std::string(nameAt(container, i)),
                        NodeAccess::adopt(hold(childAt(container, i))));
  for (std::size_t i = 0; i < count; ++i) {
    if (container->type == Node::T_OBJECT) destroyName(container->members()[i].name);
    release(childAt(container, i));  // the pairs hold it
  }
  container->form = NodeData::Form::Plain;
  return *(container->plain() = plain.release());
}

}  // namespace Jzon
