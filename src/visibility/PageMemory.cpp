#include "visibility/PageMemory.h"

#include <cstdint>

#include <sys/mman.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace Lumivane::Visibility {
namespace {

// Large lists are read in no order, and then looking up the addresses of small pages takes as long
// as reading.
constexpr std::size_t HugePage = std::size_t{1} << 21;

char* mapped(std::size_t bytes) {
  for (;;) {
    void* const memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory != MAP_FAILED) return static_cast<char*>(memory);
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

// At a border of huge pages; the last part of a huge page is of small ones.
char* mappedHuge(std::size_t bytes) {
  char* const all = mapped(bytes + HugePage);
  const std::size_t before =
      (HugePage - reinterpret_cast<std::uintptr_t>(all) % HugePage) % HugePage;
  if (before > 0) munmap(all, before);
  char* const memory = all + before;
  constexpr std::size_t Page = 4096;
  const std::size_t used = (bytes + Page - 1) / Page * Page;
  const std::size_t end = (bytes + HugePage + Page - 1) / Page * Page - before;
  if (end > used) munmap(memory + used, end - used);
#ifdef MADV_HUGEPAGE
  madvise(memory, bytes / HugePage * HugePage, MADV_HUGEPAGE);
#endif
  return memory;
}

}  // namespace

void* takeMemory(std::size_t bytes) {
  if (bytes < PagedBytes) return ::operator new(bytes);
  return bytes < HugePage ? mapped(bytes) : mappedHuge(bytes);
}

void giveMemoryBack(void* memory, std::size_t bytes) noexcept {
  if (bytes < PagedBytes) {
    ::operator delete(memory);
  } else {
    munmap(memory, bytes);
  }
}

void trimHeap() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}

}  // namespace Lumivane::Visibility
