#include "sounds/media_pool.h"

#include "platform/win32/errors.h"
#include "plugin/errors.h"
#include "sounds/recording_manager.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace corvane {
namespace {

constexpr std::uint16_t kTimerInstalled = 0x8000;
constexpr double kTimerInterval = 0.1;   // seconds; the timer's own pace is what counts
constexpr std::int32_t kTaskLength = 20; // ms

std::unique_ptr<MediaPool> g_pool;

} // namespace

MediaPool& MediaPool::Instance() {
    if (g_pool == nullptr) g_pool.reset(new MediaPool);
    return *g_pool;
}

void MediaPool::Delete() {
    g_pool.reset();
}

MediaPool::MediaPool() {
    if (MutexCreate(lock_) != ERROR_SUCCESS) throw std::bad_alloc();
}

MediaPool::~MediaPool() {
    if (timer_ != nullptr) RemoveLoopTimer(timer_);
    entries_.clear();
    MutexDestroy(lock_);
}

template <class Apply>
std::size_t MediaPool::ForEntries(EntryId id, Apply&& apply) {
    std::size_t count = 0;
    for (const Entry& entry : entries_) {
        if (id != kAllEntries && entry.id != id) continue;
        apply(entry.movie.get());
        ++count;
    }
    return count;
}

Movie MediaPool::Find(EntryId id) {
    const auto found = std::ranges::find(entries_, id, &Entry::id);
    return found != entries_.end() ? found->movie.get() : nullptr;
}

OSErr MediaPool::Add(qt::OwnedMovie movie) {
    const MutexScope lock(lock_);
    SetMovieActive(movie.get(), true);
    SetMovieVolume(movie.get(), ToMovieVolume(volume_));
    SetMoviePreferredRate(movie.get(), ToMovieRate(tempo_));
    SetMovieAudioBalance(movie.get(), balance_);
    StartMovie(movie.get());
    if (const OSErr code = GetMoviesError(); code != noErr) return code;
    entries_.push_back({next_id_++, std::move(movie)});
    RequestTimer(TimerUser::kPlayback);
    return noErr;
}

bool MediaPool::IsPlaying(EntryId id) {
    const MutexScope lock(lock_);
    bool playing = false;
    ForEntries(id, [&](Movie movie) { playing |= GetMovieRate(movie) != 0; });
    return playing;
}

void MediaPool::TogglePause(EntryId id) {
    const MutexScope lock(lock_);
    ForEntries(id, [](Movie movie) { GetMovieRate(movie) != 0 ? StopMovie(movie) : StartMovie(movie); });
}

void MediaPool::StopAll() {
    const MutexScope lock(lock_);
    entries_.clear();
}

std::int32_t MediaPool::SetVolume(EntryId id, float volume) {
    const MutexScope lock(lock_);
    if (id == kAllEntries) volume_ = volume;
    const auto count = ForEntries(id, [&](Movie movie) { SetMovieVolume(movie, ToMovieVolume(volume)); });
    return count > 0 || id == kAllEntries ? 0 : kErrorWrongParameter;
}

std::int32_t MediaPool::SetTempo(EntryId id, float tempo) {
    const MutexScope lock(lock_);
    if (id == kAllEntries) tempo_ = tempo;
    const auto count = ForEntries(id, [&](Movie movie) {
        SetMoviePreferredRate(movie, ToMovieRate(tempo_));
        SetMovieRate(movie, ToMovieRate(tempo));
    });
    return count > 0 || id == kAllEntries ? 0 : kErrorWrongParameter;
}

std::int32_t MediaPool::SetBalance(EntryId id, float balance) {
    const MutexScope lock(lock_);
    if (id == kAllEntries) balance_ = balance;
    const auto count = ForEntries(id, [&](Movie movie) { SetMovieAudioBalance(movie, balance); });
    return count > 0 || id == kAllEntries ? 0 : kErrorWrongParameter;
}

float MediaPool::GetVolume(EntryId id) {
    const MutexScope lock(lock_);
    if (id == kAllEntries) return volume_;
    const Movie movie = Find(id);
    return movie != nullptr ? static_cast<float>(GetMovieVolume(movie)) / 256 : 0;
}

float MediaPool::GetTempo(EntryId id) {
    const MutexScope lock(lock_);
    if (id == kAllEntries) return tempo_;
    const Movie movie = Find(id);
    return movie != nullptr ? static_cast<float>(GetMoviePreferredRate(movie)) / 65536 : 0;
}

float MediaPool::GetBalance(EntryId id) {
    const MutexScope lock(lock_);
    if (id == kAllEntries) return balance_;
    const Movie movie = Find(id);
    return movie != nullptr ? GetMovieAudioBalance(movie) : 0;
}

void MediaPool::Idle() {
    {
        const MutexScope lock(lock_);
        std::erase_if(entries_, [](const Entry& entry) { return IsMovieDone(entry.movie.get()); });
        if (entries_.empty()) {
            ReleaseTimer(TimerUser::kPlayback);
        } else {
            MoviesTask(nullptr, kTaskLength);
        }
    }
    RecordingManager::Instance().IdleAll();
}

void MediaPool::RequestTimer(TimerUser user) {
    const MutexScope lock(lock_);
    timer_users_ |= static_cast<std::uint16_t>(user);
    if ((timer_users_ & kTimerInstalled) != 0) return;
    const auto idle = [](EventLoopTimer*, void* pool) { static_cast<MediaPool*>(pool)->Idle(); };
    timer_ = InstallLoopTimer(MainLoopId(), 0, kTimerInterval, idle, this).timer;
    timer_users_ |= kTimerInstalled;
}

void MediaPool::ReleaseTimer(TimerUser user) {
    const MutexScope lock(lock_);
    const auto bit = static_cast<std::uint16_t>(user);
    if ((timer_users_ & bit) == 0) return;
    timer_users_ = static_cast<std::uint16_t>(timer_users_ & ~bit);
    if (timer_users_ != kTimerInstalled) return;
    if (timer_ != nullptr) RemoveLoopTimer(timer_);
    timer_ = nullptr;
    timer_users_ = 0;
}

std::int16_t ToMovieVolume(float volume) {
    constexpr float kLowest = -128;
    constexpr float kHighest = 127;
    return static_cast<std::int16_t>(std::trunc(std::clamp(volume, kLowest, kHighest) * 256));
}

Fixed ToMovieRate(float tempo) {
    constexpr double kLowest = std::numeric_limits<Fixed>::min();
    constexpr double kHighest = std::numeric_limits<Fixed>::max();
    return static_cast<Fixed>(std::clamp(std::trunc(tempo * 65536.0), kLowest, kHighest));
}

} // namespace corvane
