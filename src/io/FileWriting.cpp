// A file is written beside its place and then renamed over it: a reader, a full disk or a signal
// never meets half a file. Devices, pipes and open descriptors cannot be replaced and are written
// directly.

#include "io/UnfinishedFile.h"

#include <lumivane/io/Error.h>
#include <lumivane/io/FileWriting.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <streambuf>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::IO {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& path, int error) {
  throw Error(path, "cannot be written: " + std::string(std::strerror(error)));
}

int writeAll(int descriptor, std::string_view bytes) {
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t count = write(descriptor, bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count < 0 ? errno : EIO;
    done += static_cast<size_t>(count);
  }
  return 0;
}

// Writes to a descriptor in large pieces; after an error nothing more.
class DescriptorBuffer : public std::streambuf {
 public:
  explicit DescriptorBuffer(int target) : descriptor(target) {}

  int error() const { return firstError; }

 protected:
  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    if (firstError == 0)
      firstError = writeAll(descriptor, {bytes, static_cast<std::size_t>(count)});
    return firstError == 0 ? count : 0;
  }
  int_type overflow(int_type c) override {
    const char byte = traits_type::to_char_type(c);
    return xsputn(&byte, 1) == 1 ? traits_type::not_eof(c) : traits_type::eof();
  }

 private:
  int descriptor;
  int firstError = 0;
};

using Put = std::function<void(std::ostream&)>;

int putAll(int descriptor, const Put& put) {
  DescriptorBuffer buffer(descriptor);
  std::ostream stream(&buffer);
  put(stream);
  return buffer.error();
}

// Writes and closes; returns the first error, or 0. Some file systems report a full disk only when
// the file is closed.
int writeAndClose(int descriptor, const Put& put) {
  int error = 0;
  try {
    error = putAll(descriptor, put);
  } catch (...) {
    close(descriptor);
    throw;
  }
  const int closed = close(descriptor) == 0 ? 0 : errno;
  return error != 0 ? error : closed;
}

// The descriptor of this process that a name means, as "/dev/stdout" and "/dev/fd/3" do; -1 if
// none. What stands behind it is not ours to replace, be it a plain file: others have it open.
int namedDescriptor(const std::string& path) {
  if (path == "/dev/stdout") return STDOUT_FILENO;
  if (path == "/dev/stderr") return STDERR_FILENO;
  for (const std::string folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (path.rfind(folder, 0) != 0) continue;
    int number = -1;
    const char* const end = path.data() + path.size();
    const auto read = std::from_chars(path.data() + folder.size(), end, number);
    if (read.ec == std::errc() && read.ptr == end && number >= 0) return number;
  }
  return -1;
}

// At the place that the descriptor has come to, behind what has been printed so far.
void writeToDescriptor(const std::string& path, int number, const Put& put) {
  std::fflush(stdout);
  const int descriptor = fcntl(number, F_DUPFD_CLOEXEC, 0);
  const int error = descriptor < 0 ? errno : writeAndClose(descriptor, put);
  if (error != 0) fail(path, error);
}

bool isPlainOrNew(const fs::path& path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  return status.type() == fs::file_type::not_found || status.type() == fs::file_type::regular;
}

// The file that the name means: a link stays one, and what it points at is replaced or made. A
// link in a circle is left to the system to refuse.
fs::path target(const std::string& path) {
  constexpr int MostLinks = 40;  // as the system follows
  fs::path file = path;
  std::error_code error;
  for (int i = 0; i < MostLinks; ++i) {
    if (!fs::is_symlink(fs::symlink_status(file, error))) return file;
    const fs::path next = fs::read_symlink(file, error);
    if (error) return file;
    file = next.is_absolute() ? next : file.parent_path() / next;
  }
  return path;
}

void keepMode(const fs::path& file, int descriptor) {
  struct stat status = {};
  if (stat(file.c_str(), &status) == 0) fchmod(descriptor, status.st_mode & 07777);
}

// The folder in which the new file is to be made.
void checkFolder(const std::string& path) {
  const fs::path folder = target(path).parent_path();
  const std::string name = folder.empty() ? "." : folder.string();
  struct stat status = {};
  if (stat(name.c_str(), &status) != 0) fail(path, errno);
  if (!S_ISDIR(status.st_mode)) fail(path, ENOTDIR);
  if (access(name.c_str(), W_OK | X_OK) != 0) fail(path, errno);
}

}  // namespace

void checkWritable(const std::string& path) {
  if (path.empty()) throw Error("\"\"", "cannot be written: the name is empty");
  if (namedDescriptor(path) >= 0) {
    if (fcntl(namedDescriptor(path), F_GETFD) == -1) fail(path, errno);
    return;
  }
  struct stat status = {};
  if (stat(path.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) throw Error(path, "cannot be written: it is a folder");
    if (access(path.c_str(), W_OK) != 0) fail(path, errno);
  } else if (path.back() == '/') {
    throw Error(path, "cannot be written: it names a folder");
  }
  if (isPlainOrNew(path)) checkFolder(path);
}

void writeFile(const std::string& path, const std::string& bytes) {
  writeFile(path, [&bytes](std::ostream& stream) {
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  });
}

void writeFile(const std::string& path, const std::function<void(std::ostream&)>& put) {
  checkWritable(path);
  if (namedDescriptor(path) >= 0) return writeToDescriptor(path, namedDescriptor(path), put);
  if (!isPlainOrNew(path)) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const int error = descriptor < 0 ? errno : writeAndClose(descriptor, put);
    if (error != 0) fail(path, error);
    return;
  }

  const fs::path file = target(path);
  UnfinishedFile beside(file.parent_path().string());
  int error = beside.error();
  if (error == 0) {
    keepMode(file, beside.descriptor());
    error = writeAndClose(beside.descriptor(), put);
  }
  if (error == 0) error = beside.moveTo(file.string());
  if (error != 0) fail(path, error);
}

std::string writtenFile(const std::string& path) {
  std::error_code error;
  const fs::path file = fs::absolute(target(path), error);
  if (error) return path;
  const fs::path folder = fs::weakly_canonical(file.parent_path(), error);
  return error ? file.lexically_normal().string() : (folder / file.filename()).string();
}

bool sameFile(const std::string& a, const std::string& b) {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored) || writtenFile(a) == writtenFile(b);
}

}  // namespace Lumivane::IO
