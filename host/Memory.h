#pragma once

namespace Lumivane::Host {

/// Says what happens at the end of memory. Called once, before any other work.
///
/// When memory ends, a reserve is freed before the error is thrown, so that what has been built can
/// be taken apart, which needs memory of its own in places. If even that does not do, the process
/// ends with the line and status of the error, and without unfinished files.
void prepareMemory();

/// Has the reserve again after it was freed, as for the next one of many pieces of work.
void renewMemoryReserve() noexcept;

}  // namespace Lumivane::Host
