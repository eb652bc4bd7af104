#include "sounds/wave_samples.h"

#include "files/movie_file.h"
#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/movies/sound_description.h"
#include "plugin/errors.h"
#include "sounds/export_movie.h"
#include "sounds/sample_block.h"
#include "sounds/sample_format.h"
#include "sounds/sound_track.h"

namespace corvane {
namespace {

constexpr OSType kWave = qt::Code("WAVE");
constexpr std::int32_t kNoExporter = -1;
constexpr std::uint32_t kIntermediateRate = 44100U << 16;

std::int32_t SetIntermediateSettings(MovieExportComponent exporter) {
    SoundDescription settings;
    settings.dataFormat = kSowtFormat;
    settings.numChannels = 2;
    settings.sampleSize = 16;
    settings.sampleRate = kIntermediateRate;
    Handle block = nullptr;
    if (const OSErr code = PtrToHand(&settings, &block, sizeof settings); code != noErr) return code;
    const qt::MemoryHandle owned(block);
    return MovieExportSetSampleDescription(exporter, block, qt::Code("soun"));
}

bool IsAccepted(OSType format, AcceptedSamples accepted) {
    if (accepted == AcceptedSamples::kLittleEndian) return format == kSowtFormat;
    return format == kRawFormat || SixteenBitOrder(format).has_value();
}

} // namespace

std::int32_t ExportIntermediateWave(Movie movie, const XFileSpec& file) {
    MovieExportComponent opened = nullptr;
    if (OpenADefaultComponent(qt::kMovieExporter, kWave, &opened) != noErr) return kNoExporter;
    const qt::OpenComponent exporter(opened);
    if (const std::int32_t code = SetIntermediateSettings(opened); code != 0) return code;
    return ExportMovie(opened, movie, file);
}

std::int32_t EnsureWaveSamples(Sound& sound, AcceptedSamples accepted) {
    const SoundTrack track = FirstSoundTrack(sound.movie.get());
    if (track.code != 0) return track.code;
    const FirstFormat first = FirstSampleFormat(track.media);
    if (first.code != 0) return first.code;
    if (IsAccepted(first.format, accepted)) return 0;

    Sound converted;
    if (const std::int32_t code = converted.intermediate.TakeName(".wav"); code != 0) return code;
    if (const std::int32_t code = ExportIntermediateWave(sound.movie.get(), *converted.intermediate);
        code != 0)
        return code;
    const std::int32_t code = OpenMovieFile(*converted.intermediate, converted.movie);
    if (code == 0) sound = std::move(converted);
    return code;
}

} // namespace corvane
