#pragma once

#include <algorithm>
#include <vector>

#include "talcpath.h"

namespace TalcPathPrivate {

/// Objects that are called in their order, and may remove themselves and each other while they are.
template <typename Observer>
class ObserverList {
 public:
  /// Behind the others; false for null and for one that is in the list.
  bool Add(Observer* observer) {
    if (observer == nullptr || Has(observer)) return false;
    observers_.push_back(observer);
    return true;
  }
  bool Remove(Observer* observer) { return std::erase(observers_, observer) != 0; }

  /// By what `keyOf` gives of each, ascending.
  template <typename KeyOf>
  void Sort(KeyOf keyOf) {
    std::ranges::stable_sort(observers_, {}, keyOf);
  }

  /// Calls `use` with each observer while it answers true. One that is removed meanwhile is not called any more; one
  /// that is added is not called yet.
  template <typename Use>
  void Walk(Use use) const {
    const std::vector<Observer*> present = observers_;
    for (Observer* const observer : present)
      if (Has(observer) && !use(*observer)) return;
  }

 private:
  bool Has(const Observer* observer) const { return std::ranges::find(observers_, observer) != observers_.end(); }

  std::vector<Observer*> observers_;
};

/// They outlast the library's stop.
inline ObserverList<TalcPath::TalcPreCompileObserver> preCompileObservers;
inline ObserverList<TalcPath::TalcExchangeObserver> exchangeObservers;
inline ObserverList<TalcPath::TalcCompletionObserver> completionObservers;

}  // namespace TalcPathPrivate
