// Where the current database lies.
#pragma once

#include "files/file_spec.h"

#include <cstdint>

namespace corvane {

/// The database is served over the network: it has no folder here.
inline constexpr std::int32_t kNetworkDatabase = 1;

/// The current database's file, as the host tells it; its folder is one MoveToParent away. 0;
/// kNetworkDatabase without a file; -108 when the host tells none; else the code of the parse. The file
/// itself need not exist, its folder has to (-120).
std::int32_t DatabaseFolder(XFileSpec& database_file);

} // namespace corvane
