// Image files made by ImageMagick in a scratch folder.
#pragma once

#include "platform/quicktime/data_source.h"
#include "tests/support/fake_host.h"
#include "tests/support/files.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvane::test {

using Bytes = std::vector<std::byte>;

inline Bytes FileBytes(const std::string& path) {
    const std::string text = ReadBytes(path);
    const auto* first = reinterpret_cast<const std::byte*>(text.data());
    return {first, first + text.size()};
}

class MadeImages {
public:
    /// Runs convert with these arguments and the output file `name`; returns the file's path. What convert
    /// makes at random is the same in every run.
    [[nodiscard]] std::string Make(const std::string& arguments, const std::string& name) const {
        std::string path = folder.Path(name.substr(name.find(':') + 1));
        const std::string prefix = name.substr(0, name.find(':') + 1); // "png8:x.png"
        const std::string command = "/usr/bin/convert -seed 7 " + arguments + " '" + prefix + path + "'";
        if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
        return path;
    }

    /// Runs tiffcp with these options; returns the path of the copy.
    [[nodiscard]] std::string CopyTiff(const std::string& options, const std::string& source) const {
        std::string copy = folder.Path("copy.tif");
        const std::string command = "tiffcp " + options + " '" + source + "' '" + copy + "'";
        if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
        return copy;
    }

    [[nodiscard]] Bytes MakeBytes(const std::string& arguments, const std::string& name) const {
        return FileBytes(Make(arguments, name));
    }

    ScratchDrives folder;
};

} // namespace corvane::test
