#pragma once

// What stands behind a handle. Its word is null for an invalid node, a number text of up to 15
// characters where the lowest bit is set, or else the address of counted data: a block of memory
// with a header and, right behind it, a text or the children.
//
// Children are packed: an element is a word, a member a name and a word. Only who asks for their
// positions in memory (`begin`, `getNamedNode`) needs pairs of texts and handles; then they move
// into a vector of such pairs, and all handles on the data see that vector.

#include "jzon/ShortNumber.h"

#include <lumivane/jzon/Node.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Jzon {

using Word = NodeData*;
constexpr std::size_t WordSize = sizeof(std::uintptr_t);

/// The name of a member. Up to 15 characters stand in it; a longer name is a block of its own,
/// shared with nobody.
struct alignas(Word) Name {
  std::array<char, 16> bytes;  // the last one: the characters missing to 15, or `LongName`
};

struct Member {
  Name name;
  Word value;
};

using PlainChildren = std::vector<Node::NamedNode>;

struct NodeData {
  enum class Form : std::uint8_t { Text, Packed, Plain };
  struct Children {
    std::uint32_t count;     // while packed
    std::uint32_t capacity;  // in elements or members
  };

  std::uint32_t refCount;
  std::uint8_t type;
  Form form;
  union {
    std::size_t length;  // of a text
    Children children;
  };

  char* text() { return reinterpret_cast<char*>(this + 1); }
  Word* elements() { return reinterpret_cast<Word*>(this + 1); }
  Member* members() { return reinterpret_cast<Member*>(this + 1); }
  PlainChildren*& plain() { return *reinterpret_cast<PlainChildren**>(this + 1); }
};
static_assert(sizeof(NodeData) == 16 && WordSize == 8 && sizeof(Member) == 24);

/// Handles from words and back.
struct NodeAccess {
  static Word wordOf(const Node& node) { return node.data; }
  static Word& wordOf(Node& node) { return node.data; }
  /// A handle that takes over one that `word` counts already.
  static Node adopt(Word word) {
    Node node;
    node.data = word;
    return node;
  }
};

// ---- words ----

inline std::uint64_t bitsOf(Word word) { return reinterpret_cast<std::uintptr_t>(word); }
inline bool isShortNumber(Word word) { return (bitsOf(word) & ShortNumberTag) != 0; }
inline bool isCounted(Word word) { return word != nullptr && !isShortNumber(word); }

inline Node::Type typeOf(Word word) {
  if (word == nullptr) return Node::T_INVALID;
  return isShortNumber(word) ? Node::T_NUMBER : static_cast<Node::Type>(word->type);
}
inline bool isValueType(Node::Type type) { return type >= Node::T_NULL && type <= Node::T_BOOL; }
inline bool isContainerType(Node::Type type) {
  return type == Node::T_OBJECT || type == Node::T_ARRAY;
}

/// Counts one more handle.
inline Word hold(Word word) {
  if (isCounted(word)) ++word->refCount;
  return word;
}
/// Drops a handle; the last one destroys the data and drops the handles in it, at any depth.
void release(Word word) noexcept;

// ---- values ----

/// The number of a text that ShortNumber.h has packed.
inline Word shortNumber(std::uint64_t packed) {
  return reinterpret_cast<Word>(static_cast<std::uintptr_t>(packed));
}

/// A value of that type and text.
Word makeValue(Node::Type type, std::string_view text);

/// The text of a value. Lives as long as the value does and this object.
class ValueText {
 public:
  explicit ValueText(Word word) {
    if (isShortNumber(word)) {
      view = {digits.data(), unpackShortNumber(bitsOf(word), digits.data())};
    } else {
      view = {word->text(), word->length};
    }
  }
  ValueText(const ValueText&) = delete;
  ValueText& operator=(const ValueText&) = delete;

  std::string_view get() const { return view; }

 private:
  std::array<char, ShortNumberLength> digits;
  std::string_view view;
};

// ---- names ----

Name makeName(std::string_view text);
std::string_view textOf(const Name& name);
void destroyName(const Name& name) noexcept;

// ---- containers ----

/// An empty container with room for that many children.
Word makeContainer(Node::Type type, std::size_t room);

/// The children of any word; none unless it is a container.
std::size_t countOf(Word word);
Word childAt(Word container, std::size_t index);
std::string_view nameAt(Word container, std::size_t index);  // empty in an array

/// The child, taken out of a packed container that has but one handle; an invalid node stays in its
/// place. Of any other container a further handle on the child.
Word takeOrHold(Word container, std::size_t index);

/// The position of the first member of that name; `NotFound` if there is none or no object.
constexpr std::size_t NotFound = static_cast<std::size_t>(-1);
std::size_t findName(Word word, std::string_view name);

/// Makes the container the handle's own, with room for so many more children.
void makeOwn(Word& container, std::size_t more);
/// Appends to a container of the handle's own, taking over the handles of `child` and `name`.
void appendElement(Word container, Word child);
void appendMember(Word container, const Name& name, Word child);
/// Erases a child of a container of the handle's own.
void eraseChild(Word container, std::size_t index);
/// The children as a vector of pairs, which they stay from now on. There must be some.
PlainChildren& unpacked(Word container);

}  // namespace Jzon
