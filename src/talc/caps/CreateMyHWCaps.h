#pragma once

#include "talccaps.h"

namespace TalcPathPrivate {

/// Asks the hardware what it is and what its sub components are. Gives the capabilities of that type, with those of the
/// sub components taken over into them, or as they are when hardware of the same conduit base id was met before; those
/// of the type "NULL", which nobody has, when the hardware does not answer. Tells in the log of all that goes wrong.
TalcPath::TalcHWCapsHandle CreateMyHWCaps();

}  // namespace TalcPathPrivate
