// The parser, the tree and the writer against their plain forms, on random texts and on random
// operations.

#include "plain/JsonNumber.h"
#include "plain/JsonTree.h"

#include <lumivane/jzon/Jzon.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Jzon::Node;
using Lumivane::Plain::JsonParser;
using Lumivane::Plain::JsonTree;
using Lumivane::Plain::JsonType;
using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t limit) { return random() % limit; }

template <class List>
auto anyOf(Random& random, const List& list) {
  return list[below(random, std::size(list))];
}

// ---- comparison ----

/// A tree to its last detail: kinds, names, texts and empty places.
void describe(const JsonTree& node, std::ostream& out) {
  out << static_cast<int>(node.type());
  if (node.isValue()) out << '<' << node.text() << '>';
  if (!node.isContainer()) return;
  out << '(';
  for (const auto& child : node.children()) {
    out << child.first.size() << ':' << child.first << '=';
    describe(child.second, out);
    out << ';';
  }
  out << ')';
}

std::string description(const JsonTree& node) {
  std::ostringstream out;
  describe(node, out);
  return out.str();
}

/// The same by the public operations; `byIterator` reads the children in memory, not by `get`.
void describe(const Node& node, bool byIterator, std::ostream& out) {
  out << static_cast<int>(node.getType());
  if (node.isValue()) out << '<' << (node.isNull() ? std::string() : node.toString("?")) << '>';
  if (!node.isContainer()) return;
  out << '(';
  for (std::size_t i = 0; i < node.getCount(); ++i) {
    const std::string name = byIterator ? node.begin()[i].first : node.get_key(i).toString();
    out << name.size() << ':' << name << '=';
    describe(byIterator ? node.begin()[i].second : node.get(i), byIterator, out);
    out << ';';
  }
  out << ')';
}

std::string description(const Node& node, bool byIterator = false) {
  std::ostringstream out;
  describe(node, byIterator, out);
  return out.str();
}

std::string plainText(const JsonTree& node, const Jzon::Format& format) {
  const std::string spacing = format.spacing ? " " : "";
  std::ostringstream out;
  writeJson(node, format.newline ? "\n" : spacing, spacing, out);
  return out.str();
}

void expectSameText(const JsonTree& expected, const Node& node) {
  for (const bool newline : {false, true}) {
    for (const bool spacing : {false, true}) {
      const Jzon::Format format{newline, spacing, true, 1};
      std::string text;
      Jzon::Writer(format).writeString(node, text);
      ASSERT_EQ(plainText(expected, format), text);
      std::ostringstream stream;
      Jzon::Writer(format).writeStream(node, stream);
      ASSERT_EQ(text, stream.str());
    }
  }
}

// ---- texts ----

/// A text like a document, in pieces, broken now and then.
std::string anyDocument(Random& random, std::size_t length) {
  static const std::vector<std::string> pieces = {"{",
                                                  "}",
                                                  "[",
                                                  "]",
                                                  "[",
                                                  "]",
                                                  ",",
                                                  ":",
                                                  ",",
                                                  "\"a\"",
                                                  "\"b\":",
                                                  "\"c\\n\"",
                                                  "\"\\\\\"",
                                                  "\"a\\\"b\"",
                                                  "\"",
                                                  "\\",
                                                  "/",
                                                  "//",
                                                  "/*",
                                                  "*/",
                                                  "/* c */",
                                                  "1",
                                                  "-2.5",
                                                  "1e5",
                                                  "1E",
                                                  "+",
                                                  "-",
                                                  ".",
                                                  "true",
                                                  "False",
                                                  "nUlL",
                                                  "nul",
                                                  " ",
                                                  "\n",
                                                  "\t",
                                                  "\v",
                                                  "\r",
                                                  "\f",
                                                  "x",
                                                  "\"\":",
                                                  "\"a\":",
                                                  "/*/",
                                                  "{}",
                                                  "[]",
                                                  "[1,2]",
                                                  "{\"a\":1}",
                                                  "\"\x80\"",
                                                  "\xff",
                                                  "123456789012345",
                                                  "1234567890123456",
                                                  "-0.0001234",
                                                  "\"a name longer than fifteen\":"};
  std::string text;
  for (std::size_t i = below(random, length); i > 0; --i) text += anyOf(random, pieces);
  if (below(random, 20) == 0) text += '\0';
  return text;
}

