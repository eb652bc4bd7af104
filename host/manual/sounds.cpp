#include "host/manual/manual.h"

#include <array>

namespace host {
namespace {

constexpr auto kNames = std::to_array<std::string_view>({"Media_CreateSound",
                                                         "Media_AppendSound",
                                                         "Media_ExtractSound",
                                                         "Media_MixSounds",
                                                         "Media_Amplify",
                                                         "Media_FadeSound",
                                                         "Media_Normalize",
                                                         "Media_DrawWaveform",
                                                         "Media_GetSoundInfo",
                                                         "Media_GetMetadata",
                                                         "Media_SetMetadata",
                                                         "Media_ConvertSound",
                                                         "Media_ListSoundOutputFormats",
                                                         "Media_SoundFormatDialog",
                                                         "Media_PlaySound",
                                                         "Media_PlayPause",
                                                         "Media_StopSound",
                                                         "Media_RecordSoundStart",
                                                         "Media_RecordSoundPause",
                                                         "Media_RecordSoundStop",
                                                         "Media_RecordSoundFormatDialog",
                                                         "Media_InsertQuickTime"});

} // namespace

const ManualGroup kSoundManual = {"Sounds and movies", kNames, {}};

} // namespace host
