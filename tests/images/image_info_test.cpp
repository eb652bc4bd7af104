#include "images/availability.h"
#include "images/functions.h"
#include "images/streams.h"
#include "platform/quicktime/movie_toolbox.h"
#include "plugin/host_data.h"
#include "tests/support/calls.h"
#include "tests/support/http_server.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane;
using corvane::test::FakeHost;
using corvane::test::MadeImages;
using corvane::test::TextValue;

class ImageInfo : public ::testing::Test {
protected:
    void SetUp() override {
        images_.folder.Map("C:", "drive");
        EXPECT_EQ(InitializeQTML(0), noErr);
        DecideImagesAvailable();
        ASSERT_TRUE(ImagesAvailable());
    }
    void TearDown() override { TerminateQTML(); }

    static std::string Info(const FM_Data& value) {
        const corvane::test::Outcome outcome = corvane::test::Call(GetImageInfo, {value});
        EXPECT_EQ(outcome.error, 0);
        EXPECT_EQ(outcome.type, kFM_TypeText);
        return outcome.text;
    }

    static FM_Data Embedded(const char (&type)[5], const corvane::test::Bytes& bytes) {
        const BinaryData container(Host(FM_BinaryData_Constructor1));
        AddStream(container.get(), FourCC(type), bytes);
        FM_Data value;
        Host(FM_Data_SetBinaryData, &value, container.get(), true);
        return value;
    }

    /// Of a picture of 64 by 48 pixels.
    static std::string Text(int vertical, int horizontal, std::size_t size) {
        return "Height (px): 48\rWidth (px): 64\rDepth (bits): 24\rQuality: 1024"
               "\rV Resolution (dpi): " +
               std::to_string(vertical) + "\rH Resolution (dpi): " + std::to_string(horizontal) +
               "\rImage Count: 1\rSize (bytes): " + std::to_string(size) +
               "\rCompressor Type: png \rCompressor Description: PNG\r";
    }

    FakeHost host_;
    MadeImages images_;
};

TEST_F(ImageInfo, OfAFileAndAStream) {
    const auto bytes =
        images_.MakeBytes("-size 64x48 plasma: -units PixelsPerInch -density 300x150", "png24:drive/a.png");
    const std::string expected = Text(150, 300, bytes.size());
    EXPECT_EQ(Info(TextValue("/C:/a.png")), expected);
    EXPECT_EQ(Info(Embedded("PNGf", bytes)), expected);
}

TEST_F(ImageInfo, OfAnAddress) {
    setenv("no_proxy", "*", 1);
    const auto bytes = images_.MakeBytes("-size 64x48 plasma:", "png24:drive/a b.png");
    const corvane::test::HttpServer server(images_.folder.Path("drive"));
    EXPECT_EQ(Info(TextValue(server.Url("a b.png") + "\rmore")), Text(72, 72, bytes.size()));
    EXPECT_EQ(Info(TextValue(server.Url("status-404"))), "$-43:Could not find referenced image file");
    EXPECT_EQ(Info(TextValue(server.Url("status-500"))), "$-2004:Could not find referenced image file");
    images_.folder.MakeFile("drive/page.html", "<html>no image</html>");
    EXPECT_EQ(Info(TextValue(server.Url("page.html"))), "$-2005:Could not find referenced image file");
}

TEST_F(ImageInfo, Failures) {
    images_.folder.MakeFile("drive/text.png", "no picture");
    const auto png = images_.MakeBytes("-size 64x48 plasma:", "png24:a.png");
    EXPECT_EQ(Info(TextValue("/C:/text.png")), "$-2005:Could not find QT importer for this type.");
    EXPECT_EQ(Info(Embedded("none", png)), "$-2005:Could not find QT importer for this type.");
    EXPECT_EQ(Info(Embedded("JPEG", png)), "$-989:GIGetImageDescription failure");
    EXPECT_EQ(corvane::test::Call(GetImageInfo, {}).text, "$20100:Requires exactly one parameter");
    TerminateQTML();
    DecideImagesAvailable();
    EXPECT_EQ(Info(TextValue("/C:/missing.png")), "$20403:QuickTime required components are not installed");
    InitializeQTML(0);
}

} // namespace
