#include "kernel/CsvText.h"
#include "kernel/DisplayText.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Kernel {
namespace {

const std::string Bad(ReplacementCharacter);

TEST(DisplayText, WellFormedTextStaysAsItIs) {
  for (const std::string text : {"", "a b", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8F\xA0",
                                 "\xEF\xBF\xBD", "\xF4\x8F\xBF\xBF", "a\tb\n"})
    EXPECT_EQ(text, utf8Text(text));
  EXPECT_EQ(std::string("a\0b", 3), utf8Text(std::string("a\0b", 3)));
}

TEST(DisplayText, EachByteThatIsNoCharacterIsReplaced) {
  EXPECT_EQ("a" + Bad + "b", utf8Text("a\xE9"
                                      "b"));                       // another code page
  EXPECT_EQ(Bad + Bad, utf8Text("\xC0\x80"));                      // longer than need be
  EXPECT_EQ(Bad + Bad + Bad, utf8Text("\xED\xA0\x80"));            // half a pair
  EXPECT_EQ(Bad + Bad + Bad + Bad, utf8Text("\xF4\x90\x80\x80"));  // above U+10FFFF
  EXPECT_EQ(Bad + Bad, utf8Text("\xE2\x82"));                      // cut
  EXPECT_EQ(Bad + Bad + "a", utf8Text("\xE2\x82"
                                      "a"));
  EXPECT_EQ(Bad + Bad, utf8Text("\xFF\xFE"));
}

TEST(DisplayText, EscapesOfAnIdAreShownAsTheirCharacters) {
  EXPECT_EQ("caf\xC3\xA9", idText("caf\\u00e9"));
  EXPECT_EQ("caf\xC3\xA9", idText("caf\\u00E9"));
  EXPECT_EQ("\xE2\x82\xAC!", idText("\\u20AC!"));
  EXPECT_EQ("\xF0\x9F\x8F\xA0", idText("\\ud83c\\udfe0"));
  EXPECT_EQ("A\n", idText("\\u0041\\u000a"));
}

TEST(DisplayText, WhatIsNoEscapeStays) {
  for (const std::string text :
       {"\\", "\\u", "\\u12", "\\u12g4", "\\U0041", "\\n", "u0041", "\\\\"})
    EXPECT_EQ(text, idText(text));
}

TEST(DisplayText, HalfPairsAndZeroAreReplaced) {
  EXPECT_EQ(Bad, idText("\\ud83c"));
  EXPECT_EQ(Bad + Bad, idText("\\udfe0\\ud83c"));
  EXPECT_EQ(Bad + "A", idText("\\ud83c\\u0041"));
  EXPECT_EQ(Bad, idText("\\u0000"));
  EXPECT_EQ(Bad, idText("\xE9"));
}

TEST(DisplayTextProperty, AnyBytesGiveTextThatStaysAsItIs) {
  std::mt19937 random(7);
  const std::string bytes("\\ud83cdfe0A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8F\xA0\xFF\n\0", 23);
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (size_t length = random() % 20; text.size() < length;)
      text +=
          random() % 4 == 0 ? static_cast<char>(random() % 256) : bytes[random() % bytes.size()];
    const std::string clean = utf8Text(text);
    EXPECT_EQ(clean, utf8Text(clean));
    const std::string shown = idText(text);
    EXPECT_EQ(shown, utf8Text(shown));
  }
}

TEST(CsvText, CellsThatNeedQuotesHaveThem) {
  EXPECT_EQ("a", csvField("a"));
  EXPECT_EQ("", csvField(""));
  EXPECT_EQ("\"a,b\"", csvField("a,b"));
  EXPECT_EQ("\"a\"\"b\"", csvField("a\"b"));
  EXPECT_EQ("\"a\nb\"", csvField("a\nb"));
  EXPECT_EQ("\" a\"", csvField(" a"));
}

TEST(CsvText, AnApostropheStandsBeforeWhatASpreadsheetTakesForAFormula) {
  for (const std::string leader : {"=", "+", "-", "@", "\t", "\r"})
    EXPECT_EQ("'" + leader + "1+1", csvSafe(leader + "1+1"));
  for (const std::string text : {"", "a=1", "1-2", "'=1", " =1"}) EXPECT_EQ(text, csvSafe(text));
}

}  // namespace
}  // namespace Lumivane::Kernel
