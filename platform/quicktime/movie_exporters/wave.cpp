// WAVE files: uncompressed samples, little-endian, behind a header of 44 bytes.

#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/movie_exporters/sound_exporter.h"

#include <array>
#include <limits>

namespace qt {
namespace {

constexpr std::size_t kHeaderSize = 44;
constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloat = 3;

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

class WaveWriter final : public SoundFileWriter {
public:
    WaveWriter(const SoundSettings& settings, ExportedFile& file)
        : layout_{settings.encoding, false, settings.channels, settings.rate}, file_(file) {}

    [[nodiscard]] PcmLayout Layout() const override { return layout_; }

    OSErr Begin(std::int64_t frames) override {
        constexpr std::int64_t kLargest =
            std::numeric_limits<std::uint32_t>::max() - std::int64_t{kHeaderSize};
        if (frames > kLargest / layout_.FrameBytes()) return fileBoundsErr;
        size_ = static_cast<std::uint32_t>(frames) * layout_.FrameBytes();
        return file_.Append(Header(layout_, size_).Get());
    }

    OSErr Write(std::span<const std::byte> frames) override { return file_.Append(frames); }

    OSErr End() override {
        constexpr std::byte kPad{};
        return size_ % 2 != 0 ? file_.Append({&kPad, 1}) : OSErr{noErr};
    }

private:
    PcmLayout layout_;
    ExportedFile& file_;
    std::uint32_t size_ = 0;
};

} // namespace

std::unique_ptr<SoundFileWriter> OpenWaveWriter(const SoundExporterRow&, const SoundSettings& settings,
                                                ExportedFile& file) {
    return std::make_unique<WaveWriter>(settings, file);
}

} // namespace qt
