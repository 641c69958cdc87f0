#pragma once

#include <atomic>
#include <functional>

namespace Lumivane::Python {

/// Runs `work` in a thread of its own, without Python's lock. Meanwhile the calling thread, which
/// holds that lock, lets Python handle signals fifty times a second and calls `tick`, with the
/// lock held. What a signal or `tick` raises sets `cancelled`, and is thrown when `work` has ended;
/// so is what `work` throws, which may call nothing of Python. Where no signal is handled and
/// there is no `tick`, the calling thread does the work itself.
void runInterruptibly(std::atomic<bool>& cancelled, const std::function<void()>& work,
                      const std::function<void()>& tick = {});

/// Calls `visit(i)` for each i below `count` in `threads` threads (0: one for each processor), the
/// calling one among them. No call follows once `cancelled` is true or a call has thrown; the first
/// exception comes through.
void forEach(std::size_t count, int threads, const std::atomic<bool>& cancelled,
             const std::function<void(std::size_t)>& visit);

}  // namespace Lumivane::Python
