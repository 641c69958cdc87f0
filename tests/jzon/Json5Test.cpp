#include "jzon/Json5.h"

#include <iterator>
#include <random>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using Jzon::json5ToJson;

/// The value of the only member of an object, whose text is `value`.
std::string valueText(const std::string& value) {
  const std::string json = json5ToJson("{a: " + value + "}");
  const std::string front = "{\n     \"a\": ", back = "\n }";
  if (json.size() < front.size() + back.size() || json.compare(0, front.size(), front) != 0) {
    return "no member: " + json;
  }
  return json.substr(front.size(), json.size() - front.size() - back.size());
}

/// Whether the value is refused, so that its member is missing.
bool isRefused(const std::string& value) { return json5ToJson("{a: " + value + "}") == "{\n }"; }

const std::string twoMembers = "{\n     \"a\": 1,\n     \"b\": \"x\"\n }";

TEST(Json5Layout, MembersStandOnLinesOfTheirOwn) {
  EXPECT_EQ(twoMembers, json5ToJson("{a: 1, b: 'x',}"));
}

TEST(Json5Layout, OuterBracesMayBeLeftOut) {
  EXPECT_EQ(twoMembers, json5ToJson("a: 1, b: 'x'"));
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("a: 1"));
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("a: 1}"));
}

TEST(Json5Layout, EmptyObjectHasNoMemberLine) {
  EXPECT_EQ("{\n }", json5ToJson("{}"));
  EXPECT_EQ("{\n }", json5ToJson(""));
  EXPECT_EQ("{\n     \"a\": {\n     }\n }", json5ToJson("{a:{}}"));
}

TEST(Json5Layout, NestedObjectsAreIndentedByFour) {
  EXPECT_EQ(
      "{\n"
      "     \"a\": {\n"
      "         \"b\":  {\n"  // from the second level on, spaces stand in front of the brace
      "             \"c\":      {\n"
      "             }\n"
      "         }\n"
      "     },\n"
      "     \"d\": 1\n"
      " }",
      json5ToJson("{a:{b:{c:{}}},d:1}"));
}

TEST(Json5Layout, ArraysStayOnOneLine) {
  EXPECT_EQ("[]", valueText("[]"));
  EXPECT_EQ("[1, [2, \"x\"], null]", valueText("[1,[2,'x'],null,]"));
}

TEST(Json5Layout, ObjectsInArraysTakeTheIndentOfTheObjectAround) {
  EXPECT_EQ("{\n     \"a\": [{\n         \"b\": 1\n     }, {\n     }]\n }",
            json5ToJson("{a:[{b:1},{}]}"));
}

TEST(Json5Comments, AreBlanked) {
  EXPECT_EQ(twoMembers, json5ToJson("// note\n{a: /* one */ 1, // two\n b /*:*/ : 'x'}"));
}

TEST(Json5Comments, LineCommentTakesItsLineFeed) {
  EXPECT_EQ("{\n     \"a\": \"x 7y\"\n }", json5ToJson("{a: 'x 7y'// '\n}"));
}

TEST(Json5Comments, LineCommentMayEndWithTheText) {
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1} // note"));
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("a: 1 //"));
  EXPECT_EQ("{\n }", json5ToJson("//"));
}

TEST(Json5Comments, UnterminatedCommentEndsWithTheText) {
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1 /* , b: 2}"));
  EXPECT_EQ("{\n }", json5ToJson("/*"));
  EXPECT_EQ("{\n }", json5ToJson("/*/ {a: 1}"));
}

TEST(Json5Comments, QuotedStringsHoldNone) {
  EXPECT_EQ("\"/* x */ // y\"", valueText("'/* x */ // y'"));
  EXPECT_EQ("\"/* x */ // y\"", valueText("\"/* x */ // y\""));
  EXPECT_EQ("\"\\\"// y\"", valueText("\"\\\"// y\""));
  EXPECT_EQ("\"\\'// y\"", valueText("'\\'// y'"));
}

TEST(Json5Comments, QuoteOfTheOtherKindDoesNotCloseAString) {
  EXPECT_EQ("\"it's /* x */\"", valueText("\"it's /* x */\""));
}

TEST(Json5Comments, BacktickStringsAreNotKnownToTheCommentPass) {
  EXPECT_EQ("\"a        b\"", valueText("`a /* x */b`"));
  EXPECT_EQ("\"a      b\"", valueText("`a // x\nb`"));  // the line feed goes as well
}

