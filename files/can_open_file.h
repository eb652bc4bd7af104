// What the media layer can make of a file.
#pragma once

#include "platform/quicktime/data_references.h"

#include <cstdint>
#include <string_view>

namespace corvane {

struct FileUse {
    std::int32_t code = 0;
    bool as_image = false;
    bool as_movie = false;
    bool prefer_image = false;
};

/// Looks into a file on this machine; a file on another one is judged by its name's extension, without which
/// it is -37. Other codes: those of FileOfDataReference for a reference that leads to no file, and -35 for a
/// drive letter that stands for another machine.
FileUse CanOpenFile(const qt::DataReference& reference);

/// The judgement by extension alone, of a native path (UTF-8).
FileUse UseByExtension(std::string_view path);

} // namespace corvane
