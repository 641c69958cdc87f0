#include "kernel/DisplayText.h"

#include <lumivane/io/Error.h>

#include <algorithm>

namespace Lumivane::IO {

std::string oneLine(const std::string& text) {
  std::string line = Kernel::utf8Text(text);
  std::replace_if(
      line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  return line;
}

Error::Error(const std::string& subject, const std::string& cause)
    : std::runtime_error(oneLine(subject + ": " + cause)), subjectLength(oneLine(subject).size()) {}

Error::~Error() = default;

std::string Error::subject() const { return std::string(what()).substr(0, subjectLength); }

std::string Error::cause() const { return std::string(what()).substr(subjectLength + 2); }

}  // namespace Lumivane::IO
