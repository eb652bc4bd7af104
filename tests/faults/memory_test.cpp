// Whatever allocation fails in whatever function, its libraries included: a code, nothing left behind, and
// the next call works.
#include "images/pixel_buffer.h"
#include "platform/fmwrapper/fault.h"
#include "tests/faults/faults.h"
#include "tests/faults/media_world.h"

#include <gtest/gtest.h>

#include <set>

namespace corvane {
namespace {

// Failures tried in each call, spread over its allocations; CORVANE_ALL_FAILURES tries every one.
std::int64_t Step(std::int64_t allocations) {
    constexpr std::int64_t kTries = 25;
    return std::getenv("CORVANE_ALL_FAILURES") != nullptr ? 1
                                                          : std::max<std::int64_t>(1, allocations / kTries);
}

// A fact about a sound that can't be found out for want of memory is left out further down.
std::string FirstLine(const std::string& text) {
    return text.substr(0, text.find('\r'));
}

class MemoryShortage : public testing::Test {
protected:
    void Sweep(std::int16_t id, std::initializer_list<std::string_view> values, std::int64_t number) {
        SCOPED_TRACE(testing::Message() << "function " << id << ", failing " << number);
        world_.Call(id, values); // what is loaded once is loaded now
        const test::Outcome usual = world_.Call(id, values);
        world_.TakeTemporaryFiles();
        world_.Call(id, values);
        const std::int64_t allocations = world_.calls;
        const std::ptrdiff_t files = world_.TakeTemporaryFiles();
        const std::int64_t objects = fm::LiveObjects();
        const std::ptrdiff_t descriptors = test::CountOpenDescriptors();

        for (std::int64_t after = 0; after < allocations; after += Step(allocations)) {
            SCOPED_TRACE(testing::Message() << "allocation " << after << " of " << allocations);
            const test::Outcome outcome = world_.Call(id, values, test::Resource::kMemory, after, number);
            const bool worked =
                outcome.error == usual.error && FirstLine(outcome.text) == FirstLine(usual.text);
            const bool reported =
                outcome.error == -108 || outcome.text.empty() || outcome.text.starts_with("$");
            EXPECT_TRUE(worked || reported)
                << outcome.error << " " << outcome.text << "\nusually " << usual.text;
            // To delete a file takes some memory, too: one may stay, and more when there is none left.
            const std::ptrdiff_t left = world_.TakeTemporaryFiles();
            if (number == 1) {
                EXPECT_LE(left, worked ? files + 1 : 0) << outcome.error << " " << outcome.text;
            }
            EXPECT_EQ(fm::LiveObjects(), objects);
            EXPECT_EQ(test::CountOpenDescriptors(), descriptors);
            const test::Outcome next = world_.Call(id, values);
            EXPECT_EQ(next.error, usual.error);
            EXPECT_EQ(next.text, usual.text);
            world_.TakeTemporaryFiles();
            if (HasFailure()) return;
        }
    }

    void SweepBoth(std::int16_t id, std::initializer_list<std::string_view> values) {
        constexpr std::int64_t kAllLater = 1 << 30;
        Sweep(id, values, 1);
        Sweep(id, values, kAllLater);
    }

    test::MediaWorld world_;
};

TEST_F(MemoryShortage, EndsFunctionsOfImagesWithACode) {
    for (const char* photo : {"/C:/photo.png", "/C:/photo.jpg", "/C:/photo.gif", "/C:/photo.tif",
                              "/C:/photo.jp2", "/C:/photo.psd", "/C:/photo.pict", "/C:/photo.bmp"}) {
        SCOPED_TRACE(photo);
        SweepBoth(54, {photo});
        SweepBoth(93, {photo});
        SweepBoth(91, {photo, "PNGf"});
    }
    for (const char* kind : {"JPEG", "TIFF", "GIFf", "jp2 ", "PICT", "8BPS"})
        SweepBoth(91, {"/C:/photo.png", kind});
    SweepBoth(63, {"/C:/photo.jpg", "#0"});
    SweepBoth(62, {"/C:/photo.png", "<effect type=\"blur\"><radius>3</radius></effect>"});
    SweepBoth(57, {"/C:/photo.png"});
}

TEST_F(MemoryShortage, IsReportedForThePhotoWhoseMetadataIsAskedFor) {
    world_.Call(93, {"/C:/photo.jpg"});
    world_.Call(93, {"/C:/photo.jpg"});
    const std::int64_t allocations = world_.calls;
    std::set<std::string> texts;
    for (std::int64_t after = 0; after < allocations; ++after)
        texts.insert(world_.Call(93, {"/C:/photo.jpg"}, test::Resource::kMemory, after, 1).text);
    EXPECT_TRUE(texts.contains("$-108:Out of memory"));
}

TEST(PixelBufferShortage, EndsWithACode) {
    for (std::int64_t after = 0; after < 2; ++after) { // the object, its pixels
        const test::Shortage shortage(test::Resource::kMemory, after, 1);
        PixelBufferHandle buffer;
        EXPECT_EQ(CreatePixelBuffer(8, 8, &buffer), -108);
    }
}

TEST_F(MemoryShortage, EndsFunctionsOfSoundsWithACode) {
    for (const char* sound : {"/C:/tone.wav", "/C:/deep.wav", "/C:/tone.mp3", "/C:/tone.m4a"}) {
        SCOPED_TRACE(sound);
        SweepBoth(6, {sound});
        SweepBoth(11, {sound, "#2"});
        SweepBoth(27, {sound, "1", "#60", "#90", "0:0:0", "0:0:0.2"});
    }
    SweepBoth(3, {"sine", "#0.1"});
    SweepBoth(7, {"/C:/tone.wav", "/C:/tone.mp3"});
    for (const char* kind : {"AIFF", "FLAC", "MP3 ", "M4A "}) SweepBoth(9, {"/C:/tone.wav", "/C:/out", kind});
    SweepBoth(24, {"/C:/tone.mp3"});
    SweepBoth(22, {"/C:/tone.mp3", "Name", "One"});
}

TEST_F(MemoryShortage, EndsFunctionsOfFilesWithACode) {
    SweepBoth(66, {"/C:/photo.png", "/C:/copy.png", "#1"});
    SweepBoth(71, {"/C:/", "#1"});
    SweepBoth(72, {"/C:/photo.png"});
    SweepBoth(51, {"exported", "/C:/out.txt", "#1"});
    SweepBoth(94, {"/C:/photo.png", "#0", "#0"});
    SweepBoth(15, {"Format: WAVE\rTrack 1\r  Volume: 256\r", "Track 1/Volume"});
}

} // namespace
} // namespace corvane
