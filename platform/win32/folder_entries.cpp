#include "platform/win32/folder_entries.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace win32 {
namespace {

// Small enough that the allocator keeps it: a fresh mapping for every folder costs more than the reading.
constexpr std::size_t kBufferSize = std::size_t{32} * 1024;

bool IsSelfOrParent(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

} // namespace

FolderReader::FolderReader() : buffer_(std::make_unique_for_overwrite<std::byte[]>(kBufferSize)) {}

std::span<const FolderEntry> FolderReader::NextBlock(int folder) {
    entries_.clear();
    error_ = 0;
    while (entries_.empty()) { // a block can hold "." and ".." alone
        const ssize_t size = getdents64(folder, buffer_.get(), kBufferSize);
        if (size < 0) error_ = errno;
        if (size <= 0) break;
        for (std::size_t offset = 0; offset < static_cast<std::size_t>(size);) {
            std::uint16_t length = 0;
            FolderEntry entry{};
            const std::byte* record = buffer_.get() + offset;
            std::memcpy(&entry.inode, record + offsetof(dirent64, d_ino), sizeof entry.inode);
            std::memcpy(&length, record + offsetof(dirent64, d_reclen), sizeof length);
            std::memcpy(&entry.type, record + offsetof(dirent64, d_type), sizeof entry.type);
            entry.name = reinterpret_cast<const char*>(record + offsetof(dirent64, d_name));
            if (!IsSelfOrParent(entry.name)) entries_.push_back(entry);
            offset += length;
        }
    }
    return entries_;
}

unsigned char TypeOf(int folder, const FolderEntry& entry) {
    if (entry.type != DT_UNKNOWN) return entry.type;
    struct stat status {};
    if (fstatat(folder, entry.name, &status, AT_SYMLINK_NOFOLLOW) != 0) return DT_UNKNOWN;
    return static_cast<unsigned char>(IFTODT(status.st_mode));
}

} // namespace win32
