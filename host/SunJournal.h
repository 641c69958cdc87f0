#pragma once

#include "RowJournal.h"

#include <lumivane/measure/SunText.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// What has been found out at the eyes of a table.
class SunJournal {
 public:
  /// \throws HostError
  SunJournal(const std::string& path, std::uint64_t key) : journal(path, "sun", key) {}

  /// Sets what is known of eyes from the run before: all but their names and places.
  /// \returns which of them are known
  std::vector<bool> takeInto(std::vector<Measure::SunEye>& eyes);
  /// For any number of threads. \throws HostError
  void append(std::size_t number, const Measure::SunEye& eye);
  void remove() { journal.remove(); }  ///< When the outputs have been written.

  /// A line of the journal, and back: numbers as few digits as read back to the same double.
  static std::string lineOf(std::size_t number, const Measure::SunEye& eye);
  /// False for what is no whole line of one of the eyes, which then stays as it is.
  static bool readLine(const std::string& line, std::vector<Measure::SunEye>& eyes,
                       std::size_t& number);

 private:
  RowJournal journal;
  std::mutex mutex;
};

}  // namespace Lumivane::Host
