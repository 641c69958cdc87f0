#include "RowJournal.h"

#include "FileMark.h"
#include "HostError.h"
#include "SceneSource.h"

#include <lumivane/io/FileReading.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

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

RowJournal::RowJournal(const std::string& journalPath, const std::string& command,
                       std::uint64_t key)
    : path(journalPath) {
  descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0666);
  if (descriptor < 0) fail(path);
  if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    close(descriptor);
    throw HostError(path, "another run is at work on it");
  }
  const std::string heading = "lumivane " + command + " " + keyText(key) + "\n";
  const std::string text = IO::readBytes(path);
  size_t kept = 0;
  if (text.compare(0, heading.size(), heading) == 0) {
    kept = heading.size();
    for (size_t end = text.find('\n', kept); end != std::string::npos;
         end = text.find('\n', kept)) {
      lines.push_back(text.substr(kept, end - kept));
      kept = end + 1;
    }
  }
  if (kept < text.size() && ftruncate(descriptor, static_cast<off_t>(kept)) != 0) fail(path);
  if (kept == 0) writeAll(descriptor, path, heading);
}

RowJournal::~RowJournal() { close(descriptor); }

void RowJournal::append(const std::string& line) { writeAll(descriptor, path, line + "\n"); }

void RowJournal::remove() {
  std::error_code error;
  std::filesystem::remove(path, error);
}

std::uint64_t sceneKey(const std::string& scene, const ImportSettings& import) {
  char numbers[160];
  std::snprintf(numbers, sizeof numbers, " %d %d %d %d %d %a %a", import.twoSided ? 1 : 0,
                import.flip ? 1 : 0, import.yUp ? 1 : 0, import.center ? 1 : 0,
                import.allowOutside ? 1 : 0, import.scale, import.crease);
  std::uint64_t key = textKey(LUMIVANE_VERSION + std::string(numbers));
  for (const std::string& file : sourceFiles(scene, import))
    key = textKey(file + "\n" + IO::readBytes(file), key);
  return key;
}

}  // namespace Lumivane::Host
