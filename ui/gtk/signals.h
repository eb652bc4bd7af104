// Signals of the window library that call a function object.
#pragma once

#include "ui/gtk/modal.h"

#include <functional>
#include <memory>
#include <utility>

namespace corvane::gtk {

/// Calls `function` for each signal of this name, for as long as the object lives. Only while a window is
/// open; for signals that want no answer.
inline void Connect(gpointer object, const char* signal, std::function<void()> function) {
    using Function = std::function<void()>;
    auto owned = std::make_unique<Function>(std::move(function));
    g_signal_connect_data(
        object, signal, G_CALLBACK(+[](Function* called) { Guarded(*called); }), owned.release(),
        [](gpointer data, GClosure*) { std::default_delete<Function>()(static_cast<Function*>(data)); },
        G_CONNECT_SWAPPED);
}

} // namespace corvane::gtk
