#include "platform/win32/keyboard.h"

#include "platform/win32/windows_module.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <poll.h>
#include <ranges>
#include <string_view>
#include <termios.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kPressLength = std::chrono::seconds(1);
constexpr std::int16_t kDown = -0x8000;

struct KeyName {
    std::string_view name;
    int key;
};

constexpr std::array<KeyName, 7> kKeyNames = {{
    {"", VK_LBUTTON},
    {"right button", VK_RBUTTON},
    {"control", VK_CONTROL},
    {"command", VK_CONTROL},
    {"escape", VK_ESCAPE},
    {"period", VK_OEM_PERIOD},
    {".", VK_OEM_PERIOD},
}};

bool Holds(const fm::InputEvent& press, int key) {
    std::string_view names = press.key;
    while (true) {
        const std::string_view name = names.substr(0, names.find('+'));
        const auto is_key = [&](const KeyName& row) { return row.name == name && row.key == key; };
        if (std::ranges::any_of(kKeyNames, is_key)) return true;
        if (name.size() == names.size()) return false;
        names.remove_prefix(name.size() + 1);
    }
}

/// Who has a terminal and no window clicks with the Return key.
bool IsReturnTyped() {
    pollfd terminal = {STDIN_FILENO, POLLIN, 0};
    return isatty(STDIN_FILENO) == 1 && poll(&terminal, 1, 0) > 0 && (terminal.revents & POLLIN) != 0;
}

} // namespace

std::int16_t GetAsyncKeyState(int key) {
    if (const win32::WindowsModule* windows = win32::OpenWindows())
        return windows->is_down(key) ? kDown : std::int16_t{0};
    const Clock::time_point now = Clock::now();
    const auto is_down = [&](const fm::InputEvent& press) {
        return press.when <= now && now - press.when < kPressLength && Holds(press, key);
    };
    const bool down =
        std::ranges::any_of(fm::CurrentSession().input, is_down) || (key == VK_LBUTTON && IsReturnTyped());
    return down ? kDown : std::int16_t{0};
}

void win32::FlushInput() {
    std::erase_if(fm::CurrentSession().input,
                  [now = Clock::now()](const fm::InputEvent& press) { return press.when <= now; });
    if (IsReturnTyped()) tcflush(STDIN_FILENO, TCIFLUSH);
}
