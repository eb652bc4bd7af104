// Tables and fields: their names, their types, and how the file keeps them.
#pragma once

#include "host/fields/connection.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class FieldType : std::uint8_t { kText, kNumber, kContainer };

std::string_view FieldTypeText(FieldType type);

struct Field {
    std::int64_t id = 0; ///< its row in corvane_fields; 0 for the record number, which every table has
    std::string name;
    std::string key; ///< the name in lower case: names are found without regard to case
    FieldType type = FieldType::kText;
};

struct Table {
    std::string name;
    std::string key;
    std::vector<Field> fields;

    /// The field of that name, or nullptr; "id" is none of them.
    [[nodiscard]] const Field* Find(std::string_view field_name) const;
};

/// Name of the record number: a number field of every table that can't be set.
inline constexpr std::string_view kRecordNumber = "id";

/// "name:type". nullopt, with the reason in `problem`, when it is not that.
std::optional<Field> ParseField(std::string_view text, std::string& problem);

/// Why a table, or a field of it, can't have its name; empty when all is well.
std::string NameProblem(const Table& table);

/// A name as SQL writes it, in double quotes.
std::string SqlName(std::string_view name);

/// The tables of the file, in the order in which they were made. The text says what failed.
std::string LoadTables(Connection& connection, std::vector<Table>& tables);

/// Lays out an empty file.
std::string LayOut(Connection& connection);
/// Empty when the file is laid out as this program does; else what it is.
std::string LayoutProblem(Connection& connection);

/// Adds a table, and gives its fields their ids. In a transaction of the caller.
std::string AddTable(Connection& connection, Table& table);

} // namespace host
