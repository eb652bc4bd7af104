#include "sounds/tag_file.h"

#include "platform/win32/errors.h"
#include "platform/win32/file_handles.h"
#include "platform/win32/rewrite_file.h"
#include "plugin/errors.h"
#include "sounds/tag_v1.h"

#include <utility>

namespace corvane {
namespace {

constexpr std::int32_t kDiskFull = -34;
constexpr std::int32_t kInUse = -47;
constexpr std::int32_t kInputOutput = -36;

win32::OwnedFile Open(const std::u16string& path, DWORD access, DWORD share) {
    return win32::OwnedFile(CreateFileW(path.c_str(), access, share, OPEN_EXISTING));
}

bool ReadAll(HANDLE file, std::string& bytes, std::size_t from) {
    DWORD done = 0;
    const std::size_t size = bytes.size() - from;
    return ReadFile(file, bytes.data() + from, static_cast<DWORD>(size), &done) && done == size;
}

// The last bytes of a file, if they are an ID3v1 tag; else nothing.
std::string ReadV1(HANDLE file, std::int64_t file_size, std::size_t behind) {
    if (file_size < static_cast<std::int64_t>(behind + kV1Size)) return {};
    std::string bytes(kV1Size, '\0');
    const LARGE_INTEGER place{file_size - static_cast<std::int64_t>(kV1Size)};
    if (!SetFilePointerEx(file, place, nullptr, FILE_BEGIN) || !ReadAll(file, bytes, 0)) return {};
    return IsV1Tag(bytes) ? bytes : std::string();
}

std::int32_t CodeOf(DWORD error) {
    switch (error) {
    case ERROR_SUCCESS: return 0;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return kErrorFileNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT: return kErrorWritePermission;
    case ERROR_SHARING_VIOLATION: return kInUse;
    case ERROR_DISK_FULL:
    case ERROR_FILE_TOO_LARGE: return kDiskFull;
    case ERROR_NOT_ENOUGH_MEMORY: return kErrorOutOfMemory;
    default: return kInputOutput;
    }
}

} // namespace

std::int32_t TagFile::Link(std::u16string path) {
    path_ = std::move(path);
    const win32::OwnedFile file = Open(path_, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
    LARGE_INTEGER file_size{};
    if (!file || !GetFileSizeEx(file.get(), &file_size)) return kErrorFileNotFound;
    std::string bytes(Id3Tag::kHeaderSize, '\0');
    if (file_size.QuadPart < static_cast<std::int64_t>(bytes.size())) return 0;
    if (!ReadAll(file.get(), bytes, 0)) return kErrorFileNotFound;
    const std::size_t size = Id3Tag::SizeAtStart(bytes);
    if (size == 0) return 0;
    if (file_size.QuadPart < static_cast<std::int64_t>(size)) return kUnreadableTag;
    bytes.resize(size);
    if (!ReadAll(file.get(), bytes, Id3Tag::kHeaderSize)) return kErrorFileNotFound;
    if (!tag_.Parse(std::move(bytes))) return kUnreadableTag;
    tag_size_ = size;
    return 0;
}

void TagFile::RemoveAll() {
    tag_.RemoveAll();
    changed_.clear();
    removed_all_ = true;
}

void TagFile::Set(const TagName& name, std::string_view value) {
    tag_.RemoveIf([&](const TagFrame& frame) { return IsFrameOf(name, frame.id); });
    changed_.push_back(&name);
    if (!value.empty()) tag_.Append(FrameIdFor(name, tag_.Version()), EncodeTagText(value, name.content));
}

std::int32_t TagFile::Update() const {
    if (changed_.empty() && !removed_all_) return 0;
    // Opened for writing, so that no file is replaced that may not be written, or that somebody else writes.
    const win32::OwnedFile file = Open(path_, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ);
    LARGE_INTEGER size{};
    if (!file || !GetFileSizeEx(file.get(), &size)) return CodeOf(GetLastError());
    const auto file_size = static_cast<std::uint64_t>(size.QuadPart);
    if (file_size < tag_size_) return kInUse;
    const std::optional<std::string> tag = tag_.Render(tag_size_);
    if (!tag) return kErrorOutOfMemory;

    const std::string old_v1 = ReadV1(file.get(), size.QuadPart, tag_size_);
    const std::string kept_v1 = removed_all_ ? std::string() : old_v1;
    std::string v1;
    if (!tag->empty() || !kept_v1.empty()) v1 = UpdatedV1Tag(kept_v1, tag_, changed_);
    const win32::FilePart parts[] = {{*tag}, {{}, tag_size_, file_size - tag_size_ - old_v1.size()}, {v1}};
    return CodeOf(win32::RewriteFile(path_.c_str(), parts));
}

} // namespace corvane
