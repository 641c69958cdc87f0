#include "FileMark.h"

#include "HostError.h"

#include <lumivane/session/Files.h>

#include <charconv>
#include <cstdio>
#include <filesystem>

namespace Lumivane::Host {

namespace fs = std::filesystem;

std::uint64_t textKey(std::string_view text, std::uint64_t start) {
  std::uint64_t key = start;
  for (const char c : text) key = (key ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
  return key;
}

std::string keyText(std::uint64_t key) {
  char text[32];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(key));
  return text;
}

std::optional<std::uint64_t> readKey(const std::string& text) {
  std::uint64_t key = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, key, 16);
  if (text.size() != 16 || read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return key;
}

FileMark markOf(const std::string& path, const std::string& name) {
  std::error_code error;
  if (fs::exists(path, error) && !fs::is_regular_file(path, error)) return {name, 0, 0};
  const std::string bytes = Session::readBytes(path);
  return {name, bytes.size(), textKey(bytes)};
}

bool hasMark(const std::string& path, const FileMark& mark) {
  std::error_code error;
  if (!fs::exists(path, error)) return false;
  if (fs::is_regular_file(path, error) && fs::file_size(path, error) != mark.size) return false;
  try {
    return markOf(path, mark.file) == mark;
  } catch (const HostError&) {
    return false;
  }
}

}  // namespace Lumivane::Host
