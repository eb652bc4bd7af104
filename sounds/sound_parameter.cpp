#include "sounds/sound_parameter.h"

#include "files/movie_file.h"
#include "files/path_parameter.h"
#include "files/references.h"
#include "platform/quicktime/movies/media.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/reference_movies.h"
#include "platform/quicktime/movies/sound_resource.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"

#include <string>
#include <utility>

namespace corvane {
namespace {

std::int32_t OpenText(const FM_Data& parameter, qt::OwnedMovie& movie) {
    XFileSpec named;
    PathText path{ResolvePathParameter(parameter, named), {}};
    if (path.code == 0) path = named.GetFileMakerPath("movie");
    if (path.code != 0) path.text = ReferenceTextOf(parameter);
    XFileSpec file;
    const std::int32_t code = ResolveFileMakerReference(path.text, file);
    return code == 0 ? OpenMovieFile(file, movie) : code;
}

std::int32_t OpenResource(const FM_BinaryData* container, qt::OwnedMovie& movie) {
    constexpr std::uint32_t kSoundResource = FourCC("snd ");
    const std::int32_t index = Host(FM_BinaryData_GetIndex, container, NewQuadChar(kSoundResource).get());
    if (index < 0) return kNoSoundInContainer;
    const std::uint32_t size = Host(FM_BinaryData_GetSize, container, index);
    const qt::MemoryHandle resource(NewHandle(Size{size}));
    if (!resource) return kErrorOutOfMemory;
    const FM_Error error =
        Host(FM_BinaryData_GetData, container, index, 0U, size, static_cast<void*>(*resource.get()));
    if (error != kFM_ErrorNone) return error;
    qt::OwnedMovie made(NewMovie(0));
    const OSErr code = PasteHandleIntoMovie(resource.get(), kSoundResource, made.get());
    if (code == noErr) movie = std::move(made);
    return code;
}

std::int32_t OpenContainer(const FM_Data& parameter, qt::OwnedMovie& movie) {
    const FM_BinaryData* container = Host(FM_Data_GetBinaryData, &parameter);
    if (Host(FM_BinaryData_GetCount, container) > 0) return OpenResource(container, movie);
    if (Host(FM_Data_IsEmpty, &parameter)) return 0;
    XFileSpec file;
    const std::int32_t code = ResolveReferenceText(ReferenceTextOf(parameter), file);
    return code == 0 ? OpenMovieFile(file, movie) : code;
}

// Replaces a placeholder by the movie that its sound comes from.
std::int32_t ResolvePlaceholder(qt::OwnedMovie& movie) {
    if (movie == nullptr || qt::FirstText(movie.get()) != qt::kPlaceholderText) return 0;
    const Track track = GetMovieIndTrackType(movie.get(), 1, qt::Code("ears"),
                                             movieTrackCharacteristic | movieTrackEnabledOnly);
    if (track == nullptr) return 0;
    qt::DataReference reference;
    std::int32_t attributes = 0;
    std::int32_t code = GetMediaDataRef(GetTrackMedia(track), 1, reference, &attributes);
    if (code == 0 && (attributes & dataRefSelfReference) != 0) return 0;
    if (code == badDataRefIndex) code = couldNotResolveDataRef;
    qt::OwnedMovie source;
    if (code == 0) code = OpenMovieReference(reference, source);
    movie = std::move(source);
    return code;
}

} // namespace

std::int32_t OpenSoundParameter(const FM_DataVect& parameters, std::int32_t index, qt::OwnedMovie& movie) {
    movie.reset();
    if (index >= Host(FM_DataVect_Size, &parameters)) return kErrorWrongParameter;
    const FM_Data& parameter = *Host(FM_DataVect_At, &parameters, index);
    std::int32_t code = kErrorWrongParameter;
    switch (Host(FM_Data_GetNativeType, &parameter)) {
    case kFM_TypeText: code = OpenText(parameter, movie); break;
    case kFM_TypeContainer: code = OpenContainer(parameter, movie); break;
    default: break;
    }
    return code == 0 ? ResolvePlaceholder(movie) : code;
}

} // namespace corvane
