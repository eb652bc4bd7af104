#include "sounds/functions.h"

#include "platform/quicktime/movies/movie_playback.h"
#include "plugin/drawing_port.h"
#include "plugin/host_data.h"
#include "plugin/parameters.h"
#include "sounds/fade_movie.h"
#include "sounds/file_format.h"
#include "sounds/sound_parameter.h"
#include "sounds/sound_results.h"
#include "sounds/value_parameters.h"
#include "sounds/wave_samples.h"

namespace corvane {

FM_Error FadeSound(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    constexpr OSType kM4aFormat = qt::Code("M4A ");
    CVSError& error = BeginCall("Media_FadeSound");
    const qt::CurrentPort port(DrawingPort());
    ClearResult(result);
    if (Host(FM_DataVect_Size, &parameters) != 5)
        return error.Fail(kErrorWrongParameter, "This function expects 5 parameters.");
    Sound sound;
    std::int32_t code = OpenSoundParameter(parameters, 0, sound.movie);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as sound.");
    const Read<FadeTime> start = ReadTimeParameter(parameters, 1, TimeSign::kFromEnd);
    if (start.code != 0) return error.Fail(start.code, "Could not get parameter #2 as time.");
    const Read<FadeTime> end = ReadTimeParameter(parameters, 2, TimeSign::kFromEnd);
    if (end.code != 0) return error.Fail(end.code, "Could not get parameter #3 as time.");
    const float level = ReadNumberParameter(parameters, 3).value;
    const bool fade_out = ReadBooleanParameter(parameters, 4).value;

    const FileFormat file = FileFormatOf(sound.movie.get());
    if (file.code != 0) return error.Fail(file.code, "Failed to obtain sound format.");
    if (file.format == kM4aFormat) {
        code = EnsureWaveSamples(sound, AcceptedSamples::kAnyPcm);
        if (code != 0) return error.Fail(code, "Failed to convert movie into intermediate format");
    }
    qt::OwnedMovie faded;
    code = MakeFadedMovie(sound.movie.get(), {start.value, end.value, level, fade_out}, faded);
    if (code != 0) return error.Fail(code, "Fading failed.");
    SetMovieActive(faded.get(), true);
    return PutWaveResult(result, std::move(faded),
                         {"Could not get reference to a temporary file.", "Failed to export sound as WAVE.",
                          "Failed to open sound file.", "Failed to set result."},
                         error);
}

} // namespace corvane
