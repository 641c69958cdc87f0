#include "Csv.h"
#include "Frames.h"
#include "Journal.h"
#include "Workers.h"
#include "support/TempFolder.h"

#include <atomic>
#include <fstream>
#include <map>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

using Lumivane::Test::TempFolder;

std::string everyByte() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes + "\\x0a\\\\" + bytes;
}

JournalRow rowOf(const std::string& text) {
  JournalRow row;
  row.isDone = true;
  row.name = text;
  row.sources = 0x123456789abcdef0ULL;
  row.options = text;
  row.row = text;
  row.files = {{text, 12, 0xffffffffffffffffULL}, {"b", 0, 7}};
  return row;
}

void expectSame(const JournalRow& expected, const JournalRow& row) {
  EXPECT_EQ(expected.isDone, row.isDone);
  EXPECT_EQ(expected.name, row.name);
  EXPECT_EQ(expected.sources, row.sources);
  EXPECT_EQ(expected.options, row.options);
  EXPECT_EQ(expected.row, row.row);
  EXPECT_EQ(expected.files, row.files);
}

TEST(Journal, ARowIsOneLineWhateverBytesItHolds) {
  const std::string text = journalText(rowOf(everyByte()));
  for (const char c : text) EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
  const auto row = readJournalText(text);
  ASSERT_TRUE(row);
  expectSame(rowOf(everyByte()), *row);
}

TEST(Journal, RowsOfEveryByteComeBackFromTheFolder) {
  const TempFolder folder;
  const std::string path = folder.path("");
  for (std::uint64_t byte = 0; byte < 256; ++byte) {
    Journal journal(path, {1, 1, {}});
    journal.append(byte, rowOf("a" + std::string(1, static_cast<char>(byte)) + "b"));
  }
  const Journal::Rows rows = Journal::rows(path);
  ASSERT_EQ(256U, rows.size());
  for (const auto& [byte, all] : rows) {
    ASSERT_EQ(1U, all.size());
    expectSame(rowOf("a" + std::string(1, static_cast<char>(byte)) + "b"), all[0]);
  }
}

TEST(Journal, ALineThatIsNoRowCountsAsNone) {
  const std::string text = journalText(rowOf("a"));
  for (size_t i = 0; i < text.size(); ++i) {
    const auto row = readJournalText(text.substr(0, i));
    EXPECT_TRUE(!row || row->files.size() < 2U) << i;
  }
  for (const std::string line :
       {"", "done", "made,a,0123456789abcdef,,row", "done,a,0123456789abcdeg,,row",
        "done,a,0123456789abcdef,,ro\\w", "done,a,0123456789abcdef,,row\\x0",
        "done,a,0123456789abcdef,,row\\xzz", "done,a,0123456789abcdef,,row,file",
        "done,a,0123456789abcdef,,\"row", "done,a,0123456789abcdef,,r\"w",
        "done,a,0123456789abcdef,,row\ndone,b,0123456789abcdef,,row"})
    EXPECT_FALSE(readJournalText(line)) << line;
}

TEST(Journal, OnlyWantedRowsAreHeldTheOldestFirst) {
  const TempFolder folder;
  const std::string path = folder.path("");
  const JournalRow first = rowOf("first");
  const JournalRow other = rowOf("other");
  Journal::close(path, {{1, &first}, {2, &other}});
  Journal(path, {1, 2, {}}).append(1, rowOf("second"));
  Journal(path, {2, 2, {}}).append(2, rowOf("third"));
  const Journal::Rows rows = Journal::rows(path, [](std::uint64_t key, const JournalRow& row) {
    return key == 1 || row.name == "third";
  });
  ASSERT_EQ(2U, rows.size());
  ASSERT_EQ(2U, rows.at(1).size());
  EXPECT_EQ("first", rows.at(1)[0].name);
  EXPECT_EQ("second", rows.at(1)[1].name);
  ASSERT_EQ(1U, rows.at(2).size());
  EXPECT_EQ("third", rows.at(2)[0].name);
}

