#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/export.h>

#include <vector>

namespace Lumivane::Base {

/// How a list reads and destroys its elements. Specialise it, before the list's first use, for an
/// element class that leaves something behind when it is read, or that may stand for objects of a
/// derived class.
template <class Element>
struct ElementTraits {
  /// Reads a new element, of which nobody but the list knows yet.
  static Element* readElement(Element* element, const Jzon::Node& node) {
    return static_cast<Element*>(element->deserialize(node));
  }
  /// Deletes an element, which is not null.
  static void destroyElement(Element* element) { delete element; }
};

/// The pattern behind the model's lists. Owns a heap vector and its elements, destroying each
/// through `ElementTraits<Element>`, which deletes it as exactly an `Element`.
///
/// Null elements may be stored; they are written as JSON null and skipped when the elements are
/// destroyed. A pointer that stands in the list several times is destroyed once. The vector may be
/// null after a setter took null; the list then counts as empty, and what adds to it makes a new
/// vector.
///
/// Copies share the vector and its elements, and an assignment frees nothing: of two copies,
/// destroy one.
template <class Element>
class LUMIVANE_EXPORT ElementList : public BaseLibClass {
 public:
  /// The type of the vector that is held by pointer.
  using Vector = std::vector<Element*>;

  /// Deletes every element and keeps the vector, now empty.
  void clear();

  /// \return an array node with one entry for each element, in list order
  Jzon::Node serialize() override;

  /// Appends one new element for each entry of an array node, read by the element's own
  /// `deserialize`; any other node changes nothing. What the list holds already stays.
  ///
  /// \throws what the element's `deserialize` throws; that element is not appended, those before
  /// it stay
  BaseLibClass* deserialize(Jzon::Node node) override;

 protected:
  /// An empty list with a vector of its own.
  ElementList();
  /// Shares the vector and its elements.
  ElementList(const ElementList&) = default;
  /// Shares the vector and its elements; frees nothing.
  ElementList& operator=(const ElementList&) = default;
  /// Deletes every element, then the vector.
  ~ElementList();

  /// The element at a position from 0.
  /// \throws std::out_of_range unless 0 <= index < count
  Element* at(int index) const;
  /// Inserts before `index`; the count itself appends.
  /// \throws std::out_of_range unless 0 <= index <= count
  void insert(int index, Element* element);
  /// Null and duplicates are stored as well.
  void append(Element* element);
  /// Takes the element out, which the caller owns from now on.
  /// \throws std::out_of_range unless 0 <= index < count
  void erase(int index);
  /// Takes every occurrence of the pointer out, which the caller owns from now on.
  void erase(const Element* element);

  Vector* items;  ///< null only after a setter took null
};

}  // namespace Lumivane::Base
