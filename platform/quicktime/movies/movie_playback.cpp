#include "platform/quicktime/movies/movie_playback.h"

#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_renderer.h"
#include "platform/quicktime/sound_output/sound_output.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <thread>

namespace qt {

/// The playing of a movie from its beginning on: its sound on the way from the renderer to a voice.
class MoviePlayback {
public:
    explicit MoviePlayback(const MovieRecord& movie) : movie_(movie) { g_all.push_back(this); }
    MoviePlayback(const MoviePlayback&) = delete;
    MoviePlayback& operator=(const MoviePlayback&) = delete;
    ~MoviePlayback() {
        std::erase(g_all, this);
        if (voice_ != nullptr) Apply(true);
    }

    /// Opens the sound and hands over what starts it.
    OSErr Open() {
        rate_ = SoundRate();
        OSErr code = SoundRenderer::Open(movie_, nullptr, FloatLayout(2, rate_), renderer_);
        if (code != noErr && code != noSoundTrackInMovieErr) return code;
        left_ = Scale(GetDuration(), rate_, movie_.time_scale);
        if (renderer_ != nullptr) left_ = std::max(left_, renderer_->GetFrames());
        voice_ = std::make_shared<Voice>(rate_);
        if (code = Feed(kFirstFrames); code != noErr) return code;
        return SoundOutput::Get().Add(voice_);
    }

    /// Lets the movie's settings count.
    void Apply(bool ending = false) {
        const double volume = std::max<int>(0, movie_.volume) / static_cast<double>(kFullVolume);
        const float balance = std::clamp(movie_.balance, -1.0F, 1.0F);
        VoiceSettings settings;
        settings.left = static_cast<float>(volume) * std::min(1.0F, 1 - balance);
        settings.right = static_cast<float>(volume) * std::min(1.0F, 1 + balance);
        settings.playing = movie_.active && movie_.rate > 0;
        settings.ending = ending;
        // A stopped movie fades out at the speed that it had.
        if (settings.playing) speed_ = movie_.rate / static_cast<double>(kNormalRate);
        settings.rate = rate_ * speed_;
        SoundOutput::Get().Set(*voice_, settings);
    }

    /// Decodes until the voice has no room left for a block, or has `frames` more.
    OSErr Feed(std::int64_t frames) {
        std::array<StereoFrame, kBlock> block;
        while (frames > 0 && left_ > 0 && voice_->Queue().Room() >= block.size()) {
            const auto count = static_cast<std::size_t>(std::min<std::int64_t>(left_, kBlock));
            const auto part = std::span(block).first(count);
            const OSErr code = Read(part);
            if (code != noErr) {
                left_ = 0;
                voice_->EndQueue();
                return code;
            }
            voice_->Queue().Push(part);
            left_ -= static_cast<std::int64_t>(count);
            frames -= static_cast<std::int64_t>(count);
        }
        if (left_ == 0) voice_->EndQueue();
        return noErr;
    }

    [[nodiscard]] bool IsDone() const { return voice_->IsFinished(); }

    static std::vector<MoviePlayback*>& All() { return g_all; }

private:
    static constexpr std::int64_t kBlock = 4096;
    static constexpr std::int64_t kFirstFrames = 5 * kBlock; ///< enough until the next task
    static constexpr std::uint32_t kUsualRate = 44'100;
    static constexpr std::uint32_t kHighestRate = 768'000;

    /// That of the first sound that plays, whose samples then come through as they are.
    [[nodiscard]] std::uint32_t SoundRate() const {
        for (const auto& track : movie_.tracks) {
            const bool plays =
                track->enabled && track->media != nullptr && track->media->type == Code("soun");
            if (!plays || track->media->samples->descriptions.empty()) continue;
            const auto format = ReadSoundFormat(track->media->samples->descriptions.front());
            if (format && format->rate >= 1 && format->rate <= kHighestRate)
                return static_cast<std::uint32_t>(format->rate);
        }
        return kUsualRate;
    }
    [[nodiscard]] TimeValue GetDuration() const {
        TimeValue end = 0;
        for (const auto& track : movie_.tracks) end = std::max(end, GetTrackDuration(track.get()));
        return end;
    }

