#include "sounds/sound_results.h"

#include "files/intermediate_file.h"
#include "files/movie_file.h"
#include "files/reference_movie.h"
#include "files/references.h"
#include "platform/quicktime/movies/movie_playback.h"
#include "platform/quicktime/movies/sound_resource.h"
#include "plugin/host_data.h"
#include "plugin/workarounds.h"
#include "sounds/sound_track.h"
#include "sounds/wave_samples.h"

namespace corvane {

std::int32_t PutMovieResult(FM_Data& result, Movie movie) {
    XFileSpec file;
    if (const std::int32_t code = MovieFileOf(movie, file); code != 0) return code;
    if (!WorkaroundValue(Workaround::kLinkMedia)) return PutFileReferenceResult(result, file, "movie", 0, 0);
    const ReferenceMovie linked = MakeReferenceMovie(file);
    if (linked.code != 0) return linked.code;
    IntermediateFile reference_movie(std::move(file));
    const std::int32_t code = PutFileReferenceResult(result, *reference_movie, "movie", 0, 0);
    if (code == 0 || linked.replaced) reference_movie.Keep();
    return code;
}

std::int32_t PutSoundResourceResult(FM_Data& result, Movie movie) {
    constexpr std::uint32_t kSoundResource = FourCC("snd ");
    SetMovieActive(movie, true);
    const qt::MemoryHandle resource(NewHandle(0));
    if (!resource) return kErrorOutOfMemory;
    const OSErr code = PutMovieIntoTypedHandle(movie, nullptr, kSoundResource, resource.get());
    if (code != noErr) return code;
    const BinaryData container(Host(FM_BinaryData_Constructor1));
    const FM_Error error = Host(FM_BinaryData_Add, container.get(), NewQuadChar(kSoundResource).get(),
                                static_cast<std::uint32_t>(GetHandleSize(resource.get())),
                                static_cast<const void*>(*resource.get()));
    if (error != kFM_ErrorNone) return error;
    Host(FM_Data_SetBinaryData, &result, container.get(), true);
    return 0;
}

FM_Error PutWaveResult(FM_Data& result, qt::OwnedMovie movie, const WaveResultMessages& messages,
                       CVSError& error) {
    IntermediateFile file;
    std::int32_t code = file.TakeName(".wav");
    if (code != 0) return error.Fail(code, messages.no_file);
    code = ExportIntermediateWave(movie.get(), *file);
    if (code != 0) return error.Fail(code, messages.not_exported);
    code = OpenMovieFile(*file, movie);
    if (code != 0) return error.Fail(code, messages.not_opened);
    error.SetCode(0); // may throw, and the files would stay behind the result
    code = PutMovieResult(result, movie.get());
    if (code != 0) return error.Fail(code, messages.no_result);
    file.Keep();
    return kFM_ErrorNone;
}

} // namespace corvane
