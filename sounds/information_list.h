// Reading information lists: lines of "Key (note): value", nested by indentation.
//
// A line ends at a carriage return, a line feed, or both in this order; one of more than 1,023 characters
// reads as several. s leading spaces put it on level (s + 2) / 2. A line without a colon heads the lines
// below it that are one level deeper. All views point into the list.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvane {

/// Walks the lines of a list.
class InformationLines {
public:
    explicit InformationLines(std::string_view list) : rest_(list) {}

    /// Takes the next line; false at the end of the list.
    bool Next(std::string_view& line);

private:
    std::string_view rest_;
};

std::size_t InformationLevel(std::string_view line);

/// The key of a line: without indentation, value and note.
std::string_view InformationKey(std::string_view line);

/// Everything behind the first colon and the spaces after it. A line without a colon is its own value.
std::string_view InformationValue(std::string_view line);

/// `key` without the note in parentheses at its end and the spaces before that.
std::string_view WithoutNote(std::string_view key);

/// 1 more than the carriage returns in the list; line feeds don't count here.
std::size_t CountInformationLines(std::string_view list);

enum class InformationSearch { kFound, kMissing, kNoKey, kEmptyKey };

struct FoundInformation {
    InformationSearch outcome = InformationSearch::kMissing;
    std::string_view value;
};

/// Value of line `number`, from 1.
FoundInformation FindInformationLine(std::string_view list, std::uint32_t number);

/// Value at a key path: one key a level, from level 1, separated by "/". The lines below a matched heading
/// are not fenced in: the search for the next key runs on into later sections.
FoundInformation FindInformationKey(std::string_view list, std::string_view path);

} // namespace corvane
