// A text to a tree and back: what is written reads as the same tree, so it is written the same.

#include "Bytes.h"

#include <lumivane/jzon/Format.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/jzon/Writer.h>

namespace {

std::string written(const Jzon::Node& node, const Jzon::Format& format) {
  std::string text;
  Jzon::Writer(format).writeString(node, text);
  return text;
}

// Deliberate oddities of the text (white space inside of runs, brackets in names) may change the
// first tree, but not one that was written.
void writeAndReadAgain(const Jzon::Node& node, const Jzon::Format& format) {
  Jzon::Parser parser;
  const Jzon::Node again = parser.parseString(written(node, format));
  if (!again.isValid()) return;
  const std::string second = written(again, format);
  const Jzon::Node third = parser.parseString(second);
  Lumivane::Fuzz::require(!third.isValid() || written(third, format) == second);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Jzon::Parser parser;
  const Jzon::Node root = parser.parseString(Lumivane::Fuzz::Bytes(data, size).rest());
  if (!root.isValid()) return 0;
  writeAndReadAgain(root, Jzon::Format{true, true, true, 1});
  writeAndReadAgain(root, Jzon::Format{false, false, false, 0});
  const Jzon::Node copy = root;
  Lumivane::Fuzz::require(copy == root);
  return 0;
}
