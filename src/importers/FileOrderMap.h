#pragma once

#include <cstddef>
#include <unordered_map>
#include <utility>

#include <nlohmann/json.hpp>

namespace Lumivane::Importers {

/// The members of a JSON object in the order of the file, for `nlohmann::basic_json`. Its own
/// `ordered_map` looks at every key to find one, and so takes time by the square of their number to
/// read an object of many; here, from some members on, an index finds them. Members are only added.
template <class Key, class Value, class Ignored = std::less<Key>,
          class Allocator = std::allocator<std::pair<const Key, Value>>>
class FileOrderMap : public nlohmann::ordered_map<Key, Value, Ignored, Allocator> {
 public:
  using Base = nlohmann::ordered_map<Key, Value, Ignored, Allocator>;
  using Base::Base;
  using typename Base::const_iterator;
  using typename Base::iterator;
  using typename Base::key_type;
  using typename Base::mapped_type;

  iterator find(const Key& key) { return this->begin() + place(key); }
  const_iterator find(const Key& key) const { return this->begin() + place(key); }
  std::size_t count(const Key& key) const { return find(key) == this->end() ? 0 : 1; }

  std::pair<iterator, bool> emplace(const Key& key, Value&& value) {
    const iterator known = find(key);
    if (known != this->end()) return {known, false};
    this->push_back({key, std::move(value)});
    return {this->end() - 1, true};
  }

  Value& operator[](const Key& key) { return emplace(key, Value{}).first->second; }

 private:
  // Few keys are compared faster than they are hashed.
  static constexpr std::size_t FewMembers = 16;

  // Where the member stands, or the end.
  std::ptrdiff_t place(const Key& key) const {
    if (this->size() <= FewMembers) {
      std::ptrdiff_t at = 0;
      for (const auto& member : *this) {
        if (member.first == key) break;
        ++at;
      }
      return at;
    }
    for (; indexed < this->size(); ++indexed)
      index.emplace((this->begin() + static_cast<std::ptrdiff_t>(indexed))->first, indexed);
    const auto found = index.find(key);
    return static_cast<std::ptrdiff_t>(found == index.end() ? this->size() : found->second);
  }

  mutable std::unordered_map<Key, std::size_t> index;
  mutable std::size_t indexed = 0;
};

}  // namespace Lumivane::Importers
