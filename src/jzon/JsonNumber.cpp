// Numbers are most of a document, and streams are slow. Those of everyday size are written and read
// by whole-number arithmetic that is exact to the last digit; all others go to a stream.

#include "jzon/JsonNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <locale>
#include <sstream>
#include <system_error>

namespace Jzon {

namespace {

constexpr int StreamPrecision = 6;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

template <class Integer>
std::size_t writeInteger(Integer value, char* out) {
  return static_cast<std::size_t>(std::to_chars(out, out + NumberTextLength, value).ptr - out);
}

template <class Number>
std::string textOf(Number value) {
  std::array<char, NumberTextLength> buffer{};
  return std::string(buffer.data(), writeNumber(value, buffer.data()));
}

// ---- doubles of everyday size, written by whole numbers ----

__extension__ using Wide = unsigned __int128;

constexpr int MantissaBits = 52;
constexpr int ExponentBias = 1023;
constexpr double SmallestEveryday = 1e-4;     // below, an exponent is written
constexpr double LargestEveryday = 999999.5;  // rounds to 1e+06
constexpr int SmallestPower = -4;
constexpr int LogOfTwo = 1233;  // log10 of 2 is a little more than 1233 / 4096
constexpr int LogScale = 4096;

// None lies below the power of ten that it stands for, and the double before it lies below, so a
// comparison gives the first digit's place without error.
constexpr std::array<double, 10> powers{1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5};
constexpr std::array<std::uint64_t, 10> scales{1000000000, 100000000, 10000000, 1000000, 100000,
                                               10000,      1000,      100,      10,      1};

// The three digits of each number below 1000, and how many are left without zeros at the end.
struct ThreeDigits {
  std::array<char, 3> digits;
  char count;
};

constexpr std::array<ThreeDigits, 1000> makeThrees() {
  std::array<ThreeDigits, 1000> result{};
  for (std::size_t n = 0; n < result.size(); ++n) {
    const char last = static_cast<char>(n % 10);
    const char middle = static_cast<char>(n / 10 % 10);
    const char first = static_cast<char>(n / 100);
    const int count = last != 0 ? 3 : middle != 0 ? 2 : first != 0 ? 1 : 0;
    result[n] = {{static_cast<char>('0' + first), static_cast<char>('0' + middle),
                  static_cast<char>('0' + last)},
                 static_cast<char>(count)};
  }
  return result;
}
constexpr std::array<ThreeDigits, 1000> threes = makeThrees();

// The first 6 digits as a whole number, and the power of ten of the first of them.
struct SixDigits {
  std::uint64_t digits;
  int power;
};

// A double is m * 2^-shift with whole m of 53 bits and a shift of 33 to 66 in this range, so
// m * 10^(5 - power) fits into 83 bits: the digits and the rest that decides the rounding are
// exact. An exact half goes to the even digit, as a stream rounds it.
SixDigits sixDigits(double size) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &size, sizeof bits);
  const int exponent = static_cast<int>(bits >> MantissaBits) - ExponentBias;
  // The power of ten below the power of two, which is that of the number or the one before it.
  auto place = static_cast<std::size_t>(
      std::clamp(exponent * LogOfTwo / LogScale - (exponent < 0 ? 1 : 0) - SmallestPower, 0,
                 static_cast<int>(powers.size()) - 1));
  if (place + 1 < powers.size() && size >= powers[place + 1]) ++place;
  const std::uint64_t hidden = std::uint64_t{1} << MantissaBits;
  const std::uint64_t mantissa = (bits & (hidden - 1)) | hidden;
  const int shift = MantissaBits - exponent;

  const Wide scaled = static_cast<Wide>(mantissa) * scales[place];
  const Wide half = static_cast<Wide>(1) << (shift - 1);
  const Wide rest = scaled & ((half << 1) - 1);
  auto digits = static_cast<std::uint64_t>(scaled >> shift);
  if (rest > half || (rest == half && digits % 2 == 1)) ++digits;
  const int power = static_cast<int>(place) + SmallestPower;
  return digits == 1000000 ? SixDigits{100000, power + 1} : SixDigits{digits, power};
}

// Zeros at the end go, and so does the dot with nothing behind it. All six digits are written, and
// what is behind the last one that counts is not part of the text.
std::size_t writeEveryday(double value, char* out) {
  char* const begin = out;
  if (value < 0.0) *out++ = '-';
  const SixDigits six = sixDigits(std::abs(value));
  const ThreeDigits& high = threes[six.digits / 1000];
  const ThreeDigits& low = threes[six.digits % 1000];
  std::array<char, 6> digits{};
  std::memcpy(digits.data(), high.digits.data(), 3);
  std::memcpy(digits.data() + 3, low.digits.data(), 3);
  const auto count = static_cast<std::size_t>(low.count != 0 ? 3 + low.count : high.count);

  if (six.power < 0) {
    std::memcpy(out, "0.000", 5);
    out += 1 - six.power;
    std::memcpy(out, digits.data(), 6);
    return static_cast<std::size_t>(out - begin) + count;
  }
  const auto whole = static_cast<std::size_t>(six.power + 1);
  std::memcpy(out, digits.data(), 6);
  if (count <= whole) return static_cast<std::size_t>(out - begin) + whole;
  out[whole] = '.';
  std::memcpy(out + whole + 1, digits.data() + whole, digits.size() - whole);
  return static_cast<std::size_t>(out - begin) + count + 1;
}

// ---- reading ----

template <class Number>
Number readByStream(std::string_view text) {
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  Number value = 0;
  stream >> value;  // on failure the stream stores 0 or the limit
  return value;
}

// A plain number is read without a stream, which costs many times as much. Everything out of the
// ordinary (white space, a plus, no digit at the front, a tail, a value out of range) goes to the
// stream, whose word is final.
template <class Number>
Number read(std::string_view text) {
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

std::size_t writeNumber(double value, char* out) {
  const double size = std::abs(value);
  if (size >= SmallestEveryday && size < LargestEveryday) return writeEveryday(value, out);
  const auto end =
      std::to_chars(out, out + NumberTextLength, value, std::chars_format::general, StreamPrecision)
          .ptr;
  return static_cast<std::size_t>(end - out);
}

std::size_t writeNumber(long long value, char* out) { return writeInteger(value, out); }
std::size_t writeNumber(unsigned long long value, char* out) { return writeInteger(value, out); }

std::string numberText(double value) { return textOf(value); }
std::string numberText(long long value) { return textOf(value); }
std::string numberText(unsigned long long value) { return textOf(value); }

int readInt(std::string_view text) { return read<int>(text); }
float readFloat(std::string_view text) { return read<float>(text); }
double readDouble(std::string_view text) { return read<double>(text); }

// Deliberate: `-`, `.`, `1-2`, `1.-2`, `E5` and `1E5-` are numbers; `1e`, `1e+` and `+1` are none.
bool isNumberText(std::string_view text) {
  NumberTest test;
  for (const char c : text) {
    if (!test.accept(c)) return false;
  }
  return test.isComplete();
}

}  // namespace Jzon
