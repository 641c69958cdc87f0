#include "Output.h"

#include "HostError.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& path, int error) {
  throw HostError(path, "cannot be written: " + std::string(std::strerror(error)));
}

int writeAll(int descriptor, const std::string& bytes) {
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t count = write(descriptor, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count < 0 ? errno : EIO;
    done += static_cast<size_t>(count);
  }
  return 0;
}

// Writes and closes; returns the first error, or 0. Some file systems report a full disk only when
// the file is closed.
int writeAndClose(int descriptor, const std::string& bytes) {
  const int error = writeAll(descriptor, bytes);
  const int closed = close(descriptor) == 0 ? 0 : errno;
  return error != 0 ? error : closed;
}

bool isPlainOrNew(const fs::path& path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  return status.type() == fs::file_type::not_found || status.type() == fs::file_type::regular;
}

// The file that the name means: a link stays one, and what it points at is replaced.
fs::path target(const std::string& path) {
  std::error_code error;
  const fs::path real = fs::weakly_canonical(path, error);
  return error || !fs::is_symlink(fs::symlink_status(path, error)) ? fs::path(path) : real;
}

int createBeside(const fs::path& file, std::string& name) {
  for (int i = 0; i < 100; ++i) {
    name = (file.parent_path() / ("." + file.filename().string() + "." + std::to_string(getpid()) +
                                  "-" + std::to_string(i)))
               .string();
    const int descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor >= 0 || errno != EEXIST) return descriptor;
  }
  return -1;
}

void keepMode(const fs::path& file, int descriptor) {
  struct stat status = {};
  if (stat(file.c_str(), &status) == 0) fchmod(descriptor, status.st_mode & 07777);
}

}  // namespace

void checkWritable(const std::string& path) {
  if (path.empty()) throw HostError("\"\"", "cannot be written: the name is empty");
  struct stat status = {};
  if (stat(path.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) throw HostError(path, "cannot be written: it is a folder");
    return;
  }
  if (path.back() == '/') throw HostError(path, "cannot be written: it names a folder");
  const fs::path folder = fs::path(path).parent_path();
  const std::string name = folder.empty() ? "." : folder.string();
  if (stat(name.c_str(), &status) != 0) fail(path, errno);
  if (!S_ISDIR(status.st_mode)) fail(path, ENOTDIR);
}

void writeFile(const std::string& path, const std::string& bytes) {
  checkWritable(path);
  if (!isPlainOrNew(path)) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const int error = descriptor < 0 ? errno : writeAndClose(descriptor, bytes);
    if (error != 0) fail(path, error);
    return;
  }

  const fs::path file = target(path);
  std::string beside;
  const int descriptor = createBeside(file, beside);
  if (descriptor < 0) fail(path, errno);
  keepMode(file, descriptor);
  int error = writeAndClose(descriptor, bytes);
  if (error == 0 && std::rename(beside.c_str(), file.c_str()) != 0) error = errno;
  if (error == 0) return;
  unlink(beside.c_str());
  fail(path, error);
}

bool sameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  if (fs::equivalent(a, b, error)) return true;
  const fs::path first = fs::weakly_canonical(a, error);
  if (error) return a == b;
  const fs::path second = fs::weakly_canonical(b, error);
  return error ? a == b : first == second;
}

}  // namespace Lumivane::Host
