// Files that need an encoder or a multiplexer: MPEG-4, MP3, FLAC, Ogg, compressed AIFC and QuickTime movies.

#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/movie_exporters/sound_exporter.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/sound_module.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

/// What the format is to the library.
struct EncodedFormat {
    OSType subtype;
    const char* container;
    const char* encoder; ///< null: uncompressed samples
    bool whole_numbers;  ///< takes integers as they are, else floats
};
constexpr std::array<EncodedFormat, 8> kFormats = {{
    {Code("M4A "), "ipod", "aac", false},
    {Code("alac"), "ipod", "alac", true},
    {Code("MP3 "), "mp3", "libmp3lame", false},
    {Code("FLAC"), "flac", "flac", true},
    {Code("Ogg "), "ogg", "libvorbis", false},
    {Code("Opus"), "ogg", "libopus", false},
    {Code("ima4"), "aiff", "adpcm_ima_qt", true}, // the other library halves the length of stereo ones
    {Code("MooV"), "mov", nullptr, true},
}};

const char* PcmEncoder(SampleEncoding encoding, bool big_endian) {
    switch (encoding) {
    case SampleEncoding::kUnsigned8: return "pcm_u8";
    case SampleEncoding::kSigned8: return "pcm_s8";
    case SampleEncoding::kSigned16: return big_endian ? "pcm_s16be" : "pcm_s16le";
    case SampleEncoding::kSigned24: return big_endian ? "pcm_s24be" : "pcm_s24le";
    case SampleEncoding::kSigned32: return big_endian ? "pcm_s32be" : "pcm_s32le";
    case SampleEncoding::kFloat32: return big_endian ? "pcm_f32be" : "pcm_f32le";
    case SampleEncoding::kFloat64: return big_endian ? "pcm_f64be" : "pcm_f64le";
    case SampleEncoding::kMuLaw: return "pcm_mulaw";
    case SampleEncoding::kALaw: return "pcm_alaw";
    }
    return nullptr;
}

/// Encoders have no samples of 24 bits: those come in the upper part of 32.
SampleEncoding EncoderInput(SampleEncoding encoding) {
    if (encoding == SampleEncoding::kSigned24) return SampleEncoding::kSigned32;
    return encoding >= SampleEncoding::kMuLaw ? SampleEncoding::kSigned16 : encoding;
}

class EncodedFileWriter final : public SoundFileWriter {
public:
    EncodedFileWriter(const FfmpegModule& module, const EncodedFormat& format, const SoundSettings& settings,
                      ExportedFile& file)
        : module_(module), sink_(file) {
        encoder_.container = format.container;
        encoder_.encoder =
            format.encoder != nullptr ? format.encoder : PcmEncoder(settings.encoding, settings.big_endian);
        encoder_.input = {format.whole_numbers ? EncoderInput(settings.encoding) : SampleEncoding::kFloat32,
                          false, settings.channels, settings.rate};
        encoder_.bits = settings.encoding == SampleEncoding::kSigned24 ? 24 : 0;
        encoder_.bits_per_second = settings.bit_rate * 1000;
        encoder_.quality = settings.quality;
    }

    [[nodiscard]] PcmLayout Layout() const override { return encoder_.input; }

    OSErr Begin(std::int64_t frames) override {
        if (frames == 0) return invalidDuration; // most of the formats have no files without samples
        opened_ = module_.open_encoder(encoder_, sink_);
        return opened_ != nullptr ? OSErr{noErr} : CodeOr(paramErr);
    }
    OSErr Write(std::span<const std::byte> frames) override {
        return opened_->Write(frames) ? OSErr{noErr} : CodeOr(ioErr);
    }
    OSErr End() override { return opened_->Finish() ? OSErr{noErr} : CodeOr(ioErr); }

private:
    class Sink final : public EncodedSink {
    public:
        explicit Sink(ExportedFile& file) : file_(file) {}
        bool Write(std::uint64_t offset, std::span<const std::byte> bytes) override {
            return file_.Write(offset, bytes) == noErr;
        }
        [[nodiscard]] std::uint64_t GetSize() const override { return file_.GetSize(); }
        [[nodiscard]] OSErr GetCode() const { return file_.GetCode(); }

    private:
        ExportedFile& file_;
    };

    /// The code of writing the file, which is why the library fails; else the one given.
    [[nodiscard]] OSErr CodeOr(OSErr code) const { return sink_.GetCode() != noErr ? sink_.GetCode() : code; }

    const FfmpegModule& module_;
    Sink sink_;
    EncoderSettings encoder_;
    std::unique_ptr<SoundEncoder> opened_;
};

} // namespace

std::unique_ptr<SoundFileWriter> OpenEncodedFileWriter(const SoundExporterRow& row,
                                                       const SoundSettings& settings, ExportedFile& file) {
    const auto* const format = std::ranges::find(kFormats, row.subtype, &EncodedFormat::subtype);
    const FfmpegModule* const module = SoundModule();
    if (module == nullptr || format == kFormats.end()) return nullptr;
    return std::make_unique<EncodedFileWriter>(*module, *format, settings, file);
}

} // namespace qt
