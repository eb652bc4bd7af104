// Files that are created, opened and written through numbers. Codes: 0, one that is named here, or the
// platform's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace corvane::native {

using FileNumber = std::uint16_t;

/// How a file is opened. Every other value reads only. All but the last keep other openers out.
enum class Permission : std::int16_t {
    kRead = 1,
    kWrite = 2,
    kReadAndWrite = 3,
    kReadAndWriteShared = 4,
    kWriteToo = 32
};

enum class PositionMode : std::int16_t {
    kAtPosition = 0, ///< at the file's position
    kFromStart = 1,  ///< at the offset; the position stays where it was
    kUnsupported = 2 ///< -50
};

struct CreatedFile {
    std::int32_t code = 0;
    std::u16string path; ///< with code 0, and with -48
};

/// Makes an empty file in the folder (its path ends with "\"); -48 when there is one.
CreatedFile CreateFile(const std::u16string& folder_path, const std::u16string& name);

struct OpenedFile {
    std::int32_t code = 0;
    FileNumber number = 0;
};

/// Opens an existing file. Numbers count up from 100.
OpenedFile OpenFile(const std::u16string& path, Permission permission);

struct Written {
    std::int32_t code = 0;
    std::size_t count = 0; ///< bytes that were written, on failure too
};

/// Only the two low bits of `mode` count; 3 is like 0. -50 for an unknown number.
Written WriteFile(FileNumber number, PositionMode mode, std::int64_t offset,
                  std::span<const std::byte> bytes);

/// -50 for an unknown number. Some file systems tell only here that there was no room.
std::int32_t CloseFile(FileNumber number);

/// No file is open, and the next number is 100: the state at start-up. Open files are closed.
void ResetNumberedFiles();

} // namespace corvane::native
