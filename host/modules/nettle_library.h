// The functions of Nettle, which stands in a module: only containers shown as JSON have their sums.
#pragma once

#include "platform/modules/modules.h"

#include <nettle/sha2.h>

namespace host {

/// Nettle's functions for SHA-256 under their own names without the prefix, behaving as its manual says. Only
/// the module makes one of these: the addresses are what it is linked to.
struct NettleLibrary {
    decltype(&nettle_sha256_digest) digest = &nettle_sha256_digest;
    decltype(&nettle_sha256_init) init = &nettle_sha256_init;
    decltype(&nettle_sha256_update) update = &nettle_sha256_update;
};

inline constinit modules::Library<NettleLibrary> g_nettle{"nettle"};

} // namespace host
