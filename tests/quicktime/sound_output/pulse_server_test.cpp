// The look at a sound server, with servers that are none.
#include "platform/quicktime/modules/pulse_server.h"
#include "tests/support/environment_variable.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

TEST(PulseServer, IsUnusableWhenItDoesNotAnswerInTime) {
    constexpr std::chrono::milliseconds kLimit{200};
    const corvane::test::ScratchDrives scratch;
    const std::string path = scratch.Path("server");
    const corvane::test::EnvironmentVariable server("PULSE_SERVER", "unix:" + path);
    const corvane::test::EnvironmentVariable cookie("PULSE_COOKIE", scratch.Path("cookie"));
    EXPECT_FALSE(PulseServerIsUnusable(kLimit)) << "there is none";

    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof(address.sun_path));
    std::memcpy(address.sun_path, path.c_str(), path.size());
    const int listening = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(listen(listening, 1), 0);
    EXPECT_TRUE(PulseServerIsUnusable(kLimit));
    close(listening);
}

} // namespace
