#include "jzon/Json5.h"

#include <lumivane/io/DataReader.h>

#include <exception>

namespace Lumivane::IO {

std::string DataReader::Json5_to_Json(std::string text) {
  try {
    return Jzon::json5ToJson(text);
  } catch (const std::exception&) {
    return std::string();  // Deliberate: the failure is not reported
  }
}

}  // namespace Lumivane::IO
