#include "platform/win32/windows_module.h"

#include "platform/modules/modules.h"

#include <cstdio>

namespace win32 {
namespace {

// A session whose windows are gone goes on with its script, as if it had been started without.
void DoWithoutWindows(const std::string& reason) {
    fm::CurrentSession().windows = false;
    std::fprintf(stderr, "corvane: no windows: %s\n", reason.c_str());
}

void DispatchMessages() {
    if (const auto dispatch = fm::CurrentSession().dispatch_messages)
        dispatch(); // the last window takes it away
}

} // namespace

const WindowsModule* OpenWindows() {
    if (!fm::CurrentSession().windows) return nullptr;
    const modules::Module module = modules::Load("windows");
    const auto* windows = static_cast<const WindowsModule*>(module.table);
    const std::string reason =
        windows == nullptr ? module.reason : windows->open({DispatchMessages, DoWithoutWindows});
    if (reason.empty()) return windows;
    DoWithoutWindows(reason);
    return nullptr;
}

} // namespace win32
