// Handlers of the image functions.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

FM_Error ConversionDialog(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                          FM_Data& result);
FM_Error ConvertImage(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error EffectApply(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);
FM_Error EffectDialog(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error ExportField(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);
FM_Error GetImageInfo(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error GetMouseUp(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                    FM_Data& result);
FM_Error InsertFile(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                    FM_Data& result);
FM_Error InsertImage(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);
FM_Error ListImageOutputTypes(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                              FM_Data& result);
FM_Error SetImageDefaults(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                          FM_Data& result);
FM_Error TApply(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                FM_Data& result);
FM_Error TClear(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                FM_Data& result);
FM_Error TCrop(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
               FM_Data& result);
FM_Error TQuad(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
               FM_Data& result);
FM_Error TResize(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                 FM_Data& result);
FM_Error TRotate(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                 FM_Data& result);
FM_Error TScale(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                FM_Data& result);
FM_Error TSkew(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
               FM_Data& result);

} // namespace corvane
