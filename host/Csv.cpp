#include "Csv.h"

#include <lumivane/session/Text.h>

namespace Lumivane::Host {

std::string csvRecord(const std::vector<std::string>& fields) {
  std::string result;
  for (size_t i = 0; i < fields.size(); ++i)
    result += (i == 0 ? "" : ",") + Session::csvField(fields[i]);
  return result;
}

}  // namespace Lumivane::Host
