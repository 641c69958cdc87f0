#pragma once

#include <lumivane/export.h>

#include <cstddef>
#include <string>
#include <vector>

namespace Lumivane::IO {

/// One record of a table.
struct CsvRecord {
  std::size_t line = 0;             ///< on which it starts, from 1
  std::vector<std::string> fields;  ///< without the quotes around them
};

/// Reads a table record by record, by the same rules as `readCsv`. Borrows text and name.
class LUMIVANE_EXPORT CsvCursor {
 public:
  /// \param theFile  the subject of errors
  CsvCursor(const std::string& theText, const std::string& theFile);

  /// Reads the next record into one that may have been used before, whose memory is used again.
  /// Returns whether there was one. \throws Error that names the line
  bool next(CsvRecord& record);

  /// Where in the text the record that was read last starts.
  std::size_t position() const { return start; }
  /// Goes on at such a place. Lines are no longer counted from the start of the text.
  void goTo(std::size_t position);

 private:
  void readPlain(std::string& field);
  void readQuoted(std::string& field);
  bool skipLineEnd();
  [[noreturn]] void fail(std::size_t where, const std::string& cause) const;

  const std::string& text;
  const std::string& file;
  std::size_t at = 0;
  std::size_t start = 0;
  std::size_t line = 1;
};

/// The records of a table by the rules of RFC 4180: fields divided by commas, records by line ends
/// (CR LF, LF or CR); a field in quotes may hold all of these, and quotes doubled. A byte order
/// mark and empty lines are passed over.
/// \param file  the subject of errors
/// \throws Error that names the line
LUMIVANE_EXPORT std::vector<CsvRecord> readCsv(const std::string& text, const std::string& file);

}  // namespace Lumivane::IO
