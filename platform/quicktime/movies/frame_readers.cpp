// Decoded frames of the samples in runs: uncompressed ones as they are, packets through their decoder.

#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/movie_model.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_module.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qt {
namespace {

std::span<std::byte> Behind(std::span<std::byte> bytes, std::int64_t frames, std::uint32_t frame_bytes) {
    return bytes.subspan(static_cast<std::size_t>(frames) * frame_bytes);
}

class PcmReader final : public FrameReader {
public:
    PcmReader(std::shared_ptr<MediaSamples> samples, const PcmLayout& layout) : samples_(std::move(samples)) {
        layout_ = layout;
    }

    FramesRead Read(std::int64_t start, std::span<std::byte> frames) override {
        FramesRead read;
        const auto wanted = static_cast<std::int64_t>(frames.size() / layout_.FrameBytes());
        while (read.frames < wanted) {
            const auto rest = Behind(frames, read.frames, layout_.FrameBytes());
            std::int64_t got = 0;
            read.code = ReadSamples(*samples_, start + read.frames, wanted - read.frames, rest, got);
            read.frames += got;
            if (read.code == invalidTime || read.code == eofErr) return {noErr, read.frames};
            if (read.code != noErr || got == 0) break;
        }
        return read;
    }

private:
    std::shared_ptr<MediaSamples> samples_;
};

/// Packets that a decoder needs before its output is right again after a jump.
constexpr int kPreRoll = 12;
constexpr std::uint32_t kLargestPacket = 1U << 24;
constexpr int kProbedPackets = 32;

class PacketReader final : public FrameReader {
public:
    PacketReader(std::shared_ptr<MediaSamples> samples, TimeScale scale,
                 std::unique_ptr<PacketDecoder> decoder)
        : samples_(std::move(samples)), scale_(scale), decoder_(std::move(decoder)) {}

    /// Decodes the first packets: only then the layout is sure.
    OSErr Open() {
        for (int i = 0; i < kProbedPackets && decoded_.empty(); ++i)
            if (const OSErr code = DecodeNext(); code != noErr) return code == eofErr ? badFileFormat : code;
        if (decoded_.empty() || decoder_->Channels() == 0 || decoder_->Rate() == 0) return badFileFormat;
        layout_ = FloatLayout(decoder_->Channels(), decoder_->Rate());
        decoded_.insert(decoded_.begin(), ValuesOf(silent_), 0.0F);
        first_frame_ = Scale(samples_->lead_in, layout_.rate, scale_);
        return noErr;
    }

    FramesRead Read(std::int64_t start, std::span<std::byte> frames) override {
        FramesRead read;
        const auto wanted = static_cast<std::int64_t>(frames.size() / layout_.FrameBytes());
        start += first_frame_;
        if (const OSErr code = MoveTo(start); code != noErr) return {code, 0};
        while (read.frames < wanted) {
            if (Available() == 0) {
                const OSErr code = DecodeNext();
                if (code == eofErr) break;
                if (code != noErr) return {code, read.frames};
                continue;
            }
            const std::int64_t skipped = std::min(Available(), start + read.frames - position_);
            if (skipped > 0) {
                Drop(skipped);
                continue;
            }
            const std::int64_t count = std::min(Available(), wanted - read.frames);
            std::memcpy(Behind(frames, read.frames, layout_.FrameBytes()).data(), decoded_.data() + used_,
                        static_cast<std::size_t>(count) * layout_.FrameBytes());
            Drop(count);
            read.frames += count;
        }
        return read;
    }

private:
    [[nodiscard]] std::int64_t Available() const {
        return static_cast<std::int64_t>((decoded_.size() - used_) / layout_.channels);
    }

    void Drop(std::int64_t frames) {
        used_ += static_cast<std::size_t>(frames) * layout_.channels;
        position_ += frames;
    }

    /// Steps to the packets from which the wanted frame comes out right, unless reading on does.
    OSErr MoveTo(std::int64_t frame) {
        const std::int64_t ahead = frame - position_;
        if (ahead >= 0 && ahead < layout_.rate) return noErr;
        const SampleRun* run = FindRun(*samples_, Scale(frame, scale_, layout_.rate));
        if (run == nullptr) return frame >= position_ ? noErr : invalidTime;
        const auto index = static_cast<std::size_t>(run - samples_->runs.data());
        auto packet =
            static_cast<std::uint64_t>((Scale(frame, scale_, layout_.rate) - run->start) / run->duration);
        std::size_t target = index;
        for (int i = 0; i < kPreRoll; ++i) {
            if (packet > 0) {
                --packet;
            } else if (target > 0) {
                packet = samples_->runs[--target].count - 1;
            }
        }
        run_ = target;
        packet_ = packet;
        decoder_->Reset();
        at_end_ = false;
        is_first_ = true;
        decoded_.clear();
        used_ = 0;
        const SampleRun& from = samples_->runs[run_];
        position_ = Scale(from.start + static_cast<TimeValue>(packet_) * from.duration, layout_.rate, scale_);
        return noErr;
    }

    /// Values of so much time, but a second at most.
    [[nodiscard]] std::size_t ValuesOf(TimeValue duration) const {
        const auto frames = std::min<TimeValue>(Scale(duration, layout_.rate, scale_), layout_.rate);
        return static_cast<std::size_t>(frames) * layout_.channels;
    }

