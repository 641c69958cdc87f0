// Sun hours of many eyes. One path of the sun serves all of them; each eye is one thread's work.

#include "SunTimes.h"

#include "Arrays.h"
#include "Module.h"
#include "Waiting.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace py = pybind11;

namespace Lumivane::Python {

// A span of one eye: positions from 0, but for the object, whose number is from 1.
struct SpanRow {
  std::int32_t eye;
  std::int32_t day;
  std::int32_t object;
  std::int32_t classNumber;
  double start;
  double end;
};

namespace {

using Measure::SunDay;
using Measure::SunHours;
using Measure::SunPath;
using Measure::SunSpan;

class Work {
 public:
  Work(const SceneData& scene, const WantedSun& theWanted, std::atomic<bool>& theCancelled)
      : index(scene.index()),
        wanted(theWanted),
        cancelled(theCancelled),
        days(wanted.eyes.size()) {}

  void run() {
    path.emplace(wanted.place, wanted.first, wanted.last);
    forEach(wanted.eyes.size(), wanted.threads, cancelled, [this](std::size_t i) {
      Visibility::LookOptions how = lookUpwards(wanted.place);
      how.twoSided = wanted.twoSided;
      how.threads = 1;
      how.cancelled = &cancelled;
      SunHours::Options options;
      options.lowestElevation = wanted.lowestElevation;
      days[i] = SunHours(index.look(wanted.eyes[i], how), *path, options).days();
      ++done;
    });
  }

  double part() const {
    return days.empty() ? 1.0 : static_cast<double>(done.load()) / static_cast<double>(days.size());
  }

  const std::vector<std::vector<SunDay>>& daysOfEyes() const { return days; }

 private:
  const Visibility::SceneIndex& index;
  const WantedSun& wanted;
  std::atomic<bool>& cancelled;
  std::optional<SunPath> path;
  std::vector<std::vector<SunDay>> days;
  std::atomic<std::size_t> done{0};
};

// Days that the place's calendar leaves out have their positions, too.
std::size_t positionOf(const SunDay& day, const WantedSun& wanted) {
  return static_cast<std::size_t>(dayNumber(day.date) - dayNumber(wanted.first));
}

std::vector<SpanRow> spansOf(const std::vector<std::vector<SunDay>>& eyes,
                             const WantedSun& wanted) {
  std::vector<SpanRow> rows;
  for (std::size_t eye = 0; eye < eyes.size(); ++eye)
    for (const SunDay& day : eyes[eye])
      for (const SunSpan& span : day.spans)
        rows.push_back({static_cast<std::int32_t>(eye),
                        static_cast<std::int32_t>(positionOf(day, wanted)), span.object,
                        span.classNumber, span.start, span.end});
  return rows;
}

}  // namespace

void bindSun(py::module_& module) {
  PYBIND11_NUMPY_DTYPE_EX(SpanRow, eye, "eye", day, "day", object, "object", classNumber, "class",
                          start, "start", end, "end");
  module.attr("has_sun") = SunPath::isBuilt();
}

py::dict sunHoursOf(const SceneData& scene, const WantedSun& wanted, const py::object& progress) {
  std::atomic<bool> cancelled{false};
  Work work(scene, wanted, cancelled);
  const auto report = [&] {
    if (!progress.is_none()) progress(work.part());
  };
  if (!wanted.eyes.empty()) report();
  runInterruptibly(
      cancelled, [&work] { work.run(); }, report);
  report();
  const std::vector<std::vector<SunDay>>& eyes = work.daysOfEyes();
  const auto count = static_cast<std::size_t>(dayNumber(wanted.last) - dayNumber(wanted.first) + 1);
  Array<double> lit = zeros(eyes.size(), count);
  Array<double> daylight = zeros(eyes.size(), count);
  double* const litAt = lit.mutable_data();
  double* const daylightAt = daylight.mutable_data();
  for (std::size_t eye = 0; eye < eyes.size(); ++eye)
    for (const SunDay& day : eyes[eye]) {
      const std::size_t at = eye * count + positionOf(day, wanted);
      litAt[at] = day.litSeconds();
      daylightAt[at] = day.daylightSeconds();
    }
  py::dict result;
  result["lit"] = lit;
  result["daylight"] = daylight;
  result["spans"] = readOnly(spansOf(eyes, wanted));
  return result;
}

}  // namespace Lumivane::Python
