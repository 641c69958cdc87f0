#pragma once

#include <functional>
#include <string>

namespace Lumivane::Test {

/// What `work` writes to standard output, printf and streams alike, at the level of the file
/// descriptor. An exception of `work` passes through, with the output restored.
std::string capturedStdout(const std::function<void()>& work);

/// The same for standard error.
std::string capturedStderr(const std::function<void()>& work);

}  // namespace Lumivane::Test
