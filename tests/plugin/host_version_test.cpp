#include "plugin/host_version.h"

#include "platform/fmwrapper/session.h"
#include "tests/support/fake_host.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(HostVersion, IsClassifiedByInterfaceAndText) {
    struct Case {
        int interface_version;
        const char* text;
        int code;
        bool accepted;
    };
    for (const Case& host : std::initializer_list<Case>{{50, "7.0v3", 703, true},
                                                        {50, "7.0v", 700, false},
                                                        {51, "7.0v3", 0, false},
                                                        {51, "8.0v1", 801, true},
                                                        {51, "8.0", 800, false},
                                                        {51, "8.1v2", 812, true},
                                                        {51, "8.5v9", 859, true},
                                                        {51, "9.0v0", 900, true},
                                                        {51, "9.1v2", 912, true},
                                                        {51, "10.0v", 1000, true},
                                                        {51, "10.0v1", 1001, true},
                                                        {51, "10.1v1", 1011, false},
                                                        {51, "11.0v1", 0, false},
                                                        {52, "10.0v1", 0, false}}) {
        const std::int16_t code =
            ClassifyHostVersion(static_cast<std::int16_t>(host.interface_version), host.text);
        EXPECT_EQ(code, host.code) << host.interface_version << " " << host.text;
        EXPECT_EQ(AcceptsHostVersion(code), host.accepted) << host.interface_version << " " << host.text;
    }
}

TEST(HostVersion, IsTheHeadOfTheExecutablesOwn) {
    const test::ScratchDrives drives;
    fm::Session& session = fm::CurrentSession();
    session.drives = {{"C:", ""}};
    session.application_file = drives.MakeFile("host");
    for (const auto& [version, head] : std::initializer_list<std::pair<const char*, const char*>>{
             {"8.5v2 (2006)", "8.5v2"}, {"10.0v1x", "10.0v1"}, {"9.0", "9.0"}, {"", ""}}) {
        session.application_version = version;
        EXPECT_EQ(ReadHostVersionText(), head);
    }
}

} // namespace
} // namespace corvane
