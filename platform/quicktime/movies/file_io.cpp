#include "platform/quicktime/movies/file_io.h"

#include "platform/quicktime/movies/movie_files.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace qt {

OSErr WriteError(int error) {
    switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return dskFulErr;
    case EEXIST: return dupFNErr;
    case ENOENT:
    case ENOTDIR: return fnfErr;
    case EACCES:
    case EPERM:
    case EROFS: return wrPermErr;
    default: return ioErr;
    }
}

int CreateFile(const std::string& path, bool replace) {
    if (replace) ::unlink(path.c_str());
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    return descriptor >= 0 ? descriptor : WriteError(errno);
}

OSErr WriteAt(int descriptor, std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const auto count = ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return WriteError(errno);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
    return noErr;
}

OSErr CheckWrites(int descriptor) {
    const int second = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    return second >= 0 && ::close(second) == 0 ? OSErr{noErr} : WriteError(errno);
}

std::size_t ReadAt(int descriptor, std::uint64_t offset, std::span<std::byte> buffer) noexcept {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const auto count = ::pread(descriptor, buffer.data() + done, buffer.size() - done,
                                   static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

} // namespace qt
