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

/// The records of a table by the rules of RFC 4180: fields divided by commas, records by line ends
/// (CR LF, LF or CR); a field in quotes may hold all of these, and quotes doubled. A byte order
/// mark and empty lines are passed over.
/// \param file  the subject of errors
/// \throws Error that names the line
LUMIVANE_EXPORT std::vector<CsvRecord> readCsv(const std::string& text, const std::string& file);

}  // namespace Lumivane::IO
