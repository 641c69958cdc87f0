#include "support/Capture.h"

#include <lumivane/cmd/Log.h>
#include <lumivane/cmd/MessageScope.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

namespace Lumivane::Test {
namespace {

using Cmd::logMessage;
using Cmd::MessageScope;

// A sink that gathers all texts, each in brackets.
Cmd::MessageSink into(std::string& texts) {
  return [&texts](std::string_view text) { texts.append("[").append(text).append("]"); };
}

TEST(MessageScope, SinkGetsTheSameBytesAsStandardOutput) {
  std::string texts;
  int count = 0;
  EXPECT_EQ("", capturedStdout([&] {
              const MessageScope scope(into(texts));
              count = logMessage("Object %d: %s\n", 7, "a\x01\xFF%d");
              logMessage("%s", std::string(5000, 'x').c_str());
            }));
  EXPECT_EQ("[Object 7: a\x01\xFF%d\n][" + std::string(5000, 'x') + "]", texts);
  EXPECT_EQ(16, count);
}

TEST(MessageScope, BytesOfZeroAreKept) {
  std::string texts;
  const MessageScope scope(into(texts));
  EXPECT_EQ(3, logMessage("a%cb", 0));
  EXPECT_EQ(std::string("[a\0b]", 5), texts);
}

TEST(MessageScope, EmptySinkDropsTheMessages) {
  EXPECT_EQ("", capturedStdout([] {
              const MessageScope scope({});
              EXPECT_EQ(3, logMessage("abc"));
            }));
}

TEST(MessageScope, EndGivesMessagesBackToTheScopeAround) {
  std::string outer;
  std::string inner;
  EXPECT_EQ("last", capturedStdout([&] {
              {
                const MessageScope first(into(outer));
                {
                  const MessageScope second(into(inner));
                  logMessage("1");
                }
                logMessage("2");
              }
              logMessage("last");
            }));
  EXPECT_EQ("[2]", outer);
  EXPECT_EQ("[1]", inner);
}

TEST(MessageScope, MessageOfASinkGoesWhereMessagesWentBefore) {
  EXPECT_EQ("a, noted; b, noted; ", capturedStdout([] {
              const MessageScope scope(
                  [](std::string_view text) { logMessage("%s, noted; ", text.data()); });
              logMessage("a");
              logMessage("b");
            }));
}

TEST(MessageScope, ExceptionOfASinkIsDroppedAndTheNextMessageComes) {
  std::string texts;
  const MessageScope scope([&texts](std::string_view text) {
    texts += text;
    throw std::runtime_error("full");
  });
  EXPECT_EQ(1, logMessage("1"));
  EXPECT_EQ(1, logMessage("2"));
  EXPECT_EQ("12", texts);
}

TEST(MessageScope, OtherThreadsPrintOnStandardOutput) {
  std::string texts;
  EXPECT_EQ("other", capturedStdout([&] {
              const MessageScope scope(into(texts));
              std::thread([] { logMessage("other"); }).join();
            }));
  EXPECT_EQ("", texts);
}

}  // namespace
}  // namespace Lumivane::Test