TEST(Json5Comments, BackslashGuardsAQuoteEvenBehindAnotherBackslash) {
  // The first string goes on to the quote behind `b`, so the comment in it stays.
  EXPECT_EQ("\"x\\\\\", /* */ b: \"", valueText("\"x\\\\\", /* */ b: \""));
}

TEST(Json5Names, MayBeQuotedOrBare) {
  EXPECT_EQ("{\n     \"a b\": 1,\n     \"c-d\": 2,\n     \"_e\": 3,\n     \"$f1_\": 4\n }",
            json5ToJson("{\"a b\": 1, 'c-d': 2, _e: 3, $f1_ : 4}"));
}

TEST(Json5Names, EscapesAreKeptAsWritten) {
  EXPECT_EQ("{\n     \"a\\\"\\n\": 1\n }", json5ToJson("{\"a\\\"\\n\": 1}"));
}

TEST(Json5Names, KeywordsServeAsNames) {
  EXPECT_EQ("{\n     \"null\": 1,\n     \"true\": 2\n }", json5ToJson("{null: 1, true: 2}"));
}

TEST(Json5Names, BareNameWithOtherCharactersIsAnError) {
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1, b-c: 2, d: 3}"));
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1, b$: 2, d: 3}"));
  EXPECT_EQ("{\n }", json5ToJson("{1a: 2}"));
  EXPECT_EQ("{\n }", json5ToJson("{\xc3\xa9: 2}"));
}

TEST(Json5Names, NameWithoutAColonIsAnError) {
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1, b 2}"));
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1, b"));
}

TEST(Json5Names, BracketWhereANameIsExpectedEndsTheParse) {
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1, [2], b: 3}"));
  EXPECT_EQ("{\n }", json5ToJson("[1, 2]"));
}

TEST(Json5Strings, MayHaveEitherQuote) {
  EXPECT_EQ("\"x\"", valueText("\"x\""));
  EXPECT_EQ("\"x\"", valueText("'x'"));
  EXPECT_EQ("\"\"", valueText("''"));
}

TEST(Json5Strings, EscapesAreKeptAsWritten) {
  EXPECT_EQ("\"\\u0041\\n\\\"\\x\"", valueText("\"\\u0041\\n\\\"\\x\""));
  EXPECT_EQ("\"it\\'s\"", valueText("'it\\'s'"));
}

TEST(Json5Strings, QuoteOfTheOtherKindIsKeptAsWritten) {
  EXPECT_EQ("\"say \"hi\"\"", valueText("'say \"hi\"'"));
}

TEST(Json5Strings, BackslashBeforeALineEndBecomesASpace) {
  EXPECT_EQ("\"a \nb\"", valueText("'a\\\nb'"));
  EXPECT_EQ("\"a \r\nb\"", valueText("\"a\\\r\nb\""));
  EXPECT_EQ("\"a\nb\"", valueText("'a\nb'"));
}

TEST(Json5Strings, BacktickStringsAreWrittenAsStrings) {
  EXPECT_EQ("\"a 'b' \"c\"\"", valueText("`a 'b' \"c\"`"));
  EXPECT_EQ("\"a\\`b\"", valueText("`a\\`b`"));
  EXPECT_EQ("\"a\\\nb\"", valueText("`a\\\nb`"));
}

TEST(Json5Strings, UnterminatedStringsEndWithTheText) {
  EXPECT_EQ("{\n     \"a\": \"x\"\n }", json5ToJson("{a: \"x"));
  EXPECT_EQ("{\n     \"a\": \"x}\"\n }", json5ToJson("{a: 'x}"));
  EXPECT_EQ("{\n     \"a\": \"x}\"\n }", json5ToJson("{a: `x}"));
  EXPECT_EQ("{\n     \"a\": \"\"\n }", json5ToJson("{a: '"));
  EXPECT_EQ("{\n     \"a\": \"\\\"\n }", json5ToJson("{a: '\\"));
  EXPECT_EQ("{\n }", json5ToJson("{'a"));
}

TEST(Json5Keywords, AreWrittenAsWords) {
  EXPECT_EQ("true", valueText("true"));
  EXPECT_EQ("false", valueText("false"));
  EXPECT_EQ("null", valueText("null"));
}

