#include "platform/quicktime/movies/volume_ramps.h"

#include "platform/quicktime/movies/atom_containers.h"

#include <algorithm>
#include <cmath>

namespace qt {
namespace {

constexpr std::size_t kLargestTween = 1U << 16;
constexpr std::uint32_t kShortTween = 1; ///< a tween of 16-bit integers

/// The ramp of one tween sample that begins at `start` media units; false when it is none.
bool ReadTween(std::span<const std::byte> sample, TimeValue start, TimeScale scale, VolumeRamp& ramp) {
    const auto entry = FindContainerAtom(FindContainerRoot(sample), kTweenEntry);
    const auto data = FindContainerAtom(entry, kTweenData);
    const TimeValue duration = BigEndian32(FindContainerAtom(entry, kTweenDuration), 0);
    const TimeValue offset = BigEndian32(FindContainerAtom(entry, kTweenStartOffset), 0);
    const bool known = BigEndian32(FindContainerAtom(entry, kTweenType), 0) == kShortTween;
    if (!known || data.size() < 4 || duration <= 0) return false;
    ramp.begin = static_cast<double>(start + offset) / scale;
    ramp.end = static_cast<double>(start + offset + duration) / scale;
    ramp.from = static_cast<std::int16_t>(BigEndian16(data, 0)) / 256.0;
    ramp.to = static_cast<std::int16_t>(BigEndian16(data, 2)) / 256.0;
    return true;
}

double GainAt(const VolumeRamp& ramp, double time) {
    return ramp.from + (ramp.to - ramp.from) * (time - ramp.begin) / (ramp.end - ramp.begin);
}

/// Adds the tweens that a segment of the tween track plays, moved to the movie's time and cut to it.
void AddRamps(const TrackRecord& tweens, const Segment& segment, std::vector<VolumeRamp>& ramps) {
    const MediaRecord& media = *tweens.media;
    const double begin = static_cast<double>(segment.start) / tweens.movie->time_scale;
    const double end = static_cast<double>(segment.End()) / tweens.movie->time_scale;
    const double shift = begin - static_cast<double>(segment.media_start) / media.time_scale;
    for (const SampleRun& run : media.samples->runs) {
        if (run.count != 1 || run.size > kLargestTween) continue;
        Bytes sample(run.size);
        std::int64_t read = 0;
        if (ReadSamples(*media.samples, run.start, 1, sample, read) != noErr) continue;
        VolumeRamp whole;
        if (!ReadTween(sample, run.start, media.time_scale, whole)) continue;
        whole.begin += shift;
        whole.end += shift;
        VolumeRamp part = whole;
        part.begin = std::max(whole.begin, begin);
        part.end = std::min(whole.end, end);
        if (part.end <= part.begin) continue;
        part.from = GainAt(whole, part.begin);
        part.to = GainAt(whole, part.end);
        ramps.push_back(part);
    }
}

} // namespace

std::vector<VolumeRamp> VolumeRampsOf(const TrackRecord& track) {
    std::vector<VolumeRamp> ramps;
    auto inputs = FindContainerRoot(track.media->input_map);
    for (ContainerAtom input; NextContainerAtom(inputs, input);) {
        if (input.type != kTrackModifierInput) continue;
        if (BigEndian32(FindContainerAtom(input.content, kTrackModifierType), 0) != kTrackModifierTypeVolume)
            continue;
        auto index = BigEndian32(FindContainerAtom(input.content, kInputMapSubInputID), 0);
        for (const TrackLink& link : track.references) {
            if (link.type != Code("ssrc") || --index != 0) continue;
            if (link.track->media == nullptr || link.track->media->type != kTweenEntry) continue;
            for (const Segment& segment : link.track->segments) AddRamps(*link.track, segment, ramps);
        }
    }
    return ramps;
}

void ApplyGain(std::span<const VolumeRamp> ramps, double volume, std::int64_t first, std::uint32_t rate,
               std::span<float> frames, std::uint32_t channels) {
    if (volume != 1) {
        const auto gain = static_cast<float>(volume);
        for (float& sample : frames) sample *= gain;
    }
    const auto count = static_cast<std::int64_t>(frames.size() / channels);
    for (const VolumeRamp& ramp : ramps) {
        const auto from = std::clamp<std::int64_t>(std::llround(ramp.begin * rate) - first, 0, count);
        const auto to = std::clamp<std::int64_t>(std::llround(ramp.end * rate) - first, 0, count);
        for (std::int64_t i = from; i < to; ++i) {
            const auto gain = static_cast<float>(GainAt(ramp, static_cast<double>(first + i) / rate));
            float* const frame = frames.data() + static_cast<std::size_t>(i) * channels;
            for (std::uint32_t channel = 0; channel < channels; ++channel) frame[channel] *= gain;
        }
    }
}

} // namespace qt
