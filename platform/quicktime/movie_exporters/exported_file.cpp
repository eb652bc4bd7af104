#include "platform/quicktime/movie_exporters/exported_file.h"

#include "platform/quicktime/movies/file_io.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/win32/temporary_names.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qt {
namespace {

bool IsFolder(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// As for all files: their owner may not write them.
bool IsReadOnly(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && (status.st_mode & S_IWUSR) == 0;
}

std::string DescriptorPath(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

/// A file without a name, which goes with the process whatever ends it; below 0 where there can be none.
int CreateNameless(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    if (descriptor < 0 || ::access(DescriptorPath(descriptor).c_str(), F_OK) == 0) return descriptor;
    ::close(descriptor);
    return -1;
}

bool GiveName(int descriptor, const std::string& path) {
    return ::linkat(AT_FDCWD, DescriptorPath(descriptor).c_str(), AT_FDCWD, path.c_str(),
                    AT_SYMLINK_FOLLOW) == 0;
}

} // namespace

ExportedFile::~ExportedFile() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    if (!completed_ && is_named_) ::unlink(written_path_.c_str());
}

OSErr ExportedFile::Create() {
    if (IsFolder(path_)) return dupFNErr;
    written_path_ = path_;
    if (replace_) {
        // A link stays, and leads to the new file then.
        std::array<char, PATH_MAX> resolved;
        if (::realpath(path_.c_str(), resolved.data()) != nullptr) path_ = resolved.data();
        if (IsReadOnly(path_)) return wrPermErr;
        const std::string folder = path_.substr(0, path_.rfind('/') + 1);
        written_path_ = folder + win32::UnfinishedName();
        descriptor_ = CreateNameless(folder);
        if (descriptor_ >= 0) return noErr;
    }
    descriptor_ = CreateFile(written_path_, false);
    is_named_ = descriptor_ >= 0;
    return is_named_ ? OSErr{noErr} : static_cast<OSErr>(descriptor_);
}

OSErr ExportedFile::Complete() {
    if (const OSErr code = CheckWrites(descriptor_); code != noErr) return code;
    if (!is_named_ && !GiveName(descriptor_, written_path_)) return WriteError(errno);
    is_named_ = true;
    if (replace_ && std::rename(written_path_.c_str(), path_.c_str()) != 0) return WriteError(errno);
    completed_ = true;
    return noErr;
}

OSErr ExportedFile::Write(std::uint64_t offset, std::span<const std::byte> bytes) {
    if (code_ != noErr) return code_;
    code_ = WriteAt(descriptor_, offset, bytes);
    end_ = std::max(end_, offset + bytes.size());
    return code_;
}

} // namespace qt
