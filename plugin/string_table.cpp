#include "plugin/string_table.h"

#include "platform/text/utf.h"
#include "plugin/call_block.h"

#include <algorithm>

namespace corvane {
namespace {

constexpr std::array<win32::StringResource, 32> kStrings = {{
    {1, u"Corvane"},
    {2, u"Adds functions for importing, exporting, and manipulating images, sounds, documents, and other "
        u"digital media."},
    {3, u"10.0.3"},
    {201, u"Media_Version( version format )"},
    {202, u"Media_PlaySound( container; {in background; { start; { end } } } )"},
    {203, u"Media_CreateSound( type; {duration; {frequency}} )"},
    {204, u"Media_AppendSound(container1; container2)"},
    {205, u"Media_ExtractSound(container; beginTime; endTime)"},
    {206, u"Media_GetSoundInfo(container)"},
    {207, u"Media_MixSounds(container1; container2)"},
    {208, u"Media_SoundFormatDialog(sound-output-format)"},
    {209, u"Media_ConvertSound(container; filename; soundType; {parameters})"},
    {210, u"Media_ListSoundOutputFormats"},
    {211, u"Media_Amplify(container; factor; {limit})"},
    {212, u"Media_FadeSound(container; startTime; endTime; level; inOrOut)"},
    {213, u"Media_GetLastError"},
    {214, u"Media_StopSound"},
    {215, u"Media_ExtractInfo( informationList; {retrievalKey} )"},
    {216, u"Media_InsertQuickTime( path )"},
    {217, u"Media_RecordSoundStart( {path {; in background;}} )"},
    {218, u"Media_RecordSoundStop"},
    {219, u"Media_RecordSoundPause"},
    {220, u"Media_RecordSoundFormatDialog"},
    {221, u"Media_Get( tag )"},
    {222, u"Media_SetMetadata( containerOrFile; informationListOrTag1 {; value1IfTag1 {; tag2; value2 {; "
          u"tag3; value3...}}} )"},
    {223, u"Media_Set( tag {; value } )"},
    {224, u"Media_GetMetadata(container {; specificTagOnly})"},
    {225, u"Media_PlayPause"},
    {226, u"Media_Normalize(container)"},
    {227, u"Media_DrawWaveform( container; track; width; height {; startTime {; endTime {; fgcolor {; "
          u"bgcolor } } } } )"},
    {23003, u"QuickTime is not installed."},
    {23004, u"Corvane requires QuickTime. Please (re)install the latest version of QuickTime, which you can "
            u"download from the QuickTime download page."},
}};

} // namespace

void RegisterStrings(HINSTANCE instance) {
    win32::SetStringResources(instance, kStrings);
}

LoadedString::LoadedString(UINT id)
    : length_(static_cast<std::size_t>(std::max(
          LoadStringW(CurrentCallBlock().instance, id, units_.data(), static_cast<int>(units_.size())), 0))) {
}

std::string LoadedString::Utf8() const {
    return utf::ToUtf8({units_.data(), length_});
}

} // namespace corvane
