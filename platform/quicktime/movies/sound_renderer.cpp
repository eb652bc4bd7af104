#include "platform/quicktime/movies/sound_renderer.h"

#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/sound_module.h"
#include "platform/quicktime/movies/volume_ramps.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qt {
namespace {

constexpr std::int64_t kBlock = 8192; ///< frames that are read, converted and mixed at a time

/// A segment in frames: where it plays, at the target's rate, and what of the reader's frames.
struct Span {
    std::int64_t start = 0;
    std::int64_t frames = 0;
    std::int64_t source = 0;
    std::int64_t source_frames = 0;
};

/// A sound track with its reader.
class Voice {
public:
    OSErr Open(const TrackRecord& track, const PcmLayout& target) {
        track_ = &track;
        target_ = target;
        OpenedReader opened = OpenFrameReader(*track.media);
        if (opened.code != noErr) return opened.code;
        reader_ = std::move(opened.reader);
        source_ = reader_->Layout();
        if (source_.rate == 0 || source_.channels == 0) return invalidSampleTable;
        ramps_ = VolumeRampsOf(track);
        volume_ = std::max<int>(0, track.volume) / static_cast<double>(kFullVolume);
        const TimeScale movie_scale = track.movie->time_scale;
        const TimeScale media_scale = track.media->time_scale;
        for (const Segment& segment : track.segments) {
            Span span;
            span.start = Scale(segment.start, target.rate, movie_scale);
            span.source = Scale(segment.media_start, source_.rate, media_scale);
            span.source_frames =
                Scale(segment.media_start + segment.media_duration, source_.rate, media_scale) - span.source;
            span.frames = Scale(span.source_frames, target.rate, source_.rate);
            spans_.push_back(span);
        }
        return noErr;
    }

    [[nodiscard]] std::int64_t End() const {
        return spans_.empty() ? 0 : spans_.back().start + spans_.back().frames;
    }

    /// Whether the source's bytes are the target's.
    [[nodiscard]] bool IsPlain() const { return source_ == target_ && ramps_.empty() && volume_ == 1; }

    /// Whether something of it lies in [first, end). Asked in the order of playing.
    [[nodiscard]] bool Plays(std::int64_t first, std::int64_t end) {
        const Span* span = Next(first);
        return span != nullptr && span->start < end;
    }

    /// Fills [first, first + frames) with bytes of the source; only for a plain voice.
    OSErr Copy(std::int64_t first, std::span<std::byte> out) {
        const std::byte silence =
            target_.encoding == SampleEncoding::kUnsigned8 ? std::byte{0x80} : std::byte{};
        const std::size_t frame_bytes = target_.FrameBytes();
        const auto end = first + static_cast<std::int64_t>(out.size() / frame_bytes);
        for (std::int64_t at = first; at < end;) {
            const Span* span = Next(at);
            const std::int64_t gap_end = span != nullptr ? std::clamp(span->start, at, end) : end;
            const auto place = [&](std::int64_t frame) {
                return out.subspan(static_cast<std::size_t>(frame - first) * frame_bytes);
            };
            std::ranges::fill(place(at).first(static_cast<std::size_t>(gap_end - at) * frame_bytes), silence);
            at = gap_end;
            if (at == end) break;
            const std::int64_t count = std::min(end, span->start + span->frames) - at;
            const auto part = place(at).first(static_cast<std::size_t>(count) * frame_bytes);
            const FramesRead read = reader_->Read(span->source + at - span->start, part);
            if (read.code != noErr) return read.code;
            std::ranges::fill(part.subspan(static_cast<std::size_t>(read.frames) * frame_bytes), silence);
            at += count;
        }
        return noErr;
    }

