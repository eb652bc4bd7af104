#include "files/intermediate_file.h"

#include "files/temporary_files.h"

#include <new>
#include <utility>

namespace corvane {

IntermediateFile::IntermediateFile(IntermediateFile&& other) noexcept
    : file_(std::exchange(other.file_, std::nullopt)) {}

IntermediateFile& IntermediateFile::operator=(IntermediateFile&& other) noexcept {
    if (this != &other) {
        Delete();
        file_ = std::exchange(other.file_, std::nullopt);
    }
    return *this;
}

std::int32_t IntermediateFile::TakeName(std::string_view extension) {
    Delete();
    XFileSpec file;
    const std::int32_t code = MakeTemporaryFile(file, extension);
    if (code == 0) file_ = std::move(file);
    return code;
}

void IntermediateFile::Delete() noexcept {
    try {
        if (file_) DeleteFileOf(*file_);
    } catch (const std::bad_alloc&) {
        // There is not even the memory for its path: it stays.
    }
    file_.reset();
}

} // namespace corvane
