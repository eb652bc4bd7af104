#pragma once

#include <cstddef>
#include <string>

namespace host {

/// Why a text is no calculation, and where. Lines and columns count from 1, columns in characters.
struct ParseError {
    std::size_t line = 1;
    std::size_t column = 1;
    std::string message;
};

} // namespace host
