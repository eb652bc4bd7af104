#include "host/fields/catalogue.h"

#include "host/engine/lexer.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <array>
#include <set>

namespace host {
namespace {

constexpr std::int64_t kApplication = 0x43564442; // "CVDB"
constexpr std::int64_t kVersion = 1;

constexpr char kLayout[] = R"(
BEGIN;
PRAGMA application_id = 0x43564442;
CREATE TABLE corvane_fields (
    id INTEGER PRIMARY KEY,
    table_name TEXT NOT NULL,
    name TEXT NOT NULL,
    type TEXT NOT NULL CHECK (type IN ('text', 'number', 'container'))
) STRICT;
CREATE TABLE corvane_streams (
    id INTEGER PRIMARY KEY,
    field INTEGER NOT NULL REFERENCES corvane_fields,
    record INTEGER NOT NULL,
    position INTEGER NOT NULL,
    type TEXT NOT NULL,
    bytes BLOB NOT NULL,
    UNIQUE (field, record, position)
) STRICT;
CREATE TABLE corvane_runs (
    id INTEGER PRIMARY KEY,
    table_name TEXT NOT NULL,
    work TEXT NOT NULL,
    last_record INTEGER NOT NULL,
    failed INTEGER NOT NULL
) STRICT;
CREATE TABLE corvane_done (
    run INTEGER NOT NULL REFERENCES corvane_runs,
    record INTEGER NOT NULL,
    PRIMARY KEY (run, record)
) STRICT, WITHOUT ROWID;
PRAGMA user_version = 1;
COMMIT;
)";

struct TypeName {
    FieldType type;
    std::string_view text;
    std::string_view column; ///< SQL type: exact numbers are kept in whichever form holds them
};

constexpr auto kTypes = std::to_array<TypeName>({{FieldType::kText, "text", "TEXT"},
                                                 {FieldType::kNumber, "number", "ANY"},
                                                 {FieldType::kContainer, "container", "TEXT"}});

const TypeName& TypeRow(FieldType type) {
    return *std::ranges::find(kTypes, type, &TypeName::type);
}

// What calculations read as one name.
bool IsName(std::string_view name) {
    Lexer lexer(name);
    const Token token = lexer.Next();
    return token.kind == TokenKind::kName && token.text == name && name.find("::") == std::string_view::npos;
}

std::string NameProblem(std::string_view name, std::string_view key) {
    constexpr auto kTaken =
        std::to_array<std::string_view>({"and", "or", "xor", "not", "true", "false", kRecordNumber});
    const std::string quoted = '"' + std::string(name) + '"';
    if (!utf::IsValid(name) || !IsName(name))
        return quoted + R"( is no name: letters, digits, "_" and "." make one, and no digit begins it)";
    if (std::ranges::find(kTaken, key) != kTaken.end()) return quoted + " has a meaning of its own";
    return {};
}

// Deleting a record in any program deletes its streams.
std::string StreamsTrigger(const Table& table) {
    std::string fields;
    for (const Field& field : table.fields)
        if (field.type == FieldType::kContainer)
            fields += (fields.empty() ? "" : ", ") + std::to_string(field.id);
    if (fields.empty()) return {};
    return "CREATE TRIGGER " + SqlName(table.name + "_deleted") + " AFTER DELETE ON " + SqlName(table.name) +
           " BEGIN DELETE FROM corvane_streams WHERE field IN (" + fields + ") AND record = old.id; END;";
}

std::int64_t Pragma(Connection& connection, const char* name) {
    Statement statement = connection.Prepare(std::string("PRAGMA ") + name);
    return statement.Step() ? statement.Integer(0) : -1;
}

// In small letters. What a view gives may never end.
std::set<std::string> Views(Connection& connection) {
    std::set<std::string> names;
    Statement rows = connection.Prepare("SELECT name FROM sqlite_schema WHERE type = 'view'");
    while (rows.Step()) names.insert(utf::ToLower(rows.Text(0)));
    return names;
}

} // namespace

std::string_view FieldTypeText(FieldType type) {
    return TypeRow(type).text;
}

