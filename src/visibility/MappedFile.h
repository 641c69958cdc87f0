#pragma once

#include <cstddef>
#include <string>

namespace Lumivane::Visibility {

/// The bytes of a plain file, mapped into memory and never changed there.
class MappedFile {
 public:
  /// \throws Session::Error if it cannot be read or is no plain file
  explicit MappedFile(const std::string& path);
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile();

  const char* data() const { return bytes; }
  std::size_t size() const { return count; }

  /// Fetches the first bytes all at once, which takes less time than page by page.
  void fetch(std::size_t number) const;

 private:
  const char* bytes = nullptr;
  std::size_t count = 0;
};

}  // namespace Lumivane::Visibility
