#include "sounds/table.h"

#include "plugin/functions.h"
#include "sounds/functions.h"

#include <array>

namespace corvane {
namespace {

constexpr std::array<SoundFunction, 27> kSoundFunctions = {{
    {1, 1, 1, kShownServerFunction, Version},                 // Media_Version
    {2, 1, 4, kShownFunction, PlaySound},                     // Media_PlaySound
    {3, 1, -1, kShownServerFunction, CreateSound},            // Media_CreateSound
    {4, 2, 2, kShownServerFunction, AppendSound},             // Media_AppendSound
    {5, 3, 3, kShownServerFunction, ExtractSound},            // Media_ExtractSound
    {6, 1, 1, kShownServerFunction, GetSoundInfo},            // Media_GetSoundInfo
    {7, 2, 2, kShownServerFunction, MixSounds},               // Media_MixSounds
    {8, 1, 1, kShownFunction, SoundFormatDialog},             // Media_SoundFormatDialog
    {9, 3, -1, kShownServerFunction, ConvertSound},           // Media_ConvertSound
    {10, 0, 0, kShownServerFunction, ListSoundOutputFormats}, // Media_ListSoundOutputFormats
    {11, 2, 3, kShownServerFunction, Amplify},                // Media_Amplify
    {12, 5, 5, kShownServerFunction, FadeSound},              // Media_FadeSound
    {13, 0, 0, kShownServerFunction, GetLastError},           // Media_GetLastError
    {14, 0, 0, kShownFunction, StopSound},                    // Media_StopSound
    {15, 1, 2, kShownServerFunction, ExtractInfo},            // Media_ExtractInfo
    {16, 0, 1, kShownFunction, InsertQuickTime},              // Media_InsertQuickTime
    {17, 0, 3, kShownFunction, RecordSoundStart},             // Media_RecordSoundStart
    {18, 0, 0, kShownFunction, RecordSoundStop},              // Media_RecordSoundStop
    {19, 0, 0, kShownFunction, RecordSoundPause},             // Media_RecordSoundPause
    {20, 0, 0, kShownFunction, RecordSoundFormatDialog},      // Media_RecordSoundFormatDialog
    {21, 1, 1, kShownServerFunction, Get},                    // Media_Get
    {22, 2, -1, kShownServerFunction, SetMetadata},           // Media_SetMetadata
    {23, 1, 2, kShownServerFunction, Set},                    // Media_Set
    {24, 1, 3, kShownServerFunction, GetMetadata},            // Media_GetMetadata
    {25, 0, 1, kShownFunction, PlayPause},                    // Media_PlayPause
    {26, 1, 1, kShownServerFunction, Normalize},              // Media_Normalize
    {27, 6, 8, kShownFunction, DrawWaveform},                 // Media_DrawWaveform
}};

} // namespace

std::span<const SoundFunction> SoundFunctions() {
    return kSoundFunctions;
}

} // namespace corvane
