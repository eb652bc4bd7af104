// What stands behind the handles of movies, tracks and media. For the files of this folder and the exporters.
#pragma once

#include "platform/quicktime/movies/atoms.h"
#include "platform/quicktime/movies/media.h"
#include "platform/quicktime/movies/pcm.h"

#include <functional>
#include <string>

namespace qt {

/// Equal samples that lie one behind the other in a data source.
struct SampleRun {
    TimeValue start = 0;      ///< of the first, in media units from the first run's beginning
    std::uint64_t offset = 0; ///< in its source
    std::uint64_t count = 0;
    std::uint32_t duration = 1; ///< of each, in media units
    std::uint32_t size = 0;     ///< of each, in bytes
    std::uint16_t description = 0;
    std::uint16_t source = 0;

    [[nodiscard]] TimeValue End() const { return start + static_cast<TimeValue>(count) * duration; }
};

/// Where samples lie. A source that can't be opened stays null: its samples can't be read, the movie can.
struct SampleSource {
    DataReference reference;
    std::shared_ptr<DataSource> data;
    bool in_movie_file = false;
};

struct FramesRead {
    OSErr code = noErr;
    std::int64_t frames = 0; ///< delivered, also when reading them broke off with a code
};

/// Decoded frames of a sound, in a layout of the reader's choice; its rate is the clock of its frames. Runs
/// of reads in order are cheap, steps back or far ahead may cost a search.
class FrameReader {
public:
    FrameReader() = default;
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;
    virtual ~FrameReader() = default;

    [[nodiscard]] const PcmLayout& Layout() const { return layout_; }
    /// Frames from `start` on, as many as fit; fewer only at the end or with a code.
    virtual FramesRead Read(std::int64_t start, std::span<std::byte> frames) = 0;

protected:
    PcmLayout layout_;
};

/// A reader, or why there is none.
struct OpenedReader {
    OSErr code = noErr;
    std::unique_ptr<FrameReader> reader;
};

/// The samples of a media; the copies of a media share them. They only ever grow.
struct MediaSamples {
    std::vector<Bytes> descriptions;
    std::vector<SampleSource> sources;
    std::vector<SampleRun> runs; ///< by start, seldom with gaps; see LoadRuns
    TimeValue duration = 0;      ///< of what plays
    /// How far into the runs media time 0 lies: before it is what a decoder needs to settle. What the runs
    /// hold behind lead_in + duration is padding.
    TimeValue lead_in = 0;
    /// Set for files whose packets are found on demand only; fills `runs`.
    std::function<OSErr(MediaSamples&)> find_runs;
    /// Set for sounds that only a library of their format decodes.
    std::function<OpenedReader()> open_decoder;

    /// `runs`, found first where that is due.
    OSErr LoadRuns();
    /// Adds samples behind the last ones, to the last run where that is possible.
    void Append(const SampleRun& run);
};

/// The run that holds a time of the runs, or null.
const SampleRun* FindRun(const MediaSamples& samples, TimeValue time);

/// A reader over uncompressed samples in runs, or over packets through the decoder of their description.
OpenedReader OpenFrameReader(const MediaRecord& media);

/// Data that grows at its end: memory, or the movie's own file.
class GrowingData : public DataSource {
public:
    virtual OSErr Append(std::span<const std::byte> bytes) = 0;
};

struct MediaRecord {
    TrackRecord* track = nullptr;
    OSType type = 0;
    TimeScale time_scale = 600;
    std::uint32_t created = 0;
    std::uint32_t modified = 0;
    std::int16_t language = 0;
    std::int16_t quality = 0;
    std::shared_ptr<MediaSamples> samples;
    Bytes input_map;
    bool editing = false;
    std::shared_ptr<GrowingData> storage; ///< where added samples go
};

/// A part of a track: media time played at a movie time. Between segments nothing plays.
struct Segment {
    TimeValue start = 0;    ///< movie units
    TimeValue duration = 0; ///< movie units
    TimeValue media_start = 0;
    TimeValue media_duration = 0; ///< exact, while `duration` is rounded to movie units
    [[nodiscard]] TimeValue End() const { return start + duration; }
};

struct TrackLink {
    OSType type = 0;
    TrackRecord* track = nullptr;
};

struct TrackRecord {
    MovieRecord* movie = nullptr;
    std::unique_ptr<MediaRecord> media;
    std::vector<Segment> segments; ///< by start, not overlapping
    std::vector<TrackLink> references;
    Fixed width = 0;
    Fixed height = 0;
    std::int16_t volume = kFullVolume;
    bool enabled = true;
    std::uint32_t created = 0;
    std::uint32_t modified = 0;
};

class MoviePlayback;

struct MovieRecord {
    TimeScale time_scale = 600;
    std::vector<std::unique_ptr<TrackRecord>> tracks;
    TimeValue selection_start = 0;
    TimeValue selection_duration = 0;
    std::uint32_t created = 0;
    std::uint32_t modified = 0;
    std::int16_t volume = kFullVolume;
    Fixed preferred_rate = kNormalRate;
    Fixed rate = 0;
    float balance = 0;
    std::uint32_t play_hints = 0;
    bool active = true;
    DataReference file;                      ///< the movie's default data reference; no handle: none
    std::shared_ptr<GrowingData> storage;    ///< the file that new media without a reference write to
    std::shared_ptr<MoviePlayback> playback; ///< ends first, for it reads the tracks; null: never started
};

/// Keeps the code for GetMoviesError, and hands it on.
OSErr MoviesError(OSErr code);

/// Now, in seconds since 1 January 1904.
std::uint32_t CurrentMovieTime();
/// A time of this machine's clock in that count.
std::uint32_t MovieTimeFromUnix(std::int64_t seconds);

/// value × numerator / denominator, rounded to the nearest, without overflow on the way; limited to 64 bits.
TimeValue Scale(TimeValue value, std::int64_t numerator, std::int64_t denominator);

/// Without memory the copy has no handle.
DataReference CopyDataReference(Handle reference, OSType type);
inline DataReference CopyDataReference(const DataReference& reference) {
    return CopyDataReference(reference.handle.get(), reference.type);
}
/// The reference of samples that are in memory, of which nobody has a block: its handle is null.
DataReference MemoryReference();

/// A new track at the end of the movie, enabled and dated now.
TrackRecord& AddTrack(MovieRecord& movie);

/// The movie counts time in units of the first sound's samples, so that edits can be exact. Segments that end
/// within a unit of their media's end, because the file's own units were coarser, end there.
void AdoptSoundTimeScale(MovieRecord& movie);

/// The bytes of `count` samples from a time of the runs on, as far as the first one's description goes and
/// `out` has room.
OSErr ReadSamples(const MediaSamples& samples, TimeValue time, std::int64_t count, std::span<std::byte> out,
                  std::int64_t& read);

} // namespace qt
