#include "io/ZeroFormat.h"

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::IO {
namespace {

TEST(ZeroFormat, TextWithoutConversionStandsAsItIs) {
  EXPECT_EQ("/home/scenes/street 1.json", formatWithZeros("/home/scenes/street 1.json"));
  EXPECT_EQ("", formatWithZeros(""));
}

TEST(ZeroFormat, NumbersAreZero) {
  EXPECT_EQ("a0b0c0d", formatWithZeros("a%db%ic%ud"));
  EXPECT_EQ("0 0 0", formatWithZeros("%o %x %X"));
  EXPECT_EQ("0.000000 0.000000e+00 0 0x0p+0", formatWithZeros("%f %e %g %a"));
}

TEST(ZeroFormat, BinaryNumbersAreZeroToo) {
  EXPECT_EQ("/data/0ackup-0.json", formatWithZeros("/data/%backup-%B.json"));
  EXPECT_EQ("00000000|  0|0  |0", formatWithZeros("%08b|%3B|%-3b|%#llb"));
}

TEST(ZeroFormat, FlagsWidthAndPrecisionAreThoseOfPrintf) {
  EXPECT_EQ("00|    0|0    |+0|  000", formatWithZeros("%02d|%5d|%-5d|%+d|%5.3d"));
  EXPECT_EQ("0.00", formatWithZeros("%.2f"));
  EXPECT_EQ("", formatWithZeros("%.0d"));
}

TEST(ZeroFormat, LengthPrefixesMakeNoDifference) {
  EXPECT_EQ("0000000", formatWithZeros("%hhd%hd%ld%lld%jd%zd%td"));
  EXPECT_EQ("00", formatWithZeros("%Zd%qd"));
  EXPECT_EQ("0.000000", formatWithZeros("%Lf"));
}

TEST(ZeroFormat, StarsAreZero) {
  EXPECT_EQ("0", formatWithZeros("%*d"));
  EXPECT_EQ("0", formatWithZeros("%.*f"));
  EXPECT_EQ("0", formatWithZeros("%1$*2$d"));
}

TEST(ZeroFormat, NumberedArgumentsAreZeroToo) { EXPECT_EQ("00", formatWithZeros("%2$d%999$d")); }

TEST(ZeroFormat, StringsAndPointersAreNull) {
  char expected[64];
  const void* pointer = nullptr;
  std::snprintf(expected, sizeof expected, "%p", pointer);
  EXPECT_EQ(expected, formatWithZeros("%p"));
  EXPECT_EQ("(null)", formatWithZeros("%s"));
  EXPECT_EQ("(null)", formatWithZeros("%ls"));
  EXPECT_EQ("", formatWithZeros("%.2s"));
}

TEST(ZeroFormat, CountWritesNothing) {
  EXPECT_EQ("ab", formatWithZeros("a%nb"));
  EXPECT_EQ("ab", formatWithZeros("a%hhnb%5$n"));
}

TEST(ZeroFormat, CharacterIsTheByteZero) {
  EXPECT_EQ(std::string("a\0b", 3), formatWithZeros("a%cb"));
  EXPECT_EQ(std::string("  \0", 3), formatWithZeros("%3c"));
}

TEST(ZeroFormat, DoubledPerCentIsOne) {
  EXPECT_EQ("50%", formatWithZeros("50%%"));
  EXPECT_EQ("%d", formatWithZeros("%%d"));
}

TEST(ZeroFormat, WhatIsNoConversionStandsAsItIs) {
  EXPECT_EQ("100%", formatWithZeros("100%"));
  EXPECT_EQ("%y", formatWithZeros("%y"));
  EXPECT_EQ("a%-5.", formatWithZeros("a%-5."));
  EXPECT_EQ("%\xD1\x8F", formatWithZeros("%\xD1\x8F"));
}

TEST(ZeroFormat, SpaceIsAFlag) { EXPECT_EQ("500ff.json", formatWithZeros("50% off.json")); }

TEST(ZeroFormat, ByteZeroEndsTheFormat) {
  EXPECT_EQ("a", formatWithZeros(std::string("a\0%d", 4)));
}

TEST(ZeroFormat, HugeWidthsAreBounded) {
  EXPECT_EQ(65536u, formatWithZeros("%99999999999999999999d").size());
  EXPECT_EQ(65536u + 2u, formatWithZeros("%.99999999999999999999f").size());
  EXPECT_EQ(1000u, formatWithZeros("%1000d").size());
}

TEST(ZeroFormatProperty, AnyTextIsSafeAndBounded) {
  std::mt19937_64 random(20240607);
  const std::string letters = "%%%%%%ndscpfgxLlhjzt*$.0123456789-+ #'I/a\xC3\xA9";
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (size_t n = random() % 12; n > 0; --n) text += letters[random() % letters.size()];
    const std::string result = formatWithZeros(text);
    ASSERT_LE(result.size(), 65536u * 12u) << text;
    if (text.find('%') == std::string::npos) {
      ASSERT_EQ(text, result);
    }
  }
}

// What the C library prints of the text as a format with zeros behind it: no literal can show.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::string printed(const std::string& format) {
  char text[256];
  const int length = std::snprintf(text, sizeof text, format.c_str(), 0, 0, 0, 0, 0);
  return std::string(text, static_cast<size_t>(length));
}
#pragma GCC diagnostic pop

TEST(ZeroFormatProperty, IntegerConversionsAreWhatPrintfPrints) {
  std::mt19937_64 random(20240608);
  const auto oneOf = [&random](const std::vector<std::string>& texts) {
    return texts[random() % texts.size()];
  };
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (size_t n = random() % 5; n > 0; --n)
      text += oneOf({"a", "/", "%%", ""}) + "%" + oneOf({"", "-", "+", " ", "#", "0", "-+"}) +
              oneOf({"", "1", "7", "12"}) + oneOf({"", ".", ".0", ".3", ".11"}) +
              oneOf({"d", "i", "u", "x", "X", "o", "b", "B", "c"});
    ASSERT_EQ(printed(text), formatWithZeros(text)) << text;
  }
}

}  // namespace
}  // namespace Lumivane::IO
