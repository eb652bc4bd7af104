// The file that an export writes.
#pragma once

#include "platform/quicktime/types.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace qt {

/// A new file, removed again unless it is completed. One that takes the place of another is written beside
/// it, so that the other is whole until then; behind a symbolic link, it is the file that the link leads to.
/// The first code of a write is kept: libraries that write through it answer codes of their own.
class ExportedFile {
public:
    /// `replace`: takes the place of a file that is there, else such a file is dupFNErr; a folder always is.
    ExportedFile(std::string path, bool replace) : path_(std::move(path)), replace_(replace) {}
    ExportedFile(const ExportedFile&) = delete;
    ExportedFile& operator=(const ExportedFile&) = delete;
    ~ExportedFile();

    OSErr Create();
    /// At the file's end.
    OSErr Append(std::span<const std::byte> bytes) { return Write(end_, bytes); }
    /// Anywhere; what lies between the end and an offset behind it becomes zero.
    OSErr Write(std::uint64_t offset, std::span<const std::byte> bytes);
    [[nodiscard]] std::uint64_t GetSize() const { return end_; }
    [[nodiscard]] OSErr GetCode() const { return code_; }
    /// The file stays, under its name.
    OSErr Complete();

private:
    std::string path_;
    bool replace_;
    std::string written_path_; ///< until it is completed
    bool is_named_ = false;    ///< stands there already
    int descriptor_ = -1;
    std::uint64_t end_ = 0;
    OSErr code_ = noErr;
    bool completed_ = false;
};

} // namespace qt
