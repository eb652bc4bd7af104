// The picture of a sound's waveform: a band for each drawn channel, 20 pixels of margin above all bands and
// of gap below each. Frames come in blocks of any length, so the sound is never held as a whole.
//
// With at most two frames a pixel column the wave is a line through all samples; with more, each column has
// a line from its smallest to its largest sample, joined to the next column's first sample.
#pragma once

#include "images/pixel_buffer.h"
#include "platform/quicktime/types.h"
#include "sounds/html_color.h"
#include "sounds/track_channel.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace corvane {

inline constexpr std::int32_t kErrorNoSuchChannel = -205;

struct WaveformRequest {
    std::int32_t width = 0; ///< pixels, as is the height
    std::int32_t height = 0;
    std::int32_t channel = kAllChannels;
    RgbColor foreground{0, 240, 0};
    RgbColor background{0, 0, 0};
};

/// What will be drawn: the width is shared out evenly among the frames.
struct WaveformSamples {
    OSType format = 0;
    std::uint32_t channels = 0;
    std::uint64_t frames = 0;
};

class WaveformDrawing {
public:
    /// Draws the empty bands. Codes: -50 for sound without channels, a width below 1 and a height that
    /// leaves a band less than 20 pixels; -205 for a channel that the sound doesn't have; -4 for 8-bit
    /// samples, -2001 for other formats but 16-bit ones; those of CreatePixelBuffer.
    std::int32_t Begin(const WaveformRequest& request, const WaveformSamples& samples);

    /// The next frames, all channels of each. Whole frames only; those beyond the number announced to Begin
    /// are left out.
    void AddFrames(std::span<const std::byte> block);

    /// The picture, once all frames are in. The drawing is over then.
    PixelBufferHandle TakePicture() { return std::move(picture_); }

private:
    struct Band {
        std::size_t offset = 0; ///< of its sample in a frame
        std::int32_t top = 0;
        std::int16_t last = 0; ///< sample that the line has come to
        std::int16_t lowest = 0;
        std::int16_t highest = 0; ///< with lowest: samples of the current column
    };

    template <std::endian kOrder>
    void Draw(const std::byte* frames, std::uint64_t count);
    template <std::endian kOrder>
    void DrawEach(const std::byte* frames, std::uint64_t count);
    template <std::endian kOrder>
    void DrawColumns(const std::byte* frames, std::uint64_t count);
    template <std::endian kOrder>
    void Gather(Band& band, const std::byte* frames, std::uint64_t count) const;
    void EndColumn(Band& band, std::int16_t next);
    [[nodiscard]] std::int32_t RowOf(const Band& band, std::int16_t sample) const;

    PixelBufferHandle picture_;
    std::vector<Band> bands_;
    std::int32_t inner_height_ = 0; ///< of a band, without its gap
    std::endian order_ = std::endian::big;
    std::size_t frame_bytes_ = 0;
    std::uint64_t frames_left_ = 0;
    bool at_first_frame_ = true;
    double step_ = 0; ///< columns a frame
    double x_ = 0;    ///< end of the frames drawn so far, summed up step by step
    std::int32_t column_ = 0;
};

} // namespace corvane
