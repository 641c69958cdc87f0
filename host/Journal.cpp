#include "Journal.h"

#include "Csv.h"
#include "HostError.h"

#include <lumivane/session/Files.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;

fs::path partsFolder(const std::string& folder) { return fs::path(folder) / "parts"; }
fs::path journalFile(const std::string& folder) { return fs::path(folder) / "journal.csv"; }

// "KEY done ROW": the key in 16 hexadecimal digits.
std::string line(std::uint64_t key, const JournalRow& row) {
  char text[32];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(key));
  return std::string(text) + (row.isDone ? " done " : " failed ") + row.row + "\n";
}

// A line that is no row, as of another program, counts as none.
void readLine(const std::string& text, Journal::Rows& rows) {
  const size_t first = text.find(' ');
  const size_t second = first == std::string::npos ? first : text.find(' ', first + 1);
  if (first != 16 || second == std::string::npos) return;
  const std::string digits = text.substr(0, first);
  char* end = nullptr;
  const std::uint64_t key = std::strtoull(digits.c_str(), &end, 16);
  const std::string state = text.substr(first + 1, second - first - 1);
  if (*end != '\0' || (state != "done" && state != "failed")) return;
  JournalRow row{state == "done", text.substr(second + 1)};
  const auto known = rows.find(key);
  if (known == rows.end() || row.isDone || !known->second.isDone) rows[key] = std::move(row);
}

void readFile(const fs::path& path, Journal::Rows& rows) {
  const std::string text = Session::readBytes(path.string());
  for (size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1)
    readLine(text.substr(at, end - at), rows);
}

std::vector<fs::path> parts(const std::string& folder) {
  std::vector<fs::path> result;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(partsFolder(folder), error))
    if (entry.path().extension() == ".csv") result.push_back(entry.path());
  std::sort(result.begin(), result.end());
  return result;
}

// Whether the open file still bears the name: another run may have taken it away meanwhile.
bool bearsName(int descriptor, const std::string& path) {
  struct stat open = {};
  struct stat named = {};
  return fstat(descriptor, &open) == 0 && stat(path.c_str(), &named) == 0 &&
         open.st_ino == named.st_ino && open.st_dev == named.st_dev;
}

// A killed run leaves a line without an end, to which nothing may be appended.
void cutTornLine(int descriptor, const std::string& path) {
  const std::string text = Session::readBytes(path);
  const size_t end = text.rfind('\n');
  const size_t whole = end == std::string::npos ? 0 : end + 1;
  if (whole < text.size() && ftruncate(descriptor, static_cast<off_t>(whole)) != 0)
    throw HostError(path, std::string("cannot be written: ") + std::strerror(errno));
}

void removePart(const fs::path& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
  ::close(descriptor);
}

}  // namespace

Journal::Journal(const std::string& folder, Shard shard) : descriptor(-1) {
  const std::string path = (partsFolder(folder) / (std::to_string(shard.number) + "-of-" +
                                                   std::to_string(shard.count) + ".csv"))
                               .string();
  do {
    if (descriptor >= 0) ::close(descriptor);
    std::error_code error;
    fs::create_directories(partsFolder(folder), error);
    descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (descriptor < 0 && errno == ENOENT) continue;  // another run has just taken the folder away
    if (descriptor < 0)
      throw HostError(path, std::string("cannot be written: ") + std::strerror(errno));
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
      ::close(descriptor);
      throw HostError(path, "another run is at work on it");
    }
  } while (descriptor < 0 || !bearsName(descriptor, path));
  cutTornLine(descriptor, path);
}

Journal::~Journal() { ::close(descriptor); }

void Journal::append(std::uint64_t key, const JournalRow& row) {
  const std::string text = line(key, row);
  for (size_t done = 0; done < text.size();) {
    const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0)
      throw HostError("the journal", std::string("cannot be written: ") + std::strerror(errno));
    done += static_cast<size_t>(count);
  }
}

Journal::Rows Journal::rows(const std::string& folder) {
  Rows result;
  if (fs::exists(journalFile(folder))) readFile(journalFile(folder), result);
  for (const fs::path& part : parts(folder)) readFile(part, result);
  return result;
}

void Journal::close(const std::string& folder, const std::vector<std::uint64_t>& keys,
                    const Rows& rows) {
  std::string text;
  for (const std::uint64_t key : keys) text += line(key, rows.at(key));
  Session::writeFile(journalFile(folder).string(), text);
  for (const fs::path& part : parts(folder)) removePart(part);
  std::error_code error;
  fs::remove(partsFolder(folder), error);  // as long as runs are at work in it, it stays
}

}  // namespace Lumivane::Host
