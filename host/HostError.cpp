#include "HostError.h"

#include <algorithm>

namespace Lumivane::Host {

std::string oneLine(const std::string& text) {
  std::string line = text;
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  return line;
}

}  // namespace Lumivane::Host
