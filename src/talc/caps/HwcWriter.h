#pragma once

#include <iosfwd>
#include <string_view>

namespace TalcPathPrivate {

class TalcHWCaps;

/// Writes capabilities in the language of `ReadHwc`, which reads all of it back, under this name of the hardware.
/// False, with part of it written, for a value that the language cannot say: an empty list of symbols.
bool WriteHwc(const TalcHWCaps& caps, std::string_view hardwareType, std::ostream& stream);

}  // namespace TalcPathPrivate
