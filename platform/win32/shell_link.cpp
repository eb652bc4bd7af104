#include "platform/win32/shell_link.h"

#include "platform/text/utf.h"
#include "platform/win32/descriptor.h"
#include "platform/win32/drives.h"
#include "platform/win32/errors.h"
#include "platform/win32/file_items.h"
#include "platform/win32/paths.h"
#include "platform/win32/temporary_names.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace win32 {
namespace {

constexpr std::uint32_t kHeaderSize = 0x4C;
constexpr std::string_view kClassId("\x01\x14\x02\0\0\0\0\0\xC0\0\0\0\0\0\0\x46", 16);

// Flags of the header: which parts follow it.
constexpr std::uint32_t kHasTargetIdList = 0x1;
constexpr std::uint32_t kHasLinkInfo = 0x2;
constexpr std::uint32_t kHasName = 0x4;
constexpr std::uint32_t kIsUnicode = 0x80;

// The link info part: its header with the offsets of Unicode texts, and its flags.
constexpr std::uint32_t kLinkInfoHeaderSize = 0x24;
constexpr std::uint32_t kHasLocalPath = 1;
constexpr std::uint32_t kHasNetworkPath = 2;

constexpr std::uint32_t kShowNormal = 1;
constexpr std::uint32_t kNetworkProviderLanManager = 0x20000;

class Writer {
public:
    void Put16(std::uint32_t value) { PutNumber(value, 2); }
    void Put32(std::uint32_t value) { PutNumber(value, 4); }
    void Put(std::string_view bytes) { bytes_ += bytes; }
    void Put(std::u16string_view text) {
        for (const char16_t unit : text) Put16(unit);
    }
    void Put(const FILETIME& time) {
        Put32(time.dwLowDateTime);
        Put32(time.dwHighDateTime);
    }
    // A text and its terminating zero.
    template <class Text>
    void PutTerminated(Text text) {
        Put(text);
        PutNumber(0, sizeof(typename Text::value_type));
    }

    [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(bytes_.size()); }
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

private:
    void PutNumber(std::uint32_t value, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) bytes_ += static_cast<char>(value >> 8 * i & 0xFF);
    }

    std::string bytes_;
};

// Little-endian numbers and texts at offsets; nothing outside of the bytes is read.
class Reader {
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] std::uint32_t Get16(std::size_t offset) const { return GetNumber(offset, 2); }
    [[nodiscard]] std::uint32_t Get32(std::size_t offset) const { return GetNumber(offset, 4); }
    [[nodiscard]] Reader From(std::size_t offset) const {
        return Reader(bytes_.substr(std::min(offset, bytes_.size())));
    }
    [[nodiscard]] Reader First(std::size_t size) const { return Reader(bytes_.substr(0, size)); }
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }

    // Texts up to their zero, or the end of the bytes.
    [[nodiscard]] std::u16string UnicodeText(std::size_t offset) const {
        std::u16string text;
        for (; offset + 1 < bytes_.size() && Get16(offset) != 0; offset += 2)
            text.push_back(static_cast<char16_t>(Get16(offset)));
        return text;
    }
    // UTF-8, else taken byte by byte as Latin-1.
    [[nodiscard]] std::u16string ByteText(std::size_t offset) const {
        const std::string_view rest = bytes_.substr(std::min(offset, bytes_.size()));
        const std::string_view text = rest.substr(0, rest.find('\0'));
        return utf::ToUtf16(utf::IsValid(text) ? std::string(text) : utf::FromLatin1(text));
    }

private:
    [[nodiscard]] std::uint32_t GetNumber(std::size_t offset, std::size_t size) const {
        if (offset > bytes_.size() || bytes_.size() - offset < size) return 0;
        std::uint32_t value = 0;
        for (std::size_t i = size; i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(bytes_[offset + i]);
        return value;
    }

    std::string_view bytes_;
};

std::u16string_view WithoutLastSeparator(std::u16string_view path) {
    if (path.size() > 3 && path.back() == u'\\') path.remove_suffix(1); // "C:\" keeps it
    return path;
}

