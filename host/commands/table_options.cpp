#include "host/commands/table_options.h"

#include <charconv>

namespace host {
namespace {

std::string SetJobs(TableOptions& options, std::string_view value) {
    constexpr std::size_t kMost = 256;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), options.jobs);
    if (error == std::errc() && end == value.data() + value.size() && options.jobs >= 1 &&
        options.jobs <= kMost)
        return {};
    return "--jobs takes a number from 1 to 256, not \"" + std::string(value) + '"';
}

std::string SetKind(TableOptions& options, std::string_view value) {
    if (value == "auto") {
        options.kind = ImportKind::kAuto;
    } else if (value == "image") {
        options.kind = ImportKind::kImage;
    } else if (value == "file") {
        options.kind = ImportKind::kFile;
    } else {
        return "--as takes auto, image or file, not \"" + std::string(value) + '"';
    }
    return {};
}

} // namespace

std::string SetTableOption(TableOptions& options, std::string_view name, const char* value) {
    options.given.emplace_back(name);
    if (name == "jobs") return SetJobs(options, value);
    if (name == "as") return SetKind(options, value);
    if ((name == "where" || name == "name") && *value == '\0')
        return "--" + std::string(name) + " takes a calculation, not an empty text";
    if (name == "where") {
        options.where = value;
    } else if (name == "to") {
        options.to = value;
    } else if (name == "name") {
        options.name = value;
    } else if (name == "name-field") {
        options.name_field = value;
    } else if (name == "by-reference") {
        options.by_reference = true;
    } else if (name == "replace") {
        options.replace = true;
    } else {
        options.resume = true;
    }
    return {};
}

} // namespace host
