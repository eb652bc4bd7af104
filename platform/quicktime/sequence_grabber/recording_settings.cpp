#include "platform/quicktime/sequence_grabber/recording_settings.h"

#include "platform/win32/settings_dialog.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>

namespace qt {
namespace {

using win32::SettingChoice;
using win32::SettingControl;

struct Choice {
    std::uint32_t value;
    const char* label;
};

constexpr std::array<Choice, 7> kRates = {{
    {8'000, "8 kHz"},
    {11'025, "11.025 kHz"},
    {16'000, "16 kHz"},
    {22'050, "22.05 kHz"},
    {32'000, "32 kHz"},
    {44'100, "44.1 kHz"},
    {48'000, "48 kHz"},
}};
constexpr std::array<Choice, 2> kChannels = {{{1, "Mono"}, {2, "Stereo"}}};

SettingControl Control(const char* key, const char* label, std::span<const Choice> choices,
                       std::uint32_t value) {
    SettingControl control;
    control.key = key;
    control.label = label;
    control.kind = SettingControl::Kind::kChoice;
    control.value = std::to_string(value);
    for (const Choice& choice : choices)
        control.choices.push_back({std::to_string(choice.value), choice.label});
    return control;
}

/// Takes the value if it is one of the choices.
void Take(const std::string& text, std::span<const Choice> choices, std::uint32_t& value) {
    const auto found =
        std::ranges::find(choices, text, [](const Choice& choice) { return std::to_string(choice.value); });
    if (found != choices.end()) value = found->value;
}

} // namespace

PcmLayout RecordingSettings::Layout() const {
    return {SampleEncoding::kSigned16, std::endian::native == std::endian::big, channels, rate};
}

bool AskForRecordingSettings(RecordingSettings& settings) {
    win32::SettingsDialog dialog;
    dialog.title = "Recording Settings";
    win32::SettingsPage page;
    page.controls = {Control("rate", "Rate", kRates, settings.rate),
                     Control("channels", "Channels", kChannels, settings.channels)};
    dialog.pages = {std::move(page)};
    const auto values = win32::AskForSettings(dialog);
    if (!values) return false;
    for (const auto& [key, value] : *values) {
        if (key == "rate") Take(value, kRates, settings.rate);
        if (key == "channels") Take(value, kChannels, settings.channels);
    }
    return true;
}

OSErr DescribeRecordingSettings(const RecordingSettings& settings, UserData* list) {
    *list = nullptr;
    UserData made = nullptr;
    if (const OSErr code = NewUserData(&made); code != noErr) return code;
    OwnedUserData owner(made);
    const std::array<std::pair<OSType, std::uint32_t>, 3> values = {{
        {Code("srat"), settings.rate},
        {Code("schn"), settings.channels},
        {Code("ssiz"), settings.Layout().SampleBytes() * 8},
    }};
    for (const auto& [type, value] : values)
        if (const OSErr code = AddUserDataText(made, std::to_string(value), type); code != noErr) return code;
    *list = owner.release();
    return noErr;
}

} // namespace qt
