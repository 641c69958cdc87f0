#include "Journal.h"

#include "Csv.h"
#include "HostError.h"

#include <lumivane/session/Files.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

// A batch's memory of what is made: one line for each view, appended with a single write, so that a
// crash leaves at most one torn line, the last, which is cut off at the next start. Every process
// of a batch has a part of its own.
namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;

fs::path partsFolder(const std::string& folder) { return fs::path(folder) / "parts"; }
fs::path journalFile(const std::string& folder) { return fs::path(folder) / "journal.csv"; }

// Escapes what could end a line or a record, and the character that leads an escape.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte != 0x7F && c != '\\') {
      result += c;
      continue;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(byte));
    result += escape;
  }
  return result;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::optional<std::string> unescaped(const std::string& text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      result += text[i];
      continue;
    }
    if (i + 3 >= text.size() || text[i + 1] != 'x') return std::nullopt;
    const int high = hexDigit(text[i + 2]);
    const int low = hexDigit(text[i + 3]);
    if (high < 0 || low < 0) return std::nullopt;
    result += static_cast<char>(high * 16 + low);
    i += 3;
  }
  return result;
}

// The fields of a line as they were before they were escaped.
std::optional<std::vector<std::string>> fieldsOf(const std::string& line) {
  std::vector<std::string> fields;
  try {
    const std::vector<CsvRecord> records = readCsv(line, "the journal");
    if (records.size() != 1) return std::nullopt;
    for (const std::string& field : records[0].fields) {
      const std::optional<std::string> text = unescaped(field);
      if (!text) return std::nullopt;
      fields.push_back(*text);
    }
  } catch (const HostError&) {
    return std::nullopt;
  }
  return fields;
}

constexpr size_t FixedFields = 5;  // state, name, sources, options, row
constexpr size_t FileFields = 3;   // name, size, hash

bool readFiles(const std::vector<std::string>& fields, std::vector<FileMark>& files) {
  if (fields.size() < FixedFields || (fields.size() - FixedFields) % FileFields != 0) return false;
  for (size_t i = FixedFields; i < fields.size(); i += FileFields) {
    const auto size = readKey(fields[i + 1]);
    const auto hash = readKey(fields[i + 2]);
    if (!size || !hash) return false;
    files.push_back({fields[i], *size, *hash});
  }
  return true;
}

std::string line(std::uint64_t key, const JournalRow& row) {
  return keyText(key) + "," + journalText(row) + "\n";
}

// A line that is no row, as of another program, counts as none.
void readLine(const std::string& text, const Journal::Wanted& wanted, Journal::Rows& rows) {
  const size_t comma = text.find(',');
  if (comma == std::string::npos) return;
  const auto key = readKey(text.substr(0, comma));
  auto row = readJournalText(text.substr(comma + 1));
  if (key && row && wanted(*key, *row)) rows[*key].push_back(std::move(*row));
}

void readRows(const std::string& path, const Journal::Wanted& wanted, Journal::Rows& rows) {
  Session::checkReadable(path);
  std::ifstream file(path, std::ios::binary);
  std::string text;
  while (std::getline(file, text) && !file.eof()) readLine(text, wanted, rows);
  if (file.bad() || !file.eof()) throw HostError(path, "cannot be read");
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

// Where the last line end is followed, looked for from the end.
off_t endOfWholeLines(std::ifstream& file, off_t size) {
  constexpr off_t BlockSize = 1 << 16;
  std::string block;
  for (off_t end = size; end > 0;) {
    const off_t start = std::max<off_t>(0, end - BlockSize);
    block.resize(static_cast<size_t>(end - start));
    file.seekg(start);
    file.read(block.data(), end - start);
    const size_t last = block.rfind('\n');
    if (last != std::string::npos) return start + static_cast<off_t>(last) + 1;
    end = start;
  }
  return 0;
}

// A killed run leaves a line without an end, to which nothing may be appended.
void cutTornLine(int descriptor, const std::string& path) {
  Session::checkReadable(path);
  std::ifstream file(path, std::ios::binary);
  const auto size = static_cast<off_t>(fs::file_size(path));
  const off_t whole = endOfWholeLines(file, size);
  if (!file) throw HostError(path, "cannot be read");
  if (whole < size && ftruncate(descriptor, whole) != 0)
    throw HostError(path, std::string("cannot be written: ") + std::strerror(errno));
}

void removePart(const fs::path& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
  ::close(descriptor);
}

}  // namespace

std::string journalText(const JournalRow& row) {
  std::vector<std::string> fields = {row.isDone ? "done" : "failed", row.name, keyText(row.sources),
                                     row.options, row.row};
  for (const FileMark& mark : row.files)
    fields.insert(fields.end(), {mark.file, keyText(mark.size), keyText(mark.hash)});
  for (std::string& field : fields) field = escaped(field);
  return csvRecord(fields);
}

std::optional<JournalRow> readJournalText(const std::string& line) {
  const auto fields = fieldsOf(line);
  JournalRow row;
  if (!fields || !readFiles(*fields, row.files)) return std::nullopt;
  const auto sources = readKey((*fields)[2]);
  if (!sources || ((*fields)[0] != "done" && (*fields)[0] != "failed")) return std::nullopt;
  row.isDone = (*fields)[0] == "done";
  row.name = (*fields)[1];
  row.sources = *sources;
  row.options = (*fields)[3];
  row.row = (*fields)[4];
  return row;
}

Journal::Journal(const std::string& folder, const Shard& shard) : descriptor(-1) {
  const std::string path = (partsFolder(folder) / (shard.name() + ".csv")).string();
  do {
    if (descriptor >= 0) ::close(descriptor);
    std::error_code error;
    fs::create_directories(partsFolder(folder), error);
    descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0666);
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

// A run that ends puts the rows of all parts into the journal and then removes the parts. So the
// parts are read before the journal, and if one cannot be read, all is listed and read again.
Journal::Rows Journal::rows(const std::string& folder, const Wanted& wanted) {
  constexpr int MostTries = 100;
  for (int i = 1;; ++i) {
    const std::vector<fs::path> listed = parts(folder);
    try {
      Rows later;
      for (const fs::path& part : listed) readRows(part.string(), wanted, later);
      Rows result;
      if (fs::exists(journalFile(folder))) readRows(journalFile(folder).string(), wanted, result);
      for (auto& [key, rows] : later) {
        std::vector<JournalRow>& all = result[key];
        all.insert(all.end(), std::make_move_iterator(rows.begin()),
                   std::make_move_iterator(rows.end()));
      }
      return result;
    } catch (const HostError&) {
      if (i == MostTries) throw;
    }
  }
}

Journal::Rows Journal::rows(const std::string& folder) {
  return rows(folder, [](std::uint64_t, const JournalRow&) { return true; });
}

void Journal::close(const std::string& folder,
                    const std::vector<std::pair<std::uint64_t, const JournalRow*>>& rows) {
  Session::writeFile(journalFile(folder).string(), [&rows](std::ostream& out) {
    for (const auto& [key, row] : rows) out << line(key, *row);
  });
  for (const fs::path& part : parts(folder)) removePart(part);
  std::error_code error;
  fs::remove(partsFolder(folder), error);  // as long as runs are at work in it, it stays
}

}  // namespace Lumivane::Host
