#pragma once

#include "Options.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// What is known of a view that has been made.
struct JournalRow {
  bool isDone = false;  ///< false if it failed
  std::string row;      ///< its row of the summary, without a line end
};

/// The record of a run in its folder, by which a killed run goes on and shards come together.
///
/// A row is appended, as one line, to the file "parts/I-of-K.csv" as soon as its view is made. When
/// all views of the table are there, all rows go into "journal.csv", the summary's rows in the
/// table's order, and the parts are removed. So the folder ends up the same whatever the shards.
class Journal {
 public:
  using Rows = std::map<std::uint64_t, JournalRow>;

  /// Opens the shard's part to append to.
  /// \throws HostError if it cannot be opened or another run has it open
  Journal(const std::string& folder, Shard shard);
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;
  ~Journal();

  /// \throws HostError
  void append(std::uint64_t key, const JournalRow& row);

  /// All rows by key that the folder's parts and journal hold. Of two rows of one key, one that is
  /// done counts, or else the later one. A last line without an end, as a killed run leaves it, is
  /// passed over.
  static Rows rows(const std::string& folder);

  /// Writes the journal of these views and removes all parts but those that a run has open.
  static void close(const std::string& folder, const std::vector<std::uint64_t>& keys,
                    const Rows& rows);

 private:
  int descriptor;
};

}  // namespace Lumivane::Host
