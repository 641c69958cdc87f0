#include <lumivane/io/Error.h>
#include <lumivane/io/FileReading.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::IO {
namespace {

[[noreturn]] void fail(const std::string& path, int error) {
  throw Error(path, "cannot be read: " + std::string(std::strerror(error)));
}

class Descriptor {
 public:
  explicit Descriptor(int newNumber) : number(newNumber) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number >= 0) close(number);
  }
  const int number;
};

}  // namespace

void checkReadable(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0 || access(path.c_str(), R_OK) != 0) fail(path, errno);
  if (S_ISDIR(status.st_mode)) throw Error(path, "cannot be read: it is a folder");
}

std::string readBytes(const std::string& path) {
  checkReadable(path);
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.number < 0) fail(path, errno);
  struct stat status = {};
  if (fstat(file.number, &status) != 0) fail(path, errno);
  if (S_ISBLK(status.st_mode) || (S_ISCHR(status.st_mode) && isatty(file.number) == 0))
    throw Error(path, "cannot be read: it is a device");
  std::string bytes;
  if (S_ISREG(status.st_mode)) bytes.reserve(static_cast<size_t>(status.st_size));
  char buffer[65536];
  for (;;) {
    const ssize_t count = read(file.number, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(path, errno);
    if (count == 0) return bytes;
    bytes.append(buffer, static_cast<size_t>(count));
  }
}

std::string readDocument(const std::string& path) {
  std::string text = readBytes(path);
  text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
  return text;
}

}  // namespace Lumivane::IO