std::string anyName(Random& random) {
  static const std::array<std::size_t, 6> lengths{0, 1, 2, 14, 15, 16};
  std::string name(anyOf(random, lengths) + below(random, 2), 'n');
  for (char& c : name) c = anyOf(random, std::string("ab\0\xff", 4));
  return name;
}

std::string anyNumberText(Random& random) {
  std::ostringstream text;
  text.precision(static_cast<int>(1 + below(random, 17)));
  text << std::ldexp(static_cast<double>(random()) - 9e18,
                     static_cast<int>(below(random, 80)) - 90);
  if (below(random, 5) == 0) text << "-." << random();
  return text.str();
}

/// A well-formed value as text, mostly containers while `depth` lasts.
std::string anyValueText(Random& random, std::size_t depth) {
  static const std::vector<std::string> plain = {"true", "null", "FALSE", "\"\"", "\"a\\/b\"", "7"};
  const std::size_t kind = below(random, depth > 0 ? 5 : 2);
  if (kind == 0) return anyOf(random, plain);
  if (kind == 1) return anyNumberText(random);
  const bool isObject = kind == 2;
  std::string text(1, isObject ? '{' : '[');
  for (std::size_t i = below(random, 6); i > 0; --i) {
    if (isObject) text += '"' + std::string(below(random, 20), 'k') + "\": ";
    text += anyValueText(random, depth - 1) + (i > 1 ? "," : "");
  }
  return text + (isObject ? '}' : ']');
}

void expectParsedAsPlain(const std::string& text) {
  JsonParser plain;
  std::istringstream plainStream(text);
  const JsonTree expected = plain.parse(plainStream);

  Jzon::Parser parser;
  const Node node = parser.parseString(text);
  ASSERT_EQ(description(expected), description(node)) << text;
  ASSERT_EQ(plain.error, parser.getError()) << text;
  expectSameText(expected, node);
  ASSERT_EQ(description(expected), description(node, true)) << text;

  std::istringstream stream(text);
  ASSERT_EQ(description(expected), description(parser.parseStream(stream))) << text;
  ASSERT_EQ(plainStream.rdstate(), stream.rdstate()) << text;
}

TEST(ParserProperty, BrokenTextsGiveTheTreeTheErrorAndTheStreamOfTheReferenceImplementation) {
  Random random(20240701);
  for (int i = 0; i < 12000; ++i) {
    const std::string text = anyDocument(random, 12);
    for (const std::string& around : {text, "[" + text + "]", "{\"k\":[" + text + "]}"})
      expectParsedAsPlain(around);
  }
}

TEST(ParserProperty, LongBrokenTextsGiveTheTreeAndTheErrorOfTheReferenceImplementation) {
  Random random(20240702);
  for (int i = 0; i < 4000; ++i) expectParsedAsPlain("[" + anyDocument(random, 150));
}

TEST(ParserProperty, WellFormedTextsGiveTheTreeOfTheReferenceImplementation) {
  Random random(20240703);
  for (int i = 0; i < 4000; ++i) expectParsedAsPlain("[" + anyValueText(random, 5) + "]");
}

TEST(ParserProperty,
     WellFormedTextsWithOneWrongByteGiveTheTreeAndTheErrorOfTheReferenceImplementation) {
  Random random(20240704);
  for (int i = 0; i < 10000; ++i) {
    std::string text = "[" + anyValueText(random, 4) + "]";
    text[below(random, text.size())] = anyOf(random, std::string("{}[],:\"\\/* \n1-.eEx"));
    expectParsedAsPlain(text);
  }
}

TEST(ParserProperty, CutTextsGiveTheTreeAndTheErrorOfTheReferenceImplementation) {
  Random random(20240705);
  for (int i = 0; i < 100; ++i) {
    const std::string text = "{\"a\":" + anyValueText(random, 3) + "} /* end */ ";
    for (std::size_t length = 0; length <= text.size(); ++length)
      expectParsedAsPlain(text.substr(0, length));
  }
}

