#include "platform/fmwrapper/session.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <filesystem>

using fm::Drive;
using fm::HostPath;
using fm::ParseDrive;

namespace {

// "ROOT|FOLDER|remote" of a drive's text.
std::string Parsed(std::string_view text) {
    const auto drive = ParseDrive(text);
    return drive ? drive->root + "|" + drive->folder + (drive->remote ? "|remote" : "") : "none";
}

} // namespace

TEST(Session, ReadsDrives) {
    const std::pair<const char*, const char*> cases[] = {
        {"C:=/", "C:|"},
        {"d:=/data/", "D:|/data"},
        {"C:=/a/./b/../c//", "C:|/a/c"},
        {"C:=/a=b", "C:|/a=b"},
        {"Z:=remote:/mnt/z", "Z:|/mnt/z|remote"},
        {R"(\\server\share=/mnt/share)", R"(\\server\share|/mnt/share|remote)"}};
    for (const auto& [text, drive] : cases) EXPECT_EQ(Parsed(text), drive) << text;
    for (const char* text : {"", "C:", "C:=", "C:=remote:", "CD:=/", "1:=/", R"(\\server=/mnt)",
                             R"(\\server\=/mnt)", R"(\\\share=/mnt)", R"(\\server\share\deeper=/mnt)"})
        EXPECT_EQ(Parsed(text), "none") << text;
    EXPECT_EQ(Parsed("C:=media"), "C:|" + (std::filesystem::current_path() / "media").string());
}

TEST(Session, PathsLeadWhereTheSystemGoes) {
    const corvane::test::ScratchFolder scratch;
    const std::string root = std::filesystem::canonical(scratch.Path());
    std::filesystem::create_directories(root + "/far/away/below");
    std::filesystem::create_symlink("far/away", root + "/link");
    std::filesystem::create_symlink("nowhere", root + "/dangling");
    const std::pair<const char*, const char*> cases[] = {
        {"/link/./x", "/link/x"},          {"/link/../x", "/far/x"}, {"/link/below/../x", "/link/x"},
        {"/link/below/../../x", "/far/x"}, {"/dangling/../x", "/x"}, {"/far/../x/", "/x/"}};
    for (const auto& [path, absolute] : cases)
        EXPECT_EQ(fm::AbsolutePath(root + path), root + absolute) << path;
    EXPECT_EQ(fm::AbsolutePath("/../x"), "/x");
}

TEST(Session, FindsTheDriveThatCoversAPathMostClosely) {
    const std::vector<Drive> drives = {
        {"C:", "", false}, {"D:", "/data", false}, {R"(\\server\share)", "/data/shared", true}};
    const std::pair<const char*, const char*> cases[] = {{"/home/ann/a.jpg", "/C:/home/ann/a.jpg"},
                                                         {"/", "/C:"},
                                                         {"/data", "/D:"},
                                                         {"/data/x.wav", "/D:/x.wav"},
                                                         {"/database/x", "/C:/database/x"},
                                                         {"/data/shared", "//server/share"},
                                                         {"/data/shared/y", "//server/share/y"}};
    for (const auto& [unix_path, host_path] : cases)
        EXPECT_EQ(HostPath(drives, unix_path).value_or("none"), host_path) << unix_path;
    const std::vector<Drive> one = {{"D:", "/data", false}};
    EXPECT_FALSE(HostPath(one, "/home/ann"));
    EXPECT_FALSE(HostPath(one, "/dat"));
    EXPECT_FALSE(HostPath(drives, "relative.jpg"));
}