TEST(Json5Keywords, InfinityAndNanAreRealsInTheStreamsForm) {
  EXPECT_EQ("inf", valueText("Infinity"));
  EXPECT_EQ("-inf", valueText("-Infinity"));
  EXPECT_EQ("nan", valueText("NaN"));
  EXPECT_EQ("-nan", valueText("-NaN"));
}

TEST(Json5Keywords, AreMatchedByTheirFront) {
  // The rest of the word is an error behind the value.
  EXPECT_EQ("{\n     \"a\": true\n }", json5ToJson("{a: trueish, b: 1}"));
}

TEST(Json5Keywords, OtherWordsAreErrors) {
  for (const char* word :
       {"True", "undefined", "nul", "infinity", "+Infinity", "x1", "", ",", ":"}) {
    EXPECT_TRUE(isRefused(word)) << word;
  }
}

TEST(Json5Integers, AreReadWithTheirBase) {
  EXPECT_EQ("31", valueText("0x1F"));
  EXPECT_EQ("-31", valueText("-0X1f"));
  EXPECT_EQ("8", valueText("010"));
  EXPECT_EQ("12", valueText("+12"));
  EXPECT_EQ("-5", valueText("-5"));
  EXPECT_EQ("0", valueText("-0"));
}

TEST(Json5Integers, ExponentIsTakenForHexadecimalDigits) {
  EXPECT_EQ("1", valueText("1e3"));
  EXPECT_EQ("0", valueText("-ff"));
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1e+3, b: 2}"));  // the sign is an error
}

TEST(Json5Integers, BeyondTheRangeAreTheLimits) {
  EXPECT_EQ("9999999999", valueText("9999999999"));
  EXPECT_EQ("9223372036854775807", valueText("99999999999999999999"));
  EXPECT_EQ("-9223372036854775808", valueText("-0xffffffffffffffffffff"));
}

TEST(Json5Integers, SignAloneIsAnError) {
  EXPECT_TRUE(isRefused("-"));
  EXPECT_TRUE(isRefused("+"));
  EXPECT_TRUE(isRefused("- 5"));
}

TEST(Json5Reals, DotMayStandAtEitherEnd) {
  EXPECT_EQ("1.5", valueText("1.5"));
  EXPECT_EQ("0.5", valueText(".5"));
  EXPECT_EQ("-0.5", valueText("-.5"));
  EXPECT_EQ("5", valueText("5."));
  EXPECT_EQ("5", valueText("+5."));
  EXPECT_EQ("0", valueText("."));
  EXPECT_EQ("-0", valueText("-0.0"));
  EXPECT_EQ("10.5", valueText("010.5"));
}

TEST(Json5Reals, AreWrittenWithSixSignificantDigits) {
  EXPECT_EQ("1234.57", valueText("1234.5678"));
  EXPECT_EQ("1.23457e+06", valueText("1234567.0"));
}

TEST(Json5Reals, ExponentIsOnePowerShort) {
  EXPECT_EQ("150", valueText("1.5e3"));
  EXPECT_EQ("150", valueText("1.5E+3"));
  EXPECT_EQ("1.5", valueText("1.5e-1"));
  EXPECT_EQ("0.15", valueText("1.5e-2"));
  EXPECT_EQ("1.5", valueText("1.5e1"));
  EXPECT_EQ("1.5", valueText("1.5e0"));
  EXPECT_EQ("1.5", valueText("1.5e"));
  EXPECT_EQ("20", valueText("2.e2"));
}

TEST(Json5Reals, HugeExponentsEndAtInfinityAndZero) {
  EXPECT_EQ("inf", valueText("1.5e999999999"));
  EXPECT_EQ("-inf", valueText("-1.5e99999999999999999999999999"));
  EXPECT_EQ("0", valueText("1.5e-999999999"));
  EXPECT_EQ("0", valueText("0.0e999999999"));
}

TEST(Json5Reals, BeyondTheRangeAreInfinityAndZero) {
  EXPECT_EQ("inf", valueText(std::string(400, '9') + ".0"));
  EXPECT_EQ("-inf", valueText("-00" + std::string(400, '9') + "."));
  EXPECT_EQ("0", valueText("00." + std::string(400, '0') + "1"));
}

