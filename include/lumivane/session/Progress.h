#pragma once

#include <functional>

namespace Lumivane::Session {

/// Receives how far a shot has come, in percent from 0 to 100, never falling.
///
/// Thread rules. All calls for one shot come from one thread of the session's own, not from the
/// caller's, and none is under way any more when the take returns or throws. There is a call with 0
/// at the start, one about every tenth of a second, and one with 100 if the shot is made. Let the
/// callback be short; it may touch neither scene nor shot, and may not take a shot itself.
///
/// If a call throws, the exception is dropped, no call follows, and the shot is made all the same.
using Progress = std::function<void(double percent)>;

}  // namespace Lumivane::Session
