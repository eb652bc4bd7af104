#include "sounds/tag_frames.h"

#include "sounds/tag_names.h"

#include <gtest/gtest.h>

#include <random>
#include <zlib.h>

namespace corvane {
namespace {

using namespace std::string_literals;

std::string Number(std::size_t number, int count, int bits_each) {
    std::string bytes;
    for (int i = count - 1; i >= 0; --i)
        bytes += static_cast<char>(number >> (i * bits_each) & ((1U << bits_each) - 1));
    return bytes;
}

std::string FrameBytes(int version, std::string_view id, std::string_view content, std::size_t flags = 0) {
    std::string bytes(id);
    bytes += Number(content.size(), version == 2 ? 3 : 4, version == 4 ? 7 : 8);
    if (version != 2) bytes += Number(flags, 2, 8);
    return bytes.append(content);
}

std::string TagBytes(int version, std::string_view body, int flags = 0) {
    std::string bytes = "ID3";
    bytes.append({static_cast<char>(version), '\0', static_cast<char>(flags)});
    return bytes.append(Number(body.size(), 4, 7)).append(body);
}

std::string Deflated(std::string_view plain) {
    std::string packed(compressBound(plain.size()), '\0');
    uLongf size = packed.size();
    compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(plain.data()),
             plain.size());
    packed.resize(size);
    return packed;
}

// The data of the first frame, or "-".
std::string FirstData(const std::string& bytes) {
    Id3Tag tag;
    if (!tag.Parse(bytes) || tag.Frames().empty()) return "-";
    return tag.DataOf(tag.Frames()[0]).value_or("-");
}

// Ids and contents of all frames, for comparing.
std::string Contents(const Id3Tag& tag) {
    std::string all;
    for (const TagFrame& frame : tag.Frames())
        all.append(frame.id)
            .append("=")
            .append(frame.content)
            .append(std::to_string(frame.flags))
            .append(";");
    return all;
}

TEST(TagFrames, UndoWhatTheFlagsOfAFrameSay) {
    const std::string packed = Deflated("data");
    const auto frame = [](int version, std::size_t flags, const std::string& content) {
        return FirstData(TagBytes(version, FrameBytes(version, "TIT2", content, flags)));
    };
    EXPECT_EQ(frame(3, 0x20, "gdata"), "data");
    EXPECT_EQ(frame(3, 0xA0, Number(4, 4, 8) + "g" + packed), "data");
    EXPECT_EQ(frame(4, 0x48, "g" + Number(4, 4, 7) + packed), "data");
    EXPECT_EQ(frame(4, 0x02, "\xFF\0\xE0"s), "\xFF\xE0"s);
    EXPECT_EQ(frame(4, 0x03, Number(1, 4, 7) + "\xFF\0"s), "\xFF");
    EXPECT_EQ(frame(3, 0x40, "mdata"), "-") << "encrypted";
    EXPECT_EQ(frame(4, 0x04, "mdata"), "-");
    EXPECT_EQ(frame(3, 0x20, ""), "-");
    EXPECT_EQ(frame(3, 0x80, "abc"), "-");
    EXPECT_EQ(frame(3, 0x80, Number(3, 4, 8) + packed), "-") << "more than it says";
    EXPECT_EQ(frame(3, 0x80, Number(0xFFFFFFFF, 4, 8) + packed), "-")
        << "no memory is taken for what it says";
    EXPECT_EQ(frame(3, 0x80, Number(4, 4, 8) + "nothing"), "-");
}

TEST(TagFrames, AreFoundBehindExtendedHeadersAndRefusedInUnknownForms) {
    const std::string frame3 = FrameBytes(3, "TIT2", "x");
    const std::string frame4 = FrameBytes(4, "TIT2", "x");
    EXPECT_EQ(FirstData(TagBytes(3, Number(6, 4, 8) + std::string(6, '\1') + frame3, 0x40)), "x");
    EXPECT_EQ(FirstData(TagBytes(4, Number(6, 4, 7) + "\1\0"s + frame4, 0x40)), "x");
    Id3Tag tag;
    EXPECT_FALSE(tag.Parse(TagBytes(3, Number(600, 4, 8) + frame3, 0x40)));
    EXPECT_FALSE(tag.Parse(TagBytes(3, "abc", 0x40)));
    EXPECT_FALSE(tag.Parse(TagBytes(2, FrameBytes(2, "TT2", "x"), 0x40)));
    EXPECT_FALSE(tag.Parse(TagBytes(5, frame4)));
    EXPECT_FALSE(tag.Parse(TagBytes(1, frame4)));
    EXPECT_FALSE(tag.Parse(TagBytes(3, frame3) + "more"));
    EXPECT_EQ(Id3Tag::SizeAtStart("ID3\4\0\x10\0\0\1\0"s), 148U) << "a footer counts";
    EXPECT_EQ(Id3Tag::SizeAtStart("ID3\3\0\0\0\0\1"s), 0U);
    EXPECT_EQ(Id3Tag::SizeAtStart("TAG\3\0\0\0\0\1\0"s), 0U);
}

TEST(TagFrames, AreWrittenAsTheyWereRead) {
    const std::string rest = "!not a frame!" + std::string(40, '\0');
    for (const int version : {2, 3, 4}) {
        const std::string bytes =
            TagBytes(version, FrameBytes(version, version == 2 ? "TT2" : "TIT2", "\0a\xFF\0\xFF\xE0"s, 0xC0) +
                                  FrameBytes(version, version == 2 ? "XXX" : "XXXX", "") + rest);
        Id3Tag tag;
        ASSERT_TRUE(tag.Parse(bytes));
        EXPECT_EQ(tag.Render(0), bytes);
        tag.RemoveIf([](const TagFrame&) { return true; });
        EXPECT_NE(tag.Render(0)->find(rest), std::string::npos) << "nobody asked for that";
        tag.RemoveAll();
        EXPECT_EQ(tag.Render(bytes.size()), "");
    }
}

TEST(TagFrames, GetRoomToGrowAndNoMoreThanTheVersionHolds) {
    Id3Tag tag;
    tag.Append("TIT2", "x");
    EXPECT_EQ(tag.Render(0)->size(), 10U + 11 + 2048);
    EXPECT_EQ(tag.Render(21)->size(), 21U);
    EXPECT_EQ(tag.Render(1000)->size(), 1000U);
    EXPECT_EQ(tag.Render(20)->size(), 10U + 11 + 2048);
    EXPECT_EQ(tag.Render(10'000'000)->size(), 10U + 11 + 2048) << "a picture that has gone leaves no hole";
    Id3Tag old;
    ASSERT_TRUE(old.Parse(TagBytes(2, "")));
    for (const auto& [size, fits] : {std::pair{0xFFFFFFU, true}, {0x1000000U, false}}) {
        old.Append("TT2", std::string(size, 'x'));
        EXPECT_EQ(old.Render(0).has_value(), fits);
    }
    tag.Append("TIT2", std::string((std::size_t{1} << 28) - 21, 'x'));
    EXPECT_FALSE(tag.Render(0));
}

// Broken tags end in fewer frames, or in none; what is read can be written and read again.
TEST(TagFrames, SurviveAThousandMutations) {
    const std::string unsynchronised = "\1\xFF\0\xFEO\0l\0d\0"s;
    const std::string seeds[] = {
        TagBytes(2,
                 FrameBytes(2, "TT2", "\0Old"s) + FrameBytes(2, "COM", "\0eng\0two"s) + std::string(9, '\0')),
        TagBytes(3,
                 FrameBytes(3, "TIT2", unsynchronised) +
                     FrameBytes(3, "COMM", "\1eng\xFF\xFE\0\0\xFF\xFEx\0"s) +
                     FrameBytes(3, "TPE1", Number(6, 4, 8) + Deflated("\0Hello"s), 0x80),
                 0x80),
        TagBytes(4,
                 Number(6, 4, 7) + "\1\0"s + FrameBytes(4, "TCON", "\3(17)"s, 0x03) +
                     FrameBytes(4, "TALB", std::string(200, 'x')) + FrameBytes(4, "TDRC", "\0002004-01"s),
                 0xC0)};
    std::mt19937 random(20);
    int parsed = 0;
    for (int i = 0; i < 1000; ++i) {
        std::string bytes = seeds[i % 3];
        for (unsigned change = 0; change < 1 + random() % 4; ++change) {
            const std::size_t at = 3 + random() % (bytes.size() - 3);
            bytes[at] = random() % 3 == 0 ? '\xFF' : static_cast<char>(random());
        }
        if (random() % 4 == 0) bytes.resize(10 + random() % bytes.size());
        Id3Tag tag;
        if (!tag.Parse(bytes)) continue;
        ++parsed;
        for (const TagFrame& frame : tag.Frames())
            if (const TagName* name = NameOfFrame(frame.id)) TagValue(tag, frame, *name);
        tag.Append(tag.Version() == 2 ? "TP2" : "TPE2", "\0end"s);
        const std::optional<std::string> written = tag.Render(bytes.size());
        Id3Tag again;
        ASSERT_TRUE(written && again.Parse(*written)) << i;
        EXPECT_EQ(Contents(again), Contents(tag)) << i;
    }
    EXPECT_GT(parsed, 500);
}

} // namespace
} // namespace corvane
