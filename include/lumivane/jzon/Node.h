#pragma once

#include <lumivane/export.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace Jzon {

struct NodeAccess;
struct NodeData;

/// A handle on a JSON value.
///
/// Handles are cheap to copy and share their data; a write through one handle first gives it data
/// of its own (copy on write), so it never shows through another. Every scalar is kept as text: a
/// number keeps the characters it was parsed from, or those that a stream of 6 significant digits
/// printed when it was set.
///
/// Misuse is silent: an operation on a node of the wrong kind does nothing, or returns its default
/// or an invalid node. The count of handles is a plain counter, so two threads must not hold
/// handles on the same data. Trees of any depth are destroyed without recursion.
class LUMIVANE_EXPORT Node {
 public:
  /// The kinds of nodes. T_NULL to T_BOOL are values, T_OBJECT and T_ARRAY containers.
  enum Type : int {
    T_INVALID = 0,  ///< no data
    T_OBJECT = 1,   ///< ordered named children
    T_ARRAY = 2,    ///< ordered children
    T_NULL = 3,     ///< the JSON null
    T_STRING = 4,   ///< text
    T_NUMBER = 5,   ///< number, as text
    T_BOOL = 6      ///< "true" or "false", as text
  };

  /// A child and its name; the names of an array's children are empty.
  using NamedNode = std::pair<std::string, Node>;
  /// A position in the children; null for an invalid node and for one without children.
  using iterator = NamedNode*;
  /// A position in the children, read only; null as `iterator` is.
  using const_iterator = const NamedNode*;

  /// An invalid node.
  Node() noexcept;
  /// A new node of that type with an empty text; an invalid node for T_INVALID.
  Node(Type type);
  /// Another handle on the data of `other`.
  Node(const Node& other) noexcept;
  /// A new value of that type and text; a T_NULL without text if `type` is no value type.
  Node(Type type, const std::string& value);
  /// A T_STRING.
  Node(const std::string& value);
  /// A T_STRING; a null pointer counts as the empty text.
  Node(const char* value);
  /// A T_NUMBER with the text that `set` makes; so are the other numbers.
  Node(int value);
  Node(unsigned int value);        ///< As Node(int).
  Node(long long value);           ///< As Node(int).
  Node(unsigned long long value);  ///< As Node(int).
  Node(float value);               ///< As Node(int).
  Node(double value);              ///< As Node(int).
  /// A T_BOOL.
  Node(bool value);
  /// Drops the handle; the last one destroys the data and drops the handles in it.
  ~Node();

  /// Drops the own data and shares that of `other`.
  Node& operator=(const Node& other) noexcept;
  /// As `set(value)`; so are the other assignments of values.
  Node& operator=(const std::string& value);
  Node& operator=(const char* value);         ///< As `set(value)`.
  Node& operator=(int value);                 ///< As `set(value)`.
  Node& operator=(unsigned int value);        ///< As `set(value)`.
  Node& operator=(long long value);           ///< As `set(value)`.
  Node& operator=(unsigned long long value);  ///< As `set(value)`.
  Node& operator=(float value);               ///< As `set(value)`.
  Node& operator=(double value);              ///< As `set(value)`.
  Node& operator=(bool value);                ///< As `set(value)`.

  /// T_INVALID for an invalid node.
  Type getType() const noexcept;
  bool isValid() const noexcept;   ///< Whether there is data.
  bool isObject() const noexcept;  ///< Whether the node is an object.
  bool isArray() const noexcept;   ///< Whether the node is an array.
  bool isNull() const noexcept;    ///< Whether the node is a null.
  bool isString() const noexcept;  ///< Whether the node is a string.
  bool isNumber() const noexcept;  ///< Whether the node is a number.
  bool isBool() const noexcept;    ///< Whether the node is a bool.
  /// Whether the node is an object or an array.
  bool isContainer() const noexcept;
  /// Whether the node is a null, a string, a number or a bool.
  bool isValue() const noexcept;
  /// Whether the node is a number whose toDouble has no fraction. A text that cannot be read as a
  /// number counts as 0, hence as an integer.
  bool isInteger() const;

