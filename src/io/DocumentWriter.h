#pragma once

#include <lumivane/jzon/Writer.h>

namespace Lumivane::IO {

/// What writes scenes and shots: one key a line, arrays on one line, no indentation.
inline Jzon::Writer documentWriter() { return Jzon::Writer(Jzon::Format{true, true, true, 1}); }

}  // namespace Lumivane::IO
