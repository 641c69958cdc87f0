#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Lumivane::Host {

/// Work shared out to processes: each takes a piece from the parent whenever it has done one.
struct SharedWork {
  /// Called once in each new process, with its number from 0.
  std::function<void(int)> start;
  /// Does one piece in a process, and returns its result: any bytes.
  std::function<std::string(size_t)> work;
  /// Called in the parent with the result.
  std::function<void(size_t, const std::string&)> done;
  /// Called in the parent when the process ended over the piece, and how.
  std::function<void(size_t, const std::string&)> died;
  /// Called in the parent now and then, several times a second.
  std::function<void()> tick;
};

/// Runs the pieces in as many processes as given, all copies of this one; the parent does no piece
/// itself. Pieces are begun in their order. A process that ends over a piece is replaced. When the
/// parent ends, the processes end as well.
/// \throws HostError if no process can be made
void shareOut(const std::vector<size_t>& pieces, int processes, const SharedWork& shared);

}  // namespace Lumivane::Host