// ---- handles ----

/// The same handles in both forms. An operation is done to both and seen through all handles.
class TwinHandles {
 public:
  explicit TwinHandles(Random& source) : random(source), plain(8), nodes(8) {}

  void step() {
    const std::size_t i = below(random, nodes.size());
    const std::size_t j = below(random, nodes.size());
    switch (below(random, 14)) {
      case 0:
        return make(i);
      case 1:
        return share(i, j);
      case 2:
        return set(i);
      case 3:
      case 4:
      case 5:
        return add(i, j);
      case 6:
        return append(i, j);
      case 7:
        return removeAt(i);
      case 8:
        return removeNamed(i);
      case 9:
        return clear(i);
      case 10:
      case 11:
        return descend(i, j);
      case 12:
        return changeInPlace(i, j);
      default:
        return changeNamed(i, j);
    }
  }

  void compare() {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      ASSERT_EQ(description(plain[i]), description(nodes[i]));
      for (std::size_t j = 0; j < nodes.size(); ++j) {
        const bool isAsked = !plain[i].isValue() || plain[j].type() != JsonType::Invalid;
        if (!isAsked) continue;
        ASSERT_EQ(plain[i] == plain[j], nodes[i] == nodes[j]);
      }
    }
    expectSameText(plain[0], nodes[0]);
  }

 private:
  static constexpr std::size_t MostChildren = 40;
  static constexpr std::size_t MostText = 2000;

  bool isLarge(std::size_t i) const {
    return plain[i].count() > MostChildren || description(plain[i]).size() > MostText;
  }

  std::string anyText() { return below(random, 2) ? anyNumberText(random) : anyName(random); }

  void make(std::size_t i) {
    const auto type = static_cast<int>(below(random, 7));
    const bool isValue = type >= Node::T_NULL;
    const std::string text = isValue ? anyText() : std::string();
    plain[i] = JsonTree(static_cast<JsonType>(type), text);
    nodes[i] =
        isValue ? Node(static_cast<Node::Type>(type), text) : Node(static_cast<Node::Type>(type));
    if (plain[i].type() == JsonType::Null) setNull(i);
  }

  // A null shows its text to nobody but a comparison.
  void setNull(std::size_t i) {
    plain[i].set(JsonType::Null, "");
    nodes[i].setNull();
  }

  void share(std::size_t i, std::size_t j) {
    plain[i] = plain[j];
    nodes[i] = nodes[j];
  }

  void set(std::size_t i) {
    const auto type = static_cast<int>(Node::T_STRING + static_cast<int>(below(random, 3)));
    const std::string text = anyText();
    plain[i].set(static_cast<JsonType>(type), text);
    nodes[i].set(static_cast<Node::Type>(type), text);
  }

  void add(std::size_t i, std::size_t j) {
    if (isLarge(i) || isLarge(j)) return;
    const std::string name = anyName(random);
    const JsonTree child = plain[j];
    plain[i].add(name, child);
    nodes[i].isObject() ? nodes[i].add(name, nodes[j]) : nodes[i].add(nodes[j]);
  }

  void append(std::size_t i, std::size_t j) {
    if (isLarge(i) || isLarge(j)) return;
    plain[i].append(plain[j]);
    nodes[i].append(nodes[j]);
  }

  void removeAt(std::size_t i) {
    const std::size_t index = below(random, 1 + 2 * plain[i].count());
    plain[i].remove(index);
    nodes[i].remove(index);
  }

  void removeNamed(std::size_t i) {
    const std::string name = nameOfSome(i);
    ASSERT_EQ(plain[i].find(name) < plain[i].count(), nodes[i].has(name));
    plain[i].remove(plain[i].find(name));
    nodes[i].remove(name);
  }

  std::string nameOfSome(std::size_t i) {
    if (plain[i].count() == 0 || below(random, 4) == 0) return anyName(random);
    return plain[i].children()[below(random, plain[i].count())].first;
  }

  void clear(std::size_t i) {
    if (below(random, 3) > 0) return;
    plain[i].clear();
    nodes[i].clear();
  }

  void descend(std::size_t i, std::size_t j) {
    if (plain[j].count() == 0) return;
    if (nodes[j].isObject() && below(random, 2)) {
      const std::string name = nameOfSome(j);
      const JsonTree child = plain[j].get(plain[j].find(name));
      plain[i] = child;
      nodes[i] = nodes[j].get(name);
    } else {
      const std::size_t index = below(random, plain[j].count());
      const JsonTree child = plain[j].get(index);
      plain[i] = child;
      nodes[i] = nodes[j].get(index);
    }
  }

  // Through an iterator: all handles on the data see it. The child must not hold its parent.
  void changeInPlace(std::size_t i, std::size_t j) {
    if (plain[i].count() == 0 || plain[j].isContainer()) return;
    const std::size_t index = below(random, plain[i].count());
    plain[i].children()[index] = {"in place", plain[j]};
    if (plain[i].type() == JsonType::Array) plain[i].children()[index].first.clear();
    nodes[i].begin()[index].second = nodes[j];
    nodes[i].begin()[index].first = plain[i].children()[index].first;
  }

  void changeNamed(std::size_t i, std::size_t j) {
    const std::string name = nameOfSome(i);
    const std::size_t index = plain[i].find(name);
    if (index >= plain[i].count() || plain[j].isContainer()) return;
    plain[i].detach();
    plain[i].children()[index] = {"renamed", plain[j]};
    Node::NamedNode& named = nodes[i].getNamedNode(name);
    ASSERT_EQ(name, named.first);
    named.first = "renamed";
    named.second = nodes[j];
  }

  Random& random;
  std::vector<JsonTree> plain;
  std::vector<Node> nodes;
};

