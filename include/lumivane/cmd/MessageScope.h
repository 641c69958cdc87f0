#pragma once

#include <lumivane/cmd/Log.h>
#include <lumivane/export.h>

#include <functional>
#include <string_view>

namespace Lumivane::Cmd {

/// Takes the text of one message of the library: any bytes, without anything added, often with a
/// line end of its own, but a line may also come in pieces. The text lives for the call alone.
using MessageSink = std::function<void(std::string_view text)>;

/// Chooses where the library's messages go: while it lives, those of the thread that made it go to
/// a sink instead of standard output. Other threads are not affected.
///
/// Scopes nest: the one made last in a thread counts. End each in the thread that made it, in
/// reverse order. A sink is called in that thread, within the operation that has something to
/// report; what it prints by the library itself goes where messages went before its scope. It may
/// not take a shot. What it throws is dropped, so that a shot does not depend on where its messages
/// go. Warnings of VTK itself go where VTK sends them.
class LUMIVANE_EXPORT MessageScope {
 public:
  /// \param sink  is kept as long as the scope; an empty one drops the messages
  explicit MessageScope(MessageSink sink);
  MessageScope(const MessageScope&) = delete;
  MessageScope& operator=(const MessageScope&) = delete;
  ~MessageScope();

 private:
  friend int logMessage(const char* format, ...);

  static void give(std::string_view text) noexcept;

  MessageSink sink;
  MessageScope* outer;
};

}  // namespace Lumivane::Cmd
