// References to files inside movie files: alias records and file addresses.

#include "platform/quicktime/movies/movie_writer.h"

#include <algorithm>
#include <array>

namespace qt {
namespace {

constexpr std::string_view kVolume = "Volume";
constexpr std::uint16_t kEndOfItems = 0xFFFF;
constexpr std::uint16_t kAbsolutePath = 2; ///< "Volume:folder:name"; ":" in a name stands as "/"
constexpr std::uint16_t kPosixPath = 18;
constexpr std::size_t kItems = 150; ///< where the variable part begins
constexpr std::size_t kMaximumPath = 4096;

std::vector<std::string_view> Names(std::string_view path) {
    std::vector<std::string_view> names;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (end > 0) names.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return names;
}

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::string SwapSeparators(std::string_view path) {
    std::string swapped(path);
    for (char& character : swapped) character = character == '/' ? ':' : character == ':' ? '/' : character;
    return swapped;
}

std::string Text(std::span<const std::byte> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()),
                                std::min(bytes.size(), kMaximumPath));
    return std::string(text.substr(0, text.find('\0')));
}

/// A name in a field of fixed size, its length in front; cut at a character's boundary.
void PutName(AtomWriter& writer, std::string_view name, std::size_t size) {
    while (name.size() > size) {
        name.remove_suffix(1);
        while (!name.empty() && (static_cast<unsigned char>(name.back()) & 0xC0) == 0x80)
            name.remove_suffix(1);
    }
    writer.Put8(static_cast<std::uint8_t>(name.size()));
    writer.Put(name);
    writer.Zeros(size - name.size());
}

void PutItem(AtomWriter& writer, std::uint16_t kind, std::string_view text) {
    writer.Put16(kind);
    writer.Put16(static_cast<std::uint16_t>(text.size()));
    writer.Put(text);
    writer.Zeros(text.size() % 2);
}

std::string Unescaped(std::string_view text) {
    const auto digit = [](char c) {
        if (c >= '0' && c <= '9') return c - '0';
        const char lower = static_cast<char>(c | 0x20);
        return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
    };
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape =
            text[i] == '%' && i + 2 < text.size() && digit(text[i + 1]) >= 0 && digit(text[i + 2]) >= 0;
        plain += escape ? static_cast<char>(16 * digit(text[i + 1]) + digit(text[i + 2])) : text[i];
        if (escape) i += 2;
    }
    return plain;
}

} // namespace

Bytes MakeAlias(const std::string& target, const std::string& movie) {
    const auto to = Names(target);
    const auto from = Names(movie);
    const auto shorter = std::min(to.size(), from.size());
    std::size_t common = 0;
    while (common + 1 < shorter && to[common] == from[common]) ++common;
    AtomWriter record;
    record.Put16(2); // version
    record.Put16(0); // a file
    PutName(record, kVolume, 27);
    record.Put32(0);
    record.Put16(0x482B); // "H+"
    record.Put16(5);
    record.Put32(0);
    PutName(record, to.empty() ? std::string_view() : to.back(), 63);
    record.Zeros(16);
    record.Put16(static_cast<std::uint16_t>(from.size() - common));
    record.Put16(static_cast<std::uint16_t>(to.size() - common));
    record.Zeros(16);
    PutItem(record, kAbsolutePath, std::string(kVolume) + SwapSeparators(target));
    PutItem(record, kPosixPath, target);
    PutItem(record, kEndOfItems, {});
    const Bytes content = record.Take();
    AtomWriter alias;
    alias.Put32(0);
    alias.Put16(static_cast<std::uint16_t>(content.size() + 6));
    alias.Put(content);
    return alias.Take();
}

std::vector<std::string> ReadAlias(std::span<const std::byte> alias, const std::string& movie) {
    const std::size_t up = BigEndian16(alias, 130);
    const std::size_t down = BigEndian16(alias, 132);
    std::string name = Text(Tail(alias, 51, static_cast<std::size_t>(BigEndian(alias, 50, 1))));
    std::string path;
    for (std::size_t at = kItems; at + 4 <= alias.size();) {
        const std::uint16_t kind = BigEndian16(alias, at);
        const std::size_t size = BigEndian16(alias, at + 2);
        if (kind == kEndOfItems) break;
        const std::string text = Text(Tail(alias, at + 4, size));
        if (kind == kPosixPath) path = text;
        if (kind == kAbsolutePath && path.empty() && text.find(':') != std::string::npos)
            path = SwapSeparators(text.substr(text.find(':')));
        at += 4 + size + size % 2;
    }
    const auto names = Names(path);
    std::vector<std::string> candidates;
    if (down > 0 && down <= names.size() && up > 0 && up < 64) {
        std::string relative = FolderOf(movie);
        for (std::size_t i = 1; i < up; ++i) relative += "../";
        for (std::size_t i = names.size() - down; i < names.size(); ++i)
            relative += std::string(names[i]) + (i + 1 < names.size() ? "/" : "");
        candidates.push_back(relative);
    }
    if (!names.empty()) name = names.back();
    if (!name.empty()) candidates.push_back(FolderOf(movie) + name);
    if (!path.empty()) candidates.push_back(path);
    return candidates;
}

std::vector<std::string> ReadUrl(std::span<const std::byte> url, const std::string& movie) {
    const std::string text = Unescaped(Text(url));
    constexpr std::array<std::string_view, 3> kPrefixes = {"file://localhost/", "file:///", "file:/"};
    for (const std::string_view prefix : kPrefixes) {
        if (!text.starts_with(prefix)) continue;
        const std::string path = text.substr(prefix.size() - 1);
        const auto names = Names(path);
        if (names.empty()) return {};
        return {FolderOf(movie) + std::string(names.back()), path};
    }
    if (text.empty() || text.find("://") != std::string::npos) return {};
    return {text.front() == '/' ? text : FolderOf(movie) + text};
}

} // namespace qt
