#include "NpyTable.h"

#include "BatchSummary.h"
#include "Csv.h"
#include "HostError.h"

#include <lumivane/session/Text.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>

// The format is numpy's own (numpy.lib.format): a magic text, the version, the length of a header,
// the header as a literal of Python, and the records one behind the other. Texts are 4 bytes for
// each character, low byte first, with zeros behind.
namespace Lumivane::Host {
namespace {

constexpr std::size_t CharacterSize = 4;

// What spreadsheets are kept from is no matter here.
using Characters = std::u32string;

// Of UTF-8, in which all texts of tables are.
Characters charactersOf(const std::string& text) {
  Characters result;
  for (std::size_t i = 0; i < text.size();) {
    const auto first = static_cast<unsigned char>(text[i]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    char32_t character = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (std::size_t k = 1; k < length && i + k < text.size(); ++k)
      character = (character << 6U) | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
    result += character;
    i += length;
  }
  return result;
}

bool readNumber(const std::string& text, double& number) {
  if (text.empty()) {
    number = std::numeric_limits<double>::quiet_NaN();
    return true;
  }
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc() && read.ptr == end;
}

struct Column {
  std::string name;
  bool isText = false;
  std::size_t longest = 1;  // characters of texts

  std::size_t size() const { return isText ? CharacterSize * longest : sizeof(double); }
};

// A literal of Python in ASCII. An array's field must have another name than all others, and one
// that is not empty; names of columns are so.
std::string literal(const std::string& text) {
  std::string result = "'";
  for (const char32_t c : charactersOf(Session::utf8Text(text))) {
    const bool isPlain = c >= 0x20 && c < 0x7F && c != '\'' && c != '\\';
    char escape[12];
    std::snprintf(escape, sizeof escape, "\\U%08x", static_cast<unsigned>(c));
    result += isPlain ? std::string(1, static_cast<char>(c)) : std::string(escape);
  }
  return result + "'";
}

std::string headerOf(const std::vector<Column>& columns, std::size_t rows) {
  std::string text = "{'descr': [";
  for (const Column& column : columns)
    text += "(" + literal(column.name) + ", " +
            (column.isText ? "'<U" + std::to_string(column.longest) + "'" : "'<f8'") + "), ";
  return text + "], 'fortran_order': False, 'shape': (" + std::to_string(rows) + ",), }";
}

void addNumber(std::uint64_t number, std::size_t bytes, std::string& out) {
  for (std::size_t i = 0; i < bytes; ++i) {
    out += static_cast<char>(number & 0xFFU);
    number >>= 8U;
  }
}

// Ends in a line feed, and what follows lies at a multiple of 64 bytes.
std::string preamble(std::string header) {
  constexpr std::size_t Alignment = 64;
  constexpr std::size_t MostOfFirst = 65535;
  const bool isFirst = header.size() + Alignment < MostOfFirst;
  const std::size_t lead = isFirst ? 10 : 12;
  while ((lead + header.size() + 1) % Alignment != 0) header += ' ';
  header += '\n';
  std::string text = "\x93NUMPY";
  text += static_cast<char>(isFirst ? 1 : 2);
  text += '\0';
  addNumber(header.size(), isFirst ? 2 : 4, text);
  return text + header;
}

class Table {
 public:
  Table(const std::string& heading, const std::vector<std::string>& theRows) : rows(theRows) {
    for (const std::string& name : fieldsOf(heading)) columns.push_back({name});
    for (const std::string& row : rows) measure(fieldsOf(row));
  }

  std::string bytes() const {
    std::string text = preamble(headerOf(columns, rows.size()));
    for (const std::string& row : rows) addRow(fieldsOf(row), text);
    return text;
  }

 private:
  std::vector<std::string> fieldsOf(const std::string& line) const {
    const std::string subject = "the summary";
    CsvRecord record;
    CsvCursor(line, subject).next(record);
    if (!columns.empty() && record.fields.size() != columns.size())
      throw HostError(subject, "has a row with other fields than its heading");
    return record.fields;
  }

  void measure(const std::vector<std::string>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      double ignored = 0.0;
      columns[i].isText =
          columns[i].isText || isTextOfSummary(columns[i].name) || !readNumber(fields[i], ignored);
      columns[i].longest = std::max(columns[i].longest, charactersOf(fields[i]).size());
    }
  }

  void addRow(const std::vector<std::string>& fields, std::string& text) const {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (columns[i].isText)
        addText(charactersOf(fields[i]), columns[i].longest, text);
      else
        addDouble(fields[i], text);
    }
  }

  static void addText(const Characters& characters, std::size_t longest, std::string& text) {
    for (const char32_t c : characters) addNumber(c, CharacterSize, text);
    text.append(CharacterSize * (longest - characters.size()), '\0');
  }

  static void addDouble(const std::string& field, std::string& text) {
    double number = 0.0;
    readNumber(field, number);
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    addNumber(bits, sizeof bits, text);
  }

  const std::vector<std::string>& rows;
  std::vector<Column> columns;
};

}  // namespace

std::string npyOfTable(const std::string& heading, const std::vector<std::string>& rows) {
  return Table(heading, rows).bytes();
}

}  // namespace Lumivane::Host
