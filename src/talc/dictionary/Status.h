#pragma once

#include "talcpath.h"

namespace TalcPathPrivate {

/// The status' own name, or `unknown` for a number that has none.
const char* StatusNameOr(TalcPath::TalcPathStatus status, const char* unknown);

}  // namespace TalcPathPrivate
