#include "platform/quicktime/graphics_exporter.h"

#include "platform/fmwrapper/session.h"
#include "platform/quicktime/image_codecs/codec.h"
#include "tests/quicktime/components.h"
#include "tests/quicktime/pixels.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane::test;

class GraphicsExporters : public ::testing::Test {
protected:
    /// Opens an importer on what convert makes, and an exporter of the type on that importer.
    void Open(const char* arguments, const std::string& file, OSType import_type, OSType export_type) {
        data_ = HandleOf(images_.MakeBytes(arguments, file));
        importer_ = OpenComponentOf(qt::kGraphicsImporter, import_type);
        ASSERT_EQ(GraphicsImportSetDataHandle(importer_.get(), data_.get()), noErr);
        exporter_ = OpenComponentOf(qt::kGraphicsExporter, export_type);
        output_ = qt::MemoryHandle(NewHandle(3));
        EXPECT_EQ(GraphicsExportSetInputGraphicsImporter(exporter_.get(), importer_.get()), noErr);
        EXPECT_EQ(GraphicsExportSetOutputHandle(exporter_.get(), output_.get()), noErr);
    }

    /// The exported PNG, decoded.
    qt::PixelImage Exported() {
        std::uint64_t size = 0;
        EXPECT_EQ(GraphicsExportDoExport(exporter_.get(), &size), noErr);
        EXPECT_EQ(size, qt::HandleBytes(output_.get()).size());
        qt::PixelImage image;
        EXPECT_EQ(qt::kPngCodec.decode(*qt::MemorySource(qt::HandleBytes(output_.get())), 1, image), noErr);
        return image;
    }

    std::string Settings() {
        std::string text;
        EXPECT_EQ(GraphicsExportGetSettingsAsText(exporter_.get(), &text), noErr);
        return text;
    }

    FakeHost host_;
    MadeImages images_;
    qt::MemoryHandle data_;
    qt::MemoryHandle output_;
    qt::OpenComponent importer_;
    qt::OpenComponent exporter_;
};

constexpr OSType kPng = qt::Code("PNGf");

TEST_F(GraphicsExporters, DrawTheSourceRectangleWithinTheClipRegion) {
    Open("-size 40x30 xc:red -fill blue -draw 'rectangle 20,10 39,29'", "png24:a.png", kPng, kPng);
    const Rect part = {5, 15, 100, 35};
    ASSERT_EQ(GraphicsImportSetSourceRect(importer_.get(), &part), noErr);
    Rect kept;
    ASSERT_EQ(GraphicsImportGetSourceRect(importer_.get(), &kept), noErr);
    EXPECT_EQ(kept.bottom, 100) << "as it was set";
    const qt::OwnedRegion clip(NewRgn());
    const qt::OwnedRegion hole(NewRgn());
    const Rect inside = {0, 0, 20, 10};
    const Rect middle = {8, 4, 12, 6};
    RectRgn(clip.get(), &inside);
    RectRgn(hole.get(), &middle);
    XorRgn(clip.get(), hole.get(), clip.get());
    ASSERT_EQ(GraphicsImportSetClip(importer_.get(), clip.get()), noErr);
    const qt::PixelImage image = Exported();
    EXPECT_EQ(image.width(), 20);
    EXPECT_EQ(image.height(), 95);
    EXPECT_EQ(image.Row(0)[0], qt::Pixel(255, 0, 0));
    EXPECT_EQ(image.Row(19)[9], qt::Pixel(0, 0, 255));
    EXPECT_EQ(image.Row(19)[10], qt::Pixel(255, 255, 255));
    EXPECT_EQ(image.Row(20)[0], qt::Pixel(255, 255, 255));
    EXPECT_EQ(image.Row(9)[5], qt::Pixel(255, 255, 255)) << "the hole";

    ASSERT_EQ(GraphicsImportSetClip(importer_.get(), nullptr), noErr);
    const qt::PixelImage whole = Exported();
    EXPECT_EQ(whole.Row(24)[19], qt::Pixel(0, 0, 255));
    EXPECT_EQ(whole.Row(25)[19], qt::Pixel(255, 255, 255)) << "outside the image";
    const Rect outside = {0, 40, 30, 50};
    EXPECT_EQ(GraphicsImportSetSourceRect(importer_.get(), &outside), paramErr);
}