// Length of "\\server\share".
std::size_t ShareLength(std::u16string_view path) {
    const auto share = path.find(u'\\', 2);
    return share == std::u16string_view::npos ? path.size()
                                              : std::min(path.find(u'\\', share + 1), path.size());
}

Writer VolumeId(std::u16string_view target) {
    constexpr std::uint32_t kSize = 0x11;
    constexpr std::uint32_t kLabelOffset = 0x10;
    Writer part;
    part.Put32(kSize);
    part.Put32(GetDriveTypeW(std::u16string(target.substr(0, 3)).c_str()));
    part.Put32(0); // serial number: none
    part.Put32(kLabelOffset);
    part.PutTerminated(std::string_view());
    return part;
}

Writer NetworkLocation(std::u16string_view share) {
    constexpr std::uint32_t kHasProvider = 2;
    constexpr std::uint32_t kTextOffset = 0x1C;
    const std::string bytes = utf::ToUtf8(share);
    Writer texts;
    texts.PutTerminated(std::string_view(bytes));
    const std::uint32_t unicode_offset = kTextOffset + texts.size();
    texts.PutTerminated(share);
    Writer part;
    part.Put32(kTextOffset + texts.size());
    part.Put32(kHasProvider);
    part.Put32(kTextOffset);
    part.Put32(0); // no device name
    part.Put32(kNetworkProviderLanManager);
    part.Put32(unicode_offset);
    part.Put32(0);
    part.Put(texts.bytes());
    return part;
}

// Where the target lies: texts in both forms, found by their offsets.
Writer LinkInfo(std::u16string_view target) {
    const bool is_network = target.starts_with(u"\\\\");
    const std::size_t share_length = is_network ? ShareLength(target) : 0;
    const std::u16string_view base = is_network ? std::u16string_view() : target;
    std::u16string_view suffix = is_network ? target.substr(share_length) : std::u16string_view();
    if (!suffix.empty()) suffix.remove_prefix(1);

    Writer parts;
    const auto offset = [&] { return kLinkInfoHeaderSize + parts.size(); };
    const std::uint32_t place = offset();
    parts.Put((is_network ? NetworkLocation(target.substr(0, share_length)) : VolumeId(target)).bytes());
    const std::uint32_t base_bytes = offset();
    parts.PutTerminated(std::string_view(utf::ToUtf8(base)));
    const std::uint32_t suffix_bytes = offset();
    parts.PutTerminated(std::string_view(utf::ToUtf8(suffix)));
    const std::uint32_t base_units = offset();
    parts.PutTerminated(base);
    const std::uint32_t suffix_units = offset();
    parts.PutTerminated(suffix);

    Writer info;
    info.Put32(kLinkInfoHeaderSize + parts.size());
    info.Put32(kLinkInfoHeaderSize);
    info.Put32(is_network ? kHasNetworkPath : kHasLocalPath);
    info.Put32(is_network ? 0 : place);
    info.Put32(is_network ? 0 : base_bytes);
    info.Put32(is_network ? place : 0);
    info.Put32(suffix_bytes);
    info.Put32(is_network ? 0 : base_units);
    info.Put32(suffix_units);
    info.Put(parts.bytes());
    return info;
}

std::u16string TargetOf(const Reader& info) {
    constexpr std::uint32_t kTextOffset = 0x14; // of a network part without Unicode texts
    const bool has_unicode = info.Get32(4) >= kLinkInfoHeaderSize;
    const std::uint32_t flags = info.Get32(8);
    const std::uint32_t suffix_units = has_unicode ? info.Get32(32) : 0;
    const std::u16string suffix =
        suffix_units != 0 ? info.UnicodeText(suffix_units) : info.ByteText(info.Get32(24));
    if ((flags & kHasLocalPath) != 0) {
        const std::uint32_t units = has_unicode ? info.Get32(28) : 0;
        return (units != 0 ? info.UnicodeText(units) : info.ByteText(info.Get32(16))) + suffix;
    }
    if ((flags & kHasNetworkPath) == 0) return {};
    const Reader network = info.From(info.Get32(20));
    const std::uint32_t name = network.Get32(8);
    const std::uint32_t units = name > kTextOffset ? network.Get32(20) : 0;
    const std::u16string share = units != 0 ? network.UnicodeText(units) : network.ByteText(name);
    return share.empty() || suffix.empty() ? share : share + u"\\" + suffix;
}

