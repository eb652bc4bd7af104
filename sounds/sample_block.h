#pragma once

#include "platform/quicktime/movies/media.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace corvane {

/// Frames of a sound's media with the description that goes with them. Reading again reuses the memory.
class SampleBlock {
public:
    /// Reads up to `count` frames from `start` on: fewer at the media's end, and where the description
    /// changes. -39 when there is nothing to read, else the media layer's code.
    std::int32_t Read(Media media, TimeValue start, std::int64_t count);

    [[nodiscard]] std::span<std::byte> Samples() const { return qt::HandleBytes(samples_.get()); }
    [[nodiscard]] std::int64_t Frames() const { return frames_; }
    [[nodiscard]] OSType Format() const { return format_; }
    [[nodiscard]] std::uint32_t Channels() const { return channels_; }

    /// Appends the frames to a media, described as those of `like` are.
    std::int32_t AddTo(Media media, const SampleBlock& like) const;

private:
    qt::MemoryHandle samples_{NewHandle(0)};
    qt::MemoryHandle description_{NewHandle(0)};
    std::int64_t frames_ = 0;
    OSType format_ = 0;
    std::uint32_t channels_ = 0;
};

/// Data format of a media's first sample description.
struct FirstFormat {
    std::int32_t code = 0;
    OSType format = 0;
};
FirstFormat FirstSampleFormat(Media media);

} // namespace corvane
