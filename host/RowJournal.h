#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Lumivane::Host {

struct ImportSettings;

/// What has been made, in a file beside the output, so that a run that was ended goes on where it
/// was. Its first line stands for all that the others depend on; each of these is one piece of
/// work. A journal of other things, and a last line without an end, are passed over. While it is
/// open, no other run takes the file.
class RowJournal {
 public:
  /// Reads what is there, and opens the file to append to.
  /// \param command  in its first line
  /// \param key      of all that its lines depend on
  /// \throws HostError
  RowJournal(const std::string& path, const std::string& command, std::uint64_t key);
  RowJournal(const RowJournal&) = delete;
  RowJournal& operator=(const RowJournal&) = delete;
  ~RowJournal();

  /// What was there, line by line.
  std::vector<std::string> takeLines() { return std::move(lines); }
  /// \param line  without its end. For one thread at a time. \throws HostError
  void append(const std::string& line);
  void remove();  ///< When the output has been written.

 private:
  std::string path;
  int descriptor = -1;
  std::vector<std::string> lines;
};

/// Stands for the program's version, a scene with all files that it is read from, and how it is
/// imported. \throws HostError
std::uint64_t sceneKey(const std::string& scene, const ImportSettings& import);

}  // namespace Lumivane::Host