    /// Decodes one packet. A damaged one is silence of its length, so that what follows keeps its place; so
    /// is the first one where each overlaps with the one before.
    OSErr DecodeNext() {
        decoded_.clear();
        used_ = 0;
        if (at_end_) return eofErr;
        if (run_ >= samples_->runs.size()) {
            at_end_ = true;
            decoder_->Decode({}, decoded_);
            return noErr;
        }
        const SampleRun& run = samples_->runs[run_];
        const auto& source = samples_->sources[run.source].data;
        if (source == nullptr) return fnfErr;
        if (run.size > kLargestPacket) return invalidSampleTable;
        bytes_.resize(run.size);
        const std::uint64_t index = packet_;
        const std::size_t got = source->Read(run.offset + index * run.size, bytes_);
        if (++packet_ >= run.count) {
            ++run_;
            packet_ = 0;
        }
        if (got < bytes_.size()) {
            run_ = samples_->runs.size();
            return noErr;
        }
        const bool good = decoder_->Decode(bytes_, decoded_);
        if (decoded_.empty() && (!good || is_first_)) {
            decoded_.resize(ValuesOf(run.duration));
            if (layout_.channels == 0) silent_ += run.duration;
        }
        is_first_ = false;
        const bool changed = layout_.channels > 0 && decoder_->Channels() != layout_.channels;
        if (changed) decoded_.resize(decoded_.size() / layout_.channels * layout_.channels);
        if (decoded_.empty() && layout_.channels > 0)
            FillGap(run.start + static_cast<TimeValue>(index + 1) * run.duration);
        return noErr;
    }

    /// Silence, once nothing has come for a second of the packets' time up to `next`: to look through all
    /// that follow, for each second that is read anew, would take hours where none gives anything.
    void FillGap(TimeValue next) {
        const std::int64_t gap = Scale(next, layout_.rate, scale_) - position_;
        if (gap >= layout_.rate) decoded_.resize(static_cast<std::size_t>(layout_.rate) * layout_.channels);
    }

    std::shared_ptr<MediaSamples> samples_;
    TimeScale scale_;
    std::unique_ptr<PacketDecoder> decoder_;
    Bytes bytes_;
    std::vector<float> decoded_;
    std::size_t used_ = 0;      ///< values of `decoded_` that are gone
    std::int64_t position_ = 0; ///< frame, from the first packet on, that `decoded_` continues with
    std::int64_t first_frame_ = 0;
    std::size_t run_ = 0; ///< the packet to decode next
    std::uint64_t packet_ = 0;
    bool at_end_ = false;
    bool is_first_ = true; ///< of those that the decoder gets one behind the other
    TimeValue silent_ = 0; ///< of packets before the layout was known
};

/// Set-up bytes in the form that the decoder of the format takes.
std::span<const std::byte> SetupOf(const SoundFormat& format, StreamSetup& stream, Bytes& made) {
    stream = ReadStreamSetup(FindExtension(format.extensions, Code("esds")));
    if (!stream.bytes.empty()) return stream.bytes;
    if (const auto alac = FindExtension(format.extensions, Code("alac")); !alac.empty()) {
        AtomWriter writer; // the whole atom
        writer.Atom(Code("alac"), [&] { writer.Put(alac); });
        made = writer.Take();
        return made;
    }
    if (const auto flac = FindExtension(format.extensions, Code("dfLa")); !flac.empty()) return Tail(flac, 8);
    if (const auto opus = FindExtension(format.extensions, Code("dOps")); opus.size() >= 11) {
        // The same fields as in the stream's own header, but big-endian there.
        made.assign({std::byte{'O'}, std::byte{'p'}, std::byte{'u'}, std::byte{'s'}, std::byte{'H'},
                     std::byte{'e'}, std::byte{'a'}, std::byte{'d'}, std::byte{1}, opus[1], opus[3], opus[2],
                     opus[7], opus[6], opus[5], opus[4], opus[9], opus[8]});
        made.insert(made.end(), opus.begin() + 10, opus.end());
        return made;
    }
    return FindExtension(format.extensions, Code("glbl"));
}

OpenedReader OpenPacketReader(const MediaRecord& media) {
    const auto format = ReadSoundFormat(media.samples->descriptions[0]);
    if (!format.has_value() || format->channels > 64) return {invalidSampleDescription, nullptr};
    const FfmpegModule* module = SoundModule();
    if (module == nullptr) return {cantOpenHandler, nullptr};
    StreamSetup stream;
    Bytes made;
    DecoderSettings settings;
    settings.setup = SetupOf(*format, stream, made);
    settings.format = format->data_format;
    settings.object_type = stream.object_type;
    settings.channels = format->channels;
    settings.rate = static_cast<std::uint32_t>(std::lround(format->rate));
    settings.packet_bytes = format->bytes_per_packet;
    settings.bits = format->bits;
    auto decoder = module->open_decoder(settings);
    if (decoder == nullptr) return {cantFindHandler, nullptr};
    auto reader = std::make_unique<PacketReader>(media.samples, media.time_scale, std::move(decoder));
    if (const OSErr code = reader->Open(); code != noErr) return {code, nullptr};
    return {noErr, std::move(reader)};
}

} // namespace

OpenedReader OpenFrameReader(const MediaRecord& media) {
    MediaSamples& samples = *media.samples;
    if (samples.open_decoder) return samples.open_decoder();
    if (const OSErr code = samples.LoadRuns(); code != noErr) return {code, nullptr};
    if (samples.descriptions.empty()) return {invalidSampleDescription, nullptr};
    auto layout = LayoutOf(samples.descriptions[0]);
    if (!layout.has_value()) return OpenPacketReader(media);
    layout->rate = static_cast<std::uint32_t>(media.time_scale);
    return {noErr, std::make_unique<PcmReader>(media.samples, *layout)};
}

} // namespace qt
