#include "files/numbered_files.h"

#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "plugin/errors.h"

#include <algorithm>
#include <map>
#include <utility>

namespace corvane::native {
namespace {

constexpr FileNumber kFirstNumber = 100;
constexpr FileNumber kNoNumber = 0;
constexpr FileNumber kEndOfNumbers = 65535;
constexpr DWORD kLargestWrite = DWORD{1} << 30;

struct NumberedFiles {
    std::map<FileNumber, win32::OwnedFile> files;
    FileNumber next = kFirstNumber;
};

NumberedFiles& State() {
    static NumberedFiles state;
    return state;
}

std::int32_t PlatformError() {
    return static_cast<std::int32_t>(::GetLastError());
}

// The counter goes round; open files are far fewer than numbers.
FileNumber FreshNumber() {
    NumberedFiles& state = State();
    FileNumber number = kNoNumber;
    do number = state.next++;
    while (number == kNoNumber || number == kEndOfNumbers || state.files.contains(number));
    return number;
}

DWORD AccessOf(Permission permission) {
    switch (permission) {
    case Permission::kWrite:
    case Permission::kWriteToo: return GENERIC_WRITE;
    case Permission::kReadAndWrite:
    case Permission::kReadAndWriteShared: return GENERIC_READ | GENERIC_WRITE;
    default: return GENERIC_READ;
    }
}

Written WriteAtPosition(HANDLE file, std::span<const std::byte> bytes) {
    Written result;
    while (result.count < bytes.size()) {
        const std::size_t rest = bytes.size() - result.count;
        const auto step = static_cast<DWORD>(std::min<std::size_t>(rest, kLargestWrite));
        DWORD written = 0;
        const BOOL done = ::WriteFile(file, bytes.data() + result.count, step, &written);
        result.count += written;
        if (done == FALSE) {
            result.code = PlatformError();
            break;
        }
    }
    return result;
}

} // namespace

CreatedFile CreateFile(const std::u16string& folder_path, const std::u16string& name) {
    CreatedFile created;
    created.path = folder_path + name;
    const win32::OwnedFile file(CreateFileW(created.path.c_str(), GENERIC_WRITE, 0, CREATE_NEW));
    if (!file) {
        created.code = PlatformError();
        if (created.code == static_cast<std::int32_t>(ERROR_FILE_EXISTS)) created.code = kErrorFileExists;
    }
    return created;
}

OpenedFile OpenFile(const std::u16string& path, Permission permission) {
    const DWORD share =
        permission == Permission::kReadAndWriteShared ? FILE_SHARE_READ | FILE_SHARE_WRITE : 0;
    win32::OwnedFile file(CreateFileW(path.c_str(), AccessOf(permission), share, OPEN_EXISTING));
    if (!file) return {PlatformError(), kNoNumber};
    const FileNumber number = FreshNumber();
    State().files.emplace(number, std::move(file));
    return {0, number};
}

Written WriteFile(FileNumber number, PositionMode mode, std::int64_t offset,
                  std::span<const std::byte> bytes) {
    const auto found = State().files.find(number);
    constexpr std::int16_t kModeBits = 3;
    const auto used_mode = static_cast<PositionMode>(static_cast<std::int16_t>(mode) & kModeBits);
    if (found == State().files.end() || used_mode == PositionMode::kUnsupported)
        return {kErrorWrongParameter, 0};
    const HANDLE file = found->second.get();
    if (used_mode != PositionMode::kFromStart) return WriteAtPosition(file, bytes);

    LARGE_INTEGER old_position{};
    if (SetFilePointerEx(file, {0}, &old_position, FILE_CURRENT) == FALSE) return {PlatformError(), 0};
    Written result;
    if (SetFilePointerEx(file, {offset}, nullptr, FILE_BEGIN) == FALSE) {
        result.code = PlatformError();
    } else {
        result = WriteAtPosition(file, bytes);
    }
    SetFilePointerEx(file, old_position, nullptr, FILE_BEGIN);
    return result;
}

std::int32_t CloseFile(FileNumber number) {
    const auto found = State().files.find(number);
    if (found == State().files.end()) return kErrorWrongParameter;
    win32::OwnedFile file = std::move(found->second);
    State().files.erase(found);
    return file.Close() ? 0 : PlatformError();
}

void ResetNumberedFiles() {
    State() = NumberedFiles();
}

} // namespace corvane::native
