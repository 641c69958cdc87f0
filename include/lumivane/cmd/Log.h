#pragma once

#include <lumivane/export.h>

namespace Lumivane::Cmd {

/// The console log: prints to standard output as printf does, with nothing added and no flush, or
/// gives the same text to the sink of the thread's `MessageScope`.
///
/// \param format  a printf format, followed by its arguments
/// \return the count of printf: bytes written, negative on an error of the stream
[[gnu::format(printf, 1, 2)]] LUMIVANE_EXPORT int logMessage(const char* format, ...);

}  // namespace Lumivane::Cmd
