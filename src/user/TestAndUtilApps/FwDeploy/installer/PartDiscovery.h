#pragma once

#include "FwDeploy.h"

/// Asks everything on the first line what it runs, in the order in which it will be programmed: the host cards'
/// flashes, then their CPLDs, then the parts of the box. Options must be final: some parts depend on what is selected.
/// A box that is not there or silent is a line on standard error; one that answers badly is an `errorException`.
void DiscoverVeltraParts(Installer& installer, VeltraSpecificHelper& helper);
