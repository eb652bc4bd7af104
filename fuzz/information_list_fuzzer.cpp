#include "sounds/information_list.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// A zero byte parts the list from the key path. Values lie within the list, and lines take all of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = input.find('\0');
    const std::string_view list = input.substr(0, end);
    const std::string_view path = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);

    std::size_t bytes = 0;
    std::uint32_t count = 0;
    corvane::InformationLines lines(list);
    for (std::string_view line; lines.Next(line); ++count) {
        bytes += line.size();
        if (line.size() > 1023 || line.find_first_of("\r\n") != std::string_view::npos) std::abort();
    }
    if (bytes > list.size() || bytes + std::size_t{2} * count < list.size()) std::abort();
    using corvane::InformationSearch;
    if (count > 0 && corvane::FindInformationLine(list, count).outcome != InformationSearch::kFound)
        std::abort();
    if (corvane::FindInformationLine(list, count + 1).outcome == InformationSearch::kFound) std::abort();
    const corvane::FoundInformation found = corvane::FindInformationKey(list, path);
    if (found.outcome == InformationSearch::kFound && list.find(found.value) == std::string_view::npos)
        std::abort();
    return 0;
}
