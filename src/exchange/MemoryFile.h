#pragma once

#include <string>

namespace Lumivane::Exchange {

/// A file in memory that holds given bytes, for readers that want a name: so they read the bytes
/// that have been checked, whatever becomes of the file these came from.
class MemoryFile {
 public:
  /// \throws ImportError if none can be made
  explicit MemoryFile(const std::string& bytes);
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile();

  /// A path by which this process can open it, as long as the object lives.
  std::string path() const;

 private:
  int descriptor;
};

}  // namespace Lumivane::Exchange
