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

bool Connect(pa_mainloop* loop, pa_context* context) {
    if (pa_context_connect(context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return false;
    while (pa_context_get_state(context) != PA_CONTEXT_READY) {
        const bool can_be = PA_CONTEXT_IS_GOOD(pa_context_get_state(context)) != 0;
        if (!can_be || pa_mainloop_iterate(loop, 1, nullptr) < 0) return false;
    }
    return true;
}

void LookForDevices(pa_context*, const pa_server_info* server, void* is_bare) {
    if (server == nullptr) return;
    *static_cast<bool*>(is_bare) =
        server->default_sink_name == nullptr || server->default_source_name == nullptr;
}

} // namespace

bool PulseServerIsBare() {
    const Pulse<pa_mainloop> loop(pa_mainloop_new());
    if (loop == nullptr) return false;
    const Pulse<pa_context> context(pa_context_new(pa_mainloop_get_api(loop.get()), "Corvane"));
    if (context == nullptr || !Connect(loop.get(), context.get())) return false;
    bool is_bare = false;
    const Pulse<pa_operation> asked(pa_context_get_server_info(context.get(), LookForDevices, &is_bare));
    while (asked != nullptr && pa_operation_get_state(asked.get()) == PA_OPERATION_RUNNING)
        if (pa_mainloop_iterate(loop.get(), 1, nullptr) < 0) break;
    return is_bare;
}
