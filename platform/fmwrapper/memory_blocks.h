// The host's memory blocks: the services behind the call block's memory callbacks.
#pragma once

#include "platform/fmwrapper/call_block.h"

namespace fm {

/// Fills the memory callbacks and the current-environment service of a call block.
void InstallServices(FM_CallBlock& block);

} // namespace fm
