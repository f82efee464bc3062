#include "dictionary/Log.h"

#include <iostream>

namespace TalcPathPrivate {

std::ostream& LogStream() {
  return logState.stream != nullptr ? *logState.stream : std::cout;
}

}  // namespace TalcPathPrivate
