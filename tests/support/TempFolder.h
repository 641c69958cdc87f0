#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <stdlib.h>

namespace Lumivane::Test {

/// A folder of its own for files of one test; it goes with all it holds at the end.
class TempFolder {
 public:
  TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "lumivane-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder = name;
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }

  /// The path of a file in it, which need not exist.
  std::string path(const std::string& name) const { return (folder / name).string(); }

  /// Writes a file and gives its path.
  std::string file(const std::string& name, const std::string& bytes) const {
    std::ofstream stream(path(name), std::ios::binary);
    stream << bytes;
    if (!stream.flush()) throw std::runtime_error("cannot write " + path(name));
    return path(name);
  }

 private:
  std::filesystem::path folder;
};

/// The bytes of a file; fails the test run by an exception if it cannot be read.
inline std::string fileBytes(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + path);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

}  // namespace Lumivane::Test
