#include "dictionary/CommandContents.h"

namespace TalcPathPrivate {

ParameterValue& ParameterValues::RecordFor(std::string_view name) {
  const std::size_t at = IndexOf(name);
  if (at < count_) return records_[at];
  if (at == records_.size()) {
    // A spare record that was kept for another name serves this one, so that spare records don't pile up.
    if (count_ == records_.size()) records_.emplace_back();
    records_[count_].name = name;
  } else if (at != count_) {
    std::swap(records_[at], records_[count_]);
  }
  last_ = count_;
  return records_[count_];
}

}  // namespace TalcPathPrivate
