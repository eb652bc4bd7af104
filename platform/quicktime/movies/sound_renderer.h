// The sound of a movie as one stream of samples: tracks mixed, edits, volumes and volume ramps applied, rates
// and layouts converted. Exporters and players draw from it.
#pragma once

#include "platform/quicktime/movies/movie_model.h"

namespace qt {

class SoundRenderer {
public:
    /// Prepares the movie's enabled sound tracks, or one track alone, from its beginning to its end.
    /// noSoundTrackInMovieErr without any; the codes of the readers and modules that are needed. The movie
    /// must outlive the renderer. A target layout needs channels and a rate, and is neither µ-law nor A-law.
    static OSErr Open(const MovieRecord& movie, const TrackRecord* only, const PcmLayout& target,
                      std::unique_ptr<SoundRenderer>& renderer);

    SoundRenderer(const SoundRenderer&) = delete;
    SoundRenderer& operator=(const SoundRenderer&) = delete;
    virtual ~SoundRenderer() = default;

    /// Frames in all, at the target's rate.
    [[nodiscard]] std::int64_t GetFrames() const { return frames_; }
    /// The next frames, as many as fit; none at the end. What a damaged source does not give is silence; a
    /// source that is missing is a code.
    virtual FramesRead Read(std::span<std::byte> out) = 0;

protected:
    SoundRenderer() = default;
    std::int64_t frames_ = 0;
};

} // namespace qt
