#pragma once

#include <lumivane/base/BaseLibClass.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/jzon/Writer.h>

#include <cstddef>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Test {

/// The node that a JSON text describes, a bare value too, which is no document by itself.
inline Jzon::Node jsonNode(const std::string& text) {
  Jzon::Parser parser;
  const Jzon::Node node = parser.parseString("[" + text + "]").get(std::size_t{0});
  EXPECT_TRUE(node.isValid()) << text << ": " << parser.getError();
  return node;
}

/// A node as JSON text without any white space.
inline std::string jsonText(const Jzon::Node& node) {
  std::string text;
  Jzon::Writer(Jzon::Format{false, false, false, 0}).writeString(node, text);
  return text;
}

/// What an object of the model writes, without any white space.
inline std::string written(Base::BaseLibClass& object) { return jsonText(object.serialize()); }

/// Reads an object of the model from a JSON text, and checks that reading returns the object.
inline void read(Base::BaseLibClass& object, const std::string& text) {
  EXPECT_EQ(&object, object.deserialize(jsonNode(text)));
}

}  // namespace Lumivane::Test
