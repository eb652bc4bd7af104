#include "images/preview.h"

#include "images/image_settings.h"
#include "platform/quicktime/image_codecs/codec.h"
#include "tests/support/made_images.h"

#include <gtest/gtest.h>

namespace {

using namespace corvane;

std::array<int, 4> Edges(const Rect& rectangle) {
    return {rectangle.left, rectangle.top, rectangle.right, rectangle.bottom};
}

class PreviewTest : public ::testing::Test {
protected:
    void SetUp() override {
        ResetImageSettings();
        const test::Bytes bytes = images_.MakeBytes("-size 320x240 xc:black", "png24:black.png");
        data_ = qt::MemoryHandle(NewHandle(static_cast<Size>(bytes.size())));
        std::ranges::copy(bytes, qt::HandleBytes(data_.get()).begin());
        ComponentInstance importer = nullptr;
        ASSERT_EQ(OpenADefaultComponent(qt::kGraphicsImporter, qt::Code("PNGf"), &importer), noErr);
        importer_.reset(importer);
        ASSERT_EQ(GraphicsImportSetDataHandle(importer, data_.get()), noErr);
    }
    void TearDown() override { ResetImageSettings(); }

    /// The preview's picture, decoded.
    qt::PixelImage Picture() {
        const Preview preview = MakePreview(importer_.get());
        EXPECT_EQ(Edges(preview.bounds), (std::array{0, 0, 320, 240}));
        qt::PixelImage image;
        EXPECT_EQ(qt::kJpegCodec.decode(*qt::MemorySource(qt::HandleBytes(preview.jpeg.get())), 1, image),
                  noErr);
        return image;
    }

    static int Brightness(const qt::PixelImage& image, int x, int y) {
        return static_cast<int>(qt::Green(image.Row(y)[x]));
    }

    test::FakeHost host_;
    test::MadeImages images_;
    qt::MemoryHandle data_;
    qt::OpenComponent importer_;
};

TEST(PreviewMark, HasSevenRectangles) {
    const auto mark = PreviewMarkRectangles(320, 240);
    constexpr std::array<std::array<int, 4>, 7> kExpected = {{{0, 0, 320, 240},
                                                              {20, 15, 300, 225},
                                                              {21, 16, 299, 224},
                                                              {35, 15, 285, 225},
                                                              {35, 16, 285, 224},
                                                              {20, 30, 300, 210},
                                                              {21, 30, 299, 210}}};
    for (std::size_t i = 0; i < mark.size(); ++i) EXPECT_EQ(Edges(mark[i]), kExpected[i]) << i;
    const auto small = PreviewMarkRectangles(20, 16);
    EXPECT_EQ(Edges(small[2]), (std::array{2, 2, 18, 14})) << "a line is never thinner than a pixel";
    EXPECT_EQ(Edges(small[3]), (std::array{3, 1, 17, 15})) << "a column never narrower than two";
}

TEST_F(PreviewTest, LeavesThinLinesUnpainted) {
    CurrentPreviewSettings().quality = 1024;
    const qt::PixelImage image = Picture();
    EXPECT_LT(Brightness(image, 10, 10), 16) << "the margin";
    EXPECT_LT(Brightness(image, 160, 120), 16) << "the middle";
    // Lines between the first frame and the second, except where columns or rows cross them.
    EXPECT_GT(Brightness(image, 28, 15), 240);
    EXPECT_GT(Brightness(image, 20, 20), 240);
    EXPECT_LT(Brightness(image, 160, 15), 16);
    EXPECT_LT(Brightness(image, 20, 120), 16);
}

TEST_F(PreviewTest, IsWholeWithoutTheMark) {
    CurrentPreviewSettings() = {1024, false};
    EXPECT_LT(Brightness(Picture(), 28, 15), 16);
}

} // namespace
