#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace Lumivane::Test {

/// An empty folder that is the working directory as long as the object lives, and gone after it.
class WorkingFolder {
 public:
  WorkingFolder() : before(std::filesystem::current_path()) {
    std::string pattern = (std::filesystem::temp_directory_path() / "lumivane-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path = pattern;
    std::filesystem::current_path(path);
  }
  ~WorkingFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before, ignored);
    std::filesystem::remove_all(path, ignored);
  }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

  bool isEmpty() const { return std::filesystem::is_empty(path); }
  std::filesystem::path file(const std::string& name) const { return path / name; }

  /// The whole content of a file here; empty if there is none.
  std::string read(const std::string& name) const {
    std::ifstream stream(file(name), std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
  }

 private:
  std::filesystem::path before;
  std::filesystem::path path;
};

}  // namespace Lumivane::Test
