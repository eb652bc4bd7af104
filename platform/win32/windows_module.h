// What the module of real windows, corvane-windows.so, offers to this layer. Its library takes long to load
// and needs a display, so that it stands outside and is loaded for the first window of a session.
//
// Everything here is called on one thread, the first that opened a window. Each operation that shows a
// window returns when the window is closed. Exceptions of the callbacks pass through.
#pragma once

#include "platform/fmwrapper/session.h"
#include "platform/win32/settings_dialog.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace win32 {

struct AlertWindow {
    enum class Icon : std::uint8_t { kWarning, kInformation };
    std::string title;
    std::string message;
    std::string button; ///< label of the one button
    Icon icon = Icon::kWarning;
};

struct PathWindow {
    enum class Choice : std::uint8_t { kFile, kFolder };
    std::string title;  ///< empty: the window's own
    std::string button; ///< label of the confirming button; empty: the window's own
    std::string folder; ///< Unix path of the folder that is shown first; empty: the window's own
    Choice choice = Choice::kFile;
    /// Why this Unix path can't be taken, for the person who chose it; empty when it can.
    std::function<std::string(const std::string&)> refusal;
};

/// What the plug-in does for the windows; plain functions, for the module outlives the plug-in.
struct WindowsClient {
    void (*dispatch_messages)() = nullptr; ///< called every few milliseconds while a window is open
    void (*display_lost)(const std::string&) = nullptr; ///< the display is gone, and why; comes once
};

/// The pointer, and the window in front with its frame; in pixels of the screen.
struct PointerAndWindow {
    fm::Point pointer;
    std::optional<fm::Rectangle> window; ///< nullopt: no window is in front
};

struct WindowsModule {
    /// Opens the display. Answers why it can't be opened; empty when it is open, or has been already. A
    /// display that was lost does not open again.
    std::string (*open)(const WindowsClient& client);
    /// False when the display went away before the alert was confirmed.
    bool (*show_alert)(const AlertWindow& window);
    /// The Unix path of the choice; nullopt on Cancel.
    std::optional<std::string> (*choose_path)(const PathWindow& window);
    std::optional<SettingValues> (*ask_for_settings)(const SettingsDialog& dialog);
    /// nullopt where the display does not tell.
    std::optional<PointerAndWindow> (*pointer_and_window)();
    /// Whether a key or mouse button (VK_…, keyboard.h) is down, in whatever window; false where the display
    /// does not tell.
    bool (*is_down)(int key);
};

/// The module with its display open; null when the session has no windows. The first failure is told on
/// standard error, and from then on the session has none.
const WindowsModule* OpenWindows();

} // namespace win32
