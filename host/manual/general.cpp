#include "host/manual/manual.h"

#include <array>

namespace host {
namespace {

constexpr auto kNames = std::to_array<std::string_view>(
    {"Media_Version", "Media_Get", "Media_Set", "Media_GetLastError", "Media_ExtractInfo"});

constexpr auto kPages = std::to_array<ManualPage>({
    {"Media_Version", "The plug-in's version.",
     R"(version format   "" or "short": the version; "long": name and version; "platform": the platform;
                 in lower case)",
     "Text: 10.0.3, Corvane 10.0.3 or Windows; empty for any other format.",
     "none; the record of Media_GetLastError stays as it is", R"(Media_Version ( "long" ))",
     "Corvane 10.0.3"},
    {"Media_Get", "A setting or a state of the plug-in.",
     R"(tag   in any case:
      recording                     1 while a sound is recorded, else 0
      quicktime, quicktime-version  version of the media layer, three digits
      lmworkaround, earlierqtcompatibility
                                    1 while results refer to their media through reference movies
      rfworkaround                  1 while the remote-file workaround is on
      playstatus                    1 while a sound plays in the background, else 0
      volume, tempo, balance        defaults of playback, rounded down to two decimals)",
     "Text; for volume, tempo and balance a number.",
     R"(-50   there is no such tag
-108  memory is full
With a code the result is empty; Media_GetLastError has the message.)",
     R"(Media_Get ( "volume" ))", "1"},
    {"Media_Set", "Changes a setting of the plug-in until it is unloaded.",
     R"(tag     in any case: lmworkaround (or earlierqtcompatibility), rfworkaround, volume, tempo, balance
value   for a workaround true or false, without it the workaround is turned on;
        for volume, tempo and balance a number, which must be there)",
     "Text: the new value of a workaround, 1 or 0; empty without a value and for volume, tempo and balance.",
     R"(-50   there is no such tag, or volume, tempo or balance has no value
-108  memory is full)",
     R"(Media_Set ( "lmworkaround" ; 0 ))", "0"},
    {"Media_GetLastError", "How the latest call of a sound or general function ended.", "none",
     R"(Text: $CODE:FUNCTION: MESSAGE, code 0 for a success, at most 511 bytes; $0: before the first call.
Functions of the file and image groups give their errors in their results and change nothing here;
nor does Media_Version.)",
     "none", R"(Let ( x = Media_Amplify ( "/C:/sounds/none.wav" ; 2 ) ; Media_GetLastError ))",
     "$-50:Media_Amplify: Wrong parameter(s). Could not get parameter #1 as sound."},
    {"Media_ExtractInfo",
     R"(One value of an information list, such as those of Media_GetImageInfo: lines "key: value",
with deeper levels indented.)",
     R"(informationList   the text
retrievalKey      a line number from 1; 0 or empty for the number of lines; or keys joined by "/",
                  one per level, in their own case (a note in brackets at the end may be left out))",
     "Text: the value after the colon, or the whole line where it has none; or the number of lines.",
     R"(-1    the list has no such line, or the key has no first part
-2    the key is only a note
-43   the list has no such key
-50   more than two parameters, or a line number out of range
-108  memory is full
With a code the result is empty; Media_GetLastError has the message.)",
     R"(Media_ExtractInfo ( Media_GetImageInfo ( "/C:/home/ann/photo.jpg" ) ; "Width" ))", "64"},
});

} // namespace

const ManualGroup kGeneralManual = {"Version, settings and errors", kNames, kPages};

} // namespace host