    /// Adds the frames from `first` on to the mix.
    OSErr Mix(std::int64_t first, std::span<float> mix) {
        const auto end = first + static_cast<std::int64_t>(mix.size() / target_.channels);
        for (std::int64_t at = first; at < end;) {
            const Span* span = Next(at);
            if (span == nullptr || span->start >= end) break;
            at = std::max(at, span->start);
            if (span != current_ || at != mixed_to_) {
                if (const OSErr code = Begin(*span, at); code != noErr) return code;
            }
            const std::int64_t count = std::min(end, span->start + span->frames) - at;
            if (const OSErr code = Fill(static_cast<std::size_t>(count) * target_.channels); code != noErr)
                return code;
            const auto part =
                std::span(ready_).subspan(used_, static_cast<std::size_t>(count) * target_.channels);
            used_ += part.size();
            ApplyGain(ramps_, volume_, at, target_.rate, part, target_.channels);
            float* const out = mix.data() + static_cast<std::size_t>(at - first) * target_.channels;
            for (std::size_t i = 0; i < part.size(); ++i) out[i] += part[i];
            at += count;
            mixed_to_ = at;
        }
        return noErr;
    }

private:
    /// The span that plays at a frame, or the first one after it.
    [[nodiscard]] const Span* Next(std::int64_t frame) {
        while (next_ < spans_.size() && spans_[next_].start + spans_[next_].frames <= frame) ++next_;
        return next_ < spans_.size() ? &spans_[next_] : nullptr;
    }

    /// Starts a span, or goes on in one of which a part was copied: that is never one of another rate.
    OSErr Begin(const Span& span, std::int64_t at) {
        current_ = &span;
        consumed_ = at - span.start;
        ready_.clear();
        used_ = 0;
        resampler_.reset();
        if (source_.rate == target_.rate) return noErr;
        const FfmpegModule* module = SoundModule();
        if (module == nullptr) return cantOpenHandler;
        resampler_ =
            module->open_resampler(std::min(source_.channels, target_.channels), source_.rate, target_.rate);
        return resampler_ != nullptr ? noErr : paramErr;
    }

    /// Brings what is not used of `ready_` to at least `values` samples; the source's end is followed by
    /// silence.
    OSErr Fill(std::size_t values) {
        if (ready_.size() - used_ >= values) return noErr;
        ready_.erase(ready_.begin(), ready_.begin() + static_cast<std::ptrdiff_t>(used_));
        used_ = 0;
        // A frame of a slow sound becomes many.
        const std::int64_t most =
            resampler_ == nullptr ? kBlock
                                  : std::clamp<std::int64_t>(kBlock * source_.rate / target_.rate, 1, kBlock);
        while (ready_.size() < values) {
            const std::int64_t left = current_->source_frames - consumed_;
            if (left <= 0) {
                if (resampler_ != nullptr) {
                    Resample({});
                    resampler_.reset();
                }
                if (ready_.size() < values) ready_.resize(values);
                break;
            }
            const auto count = static_cast<std::size_t>(std::min(left, most));
            bytes_.resize(count * source_.FrameBytes());
            const FramesRead read = reader_->Read(current_->source + consumed_, bytes_);
            if (read.code != noErr) return read.code;
            const auto got = static_cast<std::size_t>(read.frames) * source_.channels;
            samples_.assign(count * source_.channels, 0.0F);
            SamplesToFloat(source_, std::span(bytes_).first(got * source_.SampleBytes()),
                           std::span(samples_).first(got));
            consumed_ += static_cast<std::int64_t>(count);
            Convert();
        }
        return noErr;
    }

    /// From `samples_`, in the source's channels, to `ready_`: the rate is changed on the fewer channels.
    void Convert() {
        if (source_.channels > target_.channels) MapTo(target_.channels, source_.channels);
        if (resampler_ != nullptr) {
            Resample(samples_);
            return;
        }
        if (source_.channels < target_.channels) MapTo(target_.channels, source_.channels);
        ready_.insert(ready_.end(), samples_.begin(), samples_.end());
    }

    void MapTo(std::uint32_t to, std::uint32_t from) {
        mapped_.resize(samples_.size() / from * to);
        MapChannels(samples_, from, mapped_, to);
        samples_.swap(mapped_);
    }

    void Resample(std::span<const float> frames) {
        resampled_.clear();
        resampler_->Process(frames, resampled_);
        samples_.swap(resampled_);
        if (source_.channels < target_.channels) MapTo(target_.channels, source_.channels);
        ready_.insert(ready_.end(), samples_.begin(), samples_.end());
    }

