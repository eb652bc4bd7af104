// The sounds that play in the background, and how sounds play unless told otherwise.
#pragma once

#include "platform/quicktime/movies/movie_playback.h"
#include "plugin/event_loop_timer.h"
#include "plugin/plugin_mutex.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace corvane {

/// Who needs the pool's timer: bits of a word.
enum class TimerUser : std::uint16_t { kPlayback = 0x0001, kRecording = 0x0002 };

/// An entry's number: 1, 2, 3… in the order of adding, not used again. 0 stands for all of them, and for the
/// defaults.
using EntryId = std::int32_t;
inline constexpr EntryId kAllEntries = 0;

/// Host thread only; every operation takes the pool's lock.
class MediaPool {
public:
    /// Made by the first call, and by the first one after Delete.
    static MediaPool& Instance();
    /// Stops everything and removes the timer.
    static void Delete();

    MediaPool(const MediaPool&) = delete;
    MediaPool& operator=(const MediaPool&) = delete;
    virtual ~MediaPool();

    /// Starts the movie with the defaults and keeps it until it is done; the media layer's code.
    OSErr Add(qt::OwnedMovie movie);
    bool IsPlaying(EntryId id);
    /// Stops what plays, in place, and starts what is stopped.
    void TogglePause(EntryId id);
    void StopAll();

    /// 0, or -50 for an entry that is not there. Volume 1 is full volume, tempo 1 normal speed; balance runs
    /// from -1, left, to 1.
    std::int32_t SetVolume(EntryId id, float volume);
    std::int32_t SetTempo(EntryId id, float tempo);
    std::int32_t SetBalance(EntryId id, float balance);
    /// 0 for an entry that is not there.
    float GetVolume(EntryId id);
    float GetTempo(EntryId id);
    float GetBalance(EntryId id);

    /// Gives what plays and records its time, and lets go of what is done.
    void Idle();

    void RequestTimer(TimerUser user);
    void ReleaseTimer(TimerUser user);

private:
    struct Entry {
        EntryId id;
        qt::OwnedMovie movie;
    };

    MediaPool();
    /// Calls `apply` with each movie that `id` means; how many there are.
    template <class Apply>
    std::size_t ForEntries(EntryId id, Apply&& apply);
    Movie Find(EntryId id);

    PluginMutex lock_;
    std::vector<Entry> entries_;
    EntryId next_id_ = 1;
    std::uint16_t timer_users_ = 0;
    EventLoopTimer* timer_ = nullptr;
    float volume_ = 1;
    float tempo_ = 1;
    float balance_ = 0;
};

/// Volume as the media layer has it, 8.8, held at the ends of its range.
std::int16_t ToMovieVolume(float volume);
/// Tempo as a rate, 16.16, held at the ends of its range.
Fixed ToMovieRate(float tempo);

} // namespace corvane
