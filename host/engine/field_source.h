// The record that calculations are worked out for.
#pragma once

#include "platform/fmwrapper/objects.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace host {

class FieldSource {
public:
    virtual ~FieldSource() = default;
    /// The field that a name in lower case stands for, "field" or "table::field"; nullopt when none does.
    [[nodiscard]] virtual std::optional<std::size_t> FindField(std::string_view name) const = 0;
    /// Its value in the current record, good until the next record or change; nullptr, with the reason in
    /// `problem`, when it can't be had.
    virtual const FM_Data* FieldValue(std::size_t field, std::string& problem) = 0;
};

} // namespace host
