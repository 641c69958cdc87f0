#include "Waiting.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include <pybind11/pybind11.h>

namespace py = pybind11;

// Work in a thread of its own, while the thread that called lets Python handle signals every 20 ms:
// so Ctrl+C ends long work, which is asked to stop by the progress it reports. In a thread that
// gets no signals, such as a worker's, nobody needs to wait.
namespace Lumivane::Python {
namespace {

constexpr std::chrono::milliseconds Pause(20);

// Work under way in a thread, and its end.
class Running {
 public:
  explicit Running(const std::function<void()>& work)
      : thread([this, &work] {
          try {
            work();
          } catch (...) {
            failure = std::current_exception();
          }
          const std::lock_guard<std::mutex> lock(mutex);
          isOver = true;
          over.notify_one();
        }) {}
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { thread.join(); }

  bool endsWithin(std::chrono::milliseconds time) {
    std::unique_lock<std::mutex> lock(mutex);
    return over.wait_for(lock, time, [this] { return isOver; });
  }
  // After the end.
  std::exception_ptr whatFailed() const { return failure; }

 private:
  std::mutex mutex;
  std::condition_variable over;
  bool isOver = false;
  std::exception_ptr failure;
  std::thread thread;  // last, so that all it uses is there when it starts
};

// Python handles signals in its main thread alone.
bool isMainThread() {
  const py::module_ threading = py::module_::import("threading");
  const py::object mainThread = threading.attr("main_thread")().attr("ident");
  return mainThread.equal(threading.attr("get_ident")());
}

// What Python has to say while others work: a signal's exception, or that of the callback.
std::exception_ptr interruption(const std::function<void()>& tick) {
  const py::gil_scoped_acquire held;
  try {
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    if (tick) tick();
  } catch (...) {
    return std::current_exception();
  }
  return {};
}

}  // namespace

void runInterruptibly(std::atomic<bool>& cancelled, const std::function<void()>& work,
                      const std::function<void()>& tick) {
  if (!tick && !isMainThread()) {
    const py::gil_scoped_release released;
    work();
    return;
  }
  std::exception_ptr interrupted;
  std::exception_ptr failed;
  {
    const py::gil_scoped_release released;
    Running running(work);
    while (!running.endsWithin(Pause)) {
      if (interrupted) continue;
      interrupted = interruption(tick);
      if (interrupted) cancelled = true;
    }
    failed = running.whatFailed();
  }
  if (interrupted) std::rethrow_exception(interrupted);
  if (failed) std::rethrow_exception(failed);
}

void forEach(std::size_t count, int threads, const std::atomic<bool>& cancelled,
             const std::function<void(std::size_t)>& visit) {
  std::atomic<std::size_t> next{0};
  std::atomic<bool> isOver{false};
  std::mutex mutex;
  std::exception_ptr failure;
  const auto work = [&] {
    try {
      for (std::size_t i = next++; i < count && !cancelled && !isOver; i = next++) visit(i);
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex);
      if (!failure) failure = std::current_exception();
      isOver = true;
    }
  };
  const std::size_t wanted = threads > 0 ? static_cast<std::size_t>(threads)
                                         : std::max(1U, std::thread::hardware_concurrency());
  std::vector<std::thread> others;
  try {
    for (std::size_t i = 1; i < std::min(wanted, count); ++i) others.emplace_back(work);
  } catch (const std::system_error&) {
    // Those that are there do it all.
  }
  work();
  for (std::thread& other : others) other.join();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace Lumivane::Python
