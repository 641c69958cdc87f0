// The bytes are a shot's text, which is read, written, and read again: the second writing equals
// the first.

#include "Bytes.h"

#include <lumivane/io/DataReader.h>
#include <lumivane/io/DataWriter.h>
#include <lumivane/shot/Shot2d.h>

#include <memory>
#include <stdexcept>

namespace {

namespace Io = Lumivane::IO;
using Lumivane::Shot::Shot2d;

// \throws std::exception where a colour or a width is out of range, as documented
std::unique_ptr<Shot2d> read(const std::string& text) {
  return std::unique_ptr<Shot2d>(Io::DataReader().readShotString(text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Lumivane::Fuzz::silence();
  try {
    const std::unique_ptr<Shot2d> shot = read(Lumivane::Fuzz::Bytes(data, size).rest());
    if (shot == nullptr) return 0;
    const std::string first = Io::DataWriter().writeShotString(shot.get());
    const std::unique_ptr<Shot2d> again = read(first);
    Lumivane::Fuzz::require(again != nullptr);
    // Numbers are written with 6 digits, so the second text is the fixed one.
    const std::string second = Io::DataWriter().writeShotString(again.get());
    const std::unique_ptr<Shot2d> third = read(second);
    Lumivane::Fuzz::require(third != nullptr);
    Lumivane::Fuzz::require(Io::DataWriter().writeShotString(third.get()) == second);
  } catch (const std::out_of_range&) {
    // a colour component
  } catch (const std::runtime_error&) {
    // the width of a pen
  }
  return 0;
}
