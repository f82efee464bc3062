#include "dictionary/ParameterValues.h"

namespace TalcPathPrivate {

std::size_t ParameterValues::SearchFor(std::string_view name) const {
  if (next_ > 0 && next_ <= records_.size() && IsSameName(records_[next_ - 1].name, name)) return next_ - 1;
  for (std::size_t at = 0; at < records_.size(); ++at) {
    if (!IsSameName(records_[at].name, name)) continue;
    next_ = at + 1;
    return at;
  }
  return records_.size();
}

ParameterValue& ParameterValues::SpareRecordFor(std::string_view name, std::size_t at) {
  if (at == records_.size()) {
    // A spare record that was kept for another name serves this one, so that spare records don't pile up.
    if (count_ == records_.size()) records_.emplace_back();
    records_[count_].name = name;
  } else {
    std::swap(records_[at], records_[count_]);
  }
  next_ = count_ + 1;
  return records_[count_];
}

}  // namespace TalcPathPrivate
