// JSON5 to JSON: any text gives a text.

#include "Bytes.h"

#include <lumivane/io/DataReader.h>

#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  try {
    Lumivane::IO::DataReader().Json5_to_Json(Lumivane::Fuzz::Bytes(data, size).rest());
  } catch (const std::length_error&) {
    // more text than there is room for
  }
  return 0;
}
