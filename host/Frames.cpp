#include "Frames.h"

#include <charconv>

namespace Lumivane::Host {
namespace {

constexpr std::size_t MostDigits = 10;  // of MostFrameBytes

}  // namespace

std::string framed(const std::string& message) {
  return std::to_string(message.size()) + "\n" + message;
}

bool takeMessage(std::string& received, std::string& message) {
  const std::size_t end = received.find('\n');
  const std::size_t digits = end == std::string::npos ? received.size() : end;
  if (digits > MostDigits) throw FrameError();
  if (digits == 0 && end == std::string::npos) return false;
  std::size_t length = 0;
  const char* const last = received.data() + digits;
  const auto read = std::from_chars(received.data(), last, length);
  if (read.ec != std::errc() || read.ptr != last || length > MostFrameBytes) throw FrameError();
  if (end == std::string::npos || received.size() - end - 1 < length) return false;
  message = received.substr(end + 1, length);
  received.erase(0, end + 1 + length);
  return true;
}

}  // namespace Lumivane::Host
