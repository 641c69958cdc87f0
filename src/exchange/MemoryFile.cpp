#include "exchange/MemoryFile.h"

#include "exchange/ImportError.h"

#include <fstream>

#include <sys/mman.h>
#include <unistd.h>

namespace Lumivane::Exchange {

MemoryFile::MemoryFile(const std::string& bytes)
    : descriptor(memfd_create("lumivane", MFD_CLOEXEC)) {
  std::ofstream stream(path(), std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (stream.flush()) return;
  close(descriptor);
  throw ImportError("no copy of it can be made in memory");
}

MemoryFile::~MemoryFile() { close(descriptor); }

std::string MemoryFile::path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

}  // namespace Lumivane::Exchange
