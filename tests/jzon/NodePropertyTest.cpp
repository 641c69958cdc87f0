#include "plain/JsonNumber.h"

#include <lumivane/jzon/Node.h>

#include <cmath>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

using Jzon::Node;
namespace Plain = Lumivane::Plain;

/// A text of `alphabet`'s characters, up to `maxLength` of them.
std::string anyText(std::mt19937_64& random, const std::string& alphabet, std::size_t maxLength) {
  std::string text(random() % (maxLength + 1), ' ');
  for (char& c : text) c = alphabet[random() % alphabet.size()];
  return text;
}

/// Any bits of a double, or a value of everyday size.
double anyDouble(std::mt19937_64& random) {
  if (random() % 2) return std::uniform_real_distribution<double>(-1e4, 1e4)(random);
  const auto mantissa = static_cast<double>(random()) - 9.2e18;
  return std::ldexp(mantissa, static_cast<int>(random() % 2200) - 1150);
}

TEST(NumberTextProperty, DoublesArePrintedAsAStreamPrintsThem) {
  std::mt19937_64 random(20240601);
  for (int i = 0; i < 20000; ++i) {
    const double value = anyDouble(random);
    ASSERT_EQ(Plain::numberText(value), Node(value).toString()) << "case " << i;
    const auto narrow = static_cast<float>(value);
    ASSERT_EQ(Plain::numberText(narrow), Node(narrow).toString()) << "case " << i;
  }
}

TEST(NumberTextProperty, IntegersArePrintedAsAStreamPrintsThem) {
  std::mt19937_64 random(20240602);
  for (int i = 0; i < 20000; ++i) {
    const unsigned long long bits = random() >> (random() % 64);
    ASSERT_EQ(Plain::numberText(bits), Node(bits).toString());
    const auto wide = static_cast<long long>(bits);
    ASSERT_EQ(Plain::numberText(-wide), Node(-wide).toString());
    ASSERT_EQ(Plain::numberText(static_cast<int>(bits)), Node(static_cast<int>(bits)).toString());
  }
}

void expectReadAsByStream(const std::string& text) {
  const Node node(Node::T_NUMBER, text);
  ASSERT_EQ(Plain::readNumber<int>(text), node.toInt(7)) << text;
  ASSERT_EQ(Plain::readNumber<float>(text), node.toFloat(7)) << text;
  ASSERT_EQ(Plain::readNumber<double>(text), node.toDouble(7)) << text;
}

TEST(NumberReadProperty, NumbersAreReadAsAStreamReadsThem) {
  std::mt19937_64 random(20240603);
  for (int i = 0; i < 20000; ++i) {
    std::ostringstream text;
    text.precision(static_cast<int>(random() % 20));
    text << anyDouble(random);
    expectReadAsByStream(text.str());
  }
}

TEST(NumberReadProperty, AnyTextIsReadAsAStreamReadsIt) {
  std::mt19937_64 random(20240604);
  for (int i = 0; i < 50000; ++i) expectReadAsByStream(anyText(random, "0123456789+-.eE xn", 12));
  for (int i = 0; i < 5000; ++i) expectReadAsByStream(anyText(random, "01234567899-", 24));
}

TEST(EscapeStringProperty, UnescapingAnEscapedTextRestoresIt) {
  std::mt19937_64 random(20240605);
  for (int i = 0; i < 5000; ++i) {
    const std::string text = anyText(random, "\\/\"\n\t\b\f\rntbfru ", 20);
    ASSERT_EQ(text, Jzon::unescapeString(Jzon::escapeString(text)));
  }
}

}  // namespace
