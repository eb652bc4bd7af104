// JSON forms of what the commands show.
#pragma once

#include "host/engine/engine.h"
#include "host/fields/records.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What a plug-in says about itself.
struct PluginFacts {
    std::string name;
    std::string description;
    std::string options;
    std::intptr_t answer = 0; ///< to its start-up call
    std::string version;      ///< empty when the plug-in has no function that tells it
};

/// Each one line, without its end. Malformed UTF-8 becomes U+FFFD.
std::string JsonOf(std::string_view calculation, const Outcome& outcome);
std::string JsonOf(const fm::ExternalFunction& function);
std::string JsonOf(const PluginFacts& facts);
std::string JsonOf(const Table& table);
/// The record of a table; a container is an object of its reference and its streams without their bytes, a
/// number its decimal text. `facts` has one for each field of the table.
std::string JsonOf(std::int64_t record, const Table& table, const std::vector<FieldFacts>& facts);

} // namespace host