// Cut anywhere, also far from its end, and where there is no whole line.
TEST(Journal, TornLineIsCutOffBeforeTheNextIsAppended) {
  for (const std::size_t length :
       {std::size_t{1}, std::size_t{65535}, std::size_t{65536}, std::size_t{200000}})
    for (const bool hasWholeLine : {false, true}) {
      const TempFolder folder;
      const std::string path = folder.path("");
      const Shard shard{1, 1, {}};
      Journal(path, shard).append(1, rowOf("a"));
      const std::string file = path + "/parts/" + shard.name() + ".csv";
      const std::string whole = hasWholeLine ? Lumivane::Test::fileBytes(file) : "";
      std::ofstream(file, std::ios::binary) << whole << std::string(length, 'x');
      Journal(path, shard).append(2, rowOf("b"));
      const Journal::Rows rows = Journal::rows(path);
      EXPECT_EQ(hasWholeLine ? 2U : 1U, rows.size()) << length;
      EXPECT_EQ(1U, rows.count(2)) << length;
    }
}

// As when one shard of many ends while another one reads.
TEST(Journal, NoRowIsMissedWhileAnotherRunPutsThePartsTogether) {
  const TempFolder folder;
  const std::string path = folder.path("");
  Journal(path, {1, 2, {}}).append(1, rowOf("a"));
  std::atomic<bool> isOver = false;
  std::thread other([&path, &isOver] {
    for (int i = 0; i < 300; ++i) {
      const JournalRow row = rowOf("a");
      Journal::close(path, {{1, &row}});
      for (int shard = 1; shard <= 5; ++shard) Journal(path, {shard, 5, {}}).append(1, rowOf("a"));
    }
    isOver = true;
  });
  int missed = 0;
  int failed = 0;
  while (!isOver) {
    try {
      if (Journal::rows(path).count(1) == 0) ++missed;
    } catch (const std::exception&) {
      ++failed;
    }
  }
  other.join();
  EXPECT_EQ(0, missed);
  EXPECT_EQ(0, failed);
}

TEST(Frames, MessagesOfAnyBytesComeBackHoweverTheyAreCut) {
  const std::vector<std::string> sent = {everyByte(), "", "12\nx", std::string(5000, '\n'), "0"};
  std::string all;
  for (const std::string& message : sent) all += framed(message);
  for (const size_t step : {size_t{1}, size_t{7}, all.size()}) {
    std::vector<std::string> taken;
    std::string received;
    std::string message;
    for (size_t at = 0; at < all.size(); at += step) {
      received += all.substr(at, step);
      while (takeMessage(received, message)) taken.push_back(message);
    }
    EXPECT_EQ(sent, taken);
    EXPECT_EQ("", received);
  }
}

TEST(Frames, WhatIsNoLengthIsRefusedAtOnce) {
  for (const std::string text : {"x", "\n", "-1\nx", "+1\nx", " 1\nx", "1 \nx", "1.0\n", "0x1\n",
                                 "18446744073709551616\n", "99999999999", "1073741825\n"}) {
    std::string received = text;
    std::string message;
    EXPECT_THROW(takeMessage(received, message), FrameError) << text;
  }
  for (const std::string text : {"", "1", "10\n123456789", "1073741824\n"}) {
    std::string received = text;
    std::string message;
    EXPECT_FALSE(takeMessage(received, message)) << text;
    EXPECT_EQ(text, received);
  }
}

TEST(Workers, ResultsMayHoldEveryByte) {
  std::vector<size_t> pieces(256);
  std::iota(pieces.begin(), pieces.end(), 0U);
  const auto resultOf = [](size_t piece) {
    return std::string(piece % 5, static_cast<char>(piece)) + "\n" + std::to_string(piece) + "\n";
  };
  std::map<size_t, std::string> results;
  SharedWork shared;
  shared.start = [](int) {};
  shared.work = resultOf;
  shared.done = [&results](size_t piece, const std::string& result) { results[piece] = result; };
  shared.died = [](size_t piece, const std::string& how) { ADD_FAILURE() << piece << how; };
  shared.tick = [] {};
  shareOut(pieces, 2, shared);
  ASSERT_EQ(256U, results.size());
  for (const auto& [piece, result] : results) EXPECT_EQ(resultOf(piece), result);
}

}  // namespace
}  // namespace Lumivane::Host
