#pragma once

namespace Lumivane::Host {

/// Sets the allocator up for what the program does: to build and free trees of millions of small
/// pieces on one thread. Called once, before any other work.
void prepareAllocator();

}  // namespace Lumivane::Host
