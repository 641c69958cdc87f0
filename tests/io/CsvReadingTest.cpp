#include "support/Thrown.h"

#include <lumivane/io/CsvReading.h>
#include <lumivane/io/Error.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::IO {
namespace {

using Fields = std::vector<std::string>;

std::string refusal(const std::string& text) {
  return Lumivane::Test::thrownText<Error>([&text] { readCsv(text, "t.csv"); });
}

TEST(CsvReading, RecordsKnowTheirLinesAndEmptyLinesArePassedOver) {
  const std::vector<CsvRecord> records = readCsv("\xEF\xBB\xBFid,class\r\n\r\na,\n\nb,c", "t.csv");
  ASSERT_EQ(3U, records.size());
  EXPECT_EQ((Fields{"id", "class"}), records[0].fields);
  EXPECT_EQ((Fields{"a", ""}), records[1].fields);
  EXPECT_EQ((Fields{"b", "c"}), records[2].fields);
  EXPECT_EQ(1U, records[0].line);
  EXPECT_EQ(3U, records[1].line);
  EXPECT_EQ(5U, records[2].line);
}

TEST(CsvReading, QuotedFieldsHoldCommasQuotesAndLineEnds) {
  const std::vector<CsvRecord> records = readCsv("\"a,\"\"b\"\"\nc\",d\ne,f\n", "t.csv");
  ASSERT_EQ(2U, records.size());
  EXPECT_EQ((Fields{"a,\"b\"\nc", "d"}), records[0].fields);
  EXPECT_EQ(3U, records[1].line);
}

TEST(CsvReading, DamagedQuotesAreRefusedWithTheirLine) {
  EXPECT_EQ("t.csv: line 2: the quote that starts a field is never closed", refusal("a\n\"b\nc"));
  EXPECT_EQ("t.csv: line 1: a closing quote must end its field", refusal("\"a\"b"));
  EXPECT_EQ("t.csv: line 1: a quote inside a field that does not start with one", refusal("a\"b"));
}

}  // namespace
}  // namespace Lumivane::IO
