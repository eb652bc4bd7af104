#include "files/file_spec.h"

#include "platform/text/utf.h"
#include "platform/win32/attributes.h"
#include "platform/win32/errors.h"
#include "platform/win32/folders.h"
#include "plugin/errors.h"

#include <array>

namespace corvane {
namespace {

DWORD AttributesAt(std::string_view native_path) {
    return GetFileAttributesW(utf::ToUtf16(native_path).c_str());
}

} // namespace

void XFileSpec::Clear() {
    flags = 0;
    volume.clear();
    folders.clear();
    name.clear();
}

const std::string& XFileSpec::GetName() const {
    if (!name.empty()) return name;
    return folders.empty() ? volume : folders.back();
}

void XFileSpec::MoveToParent() {
    if (name.empty() && !folders.empty()) folders.pop_back();
    name.clear();
    if (folders.empty()) return;
    name = std::move(folders.back());
    folders.pop_back();
}

bool XFileSpec::IsDirectory() const {
    const DWORD attributes = AttributesAt(PlainNativePath());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::int32_t XFileSpec::CheckExists() const {
    if (volume.empty()) return kErrorNoSuchVolume;
    if (AttributesAt(PlainNativePath()) != INVALID_FILE_ATTRIBUTES) return 0;
    switch (const DWORD error = GetLastError()) {
    case ERROR_FILE_NOT_FOUND: return kErrorFileNotFound;
    case ERROR_PATH_NOT_FOUND: return kErrorFolderNotFound;
    default: return static_cast<std::int32_t>(error);
    }
}

std::int32_t XFileSpec::CheckNativeItem() const {
    std::string path = PlainNativePath();
    if (AttributesAt(path) != INVALID_FILE_ATTRIBUTES) return 0;
    if (GetLastError() != ERROR_FILE_NOT_FOUND) return static_cast<std::int32_t>(GetLastError());
    path.resize(path.rfind('\\'));
    if (AttributesAt(path) != INVALID_FILE_ATTRIBUTES) return kErrorFileNotFound;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND ? kErrorFolderNotFound : static_cast<std::int32_t>(error);
}

std::string XFileSpec::PlainNativePath() const {
    std::string path = volume + "\\";
    for (const std::string& folder : folders) path.append(folder).push_back('\\');
    return path += name;
}

std::string SystemVolume() {
    std::array<WCHAR, MAX_PATH> folder{};
    const UINT length = GetSystemDirectoryW(folder.data(), MAX_PATH);
    return length < 2 || length >= MAX_PATH ? std::string() : utf::ToUtf8({folder.data(), 2});
}

} // namespace corvane
