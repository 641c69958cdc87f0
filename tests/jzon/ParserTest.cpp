#include "jzon/JsonNumber.h"
#include "support/Vectors.h"

#include <lumivane/jzon/Parser.h>
#include <lumivane/jzon/Writer.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

using Jzon::Node;
using Jzon::Parser;
using Lumivane::Test::checkedRun;
using Lumivane::Test::Json;
using Lumivane::Test::VectorCase;
using Lumivane::Test::VectorTests;

struct Parsed {
  Node root;
  std::string error;
};

Parsed parse(const std::string& text) {
  Parser parser;
  const Node root = parser.parseString(text);
  return {root, parser.getError()};
}

std::string written(const Node& node, const Jzon::Format& format) {
  std::string text;
  Jzon::Writer(format).writeString(node, text);
  return text;
}

std::string compact(const Node& node) { return written(node, {false, false, false, 0}); }

/// The compact text of what was parsed; empty for an invalid node.
std::string parsedCompact(const std::string& text) { return compact(parse(text).root); }

/// The first element of an array that the text holds.
Node first(const std::string& text) { return parse(text).root.get(std::size_t{0}); }

void expectError(const std::string& text, const std::string& error) {
  const Parsed parsed = parse(text);
  EXPECT_FALSE(parsed.root.isValid()) << text;
  EXPECT_EQ(error, parsed.error) << text;
}

Json treeOf(const Node& node) {
  static const char* const names[] = {"T_INVALID", "T_OBJECT", "T_ARRAY", "T_NULL",
                                      "T_STRING",  "T_NUMBER", "T_BOOL"};
  if (!node.isValid()) return nullptr;
  Json content = Json::array();
  for (const auto& child : node) {
    content.push_back(node.isObject() ? Json{child.first, treeOf(child.second)}
                                      : treeOf(child.second));
  }
  if (!node.isContainer()) content = node.isNull() ? std::string() : node.toString();
  return Json{names[node.getType()], content};
}

const VectorTests parseCases("jsonParse", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const Parsed parsed = parse(c.in.at("text").get<std::string>());
    EXPECT_EQ(c.out.at(0), treeOf(parsed.root));
    EXPECT_EQ(c.out.at(1).get<std::string>(), parsed.error);
    if (c.out.at(0).is_null()) return;
    EXPECT_EQ(c.out.at(2).get<std::string>(), written(parsed.root, {true, true, true, 1}));
    EXPECT_EQ(c.out.at(3).get<std::string>(), compact(parsed.root));
  });
});

const VectorTests isNumberTextCases("isNumberText", [](const VectorCase& c) {
  checkedRun(c, [&] {
    const std::string text = c.in.at("text").get<std::string>();
    EXPECT_EQ(c.out.get<bool>(), Jzon::isNumberText(text));
    EXPECT_EQ(c.out.get<bool>(), first("[" + text + "]").isNumber());
  });
});

TEST(Parser, ErrorIsEmptyAtTheStartAndCopied) {
  Parser parser;
  EXPECT_EQ("", parser.getError());
  parser.parseString("1");
  const Parser copy(parser);
  EXPECT_EQ("Outermost node must be an object or array", copy.getError());
}

TEST(Parser, ErrorOutlivesAGoodParse) {
  Parser parser;
  EXPECT_FALSE(parser.parseString("[1,]").isValid());
  EXPECT_TRUE(parser.parseString("[1]").isValid());
  EXPECT_EQ("Extra comma in array", parser.getError());
}

TEST(Parser, StreamStringAndFileGiveTheSameTree) {
  const std::string text = "{\"a\":[1,\"x\"]}";
  std::istringstream stream(text);
  Parser parser;
  EXPECT_EQ("{\"a\":[1,\"x\"]}", compact(parser.parseStream(stream)));
  EXPECT_EQ("{\"a\":[1,\"x\"]}", compact(parser.parseString(text)));

  const std::string path = testing::TempDir() + "lumivane_parser_test.json";
  std::ofstream(path) << text;
  EXPECT_EQ("{\"a\":[1,\"x\"]}", compact(parser.parseFile(path)));
  std::remove(path.c_str());
}

