#include "plugin/event_loop_timer.h"

#include "platform/win32/messages.h"
#include "platform/win32/multimedia_timers.h"
#include "plugin/call_block.h"
#include "plugin/errors.h"
#include "plugin/guard.h"
#include "plugin/host_data.h"
#include "plugin/plugin_mutex.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <vector>

namespace corvane {
namespace {

constexpr const char* kWindowClass = "com.ambrel.macemulator.eventlooptimerwindowclass";
constexpr UINT kTimerFired = WM_USER;
constexpr double kShortestDelay = 0.001; // seconds
constexpr UINT kResolution = 100;        // ms

struct TimerService {
    std::atomic<std::int32_t> installs = 0; ///< not yet matched by removals
    PluginMutex lock;                       ///< of the list, which the system's timer thread reads
    std::vector<std::unique_ptr<EventLoopTimer>> timers;
    HINSTANCE instance = nullptr;
    HWND window = nullptr;
};

TimerService g_service;

auto Find(const EventLoopTimer* timer) {
    return std::ranges::find(g_service.timers, timer, [](const auto& entry) { return entry.get(); });
}

/// False when the timer has been removed since the message was posted.
bool TakeFiring(EventLoopTimer* timer) {
    const MutexScope lock(g_service.lock);
    if (Find(timer) == g_service.timers.end()) return false;
    timer->posted = false;
    return true;
}

LRESULT TimerWindowProcedure(HWND window, UINT message, WPARAM word, LPARAM parameter) {
    if (message != kTimerFired) return DefWindowProcA(window, message, word, parameter);
    if (word != ~static_cast<WPARAM>(parameter)) return 0;
    auto* timer = reinterpret_cast<EventLoopTimer*>(parameter);
    Guarded([&] {
        if (TakeFiring(timer)) timer->procedure(timer, timer->user_data);
        return kFM_ErrorNone;
    });
    return 0;
}

void PostFiring(UINT, UINT, std::uintptr_t user, std::uintptr_t, std::uintptr_t) {
    auto* const timer = reinterpret_cast<EventLoopTimer*>(user);
    const MutexScope lock(g_service.lock);
    if (Find(timer) == g_service.timers.end() || timer->posted) return;
    const auto address = static_cast<LPARAM>(user);
    timer->posted =
        PostMessageA(g_service.window, kTimerFired, ~static_cast<WPARAM>(address), address) != FALSE;
}

/// Ends system timers outside the lock: a callback that runs just now ends first, and it waits for the lock.
void KillSystemTimer(const EventLoopTimer& timer) {
    timeKillEvent(timer.system_timer);
}

void StopService() {
    decltype(g_service.timers) left;
    {
        const MutexScope lock(g_service.lock);
        left.swap(g_service.timers);
    }
    for (const auto& timer : left) KillSystemTimer(*timer);
    if (g_service.window != nullptr) DestroyWindow(g_service.window);
    UnregisterClassA(kWindowClass, g_service.instance);
    MutexDestroy(g_service.lock);
    g_service.window = nullptr;
}

bool StartService() {
    if (MutexCreate(g_service.lock) != ERROR_SUCCESS) return false;
    g_service.instance = CurrentCallBlock().instance;
    WNDCLASSEXA window_class;
    window_class.lpfnWndProc = TimerWindowProcedure;
    window_class.hInstance = g_service.instance;
    window_class.lpszClassName = kWindowClass;
    if (RegisterClassExA(&window_class) != 0) {
        constexpr int kSide = 200;
        g_service.window = CreateWindowExA(0, kWindowClass, "AAA", WS_POPUP | WS_BORDER, 0, 0, kSide, kSide,
                                           nullptr, nullptr, g_service.instance, nullptr);
    }
    if (g_service.window == nullptr) StopService();
    return g_service.window != nullptr;
}

/// Lists the timer and starts its system timer, in one step for the thread of the latter.
std::int32_t Start(std::unique_ptr<EventLoopTimer> record) {
    EventLoopTimer& timer = *record;
    const MutexScope lock(g_service.lock);
    g_service.timers.push_back(std::move(record));
    const double delay = timer.fire_delay == 0 ? kShortestDelay : timer.fire_delay;
    timer.system_timer = timeSetEvent(
        static_cast<UINT>(delay * 1000), kResolution, PostFiring, reinterpret_cast<std::uintptr_t>(&timer),
        (timer.periodic != 0 ? TIME_PERIODIC : TIME_ONESHOT) | TIME_KILL_SYNCHRONOUS);
    if (timer.system_timer != 0) return 0;
    g_service.timers.pop_back();
    return kErrorUnknown;
}

/// Takes the timer off the list; null when it is not there.
std::unique_ptr<EventLoopTimer> TakeOff(const EventLoopTimer* timer) {
    if (g_service.window == nullptr) return nullptr;
    const MutexScope lock(g_service.lock);
    const auto found = Find(timer);
    if (found == g_service.timers.end()) return nullptr;
    std::unique_ptr<EventLoopTimer> taken = std::move(*found);
    g_service.timers.erase(found);
    return taken;
}

} // namespace

std::uint32_t MainLoopId() {
    return FourCC("main");
}

InstalledTimer InstallLoopTimer(std::uint32_t event_loop, double fire_delay, double interval,
                                LoopTimerProcedure procedure, void* user_data) {
    ++g_service.installs;
    if (g_service.window == nullptr && !StartService()) return {};
    try {
        auto record = std::make_unique<EventLoopTimer>();
        EventLoopTimer* const timer = record.get();
        *timer = {FourCC("TIMR"), event_loop, fire_delay,   interval, procedure,
                  user_data,      0,          interval > 0, false};
        const std::int32_t code = Start(std::move(record));
        return {code, code == 0 ? timer : nullptr};
    } catch (const std::bad_alloc&) {
        return {kErrorOutOfMemory, nullptr};
    }
}

std::int32_t RemoveLoopTimer(EventLoopTimer* timer) {
    const std::unique_ptr<EventLoopTimer> removed = TakeOff(timer);
    if (removed != nullptr) KillSystemTimer(*removed);
    if (--g_service.installs == 0 && g_service.window != nullptr) StopService();
    return removed != nullptr ? 0 : kErrorWrongParameter;
}

} // namespace corvane
