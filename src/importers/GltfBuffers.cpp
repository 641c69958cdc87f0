// A URI is data in the document or a file beside it. Names are resolved with their links before it
// is asked whether a file lies in the folder, since a link may lead out of it.

#include "importers/GltfBuffers.h"

#include "importers/ImportError.h"
#include "importers/TextLines.h"

#include <lumivane/session/Error.h>
#include <lumivane/session/Files.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <system_error>

namespace Lumivane::Importers {
namespace {

namespace fs = std::filesystem;

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

constexpr int NoDigit = -1;
constexpr std::uintmax_t LargestFile = 1ULL << 31U;

std::array<int, 256> base64Digits() {
  std::array<int, 256> digits{};
  digits.fill(NoDigit);
  constexpr std::string_view letters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (size_t i = 0; i < letters.size(); ++i)
    digits[static_cast<unsigned char>(letters[i])] = static_cast<int>(i);
  return digits;
}

std::string base64Decoded(std::string_view text) {
  static const std::array<int, 256> digits = base64Digits();
  while (!text.empty() && text.back() == '=') text.remove_suffix(1);
  std::string result;
  result.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t bits = 0;
  int held = 0;
  for (const char c : text) {
    const int digit = digits[static_cast<unsigned char>(c)];
    if (digit == NoDigit) throw ImportError("its data is not in base 64");
    bits = bits << 6U | static_cast<std::uint32_t>(digit);
    held += 6;
    if (held < 8) continue;
    held -= 8;
    result += static_cast<char>(bits >> static_cast<unsigned>(held) & 0xFFU);
  }
  return result;
}

std::string dataOf(std::string_view uri) {
  constexpr std::string_view mark = ";base64,";
  const size_t start = uri.find(mark);
  if (start == std::string_view::npos) throw ImportError("its data is not in base 64");
  return base64Decoded(uri.substr(start + mark.size()));
}

bool isWithin(const fs::path& file, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first ==
         folder.end();
}

}  // namespace

GltfBuffers::GltfBuffers(const std::string& path, bool allowOutside)
    : folder(fs::path(path).parent_path()), anywhere(allowOutside) {
  if (folder.empty()) folder = ".";
}

GltfBytes GltfBuffers::read(const std::string& uri) {
  if (uri.rfind("data:", 0) == 0) return std::make_shared<const std::string>(dataOf(uri));
  const fs::path file = locate(uri);
  const auto known = files.find(file);
  if (known != files.end()) return known->second;
  try {
    return files[file] = std::make_shared<const std::string>(Session::readBytes(file.string()));
  } catch (const Session::Error& error) {
    throw ImportError("its file " + inQuotes(uri) + " cannot be read: " + error.cause());
  }
}

// Links are followed before it is asked where a file lies, since one of them may lead out as well.
fs::path GltfBuffers::locate(const std::string& uri) const {
  if (uri.find("://") != std::string::npos || uri.rfind("file:", 0) == 0)
    throw ImportError("its file " + inQuotes(uri) + " is not named by a relative path");
  std::error_code error;
  const fs::path home = fs::canonical(folder, error);
  const std::string name = percentDecoded(uri);
  const bool isName = !error && !name.empty() && name.find('\0') == std::string::npos;
  const fs::path wanted = isName ? fs::weakly_canonical(home / name, error) : fs::path();
  if (!isName || error) throw ImportError("its file " + inQuotes(uri) + " cannot be read");
  if (!anywhere && !isWithin(wanted, home))
    throw ImportError("its file " + inQuotes(uri) +
                      " lies outside the folder of the model; --allow-outside reads it");
  if (!fs::is_regular_file(wanted, error))
    throw ImportError("its file " + inQuotes(uri) + " cannot be read: there is no such file");
  if (fs::file_size(wanted, error) > LargestFile)
    throw ImportError("its file " + inQuotes(uri) + " is larger than 2 GiB");
  return wanted;
}

std::string percentDecoded(std::string_view uri) {
  std::string result;
  for (size_t i = 0; i < uri.size(); ++i) {
    const bool fits = uri[i] == '%' && i + 2 < uri.size();
    const int high = fits ? hexDigit(uri[i + 1]) : -1;
    const int low = fits ? hexDigit(uri[i + 2]) : -1;
    if (high < 0 || low < 0) {
      result += uri[i];
      continue;
    }
    result += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return result;
}

}  // namespace Lumivane::Importers
