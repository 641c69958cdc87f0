#pragma once

#include "FileMark.h"
#include "Options.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// What is known of a view that has been made.
struct JournalRow {
  bool isDone = false;          ///< false if it failed
  std::string name;             ///< the view's
  std::uint64_t sources = 0;    ///< stands for the program's version and all files that were read
  std::string options;          ///< those given for all views, one after the other
  std::string row;              ///< its row of the summary, without a line end
  std::vector<FileMark> files;  ///< its outputs, as names in the folder
};

/// The row as one line of text, whatever bytes its members hold, and back; nothing if a line is no
/// row.
std::string journalText(const JournalRow& row);
std::optional<JournalRow> readJournalText(const std::string& line);

/// The record of a run in its folder, by which a killed run goes on and shards come together.
///
/// A row is appended, as one line, to the file "parts/I-of-K.csv" (of a range of rows
/// "parts/I-of-K-rows-A-B.csv") as soon as its view is made. When
/// all views of the table are there, all rows go into "journal.csv", the summary's rows in the
/// table's order, and the parts are removed. So the folder ends up the same whatever the shards.
class Journal {
 public:
  /// The rows of each view by its key, the oldest first. A view has several if it was tried again.
  using Rows = std::map<std::uint64_t, std::vector<JournalRow>>;

  /// Opens the shard's part to append to.
  /// \throws HostError if it cannot be opened or another run has it open
  Journal(const std::string& folder, const Shard& shard);
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;
  ~Journal();

  /// \throws HostError
  void append(std::uint64_t key, const JournalRow& row);

  /// Whether a row is wanted. It may be asked of a row twice, when parts vanish meanwhile.
  using Wanted = std::function<bool(std::uint64_t key, const JournalRow& row)>;

  /// All wanted rows that the folder's journal and parts hold, which are read line by line. A last
  /// line without an end, as a killed run leaves it, is passed over.
  static Rows rows(const std::string& folder, const Wanted& wanted);
  /// All rows.
  static Rows rows(const std::string& folder);

  /// Writes the journal of these views and removes all parts but those that a run has open.
  static void close(const std::string& folder,
                    const std::vector<std::pair<std::uint64_t, const JournalRow*>>& rows);

 private:
  int descriptor;
};

}  // namespace Lumivane::Host
