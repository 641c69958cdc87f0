// A text to a tree and back: the tree is that of the plain parser, and what is written soon reads
// as the same tree, so it is written the same.

#include "Bytes.h"
#include "plain/JsonNumber.h"
#include "plain/JsonTree.h"

#include <lumivane/jzon/Format.h>
#include <lumivane/jzon/Node.h>
#include <lumivane/jzon/Parser.h>
#include <lumivane/jzon/Writer.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Lumivane::Fuzz::require;

constexpr long DeepestPlainTree = 500;  // the plain form calls itself

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
  require(false);
}

// Compares with the plain form: whether there is a tree, why there is none, and what is written.
void compare(const std::string& text, const Jzon::Node& root, const std::string& error) {
  const auto isBracket = [](char c) { return c == '{' || c == '['; };
  if (std::count_if(text.begin(), text.end(), isBracket) > DeepestPlainTree) return;
  Lumivane::Plain::JsonParser plain;
  std::istringstream stream(text);
  const Lumivane::Plain::JsonTree tree = plain.parse(stream);
  require(plain.error == error);
  require(root.isValid() == (tree.type() != Lumivane::Plain::JsonType::Invalid));
  std::ostringstream out;
  Lumivane::Plain::writeJson(tree, "\n", " ", out);
  require(written(root, Jzon::Format{true, true, true, 1}) == out.str());
}

void checkNumber(const Jzon::Node& number) {
  const std::string text = number.toString();
  require(number.toInt() == Lumivane::Plain::readNumber<int>(text));
  require(number.toDouble() == Lumivane::Plain::readNumber<double>(text));
  number.toFloat();
  number.isInteger();
}

void checkNumbers(const Jzon::Node& root) {
  std::vector<Jzon::Node> left{root};
  while (!left.empty()) {
    const Jzon::Node node = left.back();
    left.pop_back();
    if (node.isNumber()) checkNumber(node);
    for (std::size_t i = 0; i < node.getCount(); ++i) left.push_back(node.get(i));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = Lumivane::Fuzz::Bytes(data, size).rest();
  Jzon::Parser parser;
  const Jzon::Node root = parser.parseString(text);
  compare(text, root, parser.getError());
  if (!root.isValid()) return 0;
  checkNumbers(root);
  writeUntilItStays(root, Jzon::Format{true, true, true, 1});
  writeUntilItStays(root, Jzon::Format{false, false, false, 0});
  const Jzon::Node copy = root;
  require(copy == root);
  return 0;
}
