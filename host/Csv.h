#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// One record of a table of comma-separated values.
struct CsvRecord {
  size_t line = 0;  ///< where it starts, from 1
  std::vector<std::string> fields;
};

/// The records of a text by the rules of RFC 4180: fields parted by commas, records by line ends
/// (CR LF, LF or CR); a field in quotes may hold all of these, and quotes doubled. A byte order
/// mark and empty lines are passed over.
/// \throws HostError that names `file` and the line
std::vector<CsvRecord> readCsv(const std::string& text, const std::string& file);

/// The fields, in quotes where they need them, parted by commas, without a line end.
std::string csvRecord(const std::vector<std::string>& fields);

}  // namespace Lumivane::Host