TEST(Json5Reals, DotBehindHexadecimalDigitsIsAnError) {
  EXPECT_EQ("{\n     \"a\": 31\n }", json5ToJson("{a: 0x1F.5, b: 1}"));
}

TEST(Json5Structure, CommasAndBracketsGoOnWithTheNextMember) {
  EXPECT_EQ(twoMembers, json5ToJson("{,a: 1,,] b: 'x' ] }"));
  EXPECT_EQ(twoMembers, json5ToJson("{a: 1] b: 'x'}"));
}

TEST(Json5Structure, MembersNeedASeparator) {
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson("{a: 1 b: 2}"));
  EXPECT_EQ("[1]", valueText("[1 2]"));
}

TEST(Json5Structure, ArrayNeedsAValueBetweenCommas) {
  EXPECT_EQ("[1]", valueText("[1,,2]"));
  EXPECT_EQ("[]", valueText("[,]"));
  EXPECT_EQ("[1]", valueText("[1}"));
}

TEST(Json5Structure, TextBehindTheOutermostObjectIsIgnored) {
  EXPECT_EQ(twoMembers, json5ToJson("{a: 1, b: 'x'} {c: 1} ]["));
}

TEST(Json5Structure, UnclosedContainersEndWithTheText) {
  EXPECT_EQ("{\n     \"a\": [1, {\n         \"b\": 2\n     }]\n }", json5ToJson("{a: [1, {b: 2"));
}

TEST(Json5Structure, ErrorKeepsWhatCameBefore) {
  EXPECT_EQ("{\n     \"a\": [1]\n }", json5ToJson("{a: [1, ?], b: 2}"));
  EXPECT_EQ("{\n     \"a\": {\n         \"b\": 1\n     }\n }",
            json5ToJson("{a: {b: 1, c: ?}, d: 2}"));
}

TEST(Json5Structure, ZeroByteEndsTheParse) {
  EXPECT_EQ("{\n     \"a\": 1\n }", json5ToJson(std::string("{a: 1,\0 b: 2}", 13)));
}

TEST(Json5Structure, WhiteSpaceIsAnywhereBetween) {
  EXPECT_EQ(twoMembers, json5ToJson("\r\n\t { a\v:\f1 ,\nb : 'x' }\n"));
}

TEST(Json5Structure, EveryFrontOfATextIsConverted) {
  const std::string text =
      "{a: [1, 0x1F, -1.5e-3, .5,], 'b\\'': \"x\\\"\", /* c */ d: {e: `t`, f: -NaN}, // g\n h: "
      "null}";
  for (std::size_t size = 0; size <= text.size(); ++size) {
    const std::string json = json5ToJson(text.substr(0, size));
    EXPECT_EQ("{\n", json.substr(0, 2)) << size;
    EXPECT_EQ("\n }", json.substr(json.size() - 3)) << size;
  }
}

TEST(Json5Depth, TenThousandArraysAreConverted) {
  constexpr std::size_t depth = 10000;
  EXPECT_EQ(std::string(depth, '[') + std::string(depth, ']'),
            valueText(std::string(depth, '[') + std::string(depth, ']')));
  EXPECT_EQ(std::string(depth, '[') + std::string(depth, ']'), valueText(std::string(depth, '[')));
}

TEST(Json5Depth, TenThousandObjectsAreConverted) {
  constexpr std::size_t depth = 10000;
  std::string text;
  for (std::size_t i = 1; i < depth; ++i) text += "{a:";
  text += "{" + std::string(depth, '}');
  const std::string json = json5ToJson(text);

  // Level i, from 0, has the indent 1 + 4 i. Without the spaces each level is `{`, a line feed,
  // `"a":`, a line feed and `}`; the innermost has no member.
  std::size_t spaces = 0;
  for (std::size_t i = 0; i < depth; ++i) {
    const std::size_t indent = 1 + 4 * i;
    spaces += indent;  // before the closing brace
    if (i + 1 == depth) break;
    spaces += indent + 4 + 1;              // before the name and behind the colon
    if (indent > 4) spaces += indent - 4;  // before the brace of the next level
  }
  EXPECT_EQ(spaces + 8 * (depth - 1) + 3, json.size());
}

TEST(Json5Depth, MillionArraysAreConverted) {
  const std::string deep(1000000, '[');
  EXPECT_EQ("{\n     \"a\": " + deep + std::string(deep.size(), ']') + "\n }",
            json5ToJson("a:" + deep));
}

