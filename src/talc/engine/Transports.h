#pragma once

namespace TalcPathPrivate {

/// Forgets all transports, and which one is current.
void ForgetTransports();

}  // namespace TalcPathPrivate
