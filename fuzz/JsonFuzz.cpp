// A text to a tree and back: what is written soon reads as the same tree, so it is written the
// same.

#include "Bytes.h"

#include <lumivane/jzon/Format.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/jzon/Writer.h>

#include <string>
#include <utility>

namespace {

std::string written(const Jzon::Node& node, const Jzon::Format& format) {
  std::string text;
  Jzon::Writer(format).writeString(node, text);
  return text;
}

// Reading leaves out what it passes over, and takes escapes out of names, which writing puts back
// into values only. So the text may change with every round, but it has half as many backslashes
// in a row after each, and soon none is left to take.
constexpr int MostRounds = 24;

void writeUntilItStays(const Jzon::Node& node, const Jzon::Format& format) {
  Jzon::Parser parser;
  std::string text = written(node, format);
  for (int round = 0; round < MostRounds; ++round) {
    const Jzon::Node again = parser.parseString(text);
    if (!again.isValid()) return;  // a quote in a name ends it
    std::string next = written(again, format);
    if (next == text) return;
    text = std::move(next);
  }
  Lumivane::Fuzz::require(false);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Jzon::Parser parser;
  const Jzon::Node root = parser.parseString(Lumivane::Fuzz::Bytes(data, size).rest());
  if (!root.isValid()) return 0;
  writeUntilItStays(root, Jzon::Format{true, true, true, 1});
  writeUntilItStays(root, Jzon::Format{false, false, false, 0});
  const Jzon::Node copy = root;
  Lumivane::Fuzz::require(copy == root);
  return 0;
}
