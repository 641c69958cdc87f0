#pragma once

#include <lumivane/visibility/SceneIndex.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <thread>
#include <utility>

namespace Lumivane::Visibility {

/// How much of a look finding its parts is reported to be; what is left is making the map of them.
constexpr double PartsShare = 0.9;

/// Calls what a look reports its progress to, about ten times a second, and from the thread that
/// has made this alone.
class ProgressReport {
 public:
  /// May be empty, and lives as long as this.
  explicit ProgressReport(const std::function<void(double)>& progress) : report(progress) {}

  /// How far it is, from 0 to 1; never less than before.
  void at(double part) {
    if (!report || std::this_thread::get_id() != maker) return;
    const auto time = std::chrono::steady_clock::now();
    if (time - last < std::chrono::milliseconds(100)) return;
    last = time;
    report(part);
  }

 private:
  const std::function<void(double)>& report;
  const std::thread::id maker = std::this_thread::get_id();
  std::chrono::steady_clock::time_point last = std::chrono::steady_clock::now();
};

/// Lets loops over millions of items end soon after a look has been cancelled: they ask at every
/// few thousand of them, in any thread.
class Watch {
 public:
  /// A flag that may be null, and a function that may be empty; both live as long as this.
  Watch(const std::atomic<bool>* cancelFlag, const std::function<void(double)>& progress)
      : cancelled(cancelFlag), report(progress) {}

  /// What is reported from here on. While other threads ask it stays as it is.
  void setPart(double newPart) { part = newPart; }

  /// \throws Cancelled  where the work is to end, and what reporting throws
  void check() {
    if (cancelled != nullptr && cancelled->load(std::memory_order_relaxed)) throw Cancelled();
    report.at(part);
  }

  /// The items of a list, to loop over.
  template <class List>
  auto over(List& list) {
    return Range<decltype(list.begin())>{list.begin(), list.end(), *this};
  }
  /// The numbers from 0 up to, but without, `count`, to loop over.
  auto upTo(std::size_t count) { return Range<Number>{{0}, {count}, *this}; }

  /// An order by which lists are sorted; to be used by reference (std::ref), since it counts.
  template <class Less>
  class Order {
   public:
    Order(Less newLess, Watch& newWatch) : less(std::move(newLess)), watch(&newWatch) {}
    template <class Item>
    bool operator()(const Item& a, const Item& b) {
      if (++compared % Comparisons == 0) watch->check();
      return less(a, b);
    }

   private:
    Less less;
    Watch* watch;
    std::size_t compared = 0;
  };
  template <class Less>
  Order<Less> order(Less less) {
    return {std::move(less), *this};
  }

 private:
  // Both take some tens of microseconds.
  static constexpr std::size_t Items = 4096;
  static constexpr std::size_t Comparisons = 16384;

  struct Number {
    std::size_t value;
    std::size_t operator*() const { return value; }
    void operator++() { ++value; }
    bool operator!=(const Number& other) const { return value != other.value; }
  };

  template <class Place>
  struct Range {
    struct Position {
      Place place;
      Watch* watch;
      std::size_t passed = 0;
      decltype(auto) operator*() const { return *place; }
      void operator++() {
        ++place;
        if (++passed % Items == 0) watch->check();
      }
      bool operator!=(const Position& other) const { return place != other.place; }
    };
    Place first;
    Place last;
    Watch& watch;
    Position begin() const { return {first, &watch}; }
    Position end() const { return {last, &watch}; }
  };

  const std::atomic<bool>* cancelled;
  ProgressReport report;
  double part = 0.0;
};

}  // namespace Lumivane::Visibility
