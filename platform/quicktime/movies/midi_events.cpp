#include "platform/quicktime/movies/midi_events.h"

#include "platform/quicktime/movies/movie_model.h"
#include "platform/quicktime/movies/riff_chunks.h"

#include <array>

namespace qt {
namespace {

constexpr std::uint64_t kLargestFile = 16U << 20;
constexpr std::uint64_t kLongestSeconds = 86'400; ///< a day
constexpr std::uint64_t kMicrosecondsPerSecond = 1'000'000;
constexpr std::uint64_t kFirstTempo = 500'000; ///< microseconds of a beat
constexpr std::size_t kChunkHeader = 8;

/// Takes a number of up to four bytes, seven bits in each; nothing when it goes on or the bytes end.
std::optional<std::uint32_t> TakeNumber(std::span<const std::byte>& bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4 && i < bytes.size(); ++i) {
        const auto byte = std::to_integer<std::uint32_t>(bytes[i]);
        number = number << 7 | (byte & 0x7F);
        if (byte >= 0x80) continue;
        bytes = bytes.subspan(i + 1);
        return number;
    }
    return std::nullopt;
}

/// Takes a length and as many bytes; nothing when they aren't there.
std::optional<std::span<const std::byte>> TakeBlock(std::span<const std::byte>& bytes) {
    const auto length = TakeNumber(bytes);
    if (!length.has_value() || *length > bytes.size()) return std::nullopt;
    const auto block = bytes.first(*length);
    bytes = bytes.subspan(*length);
    return block;
}

constexpr bool HasOneDataByte(std::uint8_t status) {
    return (status & 0xE0) == 0xC0; // program and channel pressure
}

} // namespace

bool LooksLikeMidi(DataSource& data) {
    std::array<std::byte, 12> start{};
    if (data.Read(0, start) != start.size()) return false;
    return BigEndian32(start, 0) == Code("MThd") ||
           (BigEndian32(start, 0) == Code("RIFF") && BigEndian32(start, 8) == Code("RMID"));
}

std::vector<std::byte> ReadMidiFile(DataSource& data) {
    if (data.GetSize() > kLargestFile || !LooksLikeMidi(data)) return {};
    const RiffChunk events = FindRiffChunk(data, Code("data")).value_or(RiffChunk{0, data.GetSize()});
    std::vector<std::byte> bytes(static_cast<std::size_t>(events.size));
    bytes.resize(data.Read(events.offset, bytes));
    return bytes;
}

MidiEvents::MidiEvents(std::span<const std::byte> file) {
    const std::size_t header = BigEndian32(file, 4);
    const std::uint16_t format = BigEndian16(file, 8);
    const std::uint16_t division = BigEndian16(file, 12);
    if (BigEndian32(file, 0) != Code("MThd") || header < 6 || format > 1) return;
    has_tempo_ = division < 0x8000;
    if (has_tempo_) {
        per_second_ = division * kMicrosecondsPerSecond;
        tick_length_ = kFirstTempo;
    } else { // frames of a film, and ticks of each; 29 stands for 30000/1001
        const auto rate = static_cast<std::uint64_t>(256 - (division >> 8));
        per_second_ = (rate == 29 ? 30'000 : rate) * (division & 0xFF);
        tick_length_ = rate == 29 ? 1001 : 1;
    }
    if (per_second_ == 0) return;
    for (auto rest = Tail(file, kChunkHeader + header); rest.size() >= kChunkHeader;) {
        const std::size_t size = BigEndian32(rest, 4);
        if (BigEndian32(rest, 0) == Code("MTrk")) {
            tracks_.push_back({Tail(rest, kChunkHeader, size)});
            Schedule(tracks_.size() - 1, 0);
        }
        rest = Tail(rest, kChunkHeader + size);
    }
    good_ = !due_.empty();
}

void MidiEvents::Schedule(std::size_t track, std::uint64_t tick) {
    const auto delta = TakeNumber(tracks_[track].rest);
    if (delta.has_value() && !tracks_[track].rest.empty()) due_.push({tick + *delta, track});
}

/// An event is due at most 2^28 ticks behind the one before it, and a tick is below 2^24 units: no overflow.
void MidiEvents::GoTo(std::uint64_t tick) {
    time_ += (tick - tick_) * tick_length_;
    tick_ = tick;
    good_ = time_ / per_second_ < kLongestSeconds;
}

std::int64_t MidiEvents::Frame() const {
    return Scale(static_cast<std::int64_t>(time_), kMidiRate, static_cast<std::int64_t>(per_second_));
}

std::optional<MidiEvent> MidiEvents::Next() {
    while (good_ && !due_.empty()) {
        const Due due = due_.top();
        due_.pop();
        GoTo(due.tick);
        const auto event = good_ ? ReadEvent(tracks_[due.track]) : std::nullopt;
        Schedule(due.track, due.tick);
        if (event.has_value()) return event;
    }
    return std::nullopt;
}

/// The event that the track comes to, if it sounds. A track that ends here has no rest.
std::optional<MidiEvent> MidiEvents::ReadEvent(Track& track) {
    MidiEvent event = {Frame(), std::to_integer<std::uint8_t>(track.rest[0]), 0, 0, {}};
    if (event.status >= 0xF0) return ReadMeta(track);
    if (event.status >= 0x80) {
        track.rest = track.rest.subspan(1);
        track.running = event.status;
    }
    event.status = track.running;
    const std::size_t size = HasOneDataByte(event.status) ? 1 : 2;
    const auto data = Tail(track.rest, 0, size);
    const std::uint64_t both = BigEndian(data, 0, size);
    if (event.status == 0 || data.size() < size || (both & 0x8080) != 0) {
        track.rest = {};
        return std::nullopt;
    }
    track.rest = track.rest.subspan(size);
    event.first = std::to_integer<std::uint8_t>(data[0]);
    if (size == 2) event.second = std::to_integer<std::uint8_t>(data[1]);
    return event;
}

/// What has a length: events of the file (of which the tempo and the end matter) and system exclusive ones.
std::optional<MidiEvent> MidiEvents::ReadMeta(Track& track) {
    constexpr std::uint8_t kFileEvent = 0xFF;
    constexpr std::uint8_t kExclusive = 0xF0;
    constexpr std::uint8_t kEscape = 0xF7;
    constexpr std::uint8_t kEndOfTrack = 0x2F;
    constexpr std::uint8_t kTempo = 0x51;
    const auto status = std::to_integer<std::uint8_t>(track.rest[0]);
    const auto kind = static_cast<std::uint8_t>(BigEndian(track.rest, 1, 1));
    track.running = 0;
    track.rest = Tail(track.rest, status == kFileEvent ? 2 : 1);
    const bool known = status == kFileEvent || status == kExclusive || status == kEscape;
    auto block = TakeBlock(track.rest);
    if (!known || !block.has_value() || (status == kFileEvent && kind == kEndOfTrack)) {
        track.rest = {};
        return std::nullopt;
    }
    if (status == kFileEvent && kind == kTempo && block->size() == 3 && has_tempo_)
        tick_length_ = BigEndian(*block, 0, 3);
    if (status != kExclusive) return std::nullopt;
    if (!block->empty() && block->back() == std::byte{kEscape}) block = block->first(block->size() - 1);
    return MidiEvent{Frame(), kExclusive, 0, 0, *block};
}

} // namespace qt
