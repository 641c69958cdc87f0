#pragma once

#include <string>

namespace Lumivane::IO {

/// A new file beside the place that it is meant for; unless it took that place, it goes with this
/// object, or with `removeUnfinishedFiles`.
class UnfinishedFile {
 public:
  /// Creates it in a folder, which may be empty for the working directory. See `error`.
  explicit UnfinishedFile(const std::string& folder);
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  ~UnfinishedFile();

  /// Why it could not be created, as errno; 0 if it was.
  int error() const { return creationError; }
  /// Open for writing; the caller closes it.
  int descriptor() const { return fileDescriptor; }
  /// Gives it its place, over what stood there. Returns errno, or 0.
  int moveTo(const std::string& path);

 private:
  void create(const std::string& folder);

  std::string name;
  int slot = -1;
  int fileDescriptor = -1;
  int creationError = 0;
  bool moved = false;
};

}  // namespace Lumivane::IO
