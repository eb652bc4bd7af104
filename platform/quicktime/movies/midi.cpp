// Standard MIDI files: their length is read here, their sound is what FluidSynth makes of them.

#include "platform/quicktime/modules/fluidsynth_library.h"
#include "platform/quicktime/movies/importers.h"
#include "platform/quicktime/movies/midi_events.h"
#include "platform/quicktime/movies/sound_description.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <unistd.h>

namespace qt {
namespace {

constexpr std::uint32_t kChannels = 2;
constexpr std::int64_t kTail = kMidiRate; ///< frames in which the last notes ring out
/// Of full scale. The library's own 0.2 leaves usual music 20 dB below it.
constexpr double kGain = 0.5;
constexpr std::int64_t kSkippedAtOnce = 4096;

/// The sound bank: the one that was asked for, or the system's.
std::string SoundBank() {
    if (const char* chosen = std::getenv("CORVANE_SOUNDFONT"); chosen != nullptr && *chosen != '\0')
        return chosen;
    constexpr std::array<const char*, 2> kDefaults = {"/usr/share/sounds/sf3/default-GM.sf3",
                                                      "/usr/share/sounds/sf2/default-GM.sf2"};
    for (const char* path : kDefaults)
        if (::access(path, R_OK) == 0) return path;
    return {};
}

/// The library tries other files with a loader that complains on standard error.
bool IsSoundFont(const std::string& path) {
    std::array<std::byte, 12> start{};
    const OpenedSource bank = OpenFileSource(path);
    return bank.code == noErr && bank.source->Read(0, start) == start.size() &&
           BigEndian32(start, 0) == Code("RIFF") && BigEndian32(start, 8) == Code("sfbk");
}

/// A synthesiser with its bank loaded.
class Synthesiser {
public:
    Synthesiser()
        : settings_(g_fluidsynth->new_settings(), g_fluidsynth->delete_settings),
          synth_(nullptr, g_fluidsynth->delete_synth) {
        g_fluidsynth->settings_setint(settings_.get(), "synth.dynamic-sample-loading", 1);
        g_fluidsynth->settings_setint(settings_.get(), "synth.lock-memory", 0);
        g_fluidsynth->settings_setint(settings_.get(), "synth.threadsafe-api", 0);
        g_fluidsynth->settings_setnum(settings_.get(), "synth.sample-rate", kMidiRate);
        g_fluidsynth->settings_setnum(settings_.get(), "synth.gain", kGain);
        synth_.reset(g_fluidsynth->new_synth(settings_.get()));
    }

    bool LoadBank() {
        const std::string bank = SoundBank();
        return synth_ != nullptr && IsSoundFont(bank) &&
               g_fluidsynth->sfload(synth_.get(), bank.c_str(), 1) >= 0;
    }

    void Play(const MidiEvent& event) {
        fluid_synth_t* synth = synth_.get();
        const int channel = event.status & 0x0F;
        switch (event.status & 0xF0) {
        case 0x80: g_fluidsynth->noteoff(synth, channel, event.first); break;
        case 0x90: g_fluidsynth->noteon(synth, channel, event.first, event.second); break;
        case 0xA0: g_fluidsynth->key_pressure(synth, channel, event.first, event.second); break;
        case 0xB0: g_fluidsynth->cc(synth, channel, event.first, event.second); break;
        case 0xC0:
            if (program_changes_++ < kMostProgramChanges)
                g_fluidsynth->program_change(synth, channel, event.first);
            break;
        case 0xD0: g_fluidsynth->channel_pressure(synth, channel, event.first); break;
        case 0xE0: g_fluidsynth->pitch_bend(synth, channel, event.first | event.second << 7); break;
        default:
            if (exclusives_++ >= kMostExclusives) break;
            g_fluidsynth->sysex(synth, reinterpret_cast<const char*>(event.exclusive.data()),
                                static_cast<int>(event.exclusive.size()), nullptr, nullptr, nullptr, 0);
        }
    }

    void EndNotes() { g_fluidsynth->all_notes_off(synth_.get(), -1); }

    void Render(std::span<float> frames) {
        g_fluidsynth->write_float(synth_.get(), static_cast<int>(frames.size() / kChannels), frames.data(), 0,
                                  kChannels, frames.data(), 1, kChannels);
    }

private:
    // Far more than music has. A program is loaded for each change, and for all channels by some exclusive
    // messages.
    static constexpr int kMostProgramChanges = 20'000;
    static constexpr int kMostExclusives = 2'000;

