#pragma once

#include <lumivane/io/CsvReading.h>

#include <string>
#include <vector>

namespace Lumivane::Host {

using IO::CsvCursor;
using IO::CsvRecord;
using IO::readCsv;

/// The fields, in quotes where they need them, parted by commas, without a line end.
std::string csvRecord(const std::vector<std::string>& fields);

}  // namespace Lumivane::Host
