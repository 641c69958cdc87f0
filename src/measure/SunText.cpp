// Every table is written through one class, which knows both forms: rows of fields, in JSON with
// the names of the columns as keys.
#include "kernel/CsvText.h"
#include "kernel/DisplayText.h"
#include "kernel/JsonText.h"

#include <lumivane/measure/SunText.h>

#include <cstdio>
#include <utility>

namespace Lumivane::Measure {
namespace {

using Format = SunText::Format;

constexpr double HourSeconds = 3600.0;

// The rows of one table, as either of its forms.
class Table {
 public:
  Table(std::vector<std::string> theColumns, Format theFormat, bool isSafe)
      : columns(std::move(theColumns)), format(theFormat), row(isSafe) {
    if (format == Format::Csv) {
      for (const std::string& column : columns) row.text(column);
      csv = row.take();
    } else {
      json.beginObject().key("version").number(1).newLine().key("rows").beginArray();
    }
  }

  void beginRow() {
    at = 0;
    if (format == Format::Json) json.newLine().beginObject();
  }
  Table& text(const std::string& value) {
    if (format == Format::Csv)
      row.text(value);
    else
      json.key(columns[at].c_str()).text(value);
    ++at;
    return *this;
  }
  template <class Number>
  Table& number(Number value) {
    if (format == Format::Csv)
      row.number(value);
    else
      json.key(columns[at].c_str()).number(value);
    ++at;
    return *this;
  }
  // A field that does not apply; JSON has no key for it.
  Table& none() {
    if (format == Format::Csv) row.empty();
    ++at;
    return *this;
  }
  void endRow() {
    if (format == Format::Csv)
      csv += row.take();
    else
      json.endObject();
  }

  std::string take() {
    if (format == Format::Csv) return std::move(csv);
    json.newLine().endArray().endObject();
    return json.take();
  }

 private:
  std::vector<std::string> columns;
  Format format;
  size_t at = 0;
  Kernel::CsvRow row;
  std::string csv;
  Kernel::JsonWriter json;
};

void addEye(Table& table, const SunEye& eye) {
  table.text(eye.name);
  for (const double coordinate : eye.eye) table.number(coordinate);
  table.number(eye.isInside ? 1 : 0);
}

std::string monthText(const SunMonth& month) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%04d-%02d", month.year, month.month);
  return buffer;
}

}  // namespace

SunText::SunText(TimeZone theZone, std::shared_ptr<const Visibility::VisibleMap::Names> theNames,
                 bool isSafeText)
    : zone(std::move(theZone)), names(std::move(theNames)), isSafe(isSafeText) {}

std::string SunText::spans(const std::vector<SunEye>& eyes, Format format) const {
  Table table({"name", "date", "start", "end", "seconds", "state", "object", "id", "class"}, format,
              isSafe);
  for (const SunEye& eye : eyes) {
    for (const SunDay& day : eye.days) {
      for (const SunSpan& span : day.spans) {
        table.beginRow();
        table.text(eye.name).text(dateText(day.date));
        table.text(zone.text(span.start)).text(zone.text(span.end)).number(span.seconds());
        table.text(span.isLit() ? "sun" : "shade");
        const auto object = static_cast<size_t>(span.object) - 1;
        const auto number = static_cast<size_t>(span.classNumber);
        if (span.isLit())
          table.none().none().none();
        else
          table.number(span.object)
              .text(names && object < names->objectIds.size()
                        ? Kernel::idText(names->objectIds[object])
                        : "");
        if (!span.isLit()) {
          if (names && span.classNumber >= 0 && number < names->classNames.size())
            table.text(names->classNames[number]);
          else
            table.none();
        }
        table.endRow();
      }
    }
  }
  return table.take();
}

std::string SunText::days(const std::vector<SunEye>& eyes, Format format) const {
  Table table(
      {"name", "date", "sunrise", "sunset", "first_sun", "last_sun", "sun_hours", "daylight_hours"},
      format, isSafe);
  for (const SunEye& eye : eyes) {
    for (const SunDay& day : eye.days) {
      const SunSpan* first = nullptr;
      const SunSpan* last = nullptr;
      for (const SunSpan& span : day.spans) {
        if (!span.isLit()) continue;
        if (first == nullptr) first = &span;
        last = &span;
      }
      table.beginRow();
      table.text(eye.name).text(dateText(day.date));
      if (day.spans.empty())
        table.none().none();
      else
        table.text(zone.text(day.spans.front().start)).text(zone.text(day.spans.back().end));
      if (first == nullptr)
        table.none().none();
      else
        table.text(zone.text(first->start)).text(zone.text(last->end));
      table.number(day.litSeconds() / HourSeconds).number(day.daylightSeconds() / HourSeconds);
      table.endRow();
    }
  }
  return table.take();
}

std::string SunText::months(const std::vector<SunEye>& eyes, Format format) const {
  Table table({"name", "month", "days", "sun_hours", "daylight_hours"}, format, isSafe);
  for (const SunEye& eye : eyes) {
    for (const SunMonth& month : sunMonths(eye.days)) {
      table.beginRow();
      table.text(eye.name).text(monthText(month)).number(month.days);
      table.number(month.litSeconds / HourSeconds).number(month.daylightSeconds / HourSeconds);
      table.endRow();
    }
  }
  return table.take();
}

std::string SunText::totals(const std::vector<SunEye>& eyes, Format format) const {
  Table table({"name", "x", "y", "z", "inside", "days", "sun_hours", "daylight_hours", "sun_share"},
              format, isSafe);
  for (const SunEye& eye : eyes) {
    double lit = 0.0;
    double daylight = 0.0;
    for (const SunDay& day : eye.days) {
      lit += day.litSeconds();
      daylight += day.daylightSeconds();
    }
    table.beginRow();
    addEye(table, eye);
    table.number(static_cast<int>(eye.days.size()));
    table.number(lit / HourSeconds).number(daylight / HourSeconds);
    table.number(daylight > 0.0 ? lit / daylight : 0.0);
    table.endRow();
  }
  return table.take();
}

std::string SunText::values(const std::vector<SunEye>& eyes,
                            const std::vector<std::string>& columns, Format format) const {
  std::vector<std::string> all = {"name", "x", "y", "z", "inside"};
  all.insert(all.end(), columns.begin(), columns.end());
  Table table(all, format, isSafe);
  for (const SunEye& eye : eyes) {
    table.beginRow();
    addEye(table, eye);
    for (const double value : eye.values) table.number(value);
    table.endRow();
  }
  return table.take();
}

}  // namespace Lumivane::Measure
