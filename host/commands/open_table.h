// What the commands on the records of a table begin with.
#pragma once

#include "host/commands/command_line.h"
#include "host/fields/record_values.h"
#include "host/fields/record_work.h"
#include "host/fields/records.h"
#include "host/fields/store.h"

#include <functional>
#include <optional>
#include <string>

namespace host {

/// The database FILE and the TABLE that the first two arguments name.
class OpenTable {
public:
    OpenTable() = default;
    OpenTable(const OpenTable&) = delete;
    OpenTable& operator=(const OpenTable&) = delete;

    /// The text says what failed; empty on success.
    [[nodiscard]] std::string Open(const CommandLine& line);

    [[nodiscard]] Connection& GetConnection() { return store_.GetConnection(); }
    [[nodiscard]] const Table& GetTable() const { return *table_; }
    [[nodiscard]] Records& GetRecords() { return *records_; }
    [[nodiscard]] RecordValues& Values() { return *values_; }

    /// Index of a field that is to be of that type; nullopt with the reason in `problem`.
    [[nodiscard]] std::optional<std::size_t> FieldOf(const std::string& name, FieldType type,
                                                     std::string& problem) const;

private:
    Store store_;
    const Table* table_ = nullptr;
    std::optional<Records> records_;
    std::optional<RecordValues> values_;
};

/// Calls `visit` for the number of each record up to `last`, in order, until it answers false. They are read
/// in portions, and none is being read while `visit` runs. The text says what failed.
std::string ForEachRecord(Records& records, std::int64_t last,
                          const std::function<bool(std::int64_t)>& visit);

/// True when a calculation parses, or is empty; else says on standard error where it does not.
bool Parses(const Engine& engine, const std::string& calculation);
/// The same for all calculations of the work.
bool Parses(const Engine& engine, const RecordWork& work);

/// Says what failed on standard error, and answers the exit status for it.
int CommandFailed(const std::string& problem);

} // namespace host
