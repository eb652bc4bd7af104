// Whatever operation of the host fails in whatever function: a code for the host, nothing leaked, nothing
// left in the result, and the next call works.
#include "platform/fmwrapper/fault.h"
#include "plugin/errors.h"
#include "plugin/host_data.h"
#include "plugin/results.h"
#include "tests/plugin/started_host.h"
#include "tests/support/fake_host.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

struct Example {
    std::int16_t id;
    std::initializer_list<FM_Data> values;
    std::string text; ///< of the result when nothing fails; "…": whatever it is, but always the same
    FM_Error error = 0;
};

void SweepFailures(test::StartedHost& host, const Example& example, FM_Status status) {
    const FM_Error code = status == kFM_StatusNoMemory ? FM_Error{-108} : FM_Error{-1};
    const auto call = [&] { return host.CallFunction(example.id, example.values); };
    const std::int64_t before = fm::OperationCount();
    const test::Outcome usual = call();
    const std::int64_t operations = fm::OperationCount() - before;
    const std::string text = example.text == "…" ? usual.text : example.text;
    ASSERT_EQ(usual.text, text);
    ASSERT_EQ(usual.error, example.error);
    ASSERT_GT(operations, 0);
    const std::int64_t objects = fm::LiveObjects();

    int failed = 0;
    for (std::int64_t after = 0; after < operations; ++after) {
        fm::FailOperation(after, status);
        const test::Outcome outcome = call();
        fm::FailNothing();
        EXPECT_EQ(fm::LiveObjects(), objects) << "operation " << after;
        EXPECT_EQ(ResultBufferSize(), 0) << "operation " << after;
        if (outcome.error == code && outcome.error != example.error) {
            ++failed;
            EXPECT_EQ(outcome.text, "") << "operation " << after;
        } else {
            EXPECT_EQ(outcome.error, example.error)
                << "operation " << after; // a deletion, or a block not grown
        }
        const test::Outcome next = call();
        EXPECT_EQ(next.text, text) << "after operation " << after;
        EXPECT_EQ(next.error, example.error) << "after operation " << after;
    }
    EXPECT_GT(failed, 0);
}

void SweepFailures(test::StartedHost& host, std::initializer_list<Example> examples) {
    for (const Example& example : examples) {
        SCOPED_TRACE(testing::PrintToString(example.id));
        SweepFailures(host, example, kFM_StatusNoMemory);
        SweepFailures(host, example, kFM_StatusFailed);
    }
}

/// A container with an image that has a text item.
FM_Data Picture(const test::MadeImages& images) {
    const test::Bytes bytes = images.MakeBytes("-size 8x8 xc:red -set Title One", "png24:a.png");
    const BinaryData container(Host(FM_BinaryData_Constructor1));
    Host(FM_BinaryData_Add, container.get(), NewQuadChar(FourCC("PNGf")).get(),
         static_cast<std::uint32_t>(bytes.size()), bytes.data());
    FM_Data value;
    Host(FM_Data_SetBinaryData, &value, container.get(), true);
    return value;
}

TEST(HostFailure, EndsACallWithItsCodeAndNothingElse) {
    test::StartedHost host;
    const auto text = [](std::string_view utf8) { return test::TextValue(utf8); };
    const test::MadeImages images;
    const FM_Data image = Picture(images);
    const char* const wrong_code =
        "$20101:Image type code must be exactly 4 characters, empty, or start a list of items";
    const FM_Data zero = test::NumberValue("0");
    const FM_Data one = test::NumberValue("1");
    const std::string list = "Format: WAVE\rTrack 1\r  Volume: 256\r";
    SweepFailures(host, {{1, {text("long")}, "Corvane 10.0.3"},
                         {1, {text("other")}, ""},
                         {15, {text(list), text("Track 1/Volume")}, "256"},
                         {15, {text(list)}, "4"},
                         {15, {text(list), text("Track 2")}, "", -43},
                         {21, {text("volume")}, "1"},
                         {21, {text("quicktime")}, "769"},
                         {23, {text("rfworkaround"), text("1")}, "1"},
                         {23, {text("nothing")}, "", -50},
                         {56, {}, "-1|-1|-1|-1"},
                         {60, {text("one too many")}, ""},
                         {61, {}, "$20100:Requires either 1, 2 or 3 parameters"},
                         {61, {text("blur"), image, image}, "$0:Cancel"},
                         {62, {image}, "$20100:Requires either 2 or 3 parameters"},
                         {62, {image, text("<effect type='dslv'/>"), image}, ""},
                         {2, {image}, "…", -2114},
                         {10, {}, "…"},
                         {14, {}, "$0:Media_StopSound: No error."},
                         {17, {text("/C:/none/none")}, "", -43},
                         {20, {}, "…"},
                         {57, {image}, ""},
                         {52, {one, one}, ""},
                         {53, {zero, zero}, ""},
                         {54, {image}, "…"},
                         {55, {one, zero, zero, one, zero, one, one, zero, one}, ""},
                         {58, {zero, zero, one, one}, ""},
                         {59, {zero}, ""},
                         {87, {one, one}, ""},
                         {60, {}, ""},
                         {92, {}, "…"},
                         {93, {image}, "…"},
                         {93, {image, text("title")}, "…"},
                         {25, {}, "$0:Media_PlayPause: No error."},
                         {18, {}, "", -3155},
                         {24, {image}, "IPTC\r  \xC2\xA9nam: One\r"},
                         {24, {}, "", -50},
                         {63, {image, zero}, ""},
                         {63, {image, one}, "$-2012:Source must be a file to import by reference"},
                         {89, {test::NumberValue("512"), one}, ""},
                         {90, {text("PNGf")}, "format=PNGf\rmethod=0\r"},
                         {91, {image, text("PNGf")}, ""},
                         {91, {image, text("GIFf")}, ""},
                         {91, {text("nothing"), text("PNG")}, wrong_code},
                         {13, {}, "…"}});
}

