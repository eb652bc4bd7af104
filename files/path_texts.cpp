// XFileSpec as text: native paths, host path texts, relative paths.
#include "files/file_spec.h"
#include "platform/text/utf.h"
#include "platform/win32/attributes.h"
#include "plugin/errors.h"

#include <algorithm>

namespace corvane {
namespace {

// Ends the text with one separator when, taken as a native path, it names a folder, else with none. A host
// path text names none, but a share's "//server/share/folder" does.
void FinishPath(std::string& text, char separator) {
    if (text.size() > 1 && text.back() == separator) text.pop_back();
    const DWORD attributes = GetFileAttributesW(utf::ToUtf16(text).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        text.push_back(separator);
}

std::vector<std::string> NamesFromRoot(const XFileSpec& spec) {
    std::vector<std::string> names = spec.folders;
    if (!spec.name.empty()) names.push_back(spec.name);
    return names;
}

} // namespace

std::string XFileSpec::GetNativePath() const {
    std::string path = PlainNativePath();
    FinishPath(path, '\\');
    return path;
}

std::u16string XFileSpec::GetNativePathW() const {
    return utf::ToUtf16(GetNativePath());
}

PathText XFileSpec::GetFileMakerPath(std::string_view prefix_word) const {
    PathText path{CheckExists(), std::string(prefix_word)};
    if (!prefix_word.empty()) path.text += "win:";
    path.text += '/';
    if ((flags & kNetworkItem) == 0) path.text += volume;
    path.text += '/';
    for (const std::string& folder : folders) path.text.append(folder).push_back('/');
    path.text += name;
    FinishPath(path.text, '/');
    return path;
}

PathText XFileSpec::GetRelativePath(std::string_view prefix_word, const XFileSpec& base) const {
    std::int32_t code = CheckExists();
    if (code == 0) code = base.CheckExists();
    if (code == 0 && !base.IsDirectory()) code = kErrorFolderNotFound;
    const std::string system_volume = SystemVolume();
    if (system_volume.empty()) return {kErrorOutOfMemory, {}};
    if (volume != system_volume || base.volume != system_volume) return {kErrorNoSuchVolume, {}};

    PathText path{code, std::string(prefix_word)};
    if (!prefix_word.empty()) path.text += ':';
    const std::vector<std::string> names = NamesFromRoot(*this);
    const std::vector<std::string> base_names = NamesFromRoot(base);
    const auto [own, other] = std::mismatch(names.begin(), names.end(), base_names.begin(), base_names.end());
    for (auto up = other; up != base_names.end(); ++up) path.text += "../";
    for (auto down = own; down != names.end(); ++down) {
        if (down != own) path.text += '/';
        path.text += *down;
    }
    FinishPath(path.text, '/');
    return path;
}

} // namespace corvane
