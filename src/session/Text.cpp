#include "kernel/CsvText.h"
#include "kernel/DisplayText.h"

#include <lumivane/session/Text.h>

namespace Lumivane::Session {

std::string utf8Text(const std::string& bytes) { return Kernel::utf8Text(bytes); }
std::string idText(const std::string& id) { return Kernel::idText(id); }
std::string csvField(const std::string& text) { return Kernel::csvField(text); }
std::string csvSafe(const std::string& text) { return Kernel::csvSafe(text); }

}  // namespace Lumivane::Session