    /// The next frames; silence where the movie has no sound, or its sound is at its end.
    OSErr Read(std::span<StereoFrame> frames) {
        FramesRead read;
        if (renderer_ != nullptr) read = renderer_->Read(std::as_writable_bytes(frames));
        if (read.code != noErr) return read.code;
        std::ranges::fill(frames.subspan(static_cast<std::size_t>(read.frames)), StereoFrame{});
        return noErr;
    }

    static inline std::vector<MoviePlayback*> g_all;

    const MovieRecord& movie_;
    std::uint32_t rate_ = 0; ///< of the frames that are decoded
    std::int64_t left_ = 0;  ///< frames that are to be decoded
    double speed_ = 1;
    std::unique_ptr<SoundRenderer> renderer_; ///< null: silence
    std::shared_ptr<Voice> voice_;
};

namespace {

/// Plays, pauses or goes on as the settings say.
void UpdatePlayback(MovieRecord& movie) {
    MoviesError(noErr);
    if (movie.playback == nullptr && movie.active && movie.rate > 0) {
        auto playback = std::make_shared<MoviePlayback>(movie);
        if (MoviesError(playback->Open()) != noErr) {
            movie.rate = 0;
            return;
        }
        movie.playback = std::move(playback);
    }
    if (movie.playback != nullptr) movie.playback->Apply();
}

} // namespace
} // namespace qt

void StartMovie(Movie movie) {
    SetMovieRate(movie, movie->preferred_rate);
}

void StopMovie(Movie movie) {
    SetMovieRate(movie, 0);
}

void GoToBeginningOfMovie(Movie movie) {
    movie->playback.reset();
    qt::UpdatePlayback(*movie);
}

void MoviesTask(Movie movie, std::int32_t milliseconds) {
    using Clock = std::chrono::steady_clock;
    constexpr auto kRound = std::chrono::milliseconds(10);
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    OSErr failed = noErr;
    while (true) {
        for (qt::MoviePlayback* playback : qt::MoviePlayback::All()) {
            constexpr std::int64_t kAll = std::numeric_limits<std::int64_t>::max();
            if (const OSErr code = playback->Feed(kAll); code != noErr) failed = code;
        }
        const auto now = Clock::now();
        if (movie == nullptr || failed != noErr || IsMovieDone(movie) || now >= end) break;
        std::this_thread::sleep_until(std::min<Clock::time_point>(now + kRound, end));
    }
    qt::MoviesError(failed);
}

bool IsMovieDone(Movie movie) {
    if (movie->rate < 0) return true;
    return movie->playback != nullptr ? movie->playback->IsDone() : GetMovieDuration(movie) == 0;
}

void SetMovieActive(Movie movie, bool active) {
    movie->active = active;
    qt::UpdatePlayback(*movie);
}

void SetMovieVolume(Movie movie, std::int16_t volume) {
    movie->volume = volume;
    qt::UpdatePlayback(*movie);
}

std::int16_t GetMovieVolume(Movie movie) {
    return movie->volume;
}

void SetMoviePreferredRate(Movie movie, Fixed rate) {
    movie->preferred_rate = rate;
}

Fixed GetMoviePreferredRate(Movie movie) {
    return movie->preferred_rate;
}

void SetMovieRate(Movie movie, Fixed rate) {
    movie->rate = rate;
    qt::UpdatePlayback(*movie);
}

Fixed GetMovieRate(Movie movie) {
    return IsMovieDone(movie) ? 0 : movie->rate;
}

void SetMovieAudioBalance(Movie movie, float balance) {
    movie->balance = balance;
    qt::UpdatePlayback(*movie);
}

float GetMovieAudioBalance(Movie movie) {
    return movie->balance;
}

void SetMoviePlayHints(Movie movie, std::uint32_t flags, std::uint32_t mask) {
    movie->play_hints = (movie->play_hints & ~mask) | (flags & mask);
}
