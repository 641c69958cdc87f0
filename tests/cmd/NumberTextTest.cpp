#include "cmd/NumberText.h"
#include "support/Thrown.h"
#include "support/Vectors.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Cmd::parseDouble;
using Cmd::parseInt;

TEST(ParseInt, ReadsTheNumberInFront) {
  EXPECT_EQ(0, parseInt("0"));
  EXPECT_EQ(-12, parseInt(" \n-12 34"));
  EXPECT_EQ(5, parseInt("+5e3"));
  EXPECT_EQ(std::numeric_limits<int>::max(), parseInt("2147483647"));
  EXPECT_EQ(std::numeric_limits<int>::min(), parseInt("-2147483648"));
}

TEST(ParseInt, TextWithoutANumberInFrontThrows) {
  for (const char* text : {"", " ", "x1", "-", "+ 1", ".5"})
    EXPECT_EQ("invalid stoi argument", thrownText<std::invalid_argument>([&] { parseInt(text); }))
        << text;
}

TEST(ParseInt, NumberBeyondIntThrows) {
  for (const char* text : {"2147483648", "-2147483649", "9223372036854775808"})
    EXPECT_EQ("stoi argument out of range", thrownText<std::out_of_range>([&] { parseInt(text); }))
        << text;
}

TEST(ParseDouble, ReadsTheNumberInFront) {
  EXPECT_EQ(-0.125, parseDouble(" -1.25e-1x"));
  EXPECT_TRUE(sameBits(-0.0, parseDouble("-0")));
  EXPECT_EQ(1.0, parseDouble("1,5"));
  EXPECT_TRUE(std::isnan(parseDouble("nan")));
  EXPECT_EQ(-std::numeric_limits<double>::infinity(), parseDouble("-inf"));
}

TEST(ParseDouble, TextWithoutANumberInFrontThrows) {
  for (const char* text : {"", "e5", "--1"})
    EXPECT_EQ("invalid stod argument",
              thrownText<std::invalid_argument>([&] { parseDouble(text); }))
        << text;
}

TEST(ParseDouble, NumberBeyondDoubleThrows) {
  for (const char* text : {"1e309", "-1e309", "1e-400"})
    EXPECT_EQ("stod argument out of range",
              thrownText<std::out_of_range>([&] { parseDouble(text); }))
        << text;
}

}  // namespace
}  // namespace Lumivane::Test