TEST(HostFailure, LeavesFileFunctionsInOrder) {
    test::StartedHost host;
    test::ScratchDrives drives;
    drives.Map("C:", "c");
    drives.MakeFile("c/a.txt", "abc");
    drives.MakeFile("c/folder/x");
    const auto text = [](std::string_view utf8) { return test::TextValue(utf8); };
    const FM_Data yes = test::NumberValue("1");
    const FM_Data no = test::NumberValue("0");
    SweepFailures(host,
                  {{51, {text("exported"), text("/C:/out"), yes}, ""},
                   {51,
                    {text("exported"), text("/C:/folder"), yes},
                    "$-1302:Target must specify a file, not a directory"},
                   {64, {text("/C:/folder")}, ""},
                   {65, {}, "/C:/folder"},
                   {66, {text("/C:/a.txt"), text("/C:/b.txt"), yes}, ""},
                   {67, {text("/C:/none"), text("/C:/folder")}, "$-43:Source item not found"},
                   {68, {text("/C:/folder"), no}, "$-1302:folderFlag must be set to delete a directory"},
                   {69, {text("/C:/none"), text("other")}, "$-43:RenameItem failed"},
                   {70, {text("/C:/"), text("folder")}, "$183:CreateFolder failed"},
                   {71, {text("/C:/folder"), yes}, "x"},
                   {72, {text("/C:/none")}, "$-43:ItemInfo failed"},
                   {73, {text("/C:/a.txt"), text("/C:/link")}, ""},
                   {74, {text("/C:/none")}, "$-43:OpenItem failed"},
                   {75, {}, "C:\\"},
                   {76, {text("/C:/folder/x"), yes}, "/C:/folder"},
                   {77, {text("/C:/a.txt")}, "a.txt"},
                   {94, {text("/C:/a.txt"), no, yes}, "abc"},
                   {94, {text("/C:/a.txt"), no, no}, "filewin:/C:/a.txt"},
                   {94, {text("http://"), yes, no}, "$0:Source must be a file to import by reference"}});
}

TEST(HostFailure, IsReportedByAnExportOfAText) {
    test::StartedHost host;
    fm::FailOperation(0, kFM_StatusNoMemory, "FM_Text_GetUnicode");
    const test::Outcome outcome =
        host.CallFunction(51, {test::TextValue("text"), test::TextValue("/C:/out"), test::NumberValue("1")});
    EXPECT_EQ(outcome.text, "$-108:Out of memory");
    EXPECT_EQ(outcome.error, 0);
}

TEST(HostFailure, IsWhatTheLastErrorTells) {
    test::StartedHost host;
    fm::FailOperation(0, kFM_StatusNoMemory, "FM_DataVect_AtAsText");
    EXPECT_EQ(host.CallFunction(21, {test::TextValue("volume")}).error, -108);
    EXPECT_EQ(host.CallFunction(13, {}).text, "$-108:Media_Get: Memory full error.");
    fm::FailOperation(0, kFM_StatusNoMemory, "FM_DataVect_AtAsText");
    EXPECT_EQ(host.CallFunction(1, {test::TextValue("long")}).error, -108);
    EXPECT_EQ(host.CallFunction(13, {}).text, "$-108:Media_Get: Memory full error.") << "not its record";
}

} // namespace
} // namespace corvane