  /// "null" for a null, the text of any other value, and `def` for all else.
  std::string toString(const std::string& def = std::string()) const;
  /// The int that a stream reads from the text of a number: `2.9` gives 2, a text that cannot be
  /// read 0, one beyond int the limit of int. `def` for all but numbers.
  int toInt(int def = 0) const;
  /// As toDouble, with a float.
  float toFloat(float def = 0.0F) const;
  /// The double that a stream reads from the text of a number: 0 for a text that cannot be read,
  /// the largest finite double (with its sign) for one beyond double. `def` for all but numbers.
  double toDouble(double def = 0.0) const;
  /// Whether the text of a bool is "true"; `def` for all but bools.
  bool toBool(bool def = false) const;

  /// Turns a value into a null. Nothing happens on an invalid node or a container; the same holds
  /// for all forms of `set`.
  void setNull();
  /// Turns a value into one of that type and text; does nothing if `type` is no value type.
  void set(Type type, const std::string& value);
  /// Turns a value into a string.
  void set(const std::string& value);
  /// Turns a value into a string; a null pointer counts as the empty text.
  void set(const char* value);
  /// Turns a value into a number with the text that a stream prints for it: integers whole, others
  /// with at most 6 significant digits (`1234.5678` is kept as `1234.57`).
  void set(int value);
  void set(unsigned int value);        ///< As set(int).
  void set(long long value);           ///< As set(int).
  void set(unsigned long long value);  ///< As set(int).
  void set(float value);               ///< As set(int).
  void set(double value);              ///< As set(int).
  /// Turns a value into a bool.
  void set(bool value);

  /// Array only: appends a child that shares the data of `node`.
  void add(const Node& node);
  /// Object only: appends a named child that shares the data of `node`; a name that is already
  /// there is not looked for.
  void add(const std::string& name, const Node& node);
  /// Two objects or two arrays: appends all children of `other`, sharing their data. A node
  /// appended to itself doubles its children.
  void append(const Node& other);
  /// Container: erases the child at that position, if there is one.
  void remove(std::size_t index);
  /// Object: erases the first child of that name, if there is one.
  void remove(const std::string& name);
  /// Removes all children.
  void clear();

  /// Object: whether there is a child of that name.
  bool has(const std::string& name) const;
  /// The number of children; 0 for values and invalid nodes.
  std::size_t getCount() const noexcept;
  /// Object: the first child of that name; otherwise an invalid node.
  Node get(const std::string& name) const;
  /// Container: the child at that position; otherwise an invalid node.
  Node get(std::size_t index) const;
  /// Container: a new string with the name of the child at that position; otherwise an invalid
  /// node.
  Node get_key(std::size_t index) const;
  /// Object: the first child of that name with its name, to be changed in place; the node gets
  /// data of its own before. Without such a child a new pair of an empty name and an invalid node,
  /// which nobody owns.
  NamedNode& getNamedNode(const std::string& name);

  /// The first child. The children are those that all handles on this data share, so what is
  /// changed through this iterator shows through all of them.
  iterator begin();
  /// The position behind the last child.
  iterator end();
  const_iterator begin() const;  ///< The first child, read only.
  const_iterator end() const;    ///< The position behind the last child.

  /// Whether both handles share one data (two invalid nodes do), or both are values of the same
  /// type and text. Containers are equal only if shared, and numbers compare as text: `1.0` and
  /// `1` differ.
  bool operator==(const Node& other) const noexcept;
  bool operator!=(const Node& other) const noexcept;  ///< The opposite of `==`.

 private:
  friend struct NodeAccess;

  void setValue(Type type, std::string_view text);

  NodeData* data;  // or a short number in the place of the address
};

/// An invalid node.
LUMIVANE_EXPORT Node invalid();
/// A new JSON null.
LUMIVANE_EXPORT Node null();
/// A new object without members.
LUMIVANE_EXPORT Node object();
/// A new array without elements.
LUMIVANE_EXPORT Node array();

/// The text with backslash, slash, double quote, line feed, tab, backspace, form feed and carriage
/// return as escapes of two characters; all other bytes stay as they are.
LUMIVANE_EXPORT std::string escapeString(const std::string& value);
/// The text with the escapes that escapeString makes resolved; any other backslash stays.
LUMIVANE_EXPORT std::string unescapeString(const std::string& value);

}  // namespace Jzon

namespace Lumivane {
/// \cond
namespace Jzon = ::Jzon;
/// \endcond
}  // namespace Lumivane
