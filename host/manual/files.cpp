#include "host/manual/manual.h"

#include <array>

namespace host {
namespace {

constexpr auto kNames = std::to_array<std::string_view>(
    {"Media_SetDefaultFolder", "Media_GetDefaultFolder", "Media_CopyItem", "Media_MoveItem",
     "Media_DeleteItem", "Media_RenameItem", "Media_CreateFolder", "Media_ListFolder", "Media_GetItemInfo",
     "Media_CreateAlias", "Media_OpenItem", "Media_ListDisks", "Media_GetPath", "Media_GetName"});

} // namespace

const ManualGroup kFileManual = {"Files and folders", kNames, {}};

} // namespace host
