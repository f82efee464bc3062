#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dictionary/Variant.h"
#include "talcpath.h"

namespace TalcPathPrivate {

struct ParameterValue {
  std::string name;
  Variant value;
};

/// The named values of a command, in the order in which each name was first set.
///
/// Commands are filled, cleared and filled again for every packet, mostly by the same names in the same order. So a
/// look-up begins where the last one ended, and clearing keeps the records, names and memory of values included, as
/// spare ones for the next filling. Nobody sees a spare record; no name stands in two records, used or spare.
class ParameterValues {
 public:
  ParameterValues() = default;
  ParameterValues(const ParameterValues& other) : records_(other.begin(), other.end()), count_(records_.size()) {}
  ParameterValues& operator=(const ParameterValues&) = delete;

  const ParameterValue* begin() const { return records_.data(); }
  const ParameterValue* end() const { return records_.data() + count_; }
  std::size_t Count() const { return count_; }

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
    if (Bytes* const held = record.value.As<Bytes>())
      held->assign(bytes.begin(), bytes.end());
    else
      record.value = Variant(Bytes(bytes.begin(), bytes.end()));
    Keep(record);
  }

  void Clear() {
    count_ = 0;
    last_ = 0;
  }

 private:
  /// The index of the record of that name, in use or spare, or the number of records.
  std::size_t IndexOf(std::string_view name) const {
    const std::size_t total = records_.size();
    for (std::size_t at = last_; at < total; ++at)
      if (records_[at].name == name) return last_ = at;
    for (std::size_t at = 0; at < last_ && at < total; ++at)
      if (records_[at].name == name) return last_ = at;
    return total;
  }
  ParameterValue& RecordFor(std::string_view name);
  /// Takes a record that `RecordFor` gave into use, once its value is there.
  void Keep(const ParameterValue& record) {
    if (&record == records_.data() + count_) ++count_;
  }

  std::vector<ParameterValue> records_;
  std::size_t count_ = 0;
  mutable std::size_t last_ = 0;
};

/// What a `TalcPath::TalcCommand` is a handle of.
struct CommandContents {
  std::string name;
  ParameterValues parameters;
  bool isSendCommand = true;
  std::uint32_t transportId = 0;
  TalcPath::TalcPathStatus status = TalcPath::kTPFail;
};

}  // namespace TalcPathPrivate

namespace TalcPath {

/// Null for a command that found no memory when it was constructed.
TalcPathPrivate::CommandContents* ContentsOf(const TalcCommand& command);

}  // namespace TalcPath
