#pragma once

#include "FwDeploy.h"

/// Asks everything on the first line what it runs, in the order in which it will be programmed: the host cards'
/// flashes, then their CPLDs. Options must be final: some parts depend on what is selected. The box is not asked yet.
void DiscoverVeltraParts(Installer& installer, VeltraSpecificHelper& helper);
