#include "platform/quicktime/movie_exporters/exported_file.h"

#include "platform/quicktime/movies/file_io.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/win32/temporary_names.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace qt {
namespace {

bool IsFolder(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

ExportedFile::~ExportedFile() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    if (!completed_) ::unlink(written_path_.c_str());
}

OSErr ExportedFile::Create() {
    if (IsFolder(path_)) return dupFNErr;
    written_path_ = replace_ ? path_.substr(0, path_.rfind('/') + 1) + win32::UnfinishedName() : path_;
    descriptor_ = CreateFile(written_path_, false);
    return descriptor_ < 0 ? static_cast<OSErr>(descriptor_) : OSErr{noErr};
}

OSErr ExportedFile::Complete() {
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
