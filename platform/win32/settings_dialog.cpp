#include "platform/win32/settings_dialog.h"

#include "platform/win32/answers.h"
#include "platform/win32/windows_module.h"

#include <string_view>

namespace win32 {
namespace {

SettingValues ParseSettings(std::string_view text) {
    SettingValues values;
    while (!text.empty()) {
        const std::string_view entry = text.substr(0, text.find(','));
        text.remove_prefix(std::min(entry.size() + 1, text.size()));
        const std::size_t equals = std::min(entry.find('='), entry.size());
        values.emplace_back(entry.substr(0, equals), entry.substr(std::min(equals + 1, entry.size())));
    }
    return values;
}

} // namespace

std::optional<SettingValues> AskForSettings(const SettingsDialog& dialog) {
    if (const WindowsModule* windows = OpenWindows()) return windows->ask_for_settings(dialog);
    constexpr std::string_view kSettings = "set:";
    const std::string answer = TakeAnswer();
    if (answer == "ok") return SettingValues();
    if (!answer.starts_with(kSettings)) return std::nullopt;
    return ParseSettings(std::string_view(answer).substr(kSettings.size()));
}

} // namespace win32
