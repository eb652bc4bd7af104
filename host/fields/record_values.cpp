#include "host/fields/record_values.h"

#include <utility>

namespace host {

RecordValues::RecordValues(Records& records, const Table& table)
    : records_(records), table_(table), values_(table.fields.size() + 1) {}

void RecordValues::MoveTo(std::int64_t record) {
    record_ = record;
    for (auto& value : values_) value.reset();
    values_.back() = FM_Data(fm::Decimal(record));
}

std::optional<std::size_t> RecordValues::FindField(std::string_view name) const {
    const auto separator = name.find("::");
    if (separator != std::string_view::npos) {
        if (name.substr(0, separator) != table_.key) return std::nullopt;
        name.remove_prefix(separator + 2);
    }
    if (name == kRecordNumber) return table_.fields.size();
    const Field* field = table_.Find(name);
    if (field == nullptr) return std::nullopt;
    return static_cast<std::size_t>(field - table_.fields.data());
}

const FM_Data* RecordValues::FieldValue(std::size_t field, std::string& problem) {
    std::optional<FM_Data>& value = values_[field];
    if (!value) {
        FM_Data read;
        problem = records_.Read(record_, field, read);
        if (!problem.empty()) return nullptr;
        value = std::move(read);
    }
    return &*value;
}

} // namespace host
