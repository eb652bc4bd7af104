#include "sounds/waveform_drawing.h"

#include "sounds/sample_format.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr std::int32_t kMargin = 20; ///< above the first band, and below each

} // namespace

std::int32_t WaveformDrawing::Begin(const WaveformRequest& request, const WaveformSamples& samples) {
    if (samples.channels == 0) return kErrorWrongParameter;
    const bool all = request.channel == kAllChannels;
    const auto first = all ? 0U : static_cast<std::uint32_t>(request.channel);
    if (first >= samples.channels) return kErrorNoSuchChannel;
    const auto order = SixteenBitOrder(samples.format);
    if (!order) return RefusalOfFormat(samples.format);

    const std::uint32_t count = all ? samples.channels : 1;
    if (request.width < 1 || request.height < kMargin) return kErrorWrongParameter;
    const auto band_height =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(request.height - kMargin) / count);
    if (band_height < kMargin) return kErrorWrongParameter;
    if (const std::int32_t code = CreatePixelBuffer(static_cast<std::uint32_t>(request.width),
                                                    static_cast<std::uint32_t>(request.height), &picture_);
        code != 0) {
        return code;
    }

    inner_height_ = band_height - kMargin;
    order_ = *order;
    frame_bytes_ = samples.channels * kSixteenBitBytes;
    frames_left_ = samples.frames;
    at_first_frame_ = true;
    step_ = static_cast<double>(request.width) / static_cast<double>(samples.frames);
    x_ = 0;
    column_ = 0;

    bands_.assign(count, Band{});
    picture_->SetColor(request.background.red, request.background.green, request.background.blue);
    for (std::uint32_t i = 0; i < count; ++i) {
        bands_[i].offset = (first + i) * kSixteenBitBytes;
        bands_[i].top = band_height * static_cast<std::int32_t>(i) + kMargin;
        picture_->FillRect(0, bands_[i].top, request.width - 1, bands_[i].top + inner_height_);
    }
    picture_->SetColor(request.foreground.red, request.foreground.green, request.foreground.blue);
    return 0;
}

void WaveformDrawing::AddFrames(std::span<const std::byte> block) {
    const std::uint64_t count = std::min<std::uint64_t>(block.size() / frame_bytes_, frames_left_);
    if (count == 0) return;
    frames_left_ -= count;
    order_ == std::endian::big ? Draw<std::endian::big>(block.data(), count)
                               : Draw<std::endian::little>(block.data(), count);
}

template <std::endian kOrder>
void WaveformDrawing::Draw(const std::byte* frames, std::uint64_t count) {
    if (at_first_frame_) {
        for (Band& band : bands_)
            band.last = band.lowest = band.highest = LoadSample<kOrder>(frames + band.offset);
        at_first_frame_ = false;
    }
    step_ >= 0.5 ? DrawEach<kOrder>(frames, count) : DrawColumns<kOrder>(frames, count);
}

template <std::endian kOrder>
void WaveformDrawing::DrawEach(const std::byte* frames, std::uint64_t count) {
    for (std::uint64_t i = 0; i < count; ++i, frames += frame_bytes_) {
        x_ += step_;
        const auto column = static_cast<std::int32_t>(x_);
        for (Band& band : bands_) {
            const std::int16_t sample = LoadSample<kOrder>(frames + band.offset);
            picture_->MoveTo(column_, RowOf(band, band.last));
            picture_->LineTo(column, RowOf(band, sample));
            band.last = sample;
        }
        column_ = column;
    }
}

template <std::endian kOrder>
void WaveformDrawing::DrawColumns(const std::byte* frames, std::uint64_t count) {
    while (count > 0) {
        const double column_end = column_ + 1.0;
        double next_x = x_ + step_;
        std::uint64_t inside = 0;
        for (; inside < count && next_x < column_end; ++inside) {
            x_ = next_x;
            next_x += step_;
        }
        for (Band& band : bands_) Gather<kOrder>(band, frames, inside);
        frames += inside * frame_bytes_;
        count -= inside;
        if (count == 0) break;

        x_ = next_x;
        for (Band& band : bands_) EndColumn(band, LoadSample<kOrder>(frames + band.offset));
        ++column_;
        frames += frame_bytes_;
        --count;
    }
}

template <std::endian kOrder>
void WaveformDrawing::Gather(Band& band, const std::byte* frames, std::uint64_t count) const {
    std::int16_t sample = band.last;
    std::int16_t lowest = band.lowest;
    std::int16_t highest = band.highest;
    for (const std::byte* address = frames + band.offset; count > 0; --count, address += frame_bytes_) {
        sample = LoadSample<kOrder>(address);
        lowest = std::min(lowest, sample);
        highest = std::max(highest, sample);
    }
    band.last = sample;
    band.lowest = lowest;
    band.highest = highest;
}

void WaveformDrawing::EndColumn(Band& band, std::int16_t next) {
    picture_->MoveTo(column_, RowOf(band, band.last));
    picture_->LineTo(column_ + 1, RowOf(band, next));
    picture_->MoveTo(column_, RowOf(band, band.highest));
    picture_->LineTo(column_, RowOf(band, band.lowest));
    band.last = band.lowest = band.highest = next;
}

/// Positive samples point up.
std::int32_t WaveformDrawing::RowOf(const Band& band, std::int16_t sample) const {
    const std::int64_t depth = std::int64_t{32768} - sample;
    return static_cast<std::int32_t>(depth * inner_height_ / 65536) + band.top;
}

} // namespace corvane
