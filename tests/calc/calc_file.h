// A test that is written as calculations; README.md in this folder has the format.
#pragma once

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace calc {

/// What a step has to give: one of `= ~ ? ! @` and what stands behind it.
struct Expectation {
    std::size_t line;
    char kind;
    std::string text;
};

/// A calculation (`>`) or a command (`$`) with what is expected of it.
struct Step {
    std::size_t line;
    char kind;
    std::string text;
    std::vector<Expectation> expectations;
};

struct File {
    std::vector<std::pair<std::string, std::string>> options; ///< `%` lines: name and value
    std::vector<Step> steps;
};

/// A line that has no place where it stands.
class FormatError : public std::runtime_error {
public:
    FormatError(std::size_t number, const std::string& message) : std::runtime_error(message), line(number) {}
    std::size_t line;
};

File Parse(std::string_view text);

} // namespace calc
