// Handlers of the file functions.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

FM_Error SetDefaultFolder(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                          FM_Data& result);
FM_Error GetDefaultFolder(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                          FM_Data& result);
FM_Error CopyItem(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                  FM_Data& result);
FM_Error MoveItem(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                  FM_Data& result);
FM_Error DeleteItem(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                    FM_Data& result);
FM_Error RenameItem(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                    FM_Data& result);
FM_Error CreateFolder(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error ListFolder(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                    FM_Data& result);
FM_Error GetItemInfo(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);
FM_Error CreateAlias(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);
FM_Error OpenItem(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                  FM_Data& result);
FM_Error ListDisks(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                   FM_Data& result);
FM_Error GetPath(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                 FM_Data& result);
FM_Error GetName(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                 FM_Data& result);

/// The next call of CopyItem hands an exported item over: a target name without an extension gets that of
/// the source. It holds for that one call.
void SetExportMode();

} // namespace corvane
