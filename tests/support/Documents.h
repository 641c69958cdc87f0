#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/jzon/Writer.h>

#include <string>

namespace Lumivane::Test {

/// The tree of a JSON text, whose root must be a container.
inline Jzon::Node nodeOf(const std::string& text) {
  Jzon::Parser parser;
  return parser.parseString(text);
}

/// The text of a tree as the files of the library have it.
inline std::string textOf(const Jzon::Node& node) {
  std::string text;
  Jzon::Writer(Jzon::Format{true, true, true, 1}).writeString(node, text);
  return text;
}

/// The text that an object of the model writes.
inline std::string textOf(Base::BaseLibClass& object) { return textOf(object.serialize()); }

/// Reads a JSON text, whose root must be a container, into an object of the model.
template <class Object>
Object& readInto(Object& object, const std::string& text) {
  object.deserialize(nodeOf(text));
  return object;
}

}  // namespace Lumivane::Test
