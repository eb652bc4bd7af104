#include "sounds/functions.h"

#include "plugin/host_data.h"
#include "sounds/sound_parameter.h"
#include "sounds/sound_results.h"

#include <string_view>

namespace corvane {
namespace {

// All of the first movie with all of the second behind it.
std::int32_t Concatenate(Movie first, Movie second, qt::OwnedMovie& joined) {
    OSErr code = SetMovieSelection(first, 0, first != nullptr ? GetMovieDuration(first) : 0);
    if (code != noErr) return code;
    joined.reset(CopyMovieSelection(first));
    if (joined == nullptr) return GetMoviesError();
    code = SetMovieSelection(second, 0, second != nullptr ? GetMovieDuration(second) : 0);
    if (code == noErr) code = SetMovieSelection(joined.get(), GetMovieDuration(joined.get()), 0);
    return code == noErr ? PasteMovieSelection(joined.get(), second) : code;
}

} // namespace

FM_Error AppendSound(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    constexpr std::string_view kFailed = "Could not concatenate sounds.";
    CVSError& error = BeginCall("Media_AppendSound");
    ClearResult(result);
    if (Host(FM_DataVect_Size, &parameters) != 2)
        return error.Fail(kErrorWrongParameter, "This function requires exactly 2 parameters.");
    qt::OwnedMovie first;
    std::int32_t code = OpenSoundParameter(parameters, 0, first);
    if (code != 0) return error.Fail(code, "Could not get parameter #1 as sound.");
    qt::OwnedMovie second;
    code = OpenSoundParameter(parameters, 1, second);
    if (code != 0) return error.Fail(code, "Could not get parameter #2 as sound.");
    qt::OwnedMovie joined;
    code = Concatenate(first.get(), second.get(), joined);
    if (code != 0) return error.Fail(code, kFailed);
    return PutWaveResult(result, std::move(joined), {kFailed, kFailed, kFailed, "Could not set output."},
                         error);
}

} // namespace corvane