DWORD Save(const std::string& bytes, std::u16string_view path) {
    const UnixPath item = ToUnixPath(path);
    if (!item.exists && (item.error != ERROR_FILE_NOT_FOUND || item.path.empty())) return item.error;
    const bool is_read_only = (item.status.st_mode & S_IWUSR) == 0; // root could write that, too
    if (item.exists && (!S_ISREG(item.status.st_mode) || is_read_only)) return ERROR_ACCESS_DENIED;
    if (item.exists && access(item.path.c_str(), W_OK) != 0) return FromErrno(errno);
    // A link that is there stays until the new one is complete.
    const std::string unfinished = item.path.substr(0, item.path.rfind('/') + 1) + UnfinishedName();
    constexpr mode_t kNewFile = 0666;
    Descriptor file(open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFile));
    if (!file) return FromErrno(errno);
    int error = WriteAll(file.get(), std::as_bytes(std::span(bytes)));
    if (const int close_error = file.Close(); error == 0) error = close_error;
    if (error == 0 && rename(unfinished.c_str(), item.path.c_str()) != 0) error = errno;
    if (error != 0) unlink(unfinished.c_str());
    return FromErrno(error);
}

} // namespace

std::string EncodeShellLink(const ShellLink& link) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(link.target.c_str(), GetFileExInfoStandard, &data) == FALSE) data = {};
    const std::u16string_view target = WithoutLastSeparator(link.target);

    Writer file;
    file.Put32(kHeaderSize);
    file.Put(kClassId);
    file.Put32(kHasLinkInfo | kIsUnicode | (link.description.empty() ? 0 : kHasName));
    file.Put32(data.dwFileAttributes);
    file.Put(data.ftCreationTime);
    file.Put(data.ftLastAccessTime);
    file.Put(data.ftLastWriteTime);
    file.Put32(data.nFileSizeLow);
    file.Put32(0); // icon index
    file.Put32(kShowNormal);
    file.Put16(0); // hot key
    file.Put16(0); // reserved, like the two that follow
    file.Put32(0);
    file.Put32(0);
    file.Put(LinkInfo(target).bytes());
    if (!link.description.empty()) {
        constexpr std::size_t kLongest = 260;
        const std::u16string_view text = std::u16string_view(link.description).substr(0, kLongest);
        file.Put16(static_cast<std::uint32_t>(text.size()));
        file.Put(text);
    }
    file.Put32(0); // no extra data
    return file.bytes();
}

std::optional<ShellLink> DecodeShellLink(std::string_view bytes) {
    const Reader file(bytes);
    constexpr std::size_t kClassIdOffset = 4;
    constexpr std::size_t kFlagsOffset = 20;
    if (bytes.size() < kHeaderSize || file.Get32(0) != kHeaderSize ||
        bytes.substr(kClassIdOffset, kClassId.size()) != kClassId)
        return std::nullopt;
    const std::uint32_t flags = file.Get32(kFlagsOffset);
    std::size_t offset = kHeaderSize;
    if ((flags & kHasTargetIdList) != 0) offset += 2 + file.Get16(offset);
    if ((flags & kHasLinkInfo) == 0) return std::nullopt;
    const Reader info = file.From(offset).First(file.Get32(offset));
    ShellLink link;
    link.target = TargetOf(info);
    if (link.target.empty()) return std::nullopt;
    if ((flags & kHasName) != 0) {
        offset += file.Get32(offset);
        const std::size_t length = file.Get16(offset);
        const bool is_unicode = (flags & kIsUnicode) != 0;
        const Reader text = file.From(offset + 2).First(is_unicode ? length * 2 : length);
        link.description = is_unicode ? text.UnicodeText(0) : text.ByteText(0);
    }
    return link;
}

HRESULT SaveShellLink(const ShellLink& link, std::u16string_view path) {
    constexpr std::uint32_t kWin32Failure = 0x80070000;
    const DWORD error = Save(EncodeShellLink(link), path);
    return error == ERROR_SUCCESS ? 0 : static_cast<HRESULT>(kWin32Failure | error);
}

} // namespace win32
