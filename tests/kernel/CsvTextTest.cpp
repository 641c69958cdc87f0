#include "kernel/CsvText.h"

#include <string>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Kernel::CsvRow;

TEST(CsvRow, PutsCommasBetweenFieldsAndALineEndBehind) {
  CsvRow row(false);
  row.empty().text("a").number(-1).number(0.25).empty();
  EXPECT_EQ(",a,-1,0.25,\n", row.take());
  row.text("b");
  EXPECT_EQ("b\n", row.take());
}

TEST(CsvRow, QuotesTextsThatNeedItAndReplacesWhatIsNotUtf8) {
  CsvRow row(false);
  row.text("a,b").text("say \"x\"").text(" c").text("d\ne").text("f\xFF").text("=1");
  EXPECT_EQ("\"a,b\",\"say \"\"x\"\"\",\" c\",\"d\ne\",f\xEF\xBF\xBD,=1\n", row.take());
}

TEST(CsvRow, GivesFormulasAnApostropheWhereItIsAsked) {
  CsvRow row(true);
  row.text("=1+2").text("@a,b").number(-1);
  EXPECT_EQ("'=1+2,\"'@a,b\",-1\n", row.take());
}

}  // namespace
}  // namespace Lumivane::Test
