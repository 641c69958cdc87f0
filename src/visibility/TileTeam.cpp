#include "visibility/TileTeam.h"

#include "visibility/CubeFaces.h"

#include <lumivane/visibility/SceneIndex.h>

#include <algorithm>
#include <utility>

// Jobs are few, some hundreds in a look, so one lock guards them all; whether anybody wants one is
// asked at every division of a tile, and without it.
namespace Lumivane::Visibility {
namespace {

// Of a face, in the count of what is done.
constexpr std::uint64_t WholeFace = std::uint64_t{1} << 40;

}  // namespace

void TileTeam::check() const {
  if (cancelled != nullptr && cancelled->load(std::memory_order_relaxed)) throw Cancelled();
  if (stopped.load(std::memory_order_relaxed)) throw Stopped();
}

TileJob& TileTeam::offer(TileStart start) {
  const std::lock_guard<std::mutex> lock(mutex);
  jobs.emplace_back();
  TileJob& job = jobs.back();
  job.start = std::move(start);
  queue.push_back(&job);
  offered.store(queue.size(), std::memory_order_relaxed);
  changed.notify_all();
  return job;
}

bool TileTeam::takeBack(TileJob& job) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (job.state != TileJob::State::Offered) return false;
  job.state = TileJob::State::Taken;
  job.start = TileStart{};
  queue.erase(std::find(queue.begin(), queue.end(), &job));
  offered.store(queue.size(), std::memory_order_relaxed);
  return true;
}

template <class IsOver>
TileJob* TileTeam::wait(IsOver isOver) {
  std::unique_lock<std::mutex> lock(mutex);
  idle.fetch_add(1, std::memory_order_relaxed);
  changed.wait(lock, [&] { return stopped || isOver() || !queue.empty(); });
  idle.fetch_sub(1, std::memory_order_relaxed);
  if (stopped) throw Stopped();
  if (isOver()) return nullptr;
  // The first is the largest, and its owner comes to it last.
  TileJob* const job = queue.front();
  queue.erase(queue.begin());
  offered.store(queue.size(), std::memory_order_relaxed);
  job->state = TileJob::State::Taken;
  return job;
}

TileJob* TileTeam::waitFor(const TileJob& job) {
  return wait([&] { return job.state == TileJob::State::Done; });
}

TileJob* TileTeam::next() {
  return wait([this] { return over; });
}

void TileTeam::finish(TileJob& job) {
  const std::lock_guard<std::mutex> lock(mutex);
  job.start = TileStart{};
  job.state = TileJob::State::Done;
  changed.notify_all();
}

void TileTeam::end() {
  const std::lock_guard<std::mutex> lock(mutex);
  over = true;
  changed.notify_all();
}

void TileTeam::fail() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (!failure) failure = std::current_exception();
  stopped = true;
  changed.notify_all();
}

void TileTeam::throwFailure() const {
  if (failure) std::rethrow_exception(failure);
}

void TileTeam::countTile(int level) {
  const std::uint64_t now =
      done.fetch_add(level <= 40 ? WholeFace >> level : 0, std::memory_order_relaxed);
  report.at(PartsShare * static_cast<double>(now) / static_cast<double>(FaceCount * WholeFace));
}

}  // namespace Lumivane::Visibility
