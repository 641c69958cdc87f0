#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Lumivane::Host {

/// A number that stands for a text: FNV-1a of 64 bits, continued from `start`.
std::uint64_t textKey(std::string_view text, std::uint64_t start = 14695981039346656037ULL);

/// A number in 16 hexadecimal digits.
std::string keyText(std::uint64_t key);

/// The number of 16 hexadecimal digits; nothing if the text is none.
std::optional<std::uint64_t> readKey(const std::string& text);

/// By what a file that was written is recognised.
struct FileMark {
  std::string file;  ///< its name
  std::uint64_t size = 0;
  std::uint64_t hash = 0;  ///< of its bytes, as `textKey`

  bool operator==(const FileMark& other) const {
    return file == other.file && size == other.size && hash == other.hash;
  }
};

/// The mark of the file at `path`, under the given name. What is no plain file, as a pipe or a
/// device, does not keep what was written: its size and hash are 0.
/// \throws HostError if it cannot be read
FileMark markOf(const std::string& path, const std::string& name);

/// Whether the file at `path` is there and has the mark's size and hash. Reads it only if the size
/// fits.
bool hasMark(const std::string& path, const FileMark& mark);

}  // namespace Lumivane::Host
