// The parsers of XFileSpec: one for each path syntax.
#include "files/file_spec.h"
#include "platform/text/utf.h"
#include "plugin/errors.h"

#include <array>
#include <utility>

namespace corvane {
namespace {

// A word that begins with another one stands before it.
constexpr std::array<std::string_view, 10> kPathPrefixes = {"moviemac", "moviewin", "movie",   "imagemac",
                                                            "imagewin", "image",    "filemac", "filewin",
                                                            "filenet",  "file"};

bool IsNetworkPath(std::string_view text) {
    return text.starts_with("\\\\");
}

bool Contains(std::string_view text, char character) {
    return text.find(character) != std::string_view::npos;
}

} // namespace

bool IsDrivePath(std::string_view text) {
    return text.size() >= 3 && utf::IsAsciiLetter(text[0]) && text[1] == ':' && text[2] == '\\';
}

std::string_view FindPathPrefix(std::string_view text) {
    for (const std::string_view prefix : kPathPrefixes)
        if (text.starts_with(prefix)) return prefix;
    return {};
}

void XFileSpec::SplitPath(std::string_view text, char separator) {
    text.remove_prefix(1);
    for (auto end = text.find(separator); end != std::string_view::npos && end > 0;
         end = text.find(separator)) {
        folders.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    if (!text.empty()) {
        name = text;
    } else if (!folders.empty()) {
        name = std::move(folders.back());
        folders.pop_back();
    }
}

std::int32_t XFileSpec::SetFromFileMakerPath(std::string_view text, bool has_prefix) {
    return SetFromFileMakerPath(text, nullptr, has_prefix);
}

std::int32_t XFileSpec::SetFromFileMakerPath(std::string_view text, const XFileSpec* base, bool has_prefix) {
    if (text.empty()) text = has_prefix ? "file:./" : "./";
    const std::string_view prefix = FindPathPrefix(text);
    if (prefix.empty() == has_prefix) return kErrorWrongParameter;
    if (has_prefix) {
        std::size_t position = prefix.size();
        if (position < text.size()) utf::Next(text, position);
        text.remove_prefix(position);
    }
    if (!text.starts_with('/')) return SetRelativeTo(text, base, '/');

    Clear();
    text.remove_prefix(1);
    const auto end = text.find('/');
    if (end == 0) {
        flags = kNetworkItem;
        volume = "\\";
    } else {
        volume = text.substr(0, end);
    }
    if (end != std::string_view::npos) SplitPath(text.substr(end), '/');
    return CheckExists();
}

std::int32_t XFileSpec::SetFromNativePath(std::string_view text) {
    Clear();
    if (IsDrivePath(text)) {
        volume = utf::ToUpper(text.substr(0, 2));
        SplitPath(text.substr(2), '\\');
    } else if (IsNetworkPath(text)) {
        flags = kNetworkItem;
        volume = "\\";
        SplitPath(text.substr(1), '\\');
    } else {
        return kErrorNoSuchVolume;
    }
    return CheckNativeItem();
}

std::int32_t XFileSpec::SetFromNativePathW(std::u16string_view text) {
    return SetFromNativePath(utf::ToUtf8(text));
}

std::int32_t XFileSpec::SetFromPosixPath(std::string_view text) {
    constexpr std::string_view kVolumes = "/Volumes/";
    Clear();
    const std::string system_volume = SystemVolume();
    if (system_volume.empty()) return kErrorOutOfMemory;
    if (!text.starts_with('/')) return kErrorNoSuchVolume;

    if (!text.starts_with(kVolumes)) {
        volume = system_volume;
        SplitPath(text, '/');
    } else if (text == kVolumes) {
        volume = system_volume;
        name = "Volumes";
    } else {
        text.remove_prefix(kVolumes.size());
        const auto end = text.find('/');
        volume = text.substr(0, end);
        if (end != std::string_view::npos) SplitPath(text.substr(end), '/');
    }
    return CheckNativeItem();
}

std::int32_t XFileSpec::SetRelativeTo(std::string_view text, const XFileSpec* base, char separator) {
    if (base == nullptr || !base->IsDirectory()) return kErrorFolderNotFound;
    *this = *base;
    if (!name.empty()) folders.push_back(std::exchange(name, {}));
    if (text.starts_with(separator)) return kErrorFileNotFound;
    if (!Contains(text, separator)) {
        name = text;
        return CheckExists();
    }

    for (auto end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
        const std::string_view part = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (part == ".") continue;
        if (part != "..") {
            folders.emplace_back(part);
        } else if (folders.empty()) {
            return kErrorFolderNotFound;
        } else {
            folders.pop_back();
        }
    }
    if (!text.empty()) {
        name = text;
    } else if (!folders.empty()) {
        name = std::move(folders.back());
        folders.pop_back();
    }
    if (separator == '\\') flags = 0;
    return CheckExists();
}

std::int32_t XFileSpec::SetFromText(std::string_view text, const XFileSpec* base) {
    if (SystemVolume().empty()) return kErrorOutOfMemory;
    if (IsDrivePath(text) || IsNetworkPath(text)) return SetFromNativePath(text);
    if (text.starts_with("~/")) return SetRelativeTo(text, base, '/');
    if (text.starts_with('/')) {
        const std::int32_t code = SetFromPosixPath(text);
        return code == 0 && volume.empty() ? kErrorNoSuchVolume : code;
    }

    const std::string_view prefix = FindPathPrefix(text);
    if (prefix.empty()) return SetRelativeTo(text, base, '\\');
    const std::string_view rest = text.substr(prefix.size());
    if (rest.size() > 2 && rest[0] == ':')
        return rest[1] == '/' ? SetFromFileMakerPath(text, true) : SetFromFileMakerPath(text, base, true);
    return SetRelativeTo(text, base, Contains(text, '/') && !Contains(text, '\\') ? '/' : '\\');
}

std::int32_t XFileSpec::SetFromNameRecord(std::span<const unsigned char> record) {
    constexpr std::size_t kLengthOffset = 6;
    if (record.size() <= kLengthOffset) return kErrorWrongParameter;
    const std::span<const unsigned char> characters = record.subspan(kLengthOffset + 1);
    const std::size_t length = record[kLengthOffset];
    if (length > characters.size()) return kErrorWrongParameter;
    return SetFromNativePath({reinterpret_cast<const char*>(characters.data()), length});
}

} // namespace corvane
