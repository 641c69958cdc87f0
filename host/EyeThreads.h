#pragma once

#include <cstddef>
#include <functional>

namespace Lumivane::Host {

/// Calls `visit(i)` once for each i below `count`, from several threads, and shows how far they
/// have come. Throws what the first that failed has thrown. \param threads  how many; 0 for as many
/// as processors
void forEachEye(std::size_t count, int threads, const std::function<void(std::size_t)>& visit);

}  // namespace Lumivane::Host
