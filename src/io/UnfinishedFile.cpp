// The names of the files under way stand in a table of fixed size, because a signal handler reads
// it: there, no memory may be asked for and no lock be waited for.

#include "io/UnfinishedFile.h"

#include <lumivane/io/FileWriting.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace Lumivane::IO {
namespace {

enum class Use { Free, Taken, Named };

struct Slot {
  std::atomic<Use> use = Use::Free;
  char name[PATH_MAX] = {};
};

static_assert(std::atomic<Use>::is_always_lock_free, "a signal handler reads it");

// More files at a time are written as well, and only not removed when the process is ended.
std::array<Slot, 16> slots;

int takeSlot() {
  for (size_t i = 0; i < slots.size(); ++i) {
    Use expected = Use::Free;
    if (slots[i].use.compare_exchange_strong(expected, Use::Taken)) return static_cast<int>(i);
  }
  return -1;
}

void nameSlot(int slot, const std::string& name) {
  if (slot < 0 || name.size() >= PATH_MAX) return;
  Slot& entry = slots[static_cast<size_t>(slot)];
  entry.use = Use::Taken;
  std::memcpy(entry.name, name.c_str(), name.size() + 1);
  entry.use = Use::Named;
}

void freeSlot(int slot) {
  if (slot >= 0) slots[static_cast<size_t>(slot)].use = Use::Free;
}

}  // namespace

void removeUnfinishedFiles() noexcept {
  for (Slot& slot : slots)
    if (slot.use == Use::Named) unlink(slot.name);
}

UnfinishedFile::UnfinishedFile(const std::string& folder) : slot(takeSlot()) { create(folder); }

// Named before it is created, so that no signal finds a file without a name.
void UnfinishedFile::create(const std::string& folder) {
  const std::string stem =
      (folder.empty() ? "" : folder + "/") + ".lumivane." + std::to_string(getpid()) + "-";
  for (int i = 0; i < 100; ++i) {
    name = stem + std::to_string(i);
    nameSlot(slot, name);
    fileDescriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    creationError = fileDescriptor >= 0 ? 0 : errno;
    if (fileDescriptor >= 0) return;
    if (creationError != EEXIST) break;
  }
  freeSlot(slot);
  slot = -1;
}

int UnfinishedFile::moveTo(const std::string& path) {
  if (std::rename(name.c_str(), path.c_str()) != 0) return errno;
  moved = true;
  return 0;
}

UnfinishedFile::~UnfinishedFile() {
  if (fileDescriptor >= 0 && !moved) unlink(name.c_str());
  freeSlot(slot);
}

}  // namespace Lumivane::IO