    const TrackRecord* track_ = nullptr;
    PcmLayout source_;
    PcmLayout target_;
    std::unique_ptr<FrameReader> reader_;
    std::vector<VolumeRamp> ramps_;
    double volume_ = 1;
    std::vector<Span> spans_;
    std::size_t next_ = 0;
    const Span* current_ = nullptr;
    std::int64_t mixed_to_ = 0; ///< the frame that what is left of `ready_` begins with
    std::int64_t consumed_ = 0; ///< of the current span's source frames
    std::unique_ptr<Resampler> resampler_;
    Bytes bytes_;
    std::vector<float> samples_;
    std::vector<float> mapped_;
    std::vector<float> resampled_;
    std::vector<float> ready_; ///< in the target's channels and rate
    std::size_t used_ = 0;     ///< of `ready_`, mixed already
};

class TrackRenderer final : public SoundRenderer {
public:
    explicit TrackRenderer(const PcmLayout& target) : target_(target) {}

    OSErr Add(const TrackRecord& track) {
        auto& voice = voices_.emplace_back();
        if (const OSErr code = voice.Open(track, target_); code != noErr) return code;
        frames_ = std::max(frames_, voice.End());
        return noErr;
    }

    FramesRead Read(std::span<std::byte> out) override {
        const auto room = static_cast<std::int64_t>(out.size() / target_.FrameBytes());
        const std::int64_t count = std::min(room, frames_ - position_);
        for (std::int64_t done = 0; done < count;) {
            const std::int64_t part = std::min(kBlock, count - done);
            const auto place = out.subspan(static_cast<std::size_t>(done) * target_.FrameBytes(),
                                           static_cast<std::size_t>(part) * target_.FrameBytes());
            Voice* const alone = OnlyVoice(position_, position_ + part);
            const OSErr code =
                alone != nullptr && alone->IsPlain() ? alone->Copy(position_, place) : Mix(place, part);
            if (code != noErr) return {code, done};
            position_ += part;
            done += part;
        }
        return {noErr, count};
    }

private:
    /// The voice that plays in [first, end) when the others are silent then; or null.
    Voice* OnlyVoice(std::int64_t first, std::int64_t end) {
        Voice* only = nullptr;
        for (Voice& voice : voices_) {
            if (!voice.Plays(first, end)) continue;
            if (only != nullptr) return nullptr;
            only = &voice;
        }
        return only;
    }

    OSErr Mix(std::span<std::byte> out, std::int64_t frames) {
        mix_.assign(static_cast<std::size_t>(frames) * target_.channels, 0.0F);
        for (Voice& voice : voices_)
            if (const OSErr code = voice.Mix(position_, mix_); code != noErr) return code;
        SamplesFromFloat(target_, mix_, out);
        return noErr;
    }

    PcmLayout target_;
    std::vector<Voice> voices_;
    std::vector<float> mix_;
    std::int64_t position_ = 0;
};

bool Sounds(const TrackRecord& track) {
    return track.media != nullptr && track.media->type == Code("soun");
}

} // namespace

OSErr SoundRenderer::Open(const MovieRecord& movie, const TrackRecord* only, const PcmLayout& target,
                          std::unique_ptr<SoundRenderer>& renderer) {
    const bool usable = target.channels > 0 && target.rate > 0 && target.encoding < SampleEncoding::kMuLaw;
    if (!usable) return paramErr;
    auto made = std::make_unique<TrackRenderer>(target);
    bool any = false;
    for (const auto& track : movie.tracks) {
        const bool wanted = only != nullptr ? track.get() == only : track->enabled;
        if (!wanted || !Sounds(*track)) continue;
        any = true;
        if (track->segments.empty()) continue;
        if (const OSErr code = made->Add(*track); code != noErr) return code;
    }
    if (!any) return noSoundTrackInMovieErr;
    renderer = std::move(made);
    return noErr;
}

} // namespace qt
