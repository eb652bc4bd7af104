#include "platform/quicktime/modules/pulse_server.h"

#include <pulse/pulseaudio.h>

#include <memory>

namespace {

struct Deleter {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
    void operator()(pa_context* context) const {
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
    void operator()(pa_operation* operation) const { pa_operation_unref(operation); }
};
template <class Object>
using Pulse = std::unique_ptr<Object, Deleter>;

using Clock = std::chrono::steady_clock;

// Lets the connection work until `is_done`. False when time is up, or the connection's loop fails.
template <class Condition>
bool RunUntil(pa_mainloop* loop, Clock::time_point end, Condition&& is_done) {
    while (!is_done()) {
        const auto rest = std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now());
        if (rest.count() <= 0) return false;
        if (pa_mainloop_prepare(loop, static_cast<int>(rest.count())) < 0 || pa_mainloop_poll(loop) < 0 ||
            pa_mainloop_dispatch(loop) < 0)
            return false;
    }
    return true;
}

void LookForDevices(pa_context*, const pa_server_info* server, void* is_bare) {
    if (server == nullptr) return;
    *static_cast<bool*>(is_bare) =
        server->default_sink_name == nullptr || server->default_source_name == nullptr;
}

} // namespace

bool PulseServerIsUnusable(std::chrono::milliseconds limit) {
    const auto end = Clock::now() + limit;
    const Pulse<pa_mainloop> loop(pa_mainloop_new());
    if (loop == nullptr) return false;
    const Pulse<pa_context> context(pa_context_new(pa_mainloop_get_api(loop.get()), "Corvane"));
    if (context == nullptr || pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        return false;
    const auto state = [&] { return pa_context_get_state(context.get()); };
    if (!RunUntil(loop.get(), end,
                  [&] { return state() == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state()); }))
        return true;
    if (state() != PA_CONTEXT_READY) return false;
    bool is_bare = false;
    const Pulse<pa_operation> asked(pa_context_get_server_info(context.get(), LookForDevices, &is_bare));
    const auto is_answered = [&] { return pa_operation_get_state(asked.get()) != PA_OPERATION_RUNNING; };
    return asked != nullptr && (!RunUntil(loop.get(), end, is_answered) || is_bare);
}
