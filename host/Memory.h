#pragma once

namespace Lumivane::Host {

/// Sets the allocator up for what the programs do: to build and free trees of millions of small
/// pieces on one thread. Called once, before any other work.
void prepareMemory();

}  // namespace Lumivane::Host
