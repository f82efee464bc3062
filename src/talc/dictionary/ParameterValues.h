#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dictionary/SameName.h"
#include "dictionary/Variant.h"

namespace TalcPathPrivate {

struct ParameterValue {
  std::string name;
  Variant value;
};

/// The named values of a command, in the order in which each name was first set.
///
/// Commands are filled, cleared and filled again for every packet, mostly by the same names in the same order. So a
/// look-up first tries the record behind the last one found, then that one, and clearing keeps the records, names and
/// memory of values included, as spare ones for the next filling. Nobody sees a spare record; no name stands in two
/// records, used or spare.
class ParameterValues {
 public:
  ParameterValues() = default;
  ParameterValues(const ParameterValues& other) : records_(other.begin(), other.end()), count_(records_.size()) {}
  ParameterValues& operator=(const ParameterValues&) = delete;

  const ParameterValue* begin() const { return records_.data(); }
  const ParameterValue* end() const { return records_.data() + count_; }
  std::size_t Count() const { return count_; }

  /// The value of that name, or null.
  const Variant* Find(std::string_view name) const {
    const std::size_t at = IndexOf(name);
    return at < count_ ? &records_[at].value : nullptr;
  }

  /// Sets the value of `name`, of whatever kind it was.
  template <typename T>
  void Set(std::string_view name, T value) {
    ParameterValue& record = RecordFor(name);
    if (T* const held = record.value.As<T>())
      *held = std::move(value);
    else
      record.value = Variant(std::move(value));
    Keep(record);
  }
  void SetBytes(std::string_view name, std::span<const std::uint8_t> bytes) {
    ParameterValue& record = RecordFor(name);
    Bytes* const held = record.value.As<Bytes>();
    if (held != nullptr && !IsPartOf(bytes.data(), *held))
      held->assign(bytes.begin(), bytes.end());
    else
      record.value = Variant(Bytes(bytes.begin(), bytes.end()));
    Keep(record);
  }

  void Clear() {
    count_ = 0;
    next_ = 0;
  }

 private:
  static bool IsPartOf(const std::uint8_t* byte, const Bytes& bytes) {
    const std::less<> isBefore;
    return !isBefore(byte, bytes.data()) && isBefore(byte, bytes.data() + bytes.size());
  }

  /// The index of the record of that name, used or spare, or the number of records.
  std::size_t IndexOf(std::string_view name) const {
    const std::size_t at = next_ < records_.size() ? next_ : 0;
    if (at == records_.size() || !IsSameName(records_[at].name, name)) return SearchFor(name);
    next_ = at + 1;
    return at;
  }
  std::size_t SearchFor(std::string_view name) const;

  /// The record of that name, which `Keep` takes into use once its value is there.
  ParameterValue& RecordFor(std::string_view name) {
    const std::size_t at = IndexOf(name);
    return at <= count_ && at < records_.size() ? records_[at] : SpareRecordFor(name, at);
  }
  ParameterValue& SpareRecordFor(std::string_view name, std::size_t at);
  void Keep(const ParameterValue& record) {
    if (&record == records_.data() + count_) ++count_;
  }

  std::vector<ParameterValue> records_;
  std::size_t count_ = 0;
  mutable std::size_t next_ = 0;
};

}  // namespace TalcPathPrivate
