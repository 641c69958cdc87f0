#include "NpyRows.h"

#include "HostError.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

// The format is numpy's own (numpy.lib.format): a magic text, the version, the length of a header
// with the low byte first, and the header, which is a dict as a literal of Python. It says type,
// order and shape of the numbers that follow. Rows are given as fields of a table, so that values
// mean the same and faults have the same words, whichever way a table came.
namespace Lumivane::Host {
namespace {

constexpr std::string_view Magic = "\x93NUMPY";
constexpr const char* Wanted =
    "views are rows of 3 (eye), 6 (eye, forward) or 9 (eye, forward, up) doubles, of numpy's type "
    "float64";

std::size_t readLength(std::string_view bytes) {
  std::size_t length = 0;
  for (std::size_t i = bytes.size(); i-- > 0;)
    length = length * 256 + static_cast<unsigned char>(bytes[i]);
  return length;
}

// What stands behind a key of the header, without blanks in front.
std::string_view valueOf(std::string_view header, const std::string& key) {
  const std::size_t found = header.find("'" + key + "'");
  if (found == std::string_view::npos) return {};
  const std::size_t value = header.find_first_not_of(" :", found + key.size() + 2);
  return value == std::string_view::npos ? std::string_view() : header.substr(value);
}

// From one character to the other, both included; empty if it does not start and end so.
std::string_view enclosed(std::string_view text, char first, char last) {
  if (text.empty() || text.front() != first) return {};
  const std::size_t end = text.find(last, 1);
  return end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1);
}

// "(5, 3)" as two numbers; nothing of other shapes.
std::optional<std::array<std::size_t, 2>> twoNumbers(std::string_view shape) {
  std::array<std::size_t, 2> result{};
  std::size_t at = 1;
  for (std::size_t& number : result) {
    at = std::min(shape.find_first_not_of(' ', at), shape.size());
    const auto read = std::from_chars(shape.data() + at, shape.data() + shape.size(), number);
    if (read.ec != std::errc()) return std::nullopt;
    at = static_cast<std::size_t>(read.ptr - shape.data());
    if (&number == &result.front() && (at >= shape.size() || shape[at++] != ','))
      return std::nullopt;
  }
  if (at < shape.size() && shape[at] == ',') ++at;
  return shape.substr(at) == ")" ? std::make_optional(result) : std::nullopt;
}

void checkType(std::string_view header, const std::string& file) {
  const std::string_view value = valueOf(header, "descr");
  if (!value.empty() && value.front() == '[')
    throw HostError(file, std::string("holds records: ") + Wanted);
  const std::string_view type = enclosed(value, '\'', '\'');
  if (type.empty()) throw HostError(file, "has a header that is none of numpy's format .npy");
  if (type != "'<f8'")
    throw HostError(file, "holds values of the type " + std::string(type) + ": " + Wanted);
}

}  // namespace

bool NpyRows::isNpy(const std::string& bytes, const std::string& file) {
  const std::string_view ending = ".npy";
  return std::string_view(bytes).substr(0, Magic.size()) == Magic ||
         (file.size() > ending.size() &&
          std::string_view(file).substr(file.size() - ending.size()) == ending);
}

NpyRows::NpyRows(const std::string& theBytes, const std::string& file) : bytes(theBytes) {
  const std::string_view all = bytes;
  if (all.substr(0, Magic.size()) != Magic)
    throw HostError(file, "is no array of numpy's format .npy, though its name says so");
  const std::size_t version = all.size() > Magic.size() ? static_cast<unsigned char>(all[6]) : 1;
  if (version < 1 || version > 3)
    throw HostError(file, "has version " + std::to_string(version) +
                              " of the format .npy: versions 1 to 3 are read");
  const std::size_t lengthAt = Magic.size() + 2;
  const std::size_t headerAt = lengthAt + (version == 1 ? 2 : 4);
  if (all.size() < headerAt ||
      all.size() - headerAt < readLength(all.substr(lengthAt, headerAt - lengthAt)))
    throw HostError(file, "is cut off in its header");
  const std::size_t length = readLength(all.substr(lengthAt, headerAt - lengthAt));
  const std::string_view header = all.substr(headerAt, length);
  start = headerAt + length;
  checkType(header, file);
  const std::string_view shape = enclosed(valueOf(header, "shape"), '(', ')');
  const auto numbers = twoNumbers(shape);
  if (!numbers || ((*numbers)[1] != 3 && (*numbers)[1] != 6 && (*numbers)[1] != 9))
    throw HostError(file, "has the shape " + std::string(shape) + ": " + Wanted);
  if (valueOf(header, "fortran_order").substr(0, 5) != "False")
    throw HostError(file,
                    "is stored by columns (Fortran order): save numpy.ascontiguousarray of it");
  rows = (*numbers)[0];
  columns = (*numbers)[1];
  const std::size_t rowSize = columns * sizeof(double);
  const std::size_t there = all.size() - start;
  if (there % rowSize != 0 || there / rowSize != rows)
    throw HostError(file, "has the shape " + std::string(shape) + ", but " + std::to_string(there) +
                              " bytes of numbers: " +
                              (there / rowSize < rows ? "it is cut off" : "something follows"));
  if (rows == 0) throw HostError(file, "has no view");
}

std::vector<std::string> NpyRows::heading() const {
  const std::vector<std::string> all = {"eye_x",     "eye_y", "eye_z", "forward_x", "forward_y",
                                        "forward_z", "up_x",  "up_y",  "up_z"};
  return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(columns)};
}

void NpyRows::read(std::size_t row, CsvRecord& record) const {
  record.line = row + 1;
  record.fields.resize(columns);
  const char* at = bytes.data() + start + row * columns * sizeof(double);
  for (std::string& field : record.fields) {
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < sizeof bits; ++i)
      bits |= static_cast<std::uint64_t>(static_cast<unsigned char>(at[i])) << (8U * i);
    double number = 0.0;
    std::memcpy(&number, &bits, sizeof number);
    char text[40];
    field.assign(text, std::to_chars(text, text + sizeof text, number).ptr);
    at += sizeof bits;
  }
}

}  // namespace Lumivane::Host
