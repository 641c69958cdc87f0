#include "FactorJournal.h"

#include "FileMark.h"
#include "HostError.h"

#include <lumivane/io/FileReading.h>
#include <lumivane/measure/FactorText.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace Lumivane::Host {
namespace {

[[noreturn]] void fail(const std::string& path) {
  throw HostError(path, std::string("cannot be written: ") + std::strerror(errno));
}

void writeAll(int descriptor, const std::string& path, const std::string& text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) fail(path);
    done += static_cast<size_t>(count);
  }
}

}  // namespace

FactorJournal::FactorJournal(const std::string& journalPath, std::uint64_t key)
    : path(journalPath) {
  descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0666);
  if (descriptor < 0) fail(path);
  if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    close(descriptor);
    throw HostError(path, "another run is at work on it");
  }
  const std::string heading = "lumivane factors " + keyText(key) + "\n";
  const std::string text = IO::readBytes(path);
  size_t kept = 0;
  if (text.compare(0, heading.size(), heading) == 0) {
    kept = heading.size();
    for (size_t end = text.find('\n', kept); end != std::string::npos;
         end = text.find('\n', kept)) {
      if (auto row = Measure::FactorText::readRowText(text.substr(kept, end - kept)))
        rows.push_back(std::move(*row));
      kept = end + 1;
    }
  }
  if (kept < text.size() && ftruncate(descriptor, static_cast<off_t>(kept)) != 0) fail(path);
  if (kept == 0) writeAll(descriptor, path, heading);
}

FactorJournal::~FactorJournal() { close(descriptor); }

void FactorJournal::append(const Measure::FactorRow& row) {
  writeAll(descriptor, path, Measure::FactorText::rowText(row) + "\n");
}

void FactorJournal::remove() {
  std::error_code error;
  std::filesystem::remove(path, error);
}

}  // namespace Lumivane::Host
