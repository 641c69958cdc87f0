#include <lumivane/io/Error.h>

#include <string>

#include <gtest/gtest.h>

namespace Lumivane::IO {
namespace {

TEST(Error, TellsSubjectAndCauseInOneLine) {
  const Error error("a\nb", "no\r\tmore");
  EXPECT_STREQ("a b: no  more", error.what());
  EXPECT_EQ("a b", error.subject());
  EXPECT_EQ("no  more", error.cause());
}

TEST(Error, ColonInTheSubjectIsTheSubjects) {
  const Error error("c: d", "cause");
  EXPECT_EQ("c: d", error.subject());
  EXPECT_EQ("cause", error.cause());
}

TEST(Error, WhatIsNoUtf8IsReplacedAndSubjectAndCauseStayApart) {
  const Error error("caf\xE9.json", "object \"\xFF\"");
  EXPECT_STREQ("caf\xEF\xBF\xBD.json: object \"\xEF\xBF\xBD\"", error.what());
  EXPECT_EQ("caf\xEF\xBF\xBD.json", error.subject());
  EXPECT_EQ("object \"\xEF\xBF\xBD\"", error.cause());
}

TEST(Error, CopyTellsTheSame) {
  const Error error("a", "b");
  Error copy("longer", "text");
  copy = error;
  EXPECT_EQ("a", copy.subject());
  EXPECT_EQ("b", copy.cause());
}

}  // namespace
}  // namespace Lumivane::IO