    int program_changes_ = 0;
    int exclusives_ = 0;
    std::unique_ptr<fluid_settings_t, decltype(&delete_fluid_settings)> settings_;
    std::unique_ptr<fluid_synth_t, decltype(&delete_fluid_synth)> synth_;
};

/// Every read gives the frames that one from the beginning gives: a step back begins anew, and with a new
/// synthesiser, for one that is reset keeps the state of its reverberation.
class MidiReader final : public FrameReader {
public:
    explicit MidiReader(std::vector<std::byte> file) : file_(std::move(file)) {
        layout_ = FloatLayout(kChannels, kMidiRate);
    }

    OSErr Begin() {
        synthesiser_ = std::make_unique<Synthesiser>();
        if (!synthesiser_->LoadBank()) return cantOpenHandler;
        events_.emplace(file_);
        next_ = events_->Next();
        position_ = 0;
        end_ = 0;
        return noErr;
    }

    FramesRead Read(std::int64_t start, std::span<std::byte> frames) override {
        if (start < position_)
            if (const OSErr code = Begin(); code != noErr) return {code, 0};
        std::vector<float> skipped;
        while (position_ < start) {
            const std::int64_t count = std::min(start - position_, kSkippedAtOnce);
            skipped.resize(static_cast<std::size_t>(count) * kChannels);
            if (Render(skipped) < count) return {};
        }
        const std::size_t values = frames.size() / layout_.FrameBytes() * kChannels;
        return {noErr, Render({reinterpret_cast<float*>(frames.data()), values})};
    }

private:
    /// Renders up to each event before it is played, so that the sizes of reads make no difference.
    std::int64_t Render(std::span<float> frames) {
        std::int64_t rendered = 0;
        while (!frames.empty()) {
            while (next_.has_value() && next_->frame <= position_) {
                synthesiser_->Play(*next_);
                next_ = events_->Next();
            }
            if (!next_.has_value() && end_ == 0 && position_ >= events_->Frame()) {
                synthesiser_->EndNotes();
                end_ = events_->Frame() + kTail;
            }
            std::int64_t until = end_;
            if (end_ == 0) until = next_.has_value() ? next_->frame : events_->Frame();
            if (until <= position_) break;
            const auto count =
                std::min(static_cast<std::size_t>(until - position_), frames.size() / kChannels);
            synthesiser_->Render(frames.first(count * kChannels));
            frames = frames.subspan(count * kChannels);
            position_ += static_cast<std::int64_t>(count);
            rendered += static_cast<std::int64_t>(count);
        }
        return rendered;
    }

    std::vector<std::byte> file_;
    std::unique_ptr<Synthesiser> synthesiser_;
    std::optional<MidiEvents> events_;
    std::optional<MidiEvent> next_;
    std::int64_t position_ = 0;
    std::int64_t end_ = 0; ///< frame at which the tail ends; 0 before it begins
};

OpenedReader OpenReader(DataSource& data) {
    if (!g_fluidsynth.Load()) return {cantOpenHandler, nullptr};
    auto reader = std::make_unique<MidiReader>(ReadMidiFile(data));
    if (const OSErr code = reader->Begin(); code != noErr) return {code, nullptr};
    return {noErr, std::move(reader)};
}

} // namespace

Imported ImportMidi(const ImportSource& source) {
    if (!LooksLikeMidi(*source.data)) return {};
    const std::vector<std::byte> file = ReadMidiFile(*source.data);
    MidiEvents events(file);
    while (events.Next().has_value()) {
    }
    if (!events.IsGood()) return {badFileFormat, 0, nullptr};
    CompressedSound described;
    described.data_format = Code("musi");
    described.channels = kChannels;
    described.rate = kMidiRate;
    auto samples = std::make_shared<MediaSamples>();
    samples->duration = events.Frame() + kTail;
    described.average_bytes_per_second =
        static_cast<std::uint32_t>(file.size() * kMidiRate / static_cast<std::uint64_t>(samples->duration));
    samples->descriptions.push_back(DescribeCompressed(described));
    samples->open_decoder = [data = source.data] { return OpenReader(*data); };
    AddWholeFileRun(source, *samples);
    return {noErr, Code("Midi"), MovieOfSound(source, kMidiRate, std::move(samples))};
}

} // namespace qt
