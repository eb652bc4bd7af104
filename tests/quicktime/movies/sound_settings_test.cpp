#include "platform/quicktime/movie_exporters/sound_settings.h"

#include "platform/fmwrapper/session.h"
#include "platform/quicktime/movie_exporters/movie_exporter.h"
#include "platform/quicktime/movie_exporters/sound_exporter.h"
#include "tests/quicktime/components.h"

#include <gtest/gtest.h>

namespace {

using Control = win32::SettingControl;

TEST(SoundSettings, OfEveryFormatAreOfferedAsTheyAreTaken) {
    for (const qt::SoundExporterRow& row : qt::SoundExporters()) {
        SCOPED_TRACE(row.name);
        const qt::SoundSettings usual = qt::UsualSettings(row.choices);
        EXPECT_TRUE(qt::Offers(row.choices, usual));
        for (const Control& control : qt::DescribeSettings(row.choices, usual).controls) {
            std::vector<std::string> values = {control.value};
            for (const win32::SettingChoice& choice : control.choices) values.push_back(choice.value);
            if (control.kind == Control::Kind::kNumber)
                for (const double end : {control.minimum, control.maximum})
                    values.push_back(std::to_string(static_cast<std::uint32_t>(end)));
            for (const std::string& value : values) {
                qt::SoundSettings settings = usual;
                qt::ChangeSettings(row.choices, {{control.key, value}}, settings);
                EXPECT_NE(qt::SettingsText(row.choices, settings).find(control.key + "=" + value + "\r"),
                          std::string::npos)
                    << control.key << "=" << value;
            }
        }
    }
}

TEST(SoundSettings, WhatTheFormatDoesNotOfferChangesNothing) {
    const qt::SoundFormatChoices& choices = qt::SoundExporters()[0].choices; // WAVE
    qt::SoundSettings settings = qt::UsualSettings(choices);
    const qt::SoundSettings usual = settings;
    for (const char* rate : {"0", "44100x", "-8000", "99999999999"})
        qt::ChangeSettings(choices, {{"rate", rate}}, settings);
    for (const char* channels : {"0", "70000"})
        qt::ChangeSettings(choices, {{"channels", channels}}, settings);
    for (const char* samples : {"int8", ""}) qt::ChangeSettings(choices, {{"samples", samples}}, settings);
    for (const char* order : {"big", "middle"}) qt::ChangeSettings(choices, {{"order", order}}, settings);
    qt::ChangeSettings(choices, {{"nothing", "1"}}, settings);
    EXPECT_EQ(settings, usual);
    qt::ChangeSettings(choices, {{"samples", "int24"}, {"channels", "6"}, {"rate", "96000"}}, settings);
    EXPECT_EQ(qt::SettingsText(choices, settings), "rate=96000\rchannels=6\rsamples=int24\r");
    const auto parsed = qt::ParseSettingsText("rate=8000\rno value\r=\rchannels=1");
    ASSERT_EQ(parsed.size(), 3U);
    qt::ChangeSettings(choices, parsed, settings);
    EXPECT_EQ(qt::SettingsText(choices, settings), "rate=8000\rchannels=1\rsamples=int24\r");
}

struct OpenedExporter {
    explicit OpenedExporter(OSType format)
        : component(corvane::test::OpenComponentOf(qt::kMovieExporter, format)) {}
    void Answer(const std::string& answer) const {
        fm::CurrentSession().answers = {answer};
        bool cancelled = false;
        EXPECT_EQ(MovieExportDoUserDialog(component.get(), nullptr, &cancelled), noErr);
        EXPECT_EQ(cancelled, answer == "cancel");
    }
    [[nodiscard]] std::string Settings() const {
        QTAtomContainer container = nullptr;
        EXPECT_EQ(MovieExportGetSettingsAsAtomContainer(component.get(), &container), noErr);
        const qt::MemoryHandle owned(container);
        return {*container, static_cast<std::size_t>(GetHandleSize(container))};
    }
    [[nodiscard]] ComponentResult Take(const std::string& settings) const {
        const qt::MemoryHandle block = corvane::test::HandleOf(std::as_bytes(std::span(settings)));
        return MovieExportSetSettingsFromAtomContainer(component.get(), block.get());
    }
    qt::OpenComponent component;
};

TEST(SoundSettings, GoFromOneExporterToAnotherOfTheSameFormat) {
    const OpenedExporter first(qt::Code("MP3 "));
    const std::string usual = first.Settings();
    first.Answer("set:bitrate=64,channels=1");
    const std::string chosen = first.Settings();
    EXPECT_NE(chosen, usual);
    first.Answer("cancel");
    EXPECT_EQ(first.Settings(), chosen);

    const OpenedExporter second(qt::Code("MP3 "));
    EXPECT_EQ(second.Take(chosen), noErr);
    EXPECT_EQ(second.Settings(), chosen);

    const OpenedExporter other(qt::Code("M4A "));
    const std::string before = other.Settings();
    EXPECT_EQ(other.Take(chosen), paramErr);
    for (std::size_t size = 0; size < before.size(); ++size) // whole atoms at the front may be enough
        EXPECT_TRUE(other.Take(before.substr(0, size)) == paramErr || size > 40) << size;
    EXPECT_EQ(other.Take(std::string(100, '\xFF')), paramErr);
    EXPECT_EQ(other.Settings(), before);
}

} // namespace