const Field* Table::Find(std::string_view field_name) const {
    const auto found = std::ranges::find(fields, utf::ToLower(field_name), &Field::key);
    return found == fields.end() ? nullptr : &*found;
}

std::optional<Field> ParseField(std::string_view text, std::string& problem) {
    const auto colon = text.rfind(':');
    const std::string_view type = colon == std::string_view::npos ? "" : text.substr(colon + 1);
    const auto row = std::ranges::find(kTypes, type, &TypeName::text);
    if (row == kTypes.end()) {
        problem = '"' + std::string(text) + "\" is no field: write NAME:text, NAME:number or NAME:container";
        return std::nullopt;
    }
    const std::string_view name = text.substr(0, colon);
    return Field{.id = 0, .name = std::string(name), .key = utf::ToLower(name), .type = row->type};
}

std::string NameProblem(const Table& table) {
    if (std::string problem = NameProblem(table.name, table.key); !problem.empty()) return problem;
    if (table.key.starts_with("corvane_") || table.key.starts_with("sqlite_"))
        return R"(a table's name does not begin with "corvane_" or "sqlite_")";
    for (auto field = table.fields.begin(); field != table.fields.end(); ++field) {
        if (std::string problem = NameProblem(field->name, field->key); !problem.empty()) return problem;
        if (std::ranges::find(table.fields.begin(), field, field->key, &Field::key) != field)
            return "two fields have the name \"" + field->name + '"';
    }
    return table.fields.empty() ? "a table needs a field" : "";
}

std::string SqlName(std::string_view name) {
    return '"' + std::string(name) + '"'; // names hold no quotes
}

std::string LoadTables(Connection& connection, std::vector<Table>& tables) {
    const std::set<std::string> views = Views(connection);
    if (views.contains("corvane_fields")) return "its table of fields is a view";
    Statement rows = connection.Prepare("SELECT id, table_name, name, type FROM corvane_fields ORDER BY id");
    while (rows.Step()) {
        const std::string_view table_name = rows.Text(1);
        if (tables.empty() || tables.back().name != table_name)
            tables.push_back({std::string(table_name), utf::ToLower(table_name), {}});
        const std::string_view name = rows.Text(2);
        const auto row = std::ranges::find(kTypes, rows.Text(3), &TypeName::text);
        if (row == kTypes.end()) continue;
        tables.back().fields.push_back({rows.Integer(0), std::string(name), utf::ToLower(name), row->type});
    }
    if (!rows.Good()) return connection.Problem();
    for (const Table& table : tables) { // another program may have put anything there
        if (std::string problem = NameProblem(table); !problem.empty()) return problem;
        if (views.contains(table.key)) return '"' + table.name + "\" is a view, no table";
    }
    return {};
}

std::string LayOut(Connection& connection) {
    return connection.Execute("PRAGMA journal_mode = WAL") && connection.Execute(kLayout)
               ? ""
               : connection.Problem();
}

std::string LayoutProblem(Connection& connection) {
    const std::int64_t application = Pragma(connection, "application_id");
    if (application < 0) return connection.Problem();
    if (application != kApplication) return "this is no database of corvane db create";
    const std::int64_t version = Pragma(connection, "user_version");
    if (version == kVersion) return {};
    return "this database has the layout " + std::to_string(version) + "; this program knows " +
           std::to_string(kVersion);
}

std::string AddTable(Connection& connection, Table& table) {
    std::string columns;
    Statement insertion =
        connection.Prepare("INSERT INTO corvane_fields (table_name, name, type) VALUES (?, ?, ?)");
    for (Field& field : table.fields) {
        const TypeName& type = TypeRow(field.type);
        insertion.Bind(1, table.name);
        insertion.Bind(2, field.name);
        insertion.Bind(3, type.text);
        if (!insertion.Run()) return connection.Problem();
        field.id = connection.LastRow();
        columns += ", " + SqlName(field.name) + ' ' + std::string(type.column);
    }
    const std::string statements = "CREATE TABLE " + SqlName(table.name) + " (id INTEGER PRIMARY KEY" +
                                   columns + ") STRICT;" + StreamsTrigger(table);
    return connection.Execute(statements.c_str()) ? "" : connection.Problem();
}

} // namespace host
