// A long shot that is asked to end: nothing half-written is left.

#include "host/Process.h"
#include "support/TempFolder.h"

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

size_t entries(const TempFolder& folder) {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder.path(""))) ++count;
  return count;
}

// Many seconds of work; the bar is shown once it has begun.
Result interrupt(const std::string& output, int signal) {
  return Lumivane::Test::signalProcess(
      {LUMIVANE_PROGRAM, "shot", LUMIVANE_SCENES "/street.json", "--eye", "-5.3,-1.37,3.4",
       "--max-length", "0.0005", "-o", output, "--stats", output + ".stats"},
      " %", signal);
}

void expectCleanEnd(int signal, int status) {
  const TempFolder folder;
  const std::string old = folder.file("old", "what was there");
  for (const std::string& output : {folder.path("new"), old}) {
    const Result result = interrupt(output, signal);
    EXPECT_EQ(status, result.status) << result.err;
    EXPECT_FALSE(result.bySignal);
    EXPECT_EQ("\r\033[K", result.err.substr(result.err.size() - 4));
  }
  EXPECT_EQ("what was there", fileBytes(old));
  EXPECT_EQ(1u, entries(folder));
}

TEST(Signals, InterruptEndsALongShotWith130) { expectCleanEnd(SIGINT, 130); }

TEST(Signals, RequestToEndEndsALongShotWith143) { expectCleanEnd(SIGTERM, 143); }

TEST(Signals, HangUpEndsALongShotWith129) { expectCleanEnd(SIGHUP, 129); }

TEST(Signals, FileOverItsLimitIsAnErrorAndLeavesNothing) {
  const TempFolder folder;
  const std::string output = folder.path("shot.json");
  const Result result = Lumivane::Test::runProcess(
      {"/bin/sh", "-c", "ulimit -f 1 && exec \"$@\"", "sh", LUMIVANE_PROGRAM, "shot",
       LUMIVANE_SCENES "/small.json", "--eye", "-4,0.35,1.9", "-o", output});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("lumivane: " + output + ": cannot be written: File too large\n", result.err);
  EXPECT_EQ(0u, entries(folder));
}

}  // namespace
}  // namespace Lumivane::Host
