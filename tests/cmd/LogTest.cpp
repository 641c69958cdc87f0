#include "support/Capture.h"

#include <lumivane/cmd/Log.h>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

TEST(LogMessage, PrintsAsPrintfWithNothingAdded) {
  EXPECT_EQ("Object 7 of 12: ab",
            capturedStdout([] { Cmd::logMessage("Object %d of %i: %s", 7, 12, "ab"); }));
}

TEST(LogMessage, ReturnsTheCountOfBytes) {
  int count = 0;
  int none = -1;
  EXPECT_EQ("1234\n", capturedStdout([&] {
              count = Cmd::logMessage("%d\n", 1234);
              none = Cmd::logMessage("%s", "");
            }));
  EXPECT_EQ(5, count);
  EXPECT_EQ(0, none);
}

}  // namespace
}  // namespace Lumivane::Test
