#include "kernel/JsonNumber.h"

#include <array>
#include <charconv>
#include <locale>
#include <sstream>
#include <system_error>

namespace Lumivane::Kernel {

namespace {

constexpr int StreamPrecision = 6;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

template <class Integer>
std::string integerText(Integer value) {
  std::array<char, 24> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  return std::string(buffer.data(), end);
}

template <class Number>
Number readByStream(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  Number value = 0;
  stream >> value;  // on failure the stream stores 0 or the limit
  return value;
}

// A plain number is read without a stream, which costs many times as much. Everything out of the
// ordinary (white space, a plus, no digit at the front, a tail, a value out of range) goes to the
// stream, whose word is final.
template <class Number>
Number read(const std::string& text) {
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  const char* const digits = begin != end && *begin == '-' ? begin + 1 : begin;
  if (digits != end && isDigit(*digits)) {
    Number value = 0;
    const auto result = std::from_chars(begin, end, value);
    if (result.ec == std::errc() && result.ptr == end) return value;
  }
  return readByStream<Number>(text);
}

// The flags of the number test, which goes character by character.
class NumberTest {
 public:
  bool accept(char c) {
    switch (c) {
      case '+':
        return exponent && raise(exponentSign);
      case '-':
        return raise(exponent ? exponentSign : minus);
      case '.':
        return raise(dot);
      case 'e':
      case 'E':
        return raise(exponent);
      default:
        break;
    }
    if (!isDigit(c)) return false;
    if (exponent) exponentDigit = true;
    return true;
  }

  bool isComplete() const { return !exponent || exponentDigit; }

 private:
  static bool raise(bool& flag) {
    if (flag) return false;
    flag = true;
    return true;
  }

  bool dot = false;
  bool minus = false;
  bool exponent = false;
  bool exponentSign = false;
  bool exponentDigit = false;
};

}  // namespace

std::string numberText(double value) {
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, StreamPrecision)
                       .ptr;
  return std::string(buffer.data(), end);
}

std::string numberText(long long value) { return integerText(value); }
std::string numberText(unsigned long long value) { return integerText(value); }

int readInt(const std::string& text) { return read<int>(text); }
float readFloat(const std::string& text) { return read<float>(text); }
double readDouble(const std::string& text) { return read<double>(text); }

// Deliberate: `-`, `.`, `1-2`, `1.-2`, `E5` and `1E5-` are numbers; `1e`, `1e+` and `+1` are none.
bool isNumberText(const std::string& text) {
  NumberTest test;
  for (const char c : text) {
    if (!test.accept(c)) return false;
  }
  return test.isComplete();
}

}  // namespace Lumivane::Kernel
