// Wherever in a call the disk becomes full, also when only the closing of a file tells: the code for that,
// nothing left behind, nothing lost.
#include "tests/faults/media_world.h"

#include <gtest/gtest.h>

#include <map>

namespace corvane {
namespace {

class FullDisk : public testing::Test {
protected:
    using Files = std::map<std::string, std::string>; ///< their contents by name

    Files Contents() const {
        Files files;
        for (const auto& entry : std::filesystem::directory_iterator(world_.folder))
            if (entry.is_regular_file()) files[entry.path().filename()] = test::ReadBytes(entry.path());
        return files;
    }

    /// What is on the disk again as it was.
    void Restore(const Files& files) const {
        for (const auto& entry : std::filesystem::directory_iterator(world_.folder))
            if (entry.is_regular_file()) remove(entry.path());
        for (const auto& [name, bytes] : files) test::WriteBytes(world_.folder + "/" + name, bytes);
    }

    /// `error` is in the result or in the last error. The file of the name `replaced` goes first, as is told.
    void Sweep(std::int16_t id, std::initializer_list<std::string_view> values, std::string_view error,
               const std::string& replaced = {}) {
        SCOPED_TRACE(testing::Message() << "function " << id);
        world_.Call(id, values); // what is loaded once is loaded now
        const Files files = Contents();
        world_.Call(id, values, test::Resource::kDisk);
        const std::int64_t writes = world_.calls;
        const Files written = Contents();
        Restore(files);
        const std::ptrdiff_t descriptors = test::CountOpenDescriptors();
        ASSERT_GT(writes, 0);

        for (std::int64_t after = 0; after < writes; after += std::max<std::int64_t>(1, writes / 40)) {
            SCOPED_TRACE(testing::Message() << "write " << after << " of " << writes);
            world_.TakeTemporaryFiles();
            const test::Outcome outcome = world_.Call(id, values, test::Resource::kDisk, after, 1 << 30);
            const std::string told = outcome.text.starts_with("$") ? outcome.text : world_.LastError();
            EXPECT_TRUE(told.starts_with(error)) << told << outcome.error << outcome.text;
            EXPECT_EQ(world_.TakeTemporaryFiles(), 0);
            EXPECT_EQ(test::CountOpenDescriptors(), descriptors);
            Files left = Contents();
            for (const auto& [name, bytes] : files) {
                if (name == replaced) continue;
                // An export was complete before its reference failed; movies tell when they were made.
                const bool is_kept =
                    name == "out.sound" ? left[name].size() == bytes.size() : left[name] == bytes;
                EXPECT_TRUE(is_kept) << name;
            }
            for (const auto& [name, bytes] : left) EXPECT_TRUE(files.contains(name)) << name;
            Restore(files);
            if (HasFailure()) return;
        }
        world_.Call(id, values);
        EXPECT_EQ(Contents().size(), written.size());
    }

    test::MediaWorld world_;
};

TEST_F(FullDisk, EndsWhatWritesFiles) {
    Sweep(51, {"exported", "/C:/out.txt", "#1"}, "$112", "out.txt");
    Sweep(66, {"/C:/photo.png", "/C:/copy.png", "#1"}, "$112");
    Sweep(73, {"/C:/photo.png", "/C:/link"}, "$");
    Sweep(11, {"/C:/tone.wav", "#2"}, "$-34");
    Sweep(7, {"/C:/tone.wav", "/C:/deep.wav"}, "$-34");
    Sweep(4, {"/C:/tone.wav", "/C:/tone.mp3"}, "$-34");
    Sweep(22, {"/C:/tone.mp3", "Name", "One"}, "$-34");
    for (const char* kind : {"WAVE", "AIFF", "FLAC", "MP3 ", "M4A ", "Ogg ", "MooV"}) {
        SCOPED_TRACE(kind);
        Sweep(9, {"/C:/tone.wav", "/C:/out.sound", kind}, "$-34", "out_ref.mov");
    }
}

} // namespace
} // namespace corvane
