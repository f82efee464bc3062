#pragma once

#include <cstdint>

/// The program's clock: microseconds since some fixed moment. Without a performance counter it is the tick count and so
/// moves in steps of a millisecond or more.
std::int64_t MicroClock();

/// Waits. Gives up the processor for whole milliseconds while there are any left, and spins for the rest, so that a
/// wait of a few microseconds stays one.
void MicroWait(std::int64_t microseconds);
