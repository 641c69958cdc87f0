// One table serves both directions.

#include <lumivane/jzon/Node.h>

#include <array>

namespace Jzon {

namespace {

struct Escape {
  char plain;
  char letter;
};

constexpr std::array<Escape, 8> escapes{{{'\\', '\\'},
                                         {'/', '/'},
                                         {'"', '"'},
                                         {'\n', 'n'},
                                         {'\t', 't'},
                                         {'\b', 'b'},
                                         {'\f', 'f'},
                                         {'\r', 'r'}}};

// The letter of each character that is escaped, or 0.
constexpr std::array<char, 256> makeLetters() {
  std::array<char, 256> letters{};
  for (const Escape& escape : escapes)
    letters[static_cast<unsigned char>(escape.plain)] = escape.letter;
  return letters;
}
constexpr std::array<char, 256> letters = makeLetters();

// The character that a letter stands for behind a backslash, or 0.
char plainOf(char letter) {
  for (const Escape& escape : escapes)
    if (letter == escape.letter) return escape.plain;
  return 0;
}

}  // namespace

std::string escapeString(const std::string& value) {
  std::string escaped;
  escaped.reserve(value.size());
  for (const char c : value) {
    const char letter = letters[static_cast<unsigned char>(c)];
    if (letter) escaped += '\\';
    escaped += letter ? letter : c;
  }
  return escaped;
}

std::string unescapeString(const std::string& value) {
  std::string plain;
  plain.reserve(value.size());
  std::size_t done = 0;
  for (std::size_t i = value.find('\\'); i != std::string::npos; i = value.find('\\', i)) {
    const char c = i + 1 < value.size() ? plainOf(value[i + 1]) : '\0';
    if (!c) {
      ++i;  // any other backslash stays
      continue;
    }
    plain.append(value, done, i - done) += c;
    done = i += 2;
  }
  return plain.append(value, done, std::string::npos);
}

}  // namespace Jzon
