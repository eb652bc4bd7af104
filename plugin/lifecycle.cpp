#include "plugin/lifecycle.h"

#include "files/numbered_files.h"
#include "images/availability.h"
#include "images/image_settings.h"
#include "images/mouse_position.h"
#include "images/transform_state.h"
#include "platform/quicktime/movie_toolbox.h"
#include "platform/win32/message_box.h"
#include "platform/win32/version.h"
#include "plugin/call_block.h"
#include "plugin/drawing_port.h"
#include "plugin/host_version.h"
#include "plugin/registry.h"
#include "plugin/string_table.h"
#include "plugin/workarounds.h"
#include "sounds/media_pool.h"
#include "sounds/recording_manager.h"
#include "ui/standard_alert.h"

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

namespace corvane {
namespace {

constexpr std::u16string_view kOptions = u"CV701YnYnnn"; // id, then what the plug-in asks of the host
constexpr std::int32_t kOldestQuickTime = 0x0700;        // upper half of the version: major, minor, fix

bool g_started = false;
bool g_preferences_open = false;

// Keeps the host from opening the alert a second time while its message loop runs.
class PreferencesScope {
public:
    PreferencesScope() { g_preferences_open = true; }
    PreferencesScope(const PreferencesScope&) = delete;
    PreferencesScope& operator=(const PreferencesScope&) = delete;
    ~PreferencesScope() { g_preferences_open = false; }
};

std::string ProductTitle() {
    return LoadedString(kStringName).Utf8() + " " + LoadedString(kStringVersion).Utf8();
}

bool CheckQuickTimeVersion() {
    std::int32_t version = 0;
    if (Gestalt(qt::Code("qtim"), &version) != 0) return false;
    if ((version >> 16 & 0xFFFF) >= kOldestQuickTime) return true;
    std::string message = "The Corvane plug-in requires QuickTime 7.0 or later. You can obtain it at ";
    message.append(kQuickTimeDownloadPage).append(".");
    NewStandardAlert("QuickTime too old!", message, "OK")->Run();
    return false;
}

// What has been started stays so after a failure: the host unloads a plug-in that refused to start.
bool StartQuickTime() {
    if (InitializeQTML(0) != 0 || EnterMovies() != 0) {
        NewStandardAlert(LoadedString(kStringNoQuickTimeTitle).Utf8(),
                         LoadedString(kStringNoQuickTimeMessage).Utf8(), "Cancel")
            ->Run();
        return false;
    }
    MediaPool::Instance();
    if (CreateDrawingPort() != noErr) return false;
    const bool recent = CheckQuickTimeVersion();
    ResetWorkarounds();
    RecordingManager::Instance();
    return recent;
}

void TearDown() {
    MediaPool::Delete();
    RecordingManager::Delete();
    DisposeDrawingPort();
    ExitMovies();
    TerminateQTML();
}

} // namespace

std::intptr_t StartUp(std::int16_t interface_version) {
    if (interface_version < kOldestInterfaceVersion || interface_version > kNewestInterfaceVersion)
        return kVersionRefused;
    HostVersion& host = CurrentHostVersion();
    host.text = ReadHostVersionText();
    host.code = ClassifyHostVersion(interface_version, host.text);
    if (!AcceptsHostVersion(host.code)) return kDoNotEnable;
    host.interface_version = interface_version;

    native::ResetNumberedFiles();
    if (!StartQuickTime()) return kDoNotEnable;
    if (!RegisterSoundFunctions()) {
        TearDown();
        return kDoNotEnable;
    }
    RegisterImageAndFileFunctions();
    DecideImagesAvailable();
    ResetImageSettings();
    ResetMousePosition();
    ResetTransform();
    g_started = true;
    return kStarted;
}

void ShutDown() {
    g_started = false;
    UnregisterAllFunctions();
    native::ResetNumberedFiles();
    TearDown();
}

bool IsStarted() {
    return g_started;
}

void ShowPreferences() {
    if (g_preferences_open) return;
    const PreferencesScope open;
    OSVERSIONINFOA system = {};
    system.dwOSVersionInfoSize = sizeof(system);
    GetVersionExA(&system);
    const std::string title = ProductTitle();
    const std::string text =
        title + "   FMP " + CurrentHostVersion().text + "\n\n" + std::to_string(system.dwMajorVersion) + "|" +
        std::to_string(system.dwMinorVersion) + "|" + std::to_string(system.dwPlatformId);
    MessageBoxA(nullptr, text.c_str(), title.c_str(),
                MB_OK | MB_ICONINFORMATION | MB_SYSTEMMODAL | MB_SETFOREGROUND);
}

void GetString(std::uint8_t which, char16_t* buffer, std::uint32_t capacity) {
    if (buffer == nullptr || capacity == 0) return;
    const auto load = [&](UINT id) {
        constexpr auto kLargest = static_cast<std::uint32_t>(std::numeric_limits<int>::max());
        LoadStringW(CurrentCallBlock().instance, id, buffer, static_cast<int>(std::min(capacity, kLargest)));
    };
    switch (which) {
    case kFM_StringName: load(kStringName); break;
    case kFM_StringDescription: load(kStringDescription); break;
    case kFM_StringOptions: buffer[kOptions.copy(buffer, capacity - 1)] = u'\0'; break;
    default: break;
    }
}

} // namespace corvane
