#include "sounds/functions.h"

#include "plugin/drawing_port.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/exporter_settings.h"
#include "sounds/generate_tone.h"
#include "sounds/output_format.h"

namespace corvane {
namespace {

// The sound that the dialog plays: a sixth of a second each note, mono.
std::int32_t MakeTestSound(Movie movie) {
    constexpr Fixed kNote = 10922;
    constexpr std::uint32_t kRate = 44100U << 16;
    return MakeChime(movie, kNote, kRate, kToneSixteenBit | kToneSine, false);
}

SettingsBytes AskForSettings(MovieExportComponent exporter) {
    const qt::OwnedMovie sound(NewMovie(0));
    std::int32_t code = MakeTestSound(sound.get());
    if (code == 0) code = AskForExporterSettings(exporter, sound.get());
    return code == 0 ? ExporterSettingsAsHex(exporter) : SettingsBytes{code, {}};
}

FM_Error ShowDialog(const FM_DataVect& parameters, FM_Data& result, CVSError& error) {
    if (Host(FM_DataVect_Size, &parameters) != 1)
        return error.Fail(kErrorWrongParameter, "This function requires exactly 1 parameter.");
    const Read<std::string> text = ReadTextParameter(parameters, 0);
    if (text.code != 0) return error.Fail(text.code, "Could not get parameter #1 as text.");
    const auto format = ReadOutputFormat(text.value);
    if (!format) return error.Fail(kErrorWrongParameter, "Wrong output format.");
    MovieExportComponent opened = nullptr;
    const OSErr missing = OpenADefaultComponent(qt::kMovieExporter, *format, &opened);
    if (missing != noErr) return error.Fail(missing, "Export component not found.");
    const qt::OpenComponent exporter(opened);
    SettingsBytes settings = AskForSettings(opened);
    if (settings.code == 0) settings.code = SetResultText(result, settings.bytes);
    if (settings.code != 0) return error.Fail(settings.code, "Could not get settings as hex.");
    error.SetCode(0);
    return kFM_ErrorNone;
}

} // namespace

FM_Error SoundFormatDialog(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_SoundFormatDialog");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    return ShowDialog(parameters, result, error);
}

} // namespace corvane
