#include "platform/win32/drives.h"

#include "platform/win32/errors.h"
#include "tests/support/fake_host.h"

#include <array>
#include <filesystem>
#include <gtest/gtest.h>
#include <string_view>

namespace {

using namespace std::string_view_literals;

TEST(Drives, RootsByLetterAndKinds) {
    corvane::test::ScratchDrives drives;
    std::array<WCHAR, 32> buffer{};
    EXPECT_EQ(GetLogicalDriveStringsW(buffer.size(), buffer.data()), 0U);
    drives.Map("Z:", "z");
    drives.Map(R"(\\srv\share)", "s");
    const std::string c = drives.Map("C:", "c");
    fm::CurrentSession().drives.front().remote = true; // Z:
    buffer.fill(u'?');
    EXPECT_EQ(GetLogicalDriveStringsW(8, buffer.data()), 9U);
    EXPECT_EQ(buffer[0], u'?');
    EXPECT_EQ(GetLogicalDriveStringsW(9, buffer.data()), 8U);
    EXPECT_EQ(std::u16string_view(buffer.data(), 10), u"C:\\\0Z:\\\0\0?"sv);

    EXPECT_EQ(GetDriveTypeW(u"c:\\"), DRIVE_FIXED);
    EXPECT_EQ(GetDriveTypeW(u"Z:\\"), DRIVE_REMOTE);
    EXPECT_EQ(GetDriveTypeW(u"\\\\SRV\\share\\"), DRIVE_REMOTE);
    EXPECT_EQ(GetDriveTypeW(u"D:\\"), DRIVE_NO_ROOT_DIR);
    std::filesystem::remove(c);
    EXPECT_EQ(GetDriveTypeW(u"C:\\"), DRIVE_NO_ROOT_DIR);
}

} // namespace
