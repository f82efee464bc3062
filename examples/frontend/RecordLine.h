#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Records.h"

namespace frontend {

/// A record as one line of JSON without its line feed: keys sorted, no blanks, ASCII. A byte of a text that is no
/// printable ASCII is written as \u00XX. `bytes` is the size, `hex` the first 1,024 bytes as they came.
///
///     {"boxPowerCycle":0,"bytes":8,"cpuRestart":1,"hex":"0100000000000000","kind":102,"record":"restart"}
///     {"bytes":2,"hex":"00ff","kind":7,"reason":"unknown kind","record":"refused"}
std::string RecordLine(std::uint64_t kind, std::span<const std::uint8_t> bytes, const Record& record);

}  // namespace frontend
