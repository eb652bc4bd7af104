#include "plugin/lifecycle.h"

#include "platform/fmwrapper/fault.h"
#include "plugin/drawing_port.h"
#include "plugin/workarounds.h"
#include "tests/plugin/started_host.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace corvane {
namespace {

TEST(StartUp, RefusesInterfacesAndHosts) {
    test::EntryHost host;
    for (const int version : {49, 256, -1, 0}) {
        host.block.interface_version = static_cast<std::int16_t>(version);
        EXPECT_EQ(host.StartUp(), -1) << version;
    }
    host.block.interface_version = 50;
    EXPECT_EQ(host.StartUp(), -2) << "10.0 speaks interface 51";
    host.block.interface_version = 51;
    for (const char* version : {"8.6v1", "10.1v1", "11.0v1", ""}) {
        fm::CurrentSession().application_version = version;
        EXPECT_EQ(host.StartUp(), -2) << version;
        EXPECT_TRUE(host.registered.empty() && host.unregistered.empty()) << version;
    }
    EXPECT_EQ(DrawingPort(), nullptr);
    EXPECT_FALSE(IsStarted());
}

TEST(StartUp, RegistersEveryFunctionAndPreparesTheState) {
    test::EntryHost host;
    fm::CurrentSession().application_version = "8.5v9";
    SetWorkaround(Workaround::kLinkMedia, 0, false);
    ASSERT_EQ(host.StartUp(), 51);
    EXPECT_TRUE(IsStarted());
    EXPECT_EQ(host.registered.size(), 61U);
    GWorldPtr current = nullptr;
    GetGWorld(&current);
    EXPECT_NE(current, nullptr);
    EXPECT_EQ(current, DrawingPort());
    for (const Workaround which : {Workaround::kLinkMedia, Workaround::kRemoteFile}) {
        EXPECT_TRUE(WorkaroundValue(which));
        EXPECT_TRUE(WorkaroundWarnPending(which));
    }
    host.Send(kFM_CallShutdown);
    EXPECT_FALSE(IsStarted());
    EXPECT_EQ(DrawingPort(), nullptr);
}

TEST(StartUp, TakesBackTheSoundFunctionsWhenOneIsRefused) {
    test::EntryHost host;
    host.refused_id = 5;
    EXPECT_EQ(host.StartUp(), -2);
    EXPECT_EQ(host.registered.size(), 4U);
    std::vector<int> ids;
    for (const auto& [plugin, id] : host.unregistered) ids.push_back(id);
    EXPECT_EQ(ids, (std::vector{4, 3, 2, 1}));
    EXPECT_EQ(DrawingPort(), nullptr);

    host.refused_id = 1;
    EXPECT_EQ(host.StartUp(), -2);
    EXPECT_TRUE(host.unregistered.empty());
}

TEST(StartUp, DoesWithoutAnImageOrFileFunctionThatIsRefused) {
    test::EntryHost host;
    host.refused_id = 70;
    EXPECT_EQ(host.StartUp(), 51);
    EXPECT_EQ(host.registered.size(), 60U);
    EXPECT_EQ(host.registered.back().id, 94) << "the refused id stays taken";
    host.Send(kFM_CallShutdown);
}

TEST(StartUp, SurvivesAnyFailureOfTheHost) {
    test::EntryHost host;
    const std::int64_t objects = fm::LiveObjects();
    const std::int64_t before = fm::OperationCount();
    ASSERT_EQ(host.StartUp(), 51);
    const std::int64_t operations = fm::OperationCount() - before;
    host.Send(kFM_CallShutdown);
    for (std::int64_t after = 0; after < operations; ++after) {
        fm::FailOperation(after, after % 2 == 0 ? kFM_StatusNoMemory : kFM_StatusFailed);
        const std::intptr_t answer = host.StartUp();
        fm::FailNothing();
        if (answer == kStarted) {
            EXPECT_GE(host.registered.size(), 60U) << after;
            host.Send(kFM_CallShutdown);
        } else {
            EXPECT_EQ(answer, kDoNotEnable) << after;
            EXPECT_EQ(host.registered.size(), host.unregistered.size()) << after;
        }
        EXPECT_EQ(fm::LiveObjects(), objects) << after;
    }
}

TEST(Shutdown, UnregistersFromTheCounterDown) {
    test::EntryHost host;
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(host.StartUp(), 51);
        EXPECT_EQ(host.registered[27].id, 51) << "the same ids in every round";
        EXPECT_EQ(host.registered.back().id, 94);
        host.Send(kFM_CallShutdown);
        ASSERT_EQ(host.unregistered.size(), 96U);
        for (std::size_t i = 0; i < 96; ++i)
            EXPECT_EQ(host.unregistered[i], std::make_pair(0x43563730U, static_cast<std::int16_t>(96 - i)));
    }
    host.unregistered.clear();
    host.Send(kFM_CallShutdown);
    EXPECT_TRUE(host.unregistered.empty());
}

