// What happens at the end of memory. A reserve of addresses is given up when nothing is left, so
// that there is room to report it; an error while that happens ends the process cleanly.

#include "Memory.h"

#include "HostError.h"

#include <lumivane/session/Files.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

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
}

}  // namespace Lumivane::Host
