#include <lumivane/cmd/Log.h>
#include <lumivane/cmd/MessageScope.h>

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>

namespace Lumivane::Cmd {
namespace {

// The scope that counts in this thread; null for standard output.
thread_local MessageScope* current = nullptr;

// The text that printf would print. Empty where it would fail.
[[gnu::format(printf, 1, 0)]] std::string printed(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int count = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(count > 0 ? static_cast<std::size_t>(count) + 1 : 0, '\0');  // with its NUL
  if (count > 0) std::vsnprintf(text.data(), text.size(), format, again);
  if (count > 0) text.pop_back();
  va_end(again);
  return text;
}

}  // namespace

// Gives a text to the sink of the current scope. What the sink prints itself goes where messages
// went before the scope was made. It may throw anything, which is dropped.
void MessageScope::give(std::string_view text) noexcept {
  MessageScope* const scope = std::exchange(current, current->outer);
  try {
    if (scope->sink) scope->sink(text);
  } catch (...) {
    // As promised: a shot does not depend on where its messages go.
  }
  current = scope;
}

MessageScope::MessageScope(MessageSink newSink)
    : sink(std::move(newSink)), outer(std::exchange(current, this)) {}

MessageScope::~MessageScope() { current = outer; }

// The interface is that of printf.
int logMessage(const char* format, ...) {  // NOLINT(cert-dcl50-cpp)
  std::va_list arguments;
  va_start(arguments, format);
  if (current == nullptr) {
    const int count = std::vprintf(format, arguments);
    va_end(arguments);
    return count;
  }
  const std::string text = printed(format, arguments);
  va_end(arguments);
  if (!text.empty()) MessageScope::give(text);
  return static_cast<int>(text.size());
}

}  // namespace Lumivane::Cmd