TEST(Parser, FileThatCannotBeOpenedParsesAsEmpty) {
  Parser parser;
  EXPECT_FALSE(parser.parseFile(testing::TempDir() + "no/such/file.json").isValid());
  EXPECT_EQ("", parser.getError());
}

TEST(Parser, EmptyTextIsInvalidWithoutAnError) {
  expectError("", "");
  expectError(" \t\n\f\r", "");
}

TEST(Parser, StreamThatHasFailedCountsAsEmpty) {
  std::istringstream stream("[1]");
  stream.setstate(std::ios::failbit);
  Parser parser;
  EXPECT_FALSE(parser.parseStream(stream).isValid());
  EXPECT_EQ("", parser.getError());
}

TEST(ParserCommas, TrailingCommaOfAnObjectIsAccepted) {
  EXPECT_EQ("{\"a\":1}", parsedCompact("{\"a\":1,}"));
  EXPECT_EQ("{\"a\":1,\"b\":2}", parsedCompact("{\"a\":1,,\"b\":2,,}"));
}

TEST(ParserCommas, TrailingCommaOfAnArrayIsAnError) {
  expectError("[1,]", "Extra comma in array");
  expectError("[1,,]", "Extra comma in array");
  expectError("[,]", "Extra comma in array");
}

TEST(ParserCommas, OtherStrayCommasAreAccepted) {
  EXPECT_EQ("[1,2]", parsedCompact("[,1,,2]"));
  EXPECT_EQ("[]", parsedCompact(",[]"));
  EXPECT_EQ("[]", parsedCompact("[],"));  // the last token: nothing behind it is looked at
}

TEST(ParserKeywords, AnyCaseIsAccepted) {
  EXPECT_EQ("{\"a\":null}", parsedCompact("{\"a\":nUlL}"));
  EXPECT_EQ(Jzon::null(), first("[NULL]"));
  EXPECT_EQ(Node(true), first("[True]"));
  EXPECT_EQ("true", first("[True]").toString());
  EXPECT_EQ("false", first("[FALSE]").toString());
}

TEST(ParserRuns, WhiteSpaceDoesNotEndAValue) {
  EXPECT_EQ("[12]", parsedCompact("[1 2]"));
  EXPECT_EQ("[1234]", parsedCompact("[12\t\n\f\r34]"));
  EXPECT_EQ("[true]", parsedCompact("[t r u e]"));
}

TEST(ParserRuns, VerticalTabIsNoWhiteSpace) { expectError("[1\v]", "Unknown token: 1\v"); }

TEST(ParserRuns, UnknownRunIsAnErrorWithItsText) {
  expectError("[abc]", "Unknown token: abc");
  expectError("[a b c]", "Unknown token: abc");
  expectError("[TRUE1]", "Unknown token: TRUE1");
}

TEST(ParserRuns, RunOnTheLastCharacterIsFlushed) {
  expectError("[1]x", "Unknown token: x");
  expectError("[1]2", "Outermost node must be an object or array");
}

TEST(ParserRuns, RunBeforeWhiteSpaceAtTheEndIsLost) {
  EXPECT_EQ("[1]", parsedCompact("[1]x "));
  EXPECT_EQ("[1]", parsedCompact("[1] 2\n"));
}

TEST(ParserRuns, StringEntersTheDataBeforeARunInFrontOfIt) {
  EXPECT_EQ("[\"x\",12]", parsedCompact("[12\"x\"]"));
  EXPECT_EQ("[12,\"x\"]", parsedCompact("[12,\"x\"]"));
  expectError("[abc\"x\"]", "Unknown token: x");
}

TEST(ParserRuns, BytesAbove127AreOrdinaryCharacters) {
  expectError("[\xff]", "Unknown token: \xff");
  expectError("[\xc3\xa9]", "Unknown token: \xc3\xa9");
  EXPECT_EQ("a\xff\x80z", first("[\"a\xff\x80z\"]").toString());
  EXPECT_EQ("[1]", parsedCompact("/*\xff*/[1]"));
}

TEST(ParserRuns, ZeroByteIsAnOrdinaryCharacter) {
  expectError(std::string("[\0]", 3), std::string("Unknown token: \0", 16));
}

TEST(ParserStructure, ValueOutsideContainersIsAnError) {
  expectError("1", "Outermost node must be an object or array");
  expectError("\"a\"", "Outermost node must be an object or array");
  expectError("null", "Outermost node must be an object or array");
}

