// Handlers of the sound functions, one a source file of its name.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>

namespace corvane {

FM_Error ExtractInfo(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);
FM_Error Amplify(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                 FM_Data& result);
FM_Error AppendSound(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);
FM_Error ConvertSound(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error CreateSound(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);
FM_Error DrawWaveform(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error ExtractSound(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error FadeSound(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                   FM_Data& result);
/// Settings of the whole plug-in: they stand here for those of playback.
FM_Error Get(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters, FM_Data& result);
FM_Error Set(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters, FM_Data& result);
FM_Error GetSoundInfo(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                      FM_Data& result);
FM_Error ListSoundOutputFormats(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                                FM_Data& result);
FM_Error MixSounds(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                   FM_Data& result);
FM_Error PlayPause(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                   FM_Data& result);
FM_Error PlaySound(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                   FM_Data& result);
FM_Error RecordSoundFormatDialog(std::int16_t id, const FM_ExprEnv& environment,
                                 const FM_DataVect& parameters, FM_Data& result);
FM_Error RecordSoundPause(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                          FM_Data& result);
FM_Error RecordSoundStart(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                          FM_Data& result);
FM_Error RecordSoundStop(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                         FM_Data& result);
FM_Error StopSound(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                   FM_Data& result);
FM_Error Normalize(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                   FM_Data& result);
FM_Error SoundFormatDialog(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                           FM_Data& result);

FM_Error InsertQuickTime(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                         FM_Data& result);
FM_Error SetMetadata(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result);

} // namespace corvane
