#include "platform/win32/windows.h"

#include "platform/win32/windows_module.h"

namespace {

/// Their addresses are the handles.
struct DeskWindows {
    char application = 0;
    char documents = 0;
    char front_document = 0;
};
DeskWindows g_windows;

win32::PointerAndWindow LookAtDesk() {
    if (const win32::WindowsModule* windows = win32::OpenWindows())
        return windows->pointer_and_window().value_or(win32::PointerAndWindow{});
    const fm::Session& session = fm::CurrentSession();
    const fm::Rectangle& window = session.document_window;
    const bool is_empty = window.right <= window.left || window.bottom <= window.top;
    return {session.pointer, is_empty ? std::nullopt : std::optional(window)};
}

} // namespace

HWND GetActiveWindow() {
    return LookAtDesk().window ? &g_windows.application : nullptr;
}

HWND GetTopWindow(HWND parent) {
    if (parent == &g_windows.application) return &g_windows.documents;
    return parent == &g_windows.documents ? &g_windows.front_document : nullptr;
}

BOOL GetWindowRect(HWND window, RECT* rectangle) {
    const auto frame = LookAtDesk().window;
    if (window != &g_windows.front_document || !frame) return FALSE;
    *rectangle = {frame->left, frame->top, frame->right, frame->bottom};
    return TRUE;
}

BOOL GetCursorPos(POINT* position) {
    const fm::Point pointer = LookAtDesk().pointer;
    *position = {pointer.x, pointer.y};
    return TRUE;
}
