// The events of a Standard MIDI file, in the order in which they sound.
#pragma once

#include "platform/quicktime/data_source.h"

#include <optional>
#include <queue>

namespace qt {

/// A channel message, or a system exclusive one.
struct MidiEvent {
    std::int64_t frame = 0; ///< when, at kMidiRate
    std::uint8_t status = 0;
    std::uint8_t first = 0;
    std::uint8_t second = 0;              ///< 0 for messages of one data byte
    std::span<const std::byte> exclusive; ///< of status 0xF0: what stands between 0xF0 and 0xF7
};

/// The rate at which MIDI files are rendered.
inline constexpr std::uint32_t kMidiRate = 44100;

/// The bytes of the MIDI file in this data, which may be one in a RIFF file; empty when there is none, or one
/// of more than 16 MiB.
std::vector<std::byte> ReadMidiFile(DataSource& data);
/// Whether the data begins as such a file does.
bool LooksLikeMidi(DataSource& data);

/// Merges the tracks of a file while it is read: nothing is kept but a place in each track. A track ends at
/// its first damaged event.
class MidiEvents {
public:
    /// Borrows the bytes.
    explicit MidiEvents(std::span<const std::byte> file);

    /// Nothing behind the last one.
    std::optional<MidiEvent> Next();

    /// Where the merge has come to, with events that don't sound: after the last event, the file's length.
    [[nodiscard]] std::int64_t Frame() const;
    /// False for what is no file of format 0 or 1, has no event, or has come to more than 24 hours.
    [[nodiscard]] bool IsGood() const { return good_; }

private:
    struct Track {
        std::span<const std::byte> rest;
        std::uint8_t running = 0; ///< status of messages that don't tell theirs
    };
    struct Due {
        std::uint64_t tick;
        std::size_t track;
        bool operator>(const Due& other) const {
            return tick != other.tick ? tick > other.tick : track > other.track;
        }
    };

    void Schedule(std::size_t track, std::uint64_t tick);
    std::optional<MidiEvent> ReadEvent(Track& track);
    std::optional<MidiEvent> ReadMeta(Track& track);
    void GoTo(std::uint64_t tick);

    std::vector<Track> tracks_;
    std::priority_queue<Due, std::vector<Due>, std::greater<>> due_;
    std::uint64_t tick_ = 0;
    std::uint64_t time_ = 0;        ///< in units of which `per_second_` are a second
    std::uint64_t tick_length_ = 1; ///< in these units; changes with the tempo
    std::uint64_t per_second_ = 1;
    bool has_tempo_ = true; ///< ticks are parts of a beat, not of a second
    bool good_ = false;
};

} // namespace qt
