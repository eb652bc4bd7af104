#include "platform/win32/messages.h"

#include "platform/fmwrapper/session.h"
#include "platform/win32/errors.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;
using ClassName = std::pair<HINSTANCE, std::string>;

struct Class {
    WNDPROC procedure = nullptr;
    int windows = 0;
};

struct Window {
    ClassName class_name;
    WNDPROC procedure = nullptr;
};

struct Message {
    HWND window = nullptr;
    UINT number = 0;
    WPARAM word = 0;
    LPARAM parameter = 0;
};

constexpr std::size_t kLongestQueue = 10'000;

// Classes are the host thread's alone; windows and messages are under the lock.
struct Desktop {
    std::map<ClassName, Class> classes;

    std::mutex lock;
    std::condition_variable posted;
    std::map<HWND, Window> windows;
    std::intptr_t next_window = 1; // numbers are not used again, so that a stale handle is recognised
    std::deque<Message> queue;
};

Desktop& TheDesktop() {
    static Desktop desktop;
    return desktop;
}

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

bool TakeMessage(Message& message, WNDPROC& procedure) {
    Desktop& desktop = TheDesktop();
    const std::lock_guard lock(desktop.lock);
    if (desktop.queue.empty()) return false;
    message = desktop.queue.front();
    desktop.queue.pop_front();
    procedure = desktop.windows.at(message.window).procedure;
    return true;
}

// What is posted meanwhile waits for the next time, so that this ends.
void DispatchMessages() {
    std::size_t count = 0;
    {
        const std::lock_guard lock(TheDesktop().lock);
        count = TheDesktop().queue.size();
    }
    Message message;
    WNDPROC procedure = nullptr;
    for (; count > 0 && TakeMessage(message, procedure); --count)
        procedure(message.window, message.number, message.word, message.parameter);
}

void WaitForMessages(Clock::time_point until) {
    Desktop& desktop = TheDesktop();
    std::unique_lock lock(desktop.lock);
    desktop.posted.wait_until(lock, until, [&] { return !desktop.queue.empty(); });
}

} // namespace

ATOM RegisterClassExA(const WNDCLASSEXA* window_class) {
    if (window_class->lpfnWndProc == nullptr || window_class->lpszClassName == nullptr)
        return static_cast<ATOM>(Fail(ERROR_INVALID_PARAMETER));
    auto& classes = TheDesktop().classes;
    const ClassName name(window_class->hInstance, window_class->lpszClassName);
    if (!classes.try_emplace(name, Class{window_class->lpfnWndProc}).second)
        return static_cast<ATOM>(Fail(ERROR_CLASS_ALREADY_EXISTS));
    return static_cast<ATOM>(classes.size());
}

BOOL UnregisterClassA(const char* name, HINSTANCE instance) {
    auto& classes = TheDesktop().classes;
    const auto found = classes.find({instance, name});
    if (found == classes.end()) return Fail(ERROR_CLASS_DOES_NOT_EXIST);
    if (found->second.windows > 0) return Fail(ERROR_CLASS_HAS_WINDOWS);
    classes.erase(found);
    return TRUE;
}

HWND CreateWindowExA(DWORD, const char* class_name, const char*, DWORD, int, int, int, int, HWND, HANDLE,
                     HINSTANCE instance, void*) {
    Desktop& desktop = TheDesktop();
    const auto found = desktop.classes.find({instance, class_name});
    if (found == desktop.classes.end()) {
        SetLastError(ERROR_CLASS_DOES_NOT_EXIST);
        return nullptr;
    }
    ++found->second.windows;
    const std::lock_guard lock(desktop.lock);
    const auto window = reinterpret_cast<HWND>(desktop.next_window++);
    if (desktop.windows.empty()) {
        fm::CurrentSession().dispatch_messages = DispatchMessages;
        fm::CurrentSession().wait_for_messages = WaitForMessages;
    }
    desktop.windows.emplace(window, Window{found->first, found->second.procedure});
    return window;
}

BOOL DestroyWindow(HWND window) {
    Desktop& desktop = TheDesktop();
    const std::lock_guard lock(desktop.lock);
    const auto found = desktop.windows.find(window);
    if (found == desktop.windows.end()) return Fail(ERROR_INVALID_WINDOW_HANDLE);
    --desktop.classes.at(found->second.class_name).windows;
    desktop.windows.erase(found);
    std::erase_if(desktop.queue, [&](const Message& message) { return message.window == window; });
    if (desktop.windows.empty()) {
        fm::CurrentSession().dispatch_messages = nullptr;
        fm::CurrentSession().wait_for_messages = nullptr;
    }
    return TRUE;
}

BOOL PostMessageA(HWND window, UINT message, WPARAM word, LPARAM parameter) {
    Desktop& desktop = TheDesktop();
    {
        const std::lock_guard lock(desktop.lock);
        if (!desktop.windows.contains(window)) return Fail(ERROR_INVALID_WINDOW_HANDLE);
        if (desktop.queue.size() >= kLongestQueue) return Fail(ERROR_NOT_ENOUGH_QUOTA);
        desktop.queue.push_back({window, message, word, parameter});
    }
    desktop.posted.notify_one();
    return TRUE;
}

LRESULT DefWindowProcA(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}
