// What may be asked of a media that any bytes gave.
#pragma once

#include "fuzz/fuzz_target.h"
#include "platform/quicktime/movies/importers.h"
#include "platform/quicktime/movies/movie_model.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_renderer.h"

/// The movie that an importer makes of these bytes, whose first media has a length and a time scale; null
/// when it gives a reason instead.
inline qt::OwnedMovie ImportBytes(qt::Imported (*import)(const qt::ImportSource&), std::string_view input) {
    const std::shared_ptr<qt::DataSource> data = qt::MemorySource(std::as_bytes(std::span(input)));
    const qt::DataReference reference = qt::MemoryReference();
    qt::Imported imported = import({data, &reference, {}});
    Require((imported.code == noErr) == (imported.movie != nullptr));
    if (imported.movie != nullptr) {
        const qt::MediaRecord& media = *imported.movie->tracks.front()->media;
        Require(media.samples->duration >= 0 && media.time_scale > 0);
    }
    return std::move(imported.movie);
}

/// Reads first samples, what their description tells, and some of the sound, also backwards.
inline void UseMedia(Media media) {
    const qt::MemoryHandle data(NewHandle(0));
    const qt::MemoryHandle description(NewHandle(0));
    std::int64_t samples = 0;
    GetMediaSample(media, 0, 1000, data.get(), description.get(), &samples);
    QTSoundDescriptionGetProperty(description.get(), qt::Code("sdes"), qt::Code("asbd"), data.get());
    QTSoundDescriptionConvertToV1(description.get(), data.get());
    if (GetMediaType(media) != qt::Code("soun")) return;
    const qt::OpenedReader opened = qt::OpenFrameReader(*media);
    // With and without the resampler, but at a near rate: at a time scale of millions it took all the time.
    const std::uint32_t own = opened.reader == nullptr ? 1 : opened.reader->Layout().rate;
    const Track track = GetMediaTrack(media);
    qt::Bytes block(1U << 12);
    for (const std::uint32_t rate : {own, own / 2 + 1}) {
        const qt::PcmLayout layout = {qt::SampleEncoding::kSigned16, false, 2, rate};
        std::unique_ptr<qt::SoundRenderer> renderer;
        if (qt::SoundRenderer::Open(*GetTrackMovie(track), track, layout, renderer) != noErr) return;
        for (int i = 0; i < 4 && renderer->Read(block).frames > 0; ++i) {
        }
    }
    if (opened.reader == nullptr || opened.reader->Layout().FrameBytes() > block.size()) return;
    for (const std::int64_t start : {1000, 0}) opened.reader->Read(start, block);
}
