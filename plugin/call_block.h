// The host's block of the most recent call into the library: where its services and the library's own
// module handle are found.
#pragma once

#include "platform/fmwrapper/call_block.h"

namespace corvane {

/// Kept by every call of the entry point, before anything else. The block belongs to the host.
void SetCurrentCallBlock(FM_CallBlock* block);
FM_CallBlock& CurrentCallBlock();

} // namespace corvane
