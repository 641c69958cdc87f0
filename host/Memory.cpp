// What happens at the end of memory, and where memory comes from. A reserve of addresses is given
// up when nothing is left, so that there is room to report it; an error while that happens ends the
// process cleanly. The C library's allocator is set up for runs that take many small pieces and
// keep them: without its bins for these, and with one large piece of heap in huge pages.

#include "Memory.h"

#include "HostError.h"

#include <lumivane/session/Files.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>  // says which C library it is
#include <cstring>
#include <exception>
#include <new>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace Lumivane::Host {
namespace {

// Of addresses: none of it is ever written to.
constexpr std::size_t ReserveBytes = std::size_t{16} << 20U;

std::atomic<void*> reserve{nullptr};

void freeReserve() noexcept {
  void* const held = reserve.exchange(nullptr);
  if (held != nullptr) munmap(held, ReserveBytes);
}

[[noreturn]] void throwEndOfMemory() {
  freeReserve();
  throw std::bad_alloc();
}

bool isEndOfMemory(const std::exception_ptr& error) noexcept try {
  if (error) std::rethrow_exception(error);
  return false;
} catch (const std::bad_alloc&) {
  return true;
} catch (...) {
  return false;
}

void print(const char* text) noexcept {
  const bool isPrinted = write(STDERR_FILENO, text, std::strlen(text)) > 0;
  static_cast<void>(isPrinted);  // nothing is left to do about it
}

// A destructor that needs memory and gets none.
[[noreturn]] void endWithoutMemory() {
  if (!isEndOfMemory(std::current_exception())) std::abort();
  Session::removeUnfinishedFiles();
  print("lumivane: ");
  print(NotEnoughMemory);
  print("\n");
  _exit(1);
}

#ifdef __GLIBC__

// Of addresses. Whoever limits these for a process has them counted, and then it does without.
constexpr int HeapBytes = 256 << 20;

bool isLimited(__rlimit_resource resource) {
  rlimit limit{};
  return getrlimit(resource, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY;
}

// Where the heap ends; null if it has none.
char* endOfHeap() {
  void* const end = sbrk(0);
  return end == reinterpret_cast<void*>(-1) ? nullptr : static_cast<char*>(end);
}

// The heap grows once, by addresses that have no memory yet, and gets its memory in huge pages: a
// page fault each 4 KiB would be a tenth of the time of a short run. The C library has a setting
// for that, which stands in the environment only. Where there are no huge pages nothing changes.
void useHugePages() {
  if (isLimited(RLIMIT_AS) || isLimited(RLIMIT_DATA)) return;
  // What the C library comes to by itself where large pieces come and go: those up to 32 MiB are
  // taken from the heap.
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, HeapBytes + (64 << 20));
  mallopt(M_TOP_PAD, HeapBytes);
  const char* const before = endOfHeap();
  void* volatile piece = std::malloc(std::size_t{1} << 20U);  // more than what is left of the heap
  std::free(piece);
  char* const end = endOfHeap();
  mallopt(M_TOP_PAD, 1 << 20);
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto room = static_cast<std::size_t>(HeapBytes);
  if (before == nullptr || end == nullptr || end < before + room) return;
  char* const start = end - room;  // a page starts there, as at all ends of the heap
  if (reinterpret_cast<std::uintptr_t>(start) % page == 0) madvise(start, room, MADV_HUGEPAGE);
}

#endif

}  // namespace

void renewMemoryReserve() noexcept {
  if (reserve.load() != nullptr) return;
  void* const held =
      mmap(nullptr, ReserveBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (held != MAP_FAILED) reserve = held;
}

void prepareMemory() {
  renewMemoryReserve();
  std::set_new_handler(throwEndOfMemory);
  std::set_terminate(endWithoutMemory);
#ifdef __GLIBC__
  // Without its bins for small pieces the C library joins them when they are freed. With the bins
  // it does so later and over and over again, whenever a large piece is freed: a fifth of a whole
  // run.
  mallopt(M_MXFAST, 0);
  useHugePages();
#endif
}

}  // namespace Lumivane::Host
