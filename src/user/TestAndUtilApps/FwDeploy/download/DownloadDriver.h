#pragma once

#include <cstdint>

#include "download/DownloadHelper.h"
#include "parts/PartTable.h"

/// Sends a part's file to its target and waits until the target has burnt it.
///
/// With `progress` the phases and percentages go to standard output and to the front end, at most every 1.5 seconds.
/// The percentage of the burning is elapsed time against `estimateMicroseconds` (not 0), and may pass 100. There is no
/// time limit: a target that never finishes is waited for until its helper throws.
///
/// Throws `errorException` when the file cannot be opened, held in memory or read whole, and passes on what the helper
/// throws; file and memory are released on every road.
void DownloadDriver(bool progress, const PartLocation& location, std::int64_t estimateMicroseconds,
                    DownloadHelper& helper);
