#include "fuzz/fuzz_target.h"
#include "platform/text/utf.h"
#include "sounds/information_list.h"

// A zero byte parts the list from the key path. Values lie within the list, and lines take all of it.
void Fuzz(std::string_view input) {
    const std::size_t end = input.find('\0');
    const std::string_view list = input.substr(0, end);
    const std::string_view path = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);

    std::size_t bytes = 0;
    std::uint32_t count = 0;
    corvane::InformationLines lines(list);
    for (std::string_view line; lines.Next(line); ++count) {
        bytes += line.size();
        std::size_t characters = 0;
        for (std::size_t position = 0; position < line.size(); ++characters) utf::Next(line, position);
        Require(characters <= 1023 && line.find_first_of("\r\n") == std::string_view::npos);
    }
    Require(bytes <= list.size() && bytes + std::size_t{2} * count >= list.size());
    using corvane::InformationSearch;
    const auto line_is_found = [&](std::uint32_t number) {
        return corvane::FindInformationLine(list, number).outcome == InformationSearch::kFound;
    };
    Require((count == 0 || line_is_found(count)) && !line_is_found(count + 1));
    const corvane::FoundInformation found = corvane::FindInformationKey(list, path);
    Require(found.outcome != InformationSearch::kFound || list.find(found.value) != std::string_view::npos);
}