TEST(NodeProperty, AnyRowOfOperationsLeavesTheHandlesOfTheReferenceImplementation) {
  Random random(20240706);
  for (int i = 0; i < 100; ++i) {
    TwinHandles handles(random);
    for (int j = 0; j < 200; ++j) {
      handles.step();
      handles.compare();
      if (HasFatalFailure()) FAIL() << "row " << i << ", step " << j;
    }
  }
}

// ---- numbers ----

TEST(NumberTextProperty, HalvesAndPowersOfTenAreRoundedAsAStreamRoundsThem) {
  Random random(20240707);
  for (int i = 0; i < 50000; ++i) {
    const auto digits = static_cast<double>(100000 + below(random, 900000));
    const double half = (digits + 0.5) / std::ldexp(1.0, static_cast<int>(below(random, 20)));
    const double power = std::pow(10.0, static_cast<double>(below(random, 14)) - 6.0);
    for (const double value : {digits, half, digits / 1024, power, std::nextafter(power, 0.0),
                               std::nextafter(power, 1e9), digits * power, digits / power}) {
      ASSERT_EQ(Lumivane::Plain::numberText(value), Node(value).toString());
      ASSERT_EQ(Lumivane::Plain::numberText(-value), Node(-value).toString());
    }
  }
}

TEST(NumberTextProperty, DoublesNearTheBordersOfTheEverydayRangeArePrintedAsAStreamPrintsThem) {
  for (const double border : {0.0, 1e-4, 9.9999949e-5, 99999.95, 999999.5, 1e6}) {
    double up = border;
    double down = border;
    for (int i = 0; i < 2000; ++i) {
      ASSERT_EQ(Lumivane::Plain::numberText(up), Node(up).toString());
      ASSERT_EQ(Lumivane::Plain::numberText(down), Node(down).toString());
      up = std::nextafter(up, 1e7);
      down = std::nextafter(down, -1e7);
    }
  }
}

TEST(NodeProperty, NumbersOfAnyTextKeepIt) {
  Random random(20240708);
  const std::string alphabet = "0123456789-.eE+ x";
  for (int i = 0; i < 50000; ++i) {
    std::string text(below(random, 19), ' ');
    for (char& c : text) c = anyOf(random, alphabet);
    const Node node(Node::T_NUMBER, text);
    ASSERT_EQ(text, node.toString());
    ASSERT_TRUE(node == Node(Node::T_NUMBER, text));
    ASSERT_FALSE(node == Node(text));
    ASSERT_FALSE(node == Node(Node::T_NUMBER, text + "0"));
  }
}

}  // namespace
