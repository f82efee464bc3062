#pragma once

#include <exception>

#include "dictionary/Log.h"

namespace TalcPathPrivate {

/// Runs what answers with a bool, and keeps what it throws from getting out: the log tells of it, and the answer is
/// false. The words are those of the start, whoever else uses it.
template <typename Work>
bool RunCatchingAll(Work work) {
  try {
    return work();
  } catch (const std::exception& error) {
    LogAlways("\n\nException while Initializing TalcPath : ", error.what());
  } catch (...) {
    LogAlways("\n\nUnknown Exception while Initializing TalcPath : ");
  }
  return false;
}

/// True between the first start and the last stop.
bool IsInitialized();

}  // namespace TalcPathPrivate
