// AIFF, AIFC, AU and CAF files, through a library that writes their headers around the samples.

#include "platform/quicktime/modules/sndfile_library.h"
#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/movie_exporters/sound_exporter.h"

#include <limits>

namespace qt {
namespace {

/// Room for headers and padding in files whose sizes have 32 bits.
constexpr std::int64_t kHeaderRoom = 1 << 16;

/// The samples' code in the library.
int SubtypeOf(SampleEncoding encoding) {
    switch (encoding) {
    case SampleEncoding::kUnsigned8: return SF_FORMAT_PCM_U8;
    case SampleEncoding::kSigned8: return SF_FORMAT_PCM_S8;
    case SampleEncoding::kSigned16: return SF_FORMAT_PCM_16;
    case SampleEncoding::kSigned24: return SF_FORMAT_PCM_24;
    case SampleEncoding::kSigned32: return SF_FORMAT_PCM_32;
    case SampleEncoding::kFloat32: return SF_FORMAT_FLOAT;
    case SampleEncoding::kFloat64: return SF_FORMAT_DOUBLE;
    case SampleEncoding::kMuLaw: return SF_FORMAT_ULAW;
    case SampleEncoding::kALaw: return SF_FORMAT_ALAW;
    }
    return 0;
}

int FormatOf(OSType subtype, const SoundSettings& settings) {
    const int samples = SubtypeOf(settings.encoding);
    switch (subtype) {
    case Code("AIFF"): return SF_FORMAT_AIFF | samples;
    case Code(
        "AIFC"): { // whole numbers are in AIFF unless their order is stated, other samples always in AIFC
        const bool whole = settings.encoding < SampleEncoding::kFloat32;
        return SF_FORMAT_AIFF | samples | (whole ? SF_ENDIAN_BIG : SF_ENDIAN_FILE);
    }
    case Code("ULAW"): return SF_FORMAT_AU | samples;
    default: return SF_FORMAT_CAF | samples | (settings.big_endian ? SF_ENDIAN_BIG : SF_ENDIAN_LITTLE);
    }
}

class PcmFileWriter final : public SoundFileWriter {
public:
    PcmFileWriter(OSType subtype, const SoundSettings& settings, ExportedFile& file)
        : format_(FormatOf(subtype, settings)), file_(file) {
        const bool coded = settings.encoding >= SampleEncoding::kMuLaw;
        layout_ = coded ? PcmLayout{SampleEncoding::kSigned16, false, settings.channels, settings.rate}
                        : PcmLayout{settings.encoding, settings.big_endian, settings.channels, settings.rate};
        raw_ = !coded;
    }

    [[nodiscard]] PcmLayout Layout() const override { return layout_; }

    OSErr Begin(std::int64_t frames) override {
        const bool wide_sizes = (format_ & SF_FORMAT_TYPEMASK) == SF_FORMAT_CAF;
        constexpr std::int64_t kLargest = std::numeric_limits<std::uint32_t>::max() - kHeaderRoom;
        if (!wide_sizes && frames > kLargest / layout_.FrameBytes()) return fileBoundsErr;
        SF_INFO info = {};
        info.samplerate = static_cast<int>(layout_.rate);
        info.channels = static_cast<int>(layout_.channels);
        info.format = format_;
        if (layout_.rate > std::numeric_limits<int>::max() || g_sndfile->format_check(&info) == 0)
            return paramErr;
        static SF_VIRTUAL_IO functions = {Size, Seek, Read, Write, Tell};
        sound_.reset(g_sndfile->open_virtual(&functions, SFM_WRITE, &info, this));
        if (sound_ == nullptr) return file_.GetCode() != noErr ? file_.GetCode() : paramErr;
        g_sndfile->command(sound_.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
        return noErr;
    }

    OSErr Write(std::span<const std::byte> frames) override {
        const auto size = static_cast<sf_count_t>(frames.size());
        if (raw_) {
            g_sndfile->write_raw(sound_.get(), frames.data(), size);
        } else {
            g_sndfile->write_short(sound_.get(), reinterpret_cast<const short*>(frames.data()),
                                   size / sf_count_t{sizeof(short)});
        }
        return file_.GetCode();
    }

    OSErr End() override {
        sound_.reset();
        return file_.GetCode();
    }

private:
    struct Closer {
        void operator()(SNDFILE* sound) const { g_sndfile->close(sound); }
    };

    static sf_count_t Size(void* context) {
        return static_cast<sf_count_t>(static_cast<PcmFileWriter*>(context)->file_.GetSize());
    }

    static sf_count_t Seek(sf_count_t offset, int whence, void* context) {
        auto& writer = *static_cast<PcmFileWriter*>(context);
        if (whence == SEEK_CUR) offset += static_cast<sf_count_t>(writer.position_);
        if (whence == SEEK_END) offset += Size(context);
        if (offset < 0) return -1;
        writer.position_ = static_cast<std::uint64_t>(offset);
        return offset;
    }

    static sf_count_t Read(void*, sf_count_t, void*) { return 0; } // nothing is read back while writing

    static sf_count_t Write(const void* bytes, sf_count_t size, void* context) {
        auto& writer = *static_cast<PcmFileWriter*>(context);
        const auto data = std::span(static_cast<const std::byte*>(bytes), static_cast<std::size_t>(size));
        if (writer.file_.Write(writer.position_, data) != noErr) return 0;
        writer.position_ += data.size();
        return size;
    }

    static sf_count_t Tell(void* context) {
        return static_cast<sf_count_t>(static_cast<PcmFileWriter*>(context)->position_);
    }

    PcmLayout layout_;
    int format_;
    bool raw_ = false; ///< the file has the samples as they come
    ExportedFile& file_;
    std::uint64_t position_ = 0;
    std::unique_ptr<SNDFILE, Closer> sound_;
};

} // namespace

std::unique_ptr<SoundFileWriter> OpenPcmFileWriter(const SoundExporterRow& row, const SoundSettings& settings,
                                                   ExportedFile& file) {
    if (!g_sndfile.Load()) return nullptr;
    return std::make_unique<PcmFileWriter>(row.subtype, settings, file);
}

} // namespace qt
