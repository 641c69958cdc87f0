#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Lumivane::Measure {

/// Named arrays of one dimension as one file that NumPy reads (.npz): a zip archive of files in its
/// format .npy, version 1.0, least byte first.
class NumpyArchive {
 public:
  static bool isBuilt();  ///< False without libarchive.

  void add(const std::string& name, const std::vector<double>& values);
  void add(const std::string& name, const std::vector<std::int64_t>& values);
  /// A byte string as an array of no dimension.
  void addWord(const std::string& name, const std::string& word);

  /// The archive, not compressed. \throws std::runtime_error
  std::string bytes() const;

 private:
  std::vector<std::pair<std::string, std::string>> files;  // names and contents
};

}  // namespace Lumivane::Measure
