#pragma once

#include <memory>

#include "WyvrelHelper.h"

/// Makes the one door to a line of hardware and opens it. Null when there is no such hardware; throws `errorException`
/// when it is there and broken, with all that was opened closed again.
///
///     std::unique_ptr<WyvrelHelper> helper = CreateWyvrelHelper(OpenMode::kHostCards);
///
/// The first two modes look for second-line hardware and fall back to the host cards; a mode without a name means
/// second-line hardware.
std::unique_ptr<WyvrelHelper> CreateWyvrelHelper(OpenMode mode);
