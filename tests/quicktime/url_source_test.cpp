#include "platform/quicktime/url_source.h"

#include "platform/fmwrapper/session.h"
#include "platform/quicktime/graphics_exporter.h"
#include "tests/support/http_server.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class UrlSources : public ::testing::Test {
protected:
    static void SetUpTestSuite() { setenv("no_proxy", "*", 1); }

    OSErr Code(const std::string& page, const qt::UrlLimits& limits = {}) {
        const auto begin = Clock::now();
        const qt::OpenedSource opened = qt::OpenUrlSource(server_.Url(page), limits);
        took_ = Clock::now() - begin;
        EXPECT_EQ(opened.source != nullptr, opened.code == noErr);
        return opened.code;
    }

    corvane::test::HttpServer server_;
    Clock::duration took_{};
};

TEST_F(UrlSources, ThePageIsReadAsItIs) {
    for (const char* page : {"bytes", "moved"}) {
        const qt::OpenedSource opened = qt::OpenUrlSource(server_.Url(page));
        ASSERT_EQ(opened.code, noErr) << page;
        ASSERT_EQ(opened.source->GetSize(), 1000U);
        std::array<std::byte, 1000> bytes{};
        ASSERT_EQ(opened.source->Read(0, bytes), bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], static_cast<std::byte>(i % 250));
    }
}

TEST_F(UrlSources, StatusesAndRedirects) {
    for (const char* page : {"status-404", "status-410"}) EXPECT_EQ(Code(page), fnfErr) << page;
    for (const char* page : {"status-403", "status-500", "status-206", "status-302", "loop"})
        EXPECT_EQ(Code(page), cantOpenHandler) << page;
    for (const char* page : {"to-file", "to-https", "to-ftp"}) EXPECT_EQ(Code(page), cantFindHandler) << page;
}

TEST_F(UrlSources, OnlyHttpAddresses) {
    for (const char* url : {"file:///etc/hostname", "https://127.0.0.1/", "HTTP://127.0.0.1/", "127.0.0.1",
                            "", "http://", "http://:80:80/", "http:// /"}) {
        EXPECT_EQ(qt::OpenUrlSource(url).code, cantFindHandler) << url;
    }
    EXPECT_EQ(qt::OpenUrlSource("http://127.0.0.1:1/").code, cantOpenHandler);
}

TEST_F(UrlSources, LimitsHold) {
    EXPECT_EQ(Code("bytes", {.bytes = 1000}), noErr);
    EXPECT_EQ(Code("bytes", {.bytes = 999}), memFullErr);
    EXPECT_EQ(Code("huge"), memFullErr);
    EXPECT_EQ(Code("endless", {.bytes = 3'000'000}), memFullErr);
    EXPECT_EQ(Code("slow", {.time = 500ms}), cantOpenHandler);
    EXPECT_LT(took_, 5s);
    EXPECT_EQ(Code("silent", {.time = 500ms}), cantOpenHandler);
    EXPECT_LT(took_, 5s);
    EXPECT_EQ(Code("slow", {.time = 20s, .stall = 1s}), cantOpenHandler);
    EXPECT_LT(took_, 10s);
}

TEST_F(UrlSources, EscapeCancels) {
    for (const char* page : {"silent", "slow"}) {
        fm::CurrentSession().input = {{Clock::now() + 300ms, "escape"}};
        EXPECT_EQ(Code(page), userCanceledErr) << page;
        EXPECT_GE(took_, 250ms);
        EXPECT_LT(took_, 3s);
    }
    fm::CurrentSession().input = {{Clock::now(), "control"}};
    EXPECT_EQ(Code("bytes"), noErr) << "other keys don't matter";
    fm::CurrentSession().input.clear();
}

TEST_F(UrlSources, BrokenTransfers) {
    EXPECT_EQ(Code("broken"), ioErr);
    EXPECT_NE(Code("nonsense"), noErr);
}

} // namespace
