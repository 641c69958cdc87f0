#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace Lumivane::Fuzz {

/// A folder of the process for the files of its runs, in memory where the system has such a place.
/// It goes when the process ends by itself.
class Folder {
 public:
  Folder() {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path memory = "/dev/shm";
    const fs::path place = fs::is_directory(memory, error) ? memory : fs::temp_directory_path();
    std::string name = (place / "lumivane-fuzz-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) __builtin_trap();
    folder = name;
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }

  const std::filesystem::path& path() const { return folder; }

  /// Removes all that is in it.
  void clear() const {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored))
      std::filesystem::remove_all(entry.path(), ignored);
  }

 private:
  std::filesystem::path folder;
};

inline void writeBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace Lumivane::Fuzz
