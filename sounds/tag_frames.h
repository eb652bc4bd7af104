// ID3v2 tags of the versions 2.2, 2.3 and 2.4, as the frames that they are made of.
//
// Each frame keeps its bytes as they stand in the tag, and what can't be read as frames stays behind them:
// whatever isn't changed is written as it was read, in the tag's own version. Byte strings are std::string.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

struct TagFrame {
    std::string_view id; ///< three characters in version 2.2, four in the others
    std::uint16_t flags = 0;
    std::string_view content; ///< still compressed, encrypted… as the flags say
};

class Id3Tag {
public:
    static constexpr std::size_t kHeaderSize = 10;

    /// What a tag takes at a file's start, header included, by the first kHeaderSize bytes there; 0 when no
    /// tag begins so.
    static std::size_t SizeAtStart(std::string_view header);

    /// A tag of version 2.3 without frames.
    Id3Tag() = default;
    Id3Tag(const Id3Tag&) = delete; // the frames lie in its bytes
    Id3Tag& operator=(const Id3Tag&) = delete;

    /// Takes a whole tag over. False for one that is cut short, and for a version or form that nobody knows.
    bool Parse(std::string bytes);

    [[nodiscard]] int Version() const { return version_; } ///< 2, 3 or 4
    [[nodiscard]] const std::vector<TagFrame>& Frames() const { return frames_; }
    /// A frame's data with compression and the like undone; nothing when that can't be, or when more than
    /// 16 MiB would have been inflated in all.
    [[nodiscard]] std::optional<std::string> DataOf(const TagFrame& frame) const;

    void RemoveAll();
    template <class Predicate>
    void RemoveIf(Predicate predicate) {
        std::erase_if(frames_, predicate);
    }
    /// Adds a frame at the end. The id is of the tag's version.
    void Append(std::string_view id, std::string content);

    /// The tag's bytes: just `area` of them where they fit without much padding. Empty when there is nothing
    /// to write; nothing when the version can't hold so much.
    [[nodiscard]] std::optional<std::string> Render(std::size_t area) const;

private:
    [[nodiscard]] std::size_t FrameHeaderSize() const { return version_ == 2 ? 6 : 10; }
    bool SkipExtendedHeader(std::string_view& body) const;
    void ReadFrames(std::string_view body);
    bool ReadFrame(std::string_view& body);
    [[nodiscard]] std::size_t ContentSize(std::string_view body) const;
    [[nodiscard]] bool BeginsLikeAFrame(std::string_view body) const;
    void AppendFrame(std::string& body, const TagFrame& frame) const;

    int version_ = 3;
    std::uint8_t flags_ = 0; ///< of the tag's header
    std::string bytes_;      ///< as read, or with the tag's unsynchronisation undone
    std::deque<std::string> made_;
    std::vector<TagFrame> frames_;
    std::string_view rest_;
    mutable std::size_t inflatable_ = std::size_t{16} << 20; ///< bytes that may still be inflated
};

} // namespace corvane
