#pragma once

#include <lumivane/export.h>

#include <functional>
#include <iosfwd>
#include <string>

namespace Lumivane::IO {

/// Fails if the file surely cannot be written, so that it is known before the long work: an empty
/// name, a missing folder, a folder in the file's place, a file or folder that must not be written.
/// \throws Error
LUMIVANE_EXPORT void checkWritable(const std::string& path);

/// Writes a file whole or not at all: into a new file beside it, which then takes its name. What is
/// no plain file, as a device or a pipe, is written directly, and so is what this process has open
/// already, as /dev/stdout or /dev/fd/3. A link stays a link, also one that points at nothing yet:
/// the file is written where it points. Every write is checked. May be called by several threads
/// at a time. \throws Error; then the file is as it was
LUMIVANE_EXPORT void writeFile(const std::string& path, const std::string& bytes);

/// The same for bytes that need not be in memory all at once: `put` writes them to the stream that
/// it is given. What it throws is thrown on; then the file is as it was.
LUMIVANE_EXPORT void writeFile(const std::string& path,
                               const std::function<void(std::ostream&)>& put);

/// Removes the files that `writeFile` is writing beside their places, in all threads. It is for the
/// signal handler of a host that is about to end: it calls nothing that is not safe there.
LUMIVANE_EXPORT void removeUnfinishedFiles() noexcept;

/// The one name of the file that writing to `path` makes or replaces: absolute, with all links
/// followed, also one that points at nothing yet.
LUMIVANE_EXPORT std::string writtenFile(const std::string& path);

/// Whether two names mean one file, be it there or not: by another spelling, a link or a hard link.
LUMIVANE_EXPORT bool sameFile(const std::string& a, const std::string& b);

}  // namespace Lumivane::IO
