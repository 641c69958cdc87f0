#include "visibility/MappedFile.h"

#include <lumivane/session/Error.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Lumivane::Visibility {
namespace {

using Session::Error;

// Closed again when the file is mapped, which keeps it open.
class Descriptor {
 public:
  explicit Descriptor(const std::string& path) : number(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (number < 0) throw Error(path, std::string("cannot be read: ") + std::strerror(errno));
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(number); }

  const int number;
};

}  // namespace

MappedFile::MappedFile(const std::string& path) {
  const Descriptor file(path);
  struct stat status = {};
  if (fstat(file.number, &status) != 0)
    throw Error(path, std::string("cannot be read: ") + std::strerror(errno));
  if (!S_ISREG(status.st_mode)) throw Error(path, "cannot be read: it is no plain file");
  count = static_cast<std::size_t>(status.st_size);
  if (count == 0) return;
  void* const mapped = mmap(nullptr, count, PROT_READ, MAP_PRIVATE, file.number, 0);
  if (mapped == MAP_FAILED)
    throw Error(path, std::string("cannot be mapped into memory: ") + std::strerror(errno));
  bytes = static_cast<const char*>(mapped);
}

MappedFile::~MappedFile() {
  // The address is that of mmap, which gives it without const.
  if (bytes != nullptr) munmap(const_cast<char*>(bytes), count);
}

void MappedFile::fetch(std::size_t number) const {
  if (bytes == nullptr) return;
  void* const first = const_cast<char*>(bytes);
  const std::size_t length = std::min(number, count);
  madvise(first, length, MADV_WILLNEED);
#ifdef MADV_POPULATE_READ
  madvise(first, length, MADV_POPULATE_READ);  // older kernels refuse it, and nothing is lost
#endif
}

}  // namespace Lumivane::Visibility
