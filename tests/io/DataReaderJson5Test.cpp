#include "support/Capture.h"

#include <lumivane/io/DataReader.h>

#include <string>

#include <gtest/gtest.h>

namespace {

using Lumivane::IO::DataReader;

TEST(DataReaderJson5, TextBecomesJson) {
  EXPECT_EQ("{\n     \"a\": 1,\n     \"b\": \"x\"\n }",
            DataReader().Json5_to_Json("{a: 1, b: 'x',} // note"));
}

TEST(DataReaderJson5, ErrorKeepsWhatCameBefore) {
  EXPECT_EQ("{\n     \"a\": 1\n }", DataReader().Json5_to_Json("{a: 1, b: what}"));
}

TEST(DataReaderJson5, ExceptionGivesTheEmptyTextAndNoMessage) {
  std::string tooDeep;  // its indentation would take tens of gigabytes
  for (int i = 0; i < 100000; ++i) tooDeep += "{a:";
  std::string result = "before";
  const std::string printed =
      Lumivane::Test::capturedStdout([&] { result = DataReader().Json5_to_Json(tooDeep); });
  EXPECT_EQ("", result);
  EXPECT_EQ("", printed);
}

}  // namespace
