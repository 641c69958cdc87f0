#pragma once

namespace Lumivane::Host {

/// Lets the process end cleanly when it is asked to: on an interrupt, a hang-up or a request to end
/// it removes the files that it is writing beside their places, wipes out the progress bar, and
/// exits with 128 + the signal's number. What was to be ignored stays ignored. A file that grows
/// over its limit becomes an error of the write.
void endCleanlyOnSignals();

}  // namespace Lumivane::Host
