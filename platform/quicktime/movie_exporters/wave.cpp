// The WAVE exporter: uncompressed samples, little-endian, behind a header of 44 bytes.

#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace qt {
namespace {

constexpr std::size_t kHeaderSize = 44;
constexpr std::size_t kBlockBytes = 1U << 18;
constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloat = 3;
constexpr int kSteps = 100; ///< how often the progress is told

constexpr PcmLayout kDefaultLayout = {SampleEncoding::kSigned16, false, 2, 44100};

/// How the format stores samples: as they are, except that bytes are unsigned and numbers little-endian.
std::optional<PcmLayout> Storable(std::span<const std::byte> description) {
    auto layout = LayoutOf(description);
    if (!layout.has_value() || layout->rate == 0 || layout->encoding >= SampleEncoding::kMuLaw)
        return std::nullopt;
    if (layout->encoding == SampleEncoding::kSigned8) layout->encoding = SampleEncoding::kUnsigned8;
    layout->big_endian = false;
    return layout;
}

class LittleEndianWriter {
public:
    void Text(std::string_view text) {
        for (const char character : text) *next_++ = static_cast<std::byte>(character);
    }
    void Number(std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) *next_++ = static_cast<std::byte>(value >> (8 * i));
    }
    [[nodiscard]] std::span<const std::byte> Get() const { return bytes_; }

private:
    std::array<std::byte, kHeaderSize> bytes_{};
    std::byte* next_ = bytes_.data();
};

LittleEndianWriter Header(const PcmLayout& layout, std::uint32_t data_size) {
    const bool floats = layout.encoding >= SampleEncoding::kFloat32;
    LittleEndianWriter header;
    header.Text("RIFF");
    header.Number(data_size + data_size % 2 + kHeaderSize - 8, 4);
    header.Text("WAVEfmt ");
    header.Number(16, 4);
    header.Number(floats ? kFloat : kPcm, 2);
    header.Number(layout.channels, 2);
    header.Number(layout.rate, 4);
    header.Number(layout.rate * layout.FrameBytes(), 4);
    header.Number(layout.FrameBytes(), 2);
    header.Number(8 * layout.SampleBytes(), 2);
    header.Text("data");
    header.Number(data_size, 4);
    return header;
}

class WaveExporter final : public MovieExporter {
public:
    OSErr SetSampleDescription(std::span<const std::byte> description, OSType media_type) override {
        const auto layout = Storable(description);
        if (media_type != Code("soun") || !layout.has_value()) return paramErr;
        layout_ = *layout;
        return noErr;
    }

    [[nodiscard]] OSType FileType() const override { return Code("WAVE"); }

    OSErr Export(const MovieRecord& movie, const TrackRecord* only, ExportedFile& file) override {
        std::unique_ptr<SoundRenderer> renderer;
        if (const OSErr code = SoundRenderer::Open(movie, only, layout_, renderer); code != noErr)
            return code;
        constexpr std::int64_t kLargest =
            std::numeric_limits<std::uint32_t>::max() - std::int64_t{kHeaderSize};
        if (renderer->GetFrames() > kLargest / layout_.FrameBytes()) return fileBoundsErr;
        const auto size = static_cast<std::uint32_t>(renderer->GetFrames()) * layout_.FrameBytes();
        if (const OSErr code = file.Write(Header(layout_, size).Get()); code != noErr) return code;
        if (const OSErr code = WriteSamples(movie, *renderer, file); code != noErr) return code;
        constexpr std::byte kPad{};
        return size % 2 != 0 ? file.Write({&kPad, 1}) : OSErr{noErr};
    }

private:
    OSErr WriteSamples(const MovieRecord& movie, SoundRenderer& renderer, ExportedFile& file) const {
        Bytes block(std::max<std::size_t>(kBlockBytes / layout_.FrameBytes(), 1) * layout_.FrameBytes());
        std::int64_t written = 0;
        int told = 0;
        if (const OSErr code = Tell(movie, 0); code != noErr) return code;
        while (written < renderer.GetFrames()) {
            const FramesRead read = renderer.Read(block);
            if (read.code != noErr || read.frames == 0) return read.code != noErr ? read.code : OSErr{ioErr};
            const auto size = static_cast<std::size_t>(read.frames) * layout_.FrameBytes();
            if (const OSErr code = file.Write(std::span(block).first(size)); code != noErr) return code;
            written += read.frames;
            const int step = static_cast<int>(written * kSteps / renderer.GetFrames());
            if (step == told || step == kSteps) continue;
            told = step;
            if (const OSErr code = Tell(movie, static_cast<double>(step) / kSteps); code != noErr)
                return code;
        }
        return Tell(movie, 1);
    }

    PcmLayout layout_ = kDefaultLayout;
};

} // namespace

std::unique_ptr<Component> MakeWaveExporter() {
    return std::make_unique<WaveExporter>();
}

} // namespace qt
