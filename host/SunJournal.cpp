// A line is numbers with one blank between them: of the eye, of its days with their spans, of its
// values. Each list has its count in front, so that a torn line is never taken for a whole one.
#include "SunJournal.h"

#include <charconv>
#include <utility>

namespace Lumivane::Host {
namespace {

using Measure::SunDay;
using Measure::SunEye;
using Measure::SunSpan;

template <class Number>
void add(std::string& line, Number value) {
  char buffer[40];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, value);
  if (!line.empty()) line += ' ';
  line.append(buffer, end.ptr);
}

// Numbers with one blank between them.
class Numbers {
 public:
  explicit Numbers(const std::string& line) : at(line.data()), end(at + line.size()) {}

  template <class Number>
  bool read(Number& value) {
    if (isLater && (at == end || *at++ != ' ')) return false;
    isLater = true;
    const std::from_chars_result result = std::from_chars(at, end, value);
    at = result.ptr;
    return result.ec == std::errc();
  }
  bool isAtEnd() const { return at == end; }

 private:
  const char* at;
  const char* end;
  bool isLater = false;
};

bool readDay(Numbers& numbers, SunDay& day, std::size_t most) {
  std::int64_t date = 0;
  std::size_t count = 0;
  if (!numbers.read(date) || !numbers.read(count) || count > most) return false;
  day.date = Measure::dateOfDay(date);
  day.spans.resize(count);
  for (SunSpan& span : day.spans)
    if (!numbers.read(span.start) || !numbers.read(span.end) || !numbers.read(span.object) ||
        !numbers.read(span.classNumber))
      return false;
  return true;
}

}  // namespace

std::string SunJournal::lineOf(std::size_t number, const SunEye& eye) {
  std::string line;
  add(line, number);
  add(line, eye.isInside ? 1 : 0);
  add(line, eye.days.size());
  for (const SunDay& day : eye.days) {
    add(line, Measure::dayNumber(day.date));
    add(line, day.spans.size());
    for (const SunSpan& span : day.spans) {
      add(line, span.start);
      add(line, span.end);
      add(line, span.object);
      add(line, span.classNumber);
    }
  }
  add(line, eye.values.size());
  for (const double value : eye.values) add(line, value);
  return line;
}

bool SunJournal::readLine(const std::string& line, std::vector<SunEye>& eyes, std::size_t& number) {
  Numbers numbers(line);
  SunEye read;
  int isInside = 0;
  std::size_t count = 0;
  if (!numbers.read(number) || number >= eyes.size() || !numbers.read(isInside) ||
      !numbers.read(count) || count > line.size())
    return false;
  read.days.resize(count);
  for (SunDay& day : read.days)
    if (!readDay(numbers, day, line.size())) return false;
  if (!numbers.read(count) || count > line.size()) return false;
  read.values.resize(count);
  for (double& value : read.values)
    if (!numbers.read(value)) return false;
  if (!numbers.isAtEnd()) return false;
  SunEye& eye = eyes[number];
  eye.isInside = isInside != 0;
  eye.days = std::move(read.days);
  eye.values = std::move(read.values);
  return true;
}

std::vector<bool> SunJournal::takeInto(std::vector<SunEye>& eyes) {
  std::vector<bool> isKnown(eyes.size(), false);
  for (const std::string& line : journal.takeLines()) {
    std::size_t number = 0;
    if (readLine(line, eyes, number)) isKnown[number] = true;
  }
  return isKnown;
}

void SunJournal::append(std::size_t number, const SunEye& eye) {
  const std::string line = lineOf(number, eye);
  const std::lock_guard<std::mutex> lock(mutex);
  journal.append(line);
}

}  // namespace Lumivane::Host
