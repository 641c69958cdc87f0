#include <lumivane/io/CsvReading.h>
#include <lumivane/io/Error.h>

namespace Lumivane::IO {

CsvCursor::CsvCursor(const std::string& theText, const std::string& theFile)
    : text(theText), file(theFile), at(text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0) {}

bool CsvCursor::next(CsvRecord& record) {
  while (skipLineEnd()) {
  }
  if (at >= text.size()) return false;
  start = at;
  record.line = line;
  std::size_t count = 0;
  while (true) {
    if (count == record.fields.size()) record.fields.emplace_back();
    std::string& field = record.fields[count++];
    field.clear();
    at < text.size() && text[at] == '"' ? readQuoted(field) : readPlain(field);
    if (at >= text.size() || skipLineEnd()) break;
    if (text[at] != ',') fail(line, "a closing quote must end its field");
    ++at;
  }
  record.fields.resize(count);
  return true;
}

void CsvCursor::goTo(std::size_t position) { at = position; }

// Character by character, since fields are short.
void CsvCursor::readPlain(std::string& field) {
  const std::size_t first = at;
  bool hasQuote = false;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (c == ',' || c == '\r' || c == '\n') break;
    hasQuote |= c == '"';
  }
  if (hasQuote) fail(line, "a quote inside a field that does not start with one");
  field.assign(text, first, at - first);
}

void CsvCursor::readQuoted(std::string& field) {
  const std::size_t opening = line;
  for (++at; at < text.size(); ++at) {
    if (text[at] == '"') {
      if (text.compare(at, 2, "\"\"") != 0) {
        ++at;
        return;
      }
      ++at;
    } else if (text[at] == '\n') {
      ++line;
    }
    field += text[at];
  }
  fail(opening, "the quote that starts a field is never closed");
}

bool CsvCursor::skipLineEnd() {
  if (at >= text.size() || (text[at] != '\r' && text[at] != '\n')) return false;
  at += text.compare(at, 2, "\r\n") == 0 ? 2 : 1;
  ++line;
  return true;
}

void CsvCursor::fail(std::size_t where, const std::string& cause) const {
  throw Error(file, "line " + std::to_string(where) + ": " + cause);
}

std::vector<CsvRecord> readCsv(const std::string& text, const std::string& file) {
  std::vector<CsvRecord> records;
  CsvCursor cursor(text, file);
  for (CsvRecord record; cursor.next(record); record = {}) records.push_back(std::move(record));
  return records;
}

}  // namespace Lumivane::IO
