#include "sounds/functions.h"

#include "files/movie_file.h"
#include "plugin/drawing_port.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/conversion_target.h"
#include "sounds/export_movie.h"
#include "sounds/exporter_settings.h"
#include "sounds/output_format.h"
#include "sounds/sound_parameter.h"
#include "sounds/sound_results.h"

#include <optional>
#include <string>

namespace corvane {
namespace {

struct Conversion {
    qt::OwnedMovie sound;
    XFileSpec target;
    OSType format = 0;
    std::optional<std::string> settings; ///< none: the user is asked
};

std::int32_t ReadSettings(const FM_DataVect& parameters, std::optional<std::string>& settings,
                          CVSError& error) {
    const Read<std::string> text = ReadTextParameter(parameters, 3);
    if (text.code != 0) return error.Fail(text.code, "Could not get parameter #4 as text.");
    SettingsBytes bytes = HexBlockToSettings(text.value);
    if (bytes.code != 0) return error.Fail(bytes.code, "Could not resolve hex.");
    settings = std::move(bytes.bytes);
    return 0;
}

std::int32_t ReadConversion(const FM_DataVect& parameters, Conversion& conversion, CVSError& error) {
    const std::int32_t count = Host(FM_DataVect_Size, &parameters);
    if (count < 3) return error.Fail(kErrorWrongParameter, "This function requires 3 or more parameters.");
    const std::int32_t code = OpenSoundParameter(parameters, 0, conversion.sound);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as sound.");
    ConversionTarget target = ReadConversionTarget(parameters, 1);
    if (target.code != 0) return error.Fail(target.code, target.message);
    conversion.target = std::move(target.file);
    const Read<std::string> text = ReadTextParameter(parameters, 2);
    const auto format = text.code == 0 ? ReadOutputFormat(text.value) : std::nullopt;
    if (!format)
        return error.Fail(text.code != 0 ? text.code : kErrorWrongParameter,
                          "Could not get parameter #3 as text.");
    conversion.format = *format;
    return count > 3 ? ReadSettings(parameters, conversion.settings, error) : 0;
}

std::int32_t Convert(Conversion& conversion, FM_Data& result) {
    MovieExportComponent opened = nullptr;
    if (const OSErr code = OpenADefaultComponent(qt::kMovieExporter, conversion.format, &opened);
        code != noErr)
        return code;
    const qt::OpenComponent exporter(opened);
    std::int32_t code = conversion.settings ? SetExporterSettings(opened, *conversion.settings)
                                            : AskForExporterSettings(opened, conversion.sound.get());
    if (code == 0) code = ExportMovie(opened, conversion.sound.get(), conversion.target);
    if (code != 0) return code;
    qt::OwnedMovie converted;
    code = OpenMovieFile(conversion.target, converted);
    return code == 0 ? PutMovieResult(result, converted.get()) : code;
}

} // namespace

FM_Error ConvertSound(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    CVSError& error = BeginCall("Media_ConvertSound");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    Conversion conversion;
    if (ReadConversion(parameters, conversion, error) != 0) return kFM_ErrorNone;
    if (const std::int32_t code = Convert(conversion, result); code != 0) {
        error.Fail(code, "Could not convert sound to the desired format.");
        return kFM_ErrorNone;
    }
    error.SetCode(0);
    return kFM_ErrorNone;
}

} // namespace corvane