TEST(Registry, GivesTheHostNamesPrototypesCountsAndFlags) {
    const test::StartedHost host;
    std::map<int, std::string> given;
    for (const fm::ExternalFunction& function : host.registered) {
        EXPECT_EQ(function.plugin_id, 0x43563730U) << "CV70";
        std::ostringstream text;
        text << utf::ToUtf8(function.name) << ": " << utf::ToUtf8(function.prototype) << ", "
             << function.minimum << " to " << function.maximum << ", " << std::hex << function.flags;
        given[function.id] = text.str();
    }
    EXPECT_EQ(given[1], "Media_Version: Media_Version( version format ), 1 to 1, ff01");
    EXPECT_EQ(given[3],
              "Media_CreateSound: Media_CreateSound( type; {duration; {frequency}} ), 1 to -1, ff01");
    EXPECT_EQ(given[10], "Media_ListSoundOutputFormats: Media_ListSoundOutputFormats, 0 to 0, ff01");
    EXPECT_EQ(given[27],
              "Media_DrawWaveform: Media_DrawWaveform( container; track; width; height {; startTime "
              "{; endTime {; fgcolor {; bgcolor } } } } ), 6 to 8, ff00");
    EXPECT_EQ(given[93], "Media_GetMetadata: Media_GetMetadata ( containerOrFile {; tag} ), 1 to 2, ff00");
    for (int id = 1; id <= 100; ++id) {
        const bool expected = id <= 27 || (id >= 51 && id <= 77) || id == 87 || (id >= 89 && id <= 94);
        EXPECT_EQ(given.contains(id), expected) << id;
    }
}

TEST(Registry, AnswersCallsOfIdsThatItNeverGave) {
    test::StartedHost host;
    const FM_ExternalFunction handler = host.registered.front().handler;
    for (const int id : {0, 50, 95, 1000, -1})
        EXPECT_EQ(test::Call(handler, {}, static_cast<std::int16_t>(id)).error, -1) << id;
}

TEST(Strings, AreGivenInEveryState) {
    test::EntryHost host;
    EXPECT_EQ(host.GetString(128), u"Corvane");
    EXPECT_EQ(host.GetString(129),
              u"Adds functions for importing, exporting, and manipulating images, sounds, "
              u"documents, and other digital media.");
    EXPECT_EQ(host.GetString(131, 12), u"CV701YnYnnn");
    EXPECT_EQ(host.GetString(130), u"#") << "nothing is written";
    EXPECT_EQ(host.GetString(128, 4), u"Cor");
    EXPECT_EQ(host.GetString(131, 5), u"CV70");
    EXPECT_EQ(host.GetString(128, 0), u"#");
}

TEST(Preferences, ShowTheVersionsOfThisAndTheHost) {
    test::StartedHost host;
    testing::internal::CaptureStderr();
    host.Send(kFM_CallPreferences);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "alert: Corvane 10.0.3: Corvane 10.0.3   FMP 10.0v1\n\n10|0|2 [OK]\n");
}

TEST(OtherSelectors, ReadAndWriteNothing) {
    test::EntryHost host;
    host.block.result = 12345;
    for (const int selector : {1, 2, 3, 6, 8, 255}) host.Send(static_cast<FM_CallSelector>(selector));
    EXPECT_EQ(host.block.result, 12345);
    EXPECT_TRUE(host.registered.empty());
}

} // namespace
} // namespace corvane
