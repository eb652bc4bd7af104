#include "files/temporary_files.h"

#include "platform/text/utf.h"
#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "platform/win32/file_items.h"
#include "platform/win32/folders.h"
#include "platform/win32/temporary_names.h"
#include "plugin/errors.h"

#include <array>
#include <string>

namespace corvane {
namespace {

constexpr std::int32_t kNoTemporaryFolder = -1;
constexpr std::int32_t kNoTemporaryName = -2;
constexpr std::size_t kFolderLimit = 1024; // units
constexpr std::u16string_view kProbeName = u"com.kelo.test";

// Opens the file for writing, whether it is there already or not.
win32::OwnedFile CreateOrOpen(const std::u16string& path) {
    win32::OwnedFile file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, CREATE_NEW));
    if (file || GetLastError() != ERROR_FILE_EXISTS) return file;
    return win32::OwnedFile(CreateFileW(path.c_str(), GENERIC_WRITE, 0, OPEN_EXISTING));
}

} // namespace

std::int32_t MakeTemporaryFile(XFileSpec& file, std::string_view extension) {
    std::array<WCHAR, kFolderLimit> folder;
    const DWORD length = GetTempPathW(kFolderLimit, folder.data());
    if (length == 0 || length >= kFolderLimit) return kNoTemporaryFolder;
    std::array<WCHAR, MAX_PATH> name;
    if (GetTempFileNameW(folder.data(), u"tmp", 0, name.data()) == 0) return kNoTemporaryName;
    DeleteFileW(name.data());
    const std::int32_t code = file.SetFromNativePathW(name.data() + utf::ToUtf16(extension));
    return code == kErrorFileNotFound ? 0 : code;
}

std::int32_t DeleteFileOf(const XFileSpec& file) {
    return DeleteFileW(file.GetNativePathW().c_str()) ? 0 : static_cast<std::int32_t>(GetLastError());
}

std::int32_t CreateFileOf(const XFileSpec& file) {
    const win32::OwnedFile created(CreateFileW(file.GetNativePathW().c_str(), GENERIC_WRITE, 0, CREATE_NEW));
    return created ? 0 : static_cast<std::int32_t>(GetLastError());
}

std::int32_t CreateNewFile(const XFileSpec& file) {
    switch (const std::int32_t code = CreateFileOf(file)) {
    case ERROR_ACCESS_DENIED: return kErrorWritePermission;
    case ERROR_FILE_EXISTS: return kErrorFileExists;
    default: return code;
    }
}

FolderWritable IsFolderWritable(const XFileSpec& folder) {
    if (!folder.IsDirectory()) return {kErrorFolderExpected, false};
    std::u16string probe = folder.GetNativePathW();
    probe += kProbeName;
    if (!CreateOrOpen(probe)) return {0, false};
    DeleteFileW(probe.c_str());
    return {0, true};
}

std::int32_t GetWritableParent(const XFileSpec& item, XFileSpec& folder) {
    folder = item;
    folder.MoveToParent();
    const FolderWritable outcome = IsFolderWritable(folder);
    if (outcome.code != 0) return outcome.code;
    return outcome.writable ? 0 : kFolderIsReadOnly;
}

} // namespace corvane
