#include "platform/quicktime/ports.h"

#include <gtest/gtest.h>

namespace {

GWorldPtr Current() {
    GWorldPtr port = nullptr;
    GetGWorld(&port);
    return port;
}

TEST(Ports, TheCurrentPortIsPutBackAndForgottenWithItsDisposal) {
    GWorldPtr port = nullptr;
    ASSERT_EQ(NewGWorld(&port, 0, {0, 0, 1, 1}), noErr);
    qt::OwnedGWorld owned(port);
    EXPECT_EQ(port->depth, 32);
    {
        const qt::CurrentPort current(port);
        EXPECT_EQ(Current(), port);
        const qt::CurrentPort none(nullptr);
        EXPECT_EQ(Current(), nullptr);
    }
    EXPECT_EQ(Current(), nullptr);
    SetGWorld(port);
    owned.reset();
    EXPECT_EQ(Current(), nullptr);
}

TEST(Ports, EmptyBoundsAndOddDepthsAreRefused) {
    GWorldPtr port = nullptr;
    EXPECT_EQ(NewGWorld(&port, 0, {0, 0, 0, 1}), paramErr);
    EXPECT_EQ(NewGWorld(&port, 0, {0, 5, 1, 1}), paramErr);
    EXPECT_EQ(NewGWorld(&port, 7, {0, 0, 1, 1}), paramErr);
    EXPECT_EQ(port, nullptr);
}

TEST(Ports, ShowPixelsOfOthers) {
    std::array<std::uint8_t, 32> memory{};
    for (std::size_t i = 0; i < memory.size(); ++i) memory[i] = static_cast<std::uint8_t>(i);
    GWorldPtr port = nullptr;
    EXPECT_EQ(QTNewGWorldFromPtr(&port, k32RGBAPixelFormat, {0, 0, 2, 5}, memory.data(), 16), paramErr);
    EXPECT_EQ(QTNewGWorldFromPtr(&port, qt::Code("yuv2"), {0, 0, 2, 3}, memory.data(), 16), paramErr);
    EXPECT_EQ(port, nullptr);
    ASSERT_EQ(QTNewGWorldFromPtr(&port, k32RGBAPixelFormat, {0, 0, 2, 3}, memory.data(), 16), noErr);
    const qt::OwnedGWorld owned(port);
    memory[25] = 99; // shown, not copied
    qt::PixelImage image;
    ASSERT_EQ(qt::CopyShownPixels(*port, image), noErr);
    EXPECT_EQ(image.Row(1)[2], qt::Pixel(24, 99, 26)) << "opaque";
    EXPECT_EQ(image.Row(0)[1], qt::Pixel(4, 5, 6));
}

} // namespace
