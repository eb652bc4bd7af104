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

} // namespace
