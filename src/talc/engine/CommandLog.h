#pragma once

#include "talcpath.h"

namespace TalcPathPrivate {

/// Writes "@time ", the system's milliseconds and " ;", then the command as a statement, to the command log, each on a
/// line of its own. Does nothing when none is open.
void WriteToCommandLog(const TalcPath::TalcCommand& command);

}  // namespace TalcPathPrivate