TEST(ParserStructure, UnclosedContainerIsInvalidWithoutAnError) {
  expectError("{\"a\":1", "");
  expectError("[", "");
  expectError("[[1]", "");
}

TEST(ParserStructure, UnclosedContainerBehindACompleteOneIsDropped) {
  EXPECT_EQ("[1]", parsedCompact("[1][2"));
}

TEST(ParserStructure, EndWithoutBeginningIsAnError) {
  expectError("[1]]", "Found end of object or array without beginning");
  expectError("}", "Found end of object or array without beginning");
}

TEST(ParserStructure, MismatchedEndNamesTheEnd) {
  expectError("[1}", "Mismatched end and beginning of object");
  expectError("{]", "Mismatched end and beginning of array");
  expectError("{\"a\":[}", "Mismatched end and beginning of object");
}

TEST(ParserStructure, SecondContainerReplacesTheRoot) {
  EXPECT_EQ("{\"b\":2}", parsedCompact("[1]{\"b\":2}"));
}

TEST(ParserStructure, ContainersNestInOrder) {
  EXPECT_EQ("{\"a\":[1,{\"b\":[]},[2]],\"c\":{}}",
            parsedCompact("{\"a\":[1,{\"b\":[]},[2]],\"c\":{}}"));
}

TEST(ParserNames, NameHasToBeAString) {
  expectError("{1:2}", "A name has to be a string");
  expectError("{null:2}", "A name has to be a string");
}

TEST(ParserNames, NameAndColonAreTakenAnywhere) {
  EXPECT_EQ("[1,2]", parsedCompact("[\"a\":1,2]"));
  EXPECT_EQ("[1]", parsedCompact("\"a\":[1]"));
}

TEST(ParserNames, LoneColonIsIgnored) {
  EXPECT_EQ("{\"a\":1}", parsedCompact("{\"a\"::1}"));
  EXPECT_EQ("[1]", parsedCompact(":[:1,:]:"));
}

TEST(ParserNames, NameWithoutAValueWaitsForTheNextValue) {
  EXPECT_EQ("{\"b\":2}", parsedCompact("{\"a\":,\"b\":2}"));
  EXPECT_EQ("{\"a\":2}", parsedCompact("{\"a\":,2}"));
}

TEST(ParserNames, MemberWithoutANameHasTheEmptyName) {
  EXPECT_EQ("{\"\":2}", parsedCompact("{2}"));
  EXPECT_EQ("{\"a\":1,\"\":[]}", parsedCompact("{\"a\":1,[]}"));
}

TEST(ParserNames, EqualNamesAreAllKept) {
  EXPECT_EQ("{\"a\":1,\"a\":2}", parsedCompact("{\"a\":1,\"a\":2}"));
}

TEST(ParserNames, StringAtTheEndOfTheTextIsNoName) {
  expectError("\"a\":", "");
  expectError("[\"a\"", "");
}

TEST(ParserComments, BlockCommentsAreSkipped) {
  EXPECT_EQ("[1]", parsedCompact("/* c */[1]"));
  EXPECT_EQ("[12]", parsedCompact("[1/* [,\" */2]"));
  EXPECT_EQ("[1]", parsedCompact("[/***/1]"));
}

TEST(ParserComments, StarOfTheOpeningDoesNotClose) {
  EXPECT_EQ("[1]", parsedCompact("/*/ [2] */[1]"));
  EXPECT_EQ("[1]", parsedCompact("[1]/*/"));
}

TEST(ParserComments, UnterminatedCommentEndsWithTheText) {
  EXPECT_EQ("[1]", parsedCompact("[1]/* abc"));
  EXPECT_EQ("[1]", parsedCompact("[1]/*"));
  expectError("[1]2/*", "Outermost node must be an object or array");  // flushed at the end
}

TEST(ParserComments, ThereAreNoLineComments) {
  expectError("// c\n[1]", "Unknown token: /c");
  expectError("[1]//", "Unknown token: /");
  expectError("[1]/", "Unknown token: /");
}

TEST(ParserComments, StarBehindTwoSlashesOpensABlockComment) {
  EXPECT_EQ("[1]", parsedCompact("//* c */[1]"));
  EXPECT_EQ("[1]", parsedCompact("///* c */[1]"));
}

