#pragma once

#include <lumivane/session/ViewSettings.h>

namespace Lumivane::Session {

/// While it lives, the settings that the library reads from the statics of the process are those
/// of a take: the splitting of `Cmd::CmdManager` and the distance within which points become one.
///
/// Any number of takes that want the same may hold them at a time, in any threads; one that wants
/// others waits until all before it have ended, and those that come later wait behind it. With the
/// last one the statics become what they were.
class SharedSettings {
 public:
  explicit SharedSettings(const ViewSettings& view);
  SharedSettings(const SharedSettings&) = delete;
  SharedSettings& operator=(const SharedSettings&) = delete;
  ~SharedSettings();
};

}  // namespace Lumivane::Session
