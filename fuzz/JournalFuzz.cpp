// What a batch finds in its folder and what its processes send: rows of the journal, the folder's
// files, frames. The first byte says which.

#include "Bytes.h"
#include "Folder.h"
#include "Frames.h"
#include "HostError.h"
#include "Journal.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
namespace Host = Lumivane::Host;
using Host::Journal;
using Host::JournalRow;
using Lumivane::Fuzz::Bytes;
using Lumivane::Fuzz::Folder;
using Lumivane::Fuzz::require;

const Folder& folder() {
  static const Folder made;
  return made;
}

bool isSame(const JournalRow& a, const JournalRow& b) {
  return a.isDone == b.isDone && a.name == b.name && a.sources == b.sources &&
         a.options == b.options && a.row == b.row && a.files == b.files;
}

// One line of printable bytes, which reads back.
void checkWritten(const JournalRow& row) {
  const std::string text = Host::journalText(row);
  require(std::none_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }));
  const std::optional<JournalRow> again = Host::readJournalText(text);
  require(again && isSame(*again, row));
}

void readLine(const std::string& line) {
  const std::optional<JournalRow> row = Host::readJournalText(line);
  if (row) checkWritten(*row);
}

std::string shortText(Bytes& bytes) {
  std::string text;
  for (auto left = bytes.take<std::uint8_t>() % 64; left > 0 && !bytes.empty(); --left)
    text += bytes.take<char>();
  return text;
}

JournalRow anyRow(Bytes& bytes) {
  JournalRow row;
  const auto kind = bytes.take<std::uint8_t>();
  row.isDone = (kind & 1U) != 0;
  row.name = shortText(bytes);
  row.sources = bytes.take<std::uint64_t>();
  row.options = shortText(bytes);
  row.row = shortText(bytes);
  for (unsigned i = 0; i < (kind >> 1U) % 4U; ++i)
    row.files.push_back(
        {shortText(bytes), bytes.take<std::uint64_t>(), bytes.take<std::uint64_t>()});
  return row;
}

// Texts one after the other, each led by its length.
std::string part(Bytes& bytes) {
  std::string text;
  for (auto left = bytes.take<std::uint16_t>() % 4096; left > 0 && !bytes.empty(); --left)
    text += bytes.take<char>();
  return text;
}

std::size_t countOf(const Journal::Rows& rows) {
  std::size_t count = 0;
  for (const auto& [key, all] : rows) {
    count += all.size();
    for (const JournalRow& row : all) checkWritten(row);
  }
  return count;
}

// A run goes on in a folder that may hold anything, puts all together, and finds its rows again.
void readFolder(Bytes& bytes) {
  const fs::path place = folder().path();
  folder().clear();
  fs::create_directory(place / "parts");
  Lumivane::Fuzz::writeBytes(place / "journal.csv", part(bytes));
  Lumivane::Fuzz::writeBytes(place / "parts" / "2-of-3.csv", part(bytes));
  const auto key = bytes.take<std::uint64_t>();
  const JournalRow row = anyRow(bytes);
  Lumivane::Fuzz::writeBytes(place / "parts" / "1-of-3.csv", bytes.rest());
  const std::size_t before = countOf(Journal::rows(place.string()));
  Journal(place.string(), {1, 3, {}}).append(key, row);
  const Journal::Rows rows = Journal::rows(place.string());
  require(countOf(rows) == before + 1);
  const std::vector<JournalRow>& own = rows.at(key);
  require(std::any_of(own.begin(), own.end(),
                      [&row](const JournalRow& each) { return isSame(each, row); }));
  std::vector<std::pair<std::uint64_t, const JournalRow*>> all;
  for (const auto& [each, of] : rows) all.emplace_back(each, &of.front());
  Journal::close(place.string(), all);
  require(countOf(Journal::rows(place.string())) == all.size());
  require(!fs::exists(place / "parts"));
}

// Received in pieces of any lengths, the messages are the same.
void receive(Bytes& bytes) {
  const auto step = std::max<std::size_t>(1, bytes.take<std::uint8_t>());
  const std::string all = bytes.rest();
  const auto messagesOf = [&all](std::size_t length) {
    std::vector<std::string> messages;
    std::string received, message;
    try {
      for (std::size_t at = 0; at < all.size(); at += length) {
        received += all.substr(at, length);
        while (Host::takeMessage(received, message)) messages.push_back(message);
      }
    } catch (const Host::FrameError&) {
      messages.emplace_back("no frame");
    }
    return messages;
  };
  require(messagesOf(step) == messagesOf(std::max<std::size_t>(1, all.size())));
  std::string received = Host::framed(all) + "1\nx", message;
  require(Host::takeMessage(received, message) && message == all);
  require(Host::takeMessage(received, message) && message == "x" && received.empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  Bytes bytes(data, size);
  switch (bytes.take<char>()) {
    case 'l':
      readLine(bytes.rest());
      break;
    case 'r':
      checkWritten(anyRow(bytes));
      break;
    case 'f':
      receive(bytes);
      break;
    default:
      readFolder(bytes);
  }
  return 0;
}
