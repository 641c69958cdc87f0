#include "Picture.h"

#include "Display.h"
#include "HostError.h"

#include <lumivane/session/Faults.h>
#include <lumivane/shot/Shot2d.h>
#include <lumivane/view/Viewer.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace Lumivane::Host {
namespace {

constexpr unsigned char Signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr size_t ChunkFrame = 12;  // length, type and check sum
constexpr int Defaults = -1;       // the compression that the PNG writer chooses

size_t bigEndian32(const unsigned char* bytes) {
  return (size_t{bytes[0]} << 24) | (size_t{bytes[1]} << 16) | (size_t{bytes[2]} << 8) | bytes[3];
}

}  // namespace

std::string pngStream(const std::vector<unsigned char>& bytes) {
  size_t at = sizeof Signature;
  if (bytes.size() < at || std::memcmp(bytes.data(), Signature, at) != 0) return "";
  while (bytes.size() - at >= ChunkFrame) {
    const size_t length = bigEndian32(&bytes[at]);
    if (length > bytes.size() - at - ChunkFrame) return "";
    const bool last = std::memcmp(&bytes[at + 4], "IEND", 4) == 0;
    at += ChunkFrame + length;
    if (last) return std::string(reinterpret_cast<const char*>(bytes.data()), at);
  }
  return "";
}

std::string drawPicture(const std::string& file, Shot::Shot2d& shot, int width, int height) {
  const std::string fault = displayFault();
  if (!fault.empty()) throw HostError(file, "the picture is not drawn: " + fault);
  try {
    std::string png = pngStream(
        View::Viewer::createImageFromShot(&shot, "", width, height, 0, 1, Defaults, false));
    if (png.empty()) throw HostError(file, "the picture is not drawn: the library gives none");
    return png;
  } catch (const std::out_of_range& error) {
    const std::string place = Session::shotFault(shot);
    throw HostError(file, "the picture is not drawn: " + (place.empty() ? error.what() : place));
  }
}

}  // namespace Lumivane::Host
