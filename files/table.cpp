#include "files/table.h"

#include "files/functions.h"

#include <array>

namespace corvane {
namespace {

constexpr std::array<CountedFunction, 14> kFileFunctions = {{
    {"Media_SetDefaultFolder", "Media_SetDefaultFolder ( path )", 1, 1, SetDefaultFolder},
    {"Media_GetDefaultFolder", "Media_GetDefaultFolder", 0, 0, GetDefaultFolder},
    {"Media_CopyItem", "Media_CopyItem ( source ; dest ; replace )", 3, 3, CopyItem},
    {"Media_MoveItem", "Media_MoveItem ( source ; dest )", 2, 2, MoveItem},
    {"Media_DeleteItem", "Media_DeleteItem ( item ; folderFlag )", 2, 2, DeleteItem},
    {"Media_RenameItem", "Media_RenameItem ( item ; newName )", 2, 2, RenameItem},
    {"Media_CreateFolder", "Media_CreateFolder ( enclosingFolder ; newFolderName )", 2, 2, CreateFolder},
    {"Media_ListFolder", "Media_ListFolder ( enclosingFolder ; listAll )", 2, 2, ListFolder},
    {"Media_GetItemInfo", "Media_GetItemInfo ( item )", 1, 1, GetItemInfo},
    {"Media_CreateAlias", "Media_CreateAlias ( targetItem ; alias )", 2, 2, CreateAlias},
    {"Media_OpenItem", "Media_OpenItem ( item )", 1, 1, OpenItem},
    {"Media_ListDisks", "Media_ListDisks", 0, 0, ListDisks},
    {"Media_GetPath", "Media_GetPath ( container )", 1, 2, GetPath},
    {"Media_GetName", "Media_GetName ( container )", 1, 1, GetName},
}};

} // namespace

std::span<const CountedFunction> FileFunctions() {
    return kFileFunctions;
}

} // namespace corvane
