#include "sounds/functions.h"

#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/type_codes.h"
#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/hex_blocks.h"
#include "plugin/host_data.h"

#include <algorithm>
#include <string>

namespace corvane {
namespace {

constexpr std::string_view kImplied = "a QuickTime Movie ";

// A field of a line: '|' separates them, so none may hold one.
std::string Field(std::string_view text) {
    std::string field(text);
    std::ranges::replace(field, '|', ' ');
    return field;
}

std::string CharactersOf(OSType code) {
    std::string characters = Field(qt::TextOfCode(code));
    for (char& character : characters)
        if (static_cast<unsigned char>(character) < 0x20) character = ' ';
    return characters;
}

std::string LineOf(const qt::SoundExporterInfo& exporter) {
    std::string_view description = exporter.description;
    if (description.starts_with(kImplied)) description.remove_prefix(kImplied.size());
    return BytesToHex(qt::TextOfCode(exporter.subtype)) + "|" + CharactersOf(exporter.subtype) + "|" +
           Field(exporter.name) + "|" + Field(description);
}

} // namespace

FM_Error ListSoundOutputFormats(std::int16_t, const FM_ExprEnv&, const FM_DataVect&, FM_Data& result) {
    CVSError& error = BeginCall("Media_ListSoundOutputFormats");
    const qt::CurrentPort port(DrawingPort());
    std::string list;
    for (const qt::SoundExporterInfo& exporter : qt::ListSoundExporters()) {
        if (!list.empty()) list += '\r';
        list += LineOf(exporter);
    }
    if (const FM_Error code = SetResultText(result, list); code != kFM_ErrorNone)
        return error.Fail(code, "Failed to obtain a list of sound output formats.");
    error.SetCode(0);
    return kFM_ErrorNone;
}

} // namespace corvane
