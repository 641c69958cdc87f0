#include <lumivane/io/CsvReading.h>
#include <lumivane/io/Error.h>

namespace Lumivane::IO {
namespace {

class CsvReader {
 public:
  CsvReader(const std::string& theText, const std::string& theFile)
      : text(theText), file(theFile), at(text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0) {}

  std::vector<CsvRecord> records() {
    std::vector<CsvRecord> result;
    while (at < text.size()) {
      if (skipLineEnd()) continue;
      result.push_back(record());
    }
    return result;
  }

 private:
  CsvRecord record() {
    CsvRecord result;
    result.line = line;
    while (true) {
      result.fields.push_back(at < text.size() && text[at] == '"' ? quoted() : plain());
      if (at >= text.size() || skipLineEnd()) return result;
      if (text[at] != ',') fail(line, "a closing quote must end its field");
      ++at;
    }
  }

  std::string plain() {
    const size_t end = text.find_first_of(",\r\n", at);
    std::string field = text.substr(at, end - at);
    if (field.find('"') != std::string::npos)
      fail(line, "a quote inside a field that does not start with one");
    at = end == std::string::npos ? text.size() : end;
    return field;
  }

  std::string quoted() {
    const size_t start = line;
    std::string field;
    for (++at; at < text.size(); ++at) {
      if (text[at] == '"') {
        if (text.compare(at, 2, "\"\"") != 0) {
          ++at;
          return field;
        }
        ++at;
      } else if (text[at] == '\n') {
        ++line;
      }
      field += text[at];
    }
    fail(start, "the quote that starts a field is never closed");
  }

  bool skipLineEnd() {
    if (at >= text.size() || (text[at] != '\r' && text[at] != '\n')) return false;
    at += text.compare(at, 2, "\r\n") == 0 ? 2 : 1;
    ++line;
    return true;
  }

  [[noreturn]] void fail(size_t where, const std::string& cause) const {
    throw Error(file, "line " + std::to_string(where) + ": " + cause);
  }

  const std::string& text;
  const std::string& file;
  size_t at;
  size_t line = 1;
};

}  // namespace

std::vector<CsvRecord> readCsv(const std::string& text, const std::string& file) {
  return CsvReader(text, file).records();
}

}  // namespace Lumivane::IO
