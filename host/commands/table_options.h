// Options of the commands on database files.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What import makes of a file.
enum class ImportKind : unsigned char {
    kAuto, ///< an image when its name ends like one, else a file
    kImage,
    kFile
};

struct TableOptions {
    std::string where;      ///< calculation that chooses records; empty: all
    std::string to;         ///< folder (Unix path)
    std::string name;       ///< calculation of a file name, or of a caption
    std::string name_field; ///< text field that takes the file's name; empty: none
    ImportKind kind = ImportKind::kAuto;
    std::size_t jobs = 1;
    bool by_reference = false;
    bool replace = false;
    bool resume = false;

    std::vector<std::string> given; ///< names of the options that the person gave
};

/// The text says what is wrong with the value.
std::string SetTableOption(TableOptions& options, std::string_view name, const char* value);

} // namespace host
