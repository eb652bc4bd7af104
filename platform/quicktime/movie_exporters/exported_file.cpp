#include "platform/quicktime/movie_exporters/exported_file.h"

#include "platform/quicktime/movies/file_io.h"

#include <algorithm>
#include <unistd.h>

namespace qt {

ExportedFile::~ExportedFile() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    if (!completed_) ::unlink(path_.c_str());
}

OSErr ExportedFile::Create() {
    descriptor_ = CreateFile(path_, replace_);
    return descriptor_ < 0 ? static_cast<OSErr>(descriptor_) : OSErr{noErr};
}

OSErr ExportedFile::Write(std::uint64_t offset, std::span<const std::byte> bytes) {
    if (code_ != noErr) return code_;
    code_ = WriteAt(descriptor_, offset, bytes);
    end_ = std::max(end_, offset + bytes.size());
    return code_;
}

} // namespace qt