TEST(Json5Depth, ResultBeyondOneGibibyteIsRefused) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "{a:";
  EXPECT_THROW(json5ToJson(text), std::length_error);
}

TEST(Json5Style, RealLifeTextBecomesJson) {
  const std::string json = json5ToJson(
      "// Settings of a room\n"
      "{\n"
      "  name: 'Room 1',   // shown in the title\n"
      "  \"size\": [4.5, 3., .25,],\n"
      "  /* colours as\n"
      "     numbers */\n"
      "  colors: {\n"
      "    wall: 0xFF, floor: +12,\n"
      "    $alpha: -1,\n"
      "  },\n"
      "  visible: true, parent: null,\n"
      "  tags: ['a', \"b\", `c`],\n"
      "  parts: [{id: 1}, {id: 2},],\n"
      "}\n");
  const auto expected = nlohmann::json::parse(R"({"name": "Room 1", "size": [4.5, 3, 0.25],
      "colors": {"wall": 255, "floor": 12, "$alpha": -1}, "visible": true, "parent": null,
      "tags": ["a", "b", "c"], "parts": [{"id": 1}, {"id": 2}]})");
  EXPECT_EQ(expected, nlohmann::json::parse(json));
}

// (1) Any text gives an object. (2) The result grows with the text and its depth only.
TEST(Json5Property, AnyTextGivesAnObject) {
  std::mt19937_64 random(20240620);
  const std::string alphabet = "{}[]:,\"'`\\/*\n\r abcexX$_+-.0123456789\xff";
  for (int i = 0; i < 5000; ++i) {
    std::string text(random() % 200, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    const std::string json = json5ToJson(text);
    ASSERT_EQ("{\n", json.substr(0, 2)) << text;
    ASSERT_EQ("\n }", json.substr(json.size() - 3)) << text;
    ASSERT_LT(json.size(), 4000 + 1000 * text.size()) << text;
  }
}

TEST(Json5Property, AnyRowOfPiecesGivesAnObject) {
  std::mt19937_64 random(20240621);
  const char* const pieces[] = {"{",     "}",   "[",   "]",   ",",    ":",    "a",       "'b'",
                                "\"c\"", "`d`", "1",   "1.5", "1.e9", "0x1F", "true",    "-NaN",
                                "//",    "\n",  "/*",  "*/",  "\\",   "'",    "\"",      "`",
                                " ",     "a:",  "b:[", "c:{", "null", "-",    "Infinity"};
  for (int i = 0; i < 5000; ++i) {
    std::string text;
    for (std::size_t j = random() % 60; j > 0; --j) text += pieces[random() % std::size(pieces)];
    const std::string json = json5ToJson(text);
    ASSERT_EQ("{\n", json.substr(0, 2)) << text;
    ASSERT_EQ("\n }", json.substr(json.size() - 3)) << text;
  }
}

/// A value of plain JSON, and texts that JSON5 reads as the same.
nlohmann::json anyValue(std::mt19937_64& random, int depth) {
  switch (random() % (depth > 0 ? 7 : 5)) {
    case 0:
      return nullptr;
    case 1:
      return random() % 2 == 0;
    case 2:
      return static_cast<int>(random() % 2000) - 1000;
    case 3:
      return (static_cast<double>(random() % 2000) - 1000) / 4;
    case 4:
      return "text " + std::to_string(random() % 100);
    case 5: {
      auto list = nlohmann::json::array();
      for (std::size_t i = random() % 4; i > 0; --i) list.push_back(anyValue(random, depth - 1));
      return list;
    }
    default: {
      auto object = nlohmann::json::object();
      for (std::size_t i = random() % 4; i > 0; --i) {
        object["n" + std::to_string(i)] = anyValue(random, depth - 1);
      }
      return object;
    }
  }
}

TEST(Json5Property, PlainJsonKeepsItsMeaning) {
  std::mt19937_64 random(20240622);
  for (int i = 0; i < 1000; ++i) {
    const nlohmann::json value = {{"v", anyValue(random, 5)}};
    const std::string text = value.dump(random() % 2 ? 2 : -1);
    ASSERT_EQ(value, nlohmann::json::parse(json5ToJson(text))) << text;
  }
}

}  // namespace