TEST_F(GraphicsExporters, TakeTheChosenImage) {
    Open("-size 30x20 xc:red -size 50x40 xc:blue", "a.tif", qt::Code("TIFF"), kPng);
    EXPECT_EQ(GraphicsImportSetImageIndex(importer_.get(), 0), paramErr);
    EXPECT_EQ(GraphicsImportSetImageIndex(importer_.get(), 3), paramErr);
    EXPECT_EQ(Exported().width(), 30);
    ASSERT_EQ(GraphicsImportSetImageIndex(importer_.get(), 2), noErr);
    Rect bounds;
    ASSERT_EQ(GraphicsImportGetNaturalBounds(importer_.get(), &bounds), noErr);
    EXPECT_EQ(bounds.right, 50);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Exported().Row(39)[49], qt::Pixel(0, 0, 255)) << i;
    ASSERT_EQ(GraphicsImportSetImageIndex(importer_.get(), 1), noErr);
    EXPECT_EQ(Exported().height(), 20);
}

TEST_F(GraphicsExporters, PassDataOnOnlyWhenAllOfItIsDrawn) {
    Open("-size 40x30 plasma:", "a.jpg", qt::Code("JPEG"), qt::Code("JPEG"));
    std::uint64_t size = 0;
    GraphicsExportSetDontRecompress(exporter_.get(), true);
    ASSERT_EQ(GraphicsExportDoExport(exporter_.get(), &size), noErr);
    const auto same = [&] {
        return std::ranges::equal(qt::HandleBytes(output_.get()), qt::HandleBytes(data_.get()));
    };
    EXPECT_TRUE(same());
    const Rect part = {0, 0, 10, 10};
    ASSERT_EQ(GraphicsImportSetSourceRect(importer_.get(), &part), noErr);
    ASSERT_EQ(GraphicsExportDoExport(exporter_.get(), &size), noErr);
    EXPECT_FALSE(same());
}

TEST_F(GraphicsExporters, TakeThePixelsOfAPort) {
    Open("-size 4x3 xc:red -fill blue -draw 'point 3,2'", "png32:a.png", kPng, kPng);
    GWorldPtr made = nullptr;
    ASSERT_EQ(NewGWorld(&made, 32, {10, 20, 15, 26}), noErr);
    const qt::OwnedGWorld port(made);
    made->pixels.Fill(qt::Pixel(1, 2, 3));
    EXPECT_EQ(GraphicsImportDraw(importer_.get()), paramErr) << "no port";
    ASSERT_EQ(GraphicsImportSetGWorld(importer_.get(), made), noErr);
    ASSERT_EQ(GraphicsImportDraw(importer_.get()), noErr);
    EXPECT_EQ(made->pixels.Row(0)[0], qt::Pixel(1, 2, 3)) << "the drawing lies at the origin";
    made->bounds = {-1, -2, 4, 4};
    ASSERT_EQ(GraphicsImportDraw(importer_.get()), noErr);
    ASSERT_EQ(GraphicsExportSetInputGWorld(exporter_.get(), made), noErr);
    const qt::PixelImage image = Exported();
    ASSERT_EQ(image.width(), 6);
    ASSERT_EQ(image.height(), 5);
    EXPECT_EQ(image.Row(0)[2], qt::Pixel(1, 2, 3));
    EXPECT_EQ(image.Row(1)[1], qt::Pixel(1, 2, 3));
    EXPECT_EQ(image.Row(1)[2], qt::Pixel(255, 0, 0));
    EXPECT_EQ(image.Row(3)[5], qt::Pixel(0, 0, 255));

    ASSERT_EQ(NewGWorld(&made, 16, {0, 0, 4, 4}), noErr);
    const qt::OwnedGWorld without_pixels(made);
    EXPECT_EQ(GraphicsExportSetInputGWorld(exporter_.get(), made), paramErr);
    const qt::CurrentPort current(port.get());
    ASSERT_EQ(GraphicsImportSetGWorld(importer_.get(), nullptr), noErr);
    EXPECT_EQ(GraphicsImportDraw(importer_.get()), noErr) << "the current port";
}

