#pragma once

namespace TalcPathPrivate {

/// True between the first start and the last stop.
bool IsInitialized();

}  // namespace TalcPathPrivate