TEST(ParserComments, SlashElsewhereGoesIntoTheRun) {
  expectError("[1/2]", "Unknown token: 1/2");
  expectError("[/ /]", "Unknown token: //");
}

TEST(ParserStrings, EscapedQuoteDoesNotEndAString) {
  EXPECT_EQ("a\"b", first("[\"a\\\"b\"]").toString());
  EXPECT_EQ("\\\"", first("[\"\\\\\\\"\"]").toString());
}

TEST(ParserStrings, EscapedBackslashDoesNotEscapeTheQuote) {
  EXPECT_EQ("a\\", first("[\"a\\\\\"]").toString());
}

TEST(ParserStrings, EscapesAreResolvedAndUnknownOnesStay) {
  EXPECT_EQ("\n\t/\\u0041", first("[\"\\n\\t\\/\\u0041\"]").toString());
}

TEST(ParserStrings, DelimitersAndCommentsInsideAreText) {
  EXPECT_EQ("{[,:]} /* x */ 1", first("[\"{[,:]} /* x */ 1\"]").toString());
}

TEST(ParserStrings, UnterminatedStringEndsWithTheText) {
  expectError("[\"a", "");
  expectError("[\"a\\\"", "");
  expectError("\"a", "Outermost node must be an object or array");
}

TEST(ParserNumbers, TextIsKeptAsItWas) {
  EXPECT_EQ("1.5E-3", first("[1.5E-3]").toString());
  EXPECT_EQ(0.0015, first("[1.5E-3]").toDouble());
  EXPECT_EQ("1e5", first("[1e5]").toString());
  EXPECT_EQ("007", first("[007]").toString());
}

TEST(ParserNumbers, LooseTextsAreNumbers) {
  for (const char* text : {"-", ".", "1-2", "1.-2", "E5", "1E5-", "1e5.3", "-1e-5", "5-", "1e-5"}) {
    EXPECT_EQ(Node(Node::T_NUMBER, text), first("[" + std::string(text) + "]")) << text;
  }
}

TEST(ParserNumbers, TextsBeyondTheLooseRulesAreUnknown) {
  for (const char* text :
       {"1e", "1e+", "+1", "1e+-5", "1e5+-", "--1", "1..2", "1e5e5", "1x", "E"}) {
    expectError("[" + std::string(text) + "]", "Unknown token: " + std::string(text));
  }
}

TEST(ParserDepth, MillionLevelsAreParsedAndWritten) {
  constexpr std::size_t depth = 1000000;
  const std::string text = std::string(depth, '[') + std::string(depth, ']');
  EXPECT_EQ(text, parsedCompact(text));
}

TEST(ParserDepth, MillionLevelsOfObjectsAreParsedAndWritten) {
  std::string text, end;
  for (int i = 0; i < 1000000; ++i) text += "{\"a\":";
  text += "1" + std::string(1000000, '}');
  EXPECT_EQ(text, parsedCompact(text));
}

TEST(ParserDepth, MillionOpenLevelsAreDropped) {
  expectError(std::string(1000000, '['), "");
  expectError(std::string(1000000, '{') + "]", "Mismatched end and beginning of array");
}

TEST(ParserProperty, AnyTextIsParsedAndWhatIsWrittenParsesToTheSameText) {
  std::mt19937_64 random(20240610);
  const std::string alphabet = "{}[],:\"\\/*0123456789+-.eEtrunlfas \n\xff";
  int valid = 0;
  for (int i = 0; i < 100000; ++i) {
    std::string text = random() % 2 ? "[" : "{";
    const std::size_t length = random() % 12;
    for (std::size_t j = 0; j < length; ++j) text += alphabet[random() % alphabet.size()];
    text += text[0] == '[' ? ']' : '}';
    const Node root = parse(text).root;
    if (!root.isValid()) continue;
    ++valid;
    const std::string once = compact(root);
    // Names are written as they stand, so a backslash in one may change the meaning.
    if (once.find('\\') == std::string::npos) {
      ASSERT_EQ(once, parsedCompact(once)) << text;
    }
  }
  EXPECT_GT(valid, 1000);
}

}  // namespace
