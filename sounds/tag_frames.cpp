#include "sounds/tag_frames.h"

#include <algorithm>
#include <zlib.h>

namespace corvane {
namespace {

// Flags of a tag's header.
constexpr std::uint8_t kTagUnsynchronised = 0x80;
constexpr std::uint8_t kTagExtendedHeader =
    0x40; // in version 2.2: compressed in a way that was never defined
constexpr std::uint8_t kTagFooter = 0x10;

// Flags of a frame, in version 2.3 …
constexpr std::uint16_t kCompressed3 = 0x80;
constexpr std::uint16_t kEncrypted3 = 0x40;
constexpr std::uint16_t kGrouped3 = 0x20;
// … and 2.4.
constexpr std::uint16_t kGrouped4 = 0x40;
constexpr std::uint16_t kCompressed4 = 0x08;
constexpr std::uint16_t kEncrypted4 = 0x04;
constexpr std::uint16_t kUnsynchronised4 = 0x02;
constexpr std::uint16_t kDataLength4 = 0x01;

constexpr std::size_t kLargestTag = (std::size_t{1} << 28) - 1; // four bytes of 7 bits
constexpr std::size_t kLargestShortFrame = 0xFFFFFF;            // of version 2.2
constexpr std::size_t kPadding = 2048;                          // of a tag that has to grow
constexpr std::size_t kLargestPadding = std::size_t{64} * 1024;

std::size_t BigEndian(std::string_view bytes, int bits_each = 8) {
    std::size_t number = 0;
    for (const char byte : bytes)
        number = number << bits_each | (static_cast<unsigned char>(byte) & ((1U << bits_each) - 1));
    return number;
}

std::size_t SynchSafe(std::string_view bytes) {
    return BigEndian(bytes, 7);
}

void PutNumber(std::string& bytes, std::size_t number, int count, int bits_each) {
    for (int i = count - 1; i >= 0; --i)
        bytes += static_cast<char>(number >> (i * bits_each) & ((1U << bits_each) - 1));
}

// Unsynchronisation puts a zero behind each 0xFF that a decoder of sound could take for the beginning of a
// frame of its own, and behind each that a zero follows.
std::string Unsynchronise(std::string_view plain) {
    std::string safe;
    safe.reserve(plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
        safe += plain[i];
        if (plain[i] != '\xFF') continue;
        const auto next = i + 1 < plain.size() ? static_cast<unsigned char>(plain[i + 1]) : 0xFFU;
        if (next == 0 || next >= 0xE0) safe += '\0';
    }
    return safe;
}

std::string UndoUnsynchronisation(std::string_view safe) {
    std::string plain;
    plain.reserve(safe.size());
    for (std::size_t i = 0; i < safe.size(); ++i) {
        plain += safe[i];
        if (safe[i] == '\xFF' && i + 1 < safe.size() && safe[i + 1] == '\0') ++i;
    }
    return plain;
}

bool IsFrameId(std::string_view id) {
    return std::ranges::all_of(id, [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

bool Take(std::string_view& data, std::size_t count) {
    if (data.size() < count) return false;
    data.remove_prefix(count);
    return true;
}

std::optional<std::string> Inflate(std::string_view data, std::size_t size, std::size_t& allowance) {
    if (size > allowance) return std::nullopt;
    allowance -= size;
    std::string plain(size, '\0');
    uLongf inflated = size;
    const int status = uncompress(reinterpret_cast<Bytef*>(plain.data()), &inflated,
                                  reinterpret_cast<const Bytef*>(data.data()), data.size());
    if (status != Z_OK) return std::nullopt;
    plain.resize(inflated);
    return plain;
}

std::optional<std::string> Data3(const TagFrame& frame, std::size_t& allowance) {
    std::string_view data = frame.content;
    const bool compressed = (frame.flags & kCompressed3) != 0;
    std::size_t size = 0;
    if ((frame.flags & kEncrypted3) != 0) return std::nullopt;
    if (compressed) {
        size = BigEndian(data.substr(0, 4));
        if (!Take(data, 4)) return std::nullopt;
    }
    if ((frame.flags & kGrouped3) != 0 && !Take(data, 1)) return std::nullopt;
    return compressed ? Inflate(data, size, allowance) : std::string(data);
}

std::optional<std::string> Data4(const TagFrame& frame, bool unsynchronised, std::size_t& allowance) {
    std::string_view data = frame.content;
    std::size_t size = 0;
    if ((frame.flags & kEncrypted4) != 0) return std::nullopt;
    if ((frame.flags & kGrouped4) != 0 && !Take(data, 1)) return std::nullopt;
    if ((frame.flags & (kDataLength4 | kCompressed4)) != 0) {
        size = SynchSafe(data.substr(0, 4));
        if (!Take(data, 4)) return std::nullopt;
    }
    std::string plain = unsynchronised ? UndoUnsynchronisation(data) : std::string(data);
    return (frame.flags & kCompressed4) != 0 ? Inflate(plain, size, allowance) : plain;
}

} // namespace

std::size_t Id3Tag::SizeAtStart(std::string_view header) {
    if (header.size() < kHeaderSize || !header.starts_with("ID3")) return 0;
    const bool has_footer = header[3] == 4 && (header[5] & kTagFooter) != 0;
    return kHeaderSize + SynchSafe(header.substr(6, 4)) + (has_footer ? kHeaderSize : 0);
}

bool Id3Tag::Parse(std::string bytes) {
    const std::size_t size = SizeAtStart(bytes);
    if (size == 0 || size != bytes.size()) return false;
    const int version = static_cast<unsigned char>(bytes[3]);
    const auto flags = static_cast<std::uint8_t>(bytes[5]);
    if (version < 2 || version > 4) return false;
    if (version == 2 && (flags & kTagExtendedHeader) != 0) return false;
    version_ = version;
    flags_ = flags;
    RemoveAll();
    bytes_ = std::move(bytes);
    std::string_view body(bytes_);
    body = body.substr(kHeaderSize, SynchSafe(body.substr(6, 4)));
    if (version < 4 && (flags & kTagUnsynchronised) != 0) {
        bytes_ = UndoUnsynchronisation(body);
        body = bytes_;
    }
    if ((flags & kTagExtendedHeader) != 0 && !SkipExtendedHeader(body)) return false;
    ReadFrames(body);
    return true;
}

bool Id3Tag::SkipExtendedHeader(std::string_view& body) const {
    if (body.size() < 4) return false;
    // Version 2.4 counts the size itself, 2.3 what follows it.
    return Take(body, version_ == 4 ? SynchSafe(body.substr(0, 4)) : 4 + BigEndian(body.substr(0, 4)));
}

void Id3Tag::ReadFrames(std::string_view body) {
    while (ReadFrame(body)) {
    }
    if (body.find_first_not_of('\0') != std::string_view::npos) rest_ = body; // else it is padding
}

bool Id3Tag::ReadFrame(std::string_view& body) {
    const std::size_t header = FrameHeaderSize();
    const std::size_t id_size = version_ == 2 ? 3 : 4;
    if (body.size() < header || !IsFrameId(body.substr(0, id_size))) return false;
    const std::size_t size = ContentSize(body);
    if (size > body.size() - header) return false;
    TagFrame frame;
    frame.id = body.substr(0, id_size);
    if (version_ != 2) frame.flags = static_cast<std::uint16_t>(BigEndian(body.substr(8, 2)));
    frame.content = body.substr(header, size);
    frames_.push_back(frame);
    body.remove_prefix(header + size);
    return true;
}

// Size of the content of the frame that the body begins with.
std::size_t Id3Tag::ContentSize(std::string_view body) const {
    if (version_ == 2) return BigEndian(body.substr(3, 3));
    const std::size_t plain = BigEndian(body.substr(4, 4));
    if (version_ == 3) return plain;
    // Some writers of version 2.4 forget that sizes have 7 bits a byte: what follows tells.
    const std::size_t size = SynchSafe(body.substr(4, 4));
    const auto leads_on = [&](std::size_t to) {
        const std::size_t end = FrameHeaderSize() + to;
        return end <= body.size() && BeginsLikeAFrame(body.substr(end));
    };
    return (plain & 0x80808080) != 0 || (!leads_on(size) && leads_on(plain)) ? plain : size;
}

bool Id3Tag::BeginsLikeAFrame(std::string_view body) const {
    return body.empty() || body[0] == '\0' ||
           (body.size() >= FrameHeaderSize() && IsFrameId(body.substr(0, 4)));
}

std::optional<std::string> Id3Tag::DataOf(const TagFrame& frame) const {
    switch (version_) {
    case 2: return std::string(frame.content);
    case 3: return Data3(frame, inflatable_);
    default:
        return Data4(frame, (frame.flags & kUnsynchronised4) != 0 || (flags_ & kTagUnsynchronised) != 0,
                     inflatable_);
    }
}

void Id3Tag::RemoveAll() {
    frames_.clear();
    made_.clear();
    rest_ = {};
}

void Id3Tag::Append(std::string_view id, std::string content) {
    TagFrame frame;
    if (version_ == 4 && (flags_ & kTagUnsynchronised) != 0) {
        content = Unsynchronise(content);
        frame.flags = kUnsynchronised4;
    }
    frame.id = made_.emplace_back(id);
    frame.content = made_.emplace_back(std::move(content));
    frames_.push_back(frame);
}

void Id3Tag::AppendFrame(std::string& body, const TagFrame& frame) const {
    body += frame.id;
    PutNumber(body, frame.content.size(), version_ == 2 ? 3 : 4, version_ == 4 ? 7 : 8);
    if (version_ != 2) PutNumber(body, frame.flags, 2, 8);
    body += frame.content;
}

std::optional<std::string> Id3Tag::Render(std::size_t area) const {
    if (frames_.empty() && rest_.empty()) return std::string();
    const std::size_t largest = version_ == 2 ? kLargestShortFrame : kLargestTag;
    std::size_t size = rest_.size();
    for (const TagFrame& frame : frames_) {
        if (frame.content.size() > largest) return std::nullopt;
        size += FrameHeaderSize() + frame.content.size();
    }
    std::string tag;
    tag.reserve(std::max(area, kHeaderSize + size + kPadding));
    tag.append("ID3").append({static_cast<char>(version_), '\0'});
    tag += static_cast<char>(flags_ & ~(kTagExtendedHeader | kTagFooter)); // neither is written
    tag.append(4, '\0');
    for (const TagFrame& frame : frames_) AppendFrame(tag, frame);
    tag += rest_;
    if (version_ < 4 && (flags_ & kTagUnsynchronised) != 0)
        tag.replace(kHeaderSize, std::string::npos, Unsynchronise(std::string_view(tag).substr(kHeaderSize)));
    // Behind a broken rest padding would complete what only looks like a frame.
    if (rest_.empty()) {
        const bool fits = tag.size() <= area && area - tag.size() <= kLargestPadding;
        tag.resize(fits ? area : tag.size() + kPadding);
    }
    if (tag.size() - kHeaderSize > kLargestTag) return std::nullopt;
    std::string written_size;
    PutNumber(written_size, tag.size() - kHeaderSize, 4, 7);
    return tag.replace(6, written_size.size(), written_size);
}

} // namespace corvane
