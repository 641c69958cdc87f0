// Where the program's memory comes from: mimalloc where it was built with that, since a shot takes
// its memory in a million small pieces; else the C library, set up for runs that take many small
// pieces and keep them. Both get huge pages: a page fault each 4 KiB would be a tenth of the time
// of a short run. This file is the program's alone, so that nothing else is linked to mimalloc.

#include "Allocator.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>  // says which C library it is
#include <memory>
#include <new>

#include <sys/mman.h>

#ifdef LUMIVANE_MIMALLOC
#include <mimalloc.h>
#elif defined(__GLIBC__)
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace Lumivane::Host {

#ifdef LUMIVANE_MIMALLOC

namespace {

// What mimalloc takes at a time, and where such a piece starts.
constexpr std::size_t PieceBytes = std::size_t{32} << 20U;

// The piece that was taken before anybody could ask for huge pages, and which is hardly used yet.
void useHugePagesSoFar() {
  const std::unique_ptr<void, void (*)(void*)> used(mi_malloc(1), mi_free);
  const auto place = reinterpret_cast<std::uintptr_t>(used.get());
  if (place == 0) return;
  madvise(static_cast<char*>(used.get()) - place % PieceBytes, PieceBytes, MADV_HUGEPAGE);
}

}  // namespace

void prepareAllocator() {
  mi_option_enable(mi_option_large_os_pages);
  mi_option_set(mi_option_eager_commit_delay, 0);  // from the first piece of each thread on
  useHugePagesSoFar();
}

#else

#ifdef __GLIBC__
namespace {

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

// The heap grows once, by addresses that have no memory yet, and gets its memory in huge pages. The
// C library has a setting for that, which stands in the environment only. Where there are no huge
// pages nothing changes.
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

}  // namespace
#endif

void prepareAllocator() {
#ifdef __GLIBC__
  // Without its bins for small pieces the C library joins them when they are freed. With the bins
  // it does so later and over and over again, whenever a large piece is freed: a fifth of a whole
  // run.
  mallopt(M_MXFAST, 0);
  useHugePages();
#endif
}

#endif

}  // namespace Lumivane::Host

#ifdef LUMIVANE_MIMALLOC

// The operators of mimalloc, which is written in C, know of no std::new_handler and abort at the
// end of memory. Memory is given back by its own ones.

namespace {

template <class Take>
void* taken(Take take) {
  for (;;) {
    if (void* const memory = take()) return memory;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

void* taken(std::size_t size) {
  return taken([size] { return mi_malloc(size); });
}

void* taken(std::size_t size, std::align_val_t alignment) {
  return taken([=] { return mi_malloc_aligned(size, static_cast<std::size_t>(alignment)); });
}

template <class... Arguments>
void* takenIfAny(Arguments... arguments) noexcept try {
  return taken(arguments...);
} catch (...) {
  return nullptr;
}

}  // namespace

// NOLINTBEGIN(cert-dcl54-cpp): the operators that give back are those of mimalloc
#define LUMIVANE_REPLACES __attribute__((visibility("default")))

LUMIVANE_REPLACES void* operator new(std::size_t size) { return taken(size); }
LUMIVANE_REPLACES void* operator new[](std::size_t size) { return taken(size); }
LUMIVANE_REPLACES void* operator new(std::size_t size, std::align_val_t alignment) {
  return taken(size, alignment);
}
LUMIVANE_REPLACES void* operator new[](std::size_t size, std::align_val_t alignment) {
  return taken(size, alignment);
}
LUMIVANE_REPLACES void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return takenIfAny(size);
}
LUMIVANE_REPLACES void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return takenIfAny(size);
}
LUMIVANE_REPLACES void* operator new(std::size_t size, std::align_val_t alignment,
                                     const std::nothrow_t&) noexcept {
  return takenIfAny(size, alignment);
}
LUMIVANE_REPLACES void* operator new[](std::size_t size, std::align_val_t alignment,
                                       const std::nothrow_t&) noexcept {
  return takenIfAny(size, alignment);
}
// NOLINTEND(cert-dcl54-cpp)

#endif
