// The values of one record, as calculations see them.
#pragma once

#include "host/engine/field_source.h"
#include "host/fields/catalogue.h"
#include "host/fields/records.h"

#include <optional>
#include <vector>

namespace host {

/// Each value is read when it is first asked for. The record number is a field behind the others.
class RecordValues : public FieldSource {
public:
    /// Both outlive the values.
    RecordValues(Records& records, const Table& table);

    void MoveTo(std::int64_t record);
    [[nodiscard]] std::int64_t Record() const { return record_; }
    /// From now on this is the field's value here; the file is not changed.
    void Set(std::size_t field, FM_Data value) { values_[field] = std::move(value); }

    [[nodiscard]] std::optional<std::size_t> FindField(std::string_view name) const override;
    const FM_Data* FieldValue(std::size_t field, std::string& problem) override;

private:
    Records& records_;
    const Table& table_;
    std::int64_t record_ = 0;
    std::vector<std::optional<FM_Data>> values_;
};

} // namespace host
