#pragma once

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

#include "caps/ConditionBlock.h"

namespace TalcPathPrivate {

/// Things that hold under blocks, at most one for each, in the order in which they came. Blocks are told apart by where
/// they are.
template <typename T>
class BlockTable {
 public:
  struct Entry {
    T value;
    const HWCapsConditionBlock* block;
  };

  std::size_t size() const { return entries_.size(); }
  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }
  const Entry& operator[](std::size_t n) const { return entries_[n]; }

  /// Null when there is none.
  const T* Find(const HWCapsConditionBlock* block) const {
    const auto place = places_.find(block);
    return place == places_.end() ? nullptr : &entries_[place->second].value;
  }
  T* Find(const HWCapsConditionBlock* block) { return const_cast<T*>(std::as_const(*this).Find(block)); }

  /// For a block that has none yet.
  T& Add(const HWCapsConditionBlock* block, T value) {
    places_.emplace(block, entries_.size());
    return entries_.emplace_back(Entry{std::move(value), block}).value;
  }
  void Remove(const HWCapsConditionBlock* block) {
    std::erase_if(entries_, [block](const Entry& entry) { return entry.block == block; });
    places_.clear();
    for (std::size_t n = 0; n < entries_.size(); ++n)
      places_.emplace(entries_[n].block, n);
  }

 private:
  std::vector<Entry> entries_;
  std::unordered_map<const HWCapsConditionBlock*, std::size_t> places_;
};

}  // namespace TalcPathPrivate
