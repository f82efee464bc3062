#pragma once

namespace TalcPathPrivate {

class TalcHWCaps;

/// Takes what an option's capabilities say over into those of the hardware that it is plugged into: longer time-outs,
/// its blocks, its properties in place of equal ones, its ranges, and its symbols in addition.
///
/// False at the first thing that does not fit, of which a line of the log tells with the option's file; what was taken
/// over before stays. A block whose name is there already does not fit, nor does one without a name.
bool MergeHwc(TalcHWCaps& caps, const TalcHWCaps& option);

}  // namespace TalcPathPrivate