TEST_F(GraphicsExporters, FailWithoutTouchingTheOutput) {
    Open("-size 40x30 plasma:", "png24:a.png", kPng, kPng);
    std::uint64_t size = 7;
    SetHandleSize(data_.get(), 60);
    ASSERT_EQ(GraphicsImportSetDataHandle(importer_.get(), data_.get()), noErr);
    EXPECT_EQ(GraphicsExportDoExport(exporter_.get(), &size), codecBadDataErr);
    EXPECT_EQ(size, 7U);
    EXPECT_EQ(GetHandleSize(output_.get()), 3);
    EXPECT_EQ(GraphicsExportSetInputGraphicsImporter(exporter_.get(), nullptr), noErr);
    EXPECT_EQ(GraphicsExportDoExport(exporter_.get(), &size), paramErr);
    EXPECT_EQ(GraphicsExportDoExport(importer_.get(), &size), kBadComponentInstance);
    EXPECT_EQ(GraphicsExportSetDepth(nullptr, 8), kBadComponentInstance);
}

TEST_F(GraphicsExporters, TellAndAskTheirSettings) {
    Open("-size 4x3 xc:red", "png24:a.png", kPng, qt::Code("JPEG"));
    EXPECT_EQ(Settings(), "format=JPEG\rquality=512\rmethod=0\r");
    auto& answers = fm::CurrentSession().answers;
    answers = {"set:quality=2000,method=1,depth=8,resolution=150,junk,=,size=x", "file:C:\\x"};
    EXPECT_EQ(GraphicsExportRequestSettings(exporter_.get()), noErr);
    const std::string chosen = "format=JPEG\rresolution=150\rquality=1024\rmethod=1\r";
    EXPECT_EQ(Settings(), chosen);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(GraphicsExportRequestSettings(exporter_.get()), userCanceledErr) << "another answer, none";
    EXPECT_EQ(Settings(), chosen);
    EXPECT_EQ(GraphicsExportSetDepth(exporter_.get(), 3), paramErr);
    EXPECT_EQ(GraphicsExportSetResolution(exporter_.get(), 0, 72 << 16), paramErr);
    EXPECT_EQ(Settings(), chosen);
}

TEST(UserDataLists, KeepTypesInOrderAndTextsByIndex) {
    UserData opened = nullptr;
    ASSERT_EQ(NewUserData(&opened), noErr);
    const qt::OwnedUserData list(opened);
    EXPECT_EQ(GetNextUserDataType(opened, 0), 0U);
    for (const auto& [type, text] :
         {std::pair(qt::Code("zzzz"), "1"), {qt::Code("aaaa"), "2"}, {qt::Code("zzzz"), "3"}})
        EXPECT_EQ(AddUserDataText(opened, text, type), noErr);
    EXPECT_EQ(GetNextUserDataType(opened, 0), qt::Code("zzzz"));
    EXPECT_EQ(GetNextUserDataType(opened, qt::Code("zzzz")), qt::Code("aaaa"));
    EXPECT_EQ(GetNextUserDataType(opened, qt::Code("aaaa")), 0U);
    EXPECT_EQ(CountUserDataType(opened, qt::Code("zzzz")), 2);
    EXPECT_EQ(CountUserDataType(opened, qt::Code("none")), 0);
    std::string text;
    EXPECT_EQ(GetUserDataText(opened, text, qt::Code("zzzz"), 2), noErr);
    EXPECT_EQ(text, "3");
    for (const int none : {0, 3})
        EXPECT_EQ(GetUserDataText(opened, text, qt::Code("zzzz"), none), userDataItemNotFound);
    for (int i = 0; i < 40'000; ++i) AddUserDataText(opened, "4", qt::Code("zzzz"));
    EXPECT_EQ(CountUserDataType(opened, qt::Code("zzzz")), 32'767);
}

} // namespace
