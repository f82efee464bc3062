#include "engine/Observers.h"

namespace TalcPath {

bool TalcPathAddPreCompileObserver(TalcPreCompileObserver* observer) {
  return TalcPathPrivate::preCompileObservers.Add(observer);
}

bool TalcPathRemovePreCompileObserver(TalcPreCompileObserver* observer) {
  return TalcPathPrivate::preCompileObservers.Remove(observer);
}

bool TalcPathAddExchangeObserver(TalcExchangeObserver* observer) {
  if (!TalcPathPrivate::exchangeObservers.Add(observer)) return false;
  TalcPathPrivate::exchangeObservers.Sort([](const TalcExchangeObserver* each) { return each->GetKey(); });
  return true;
}

bool TalcPathRemoveExchangeObserver(TalcExchangeObserver* observer) {
  return TalcPathPrivate::exchangeObservers.Remove(observer);
}

bool TalcPathAddCompletionObserver(TalcCompletionObserver* observer) {
  return TalcPathPrivate::completionObservers.Add(observer);
}

bool TalcPathRemoveCompletionObserver(TalcCompletionObserver* observer) {
  return TalcPathPrivate::completionObservers.Remove(observer);
}

}  // namespace TalcPath
