// A database file: its tables, and the way to their records.
#pragma once

#include "host/fields/catalogue.h"
#include "host/fields/connection.h"

#include <string>
#include <string_view>
#include <vector>

namespace host {

class Store {
public:
    /// Makes a new file with no tables; one that is there is left alone. This and all that follows: the text
    /// says what failed, empty on success.
    [[nodiscard]] static std::string Create(const std::string& path);
    [[nodiscard]] std::string Open(const std::string& path);

    [[nodiscard]] std::string AddTable(Table table);
    [[nodiscard]] const std::vector<Table>& Tables() const { return tables_; }
    /// Found without regard to case; nullptr when there is none. Good until a table is added.
    [[nodiscard]] const Table* FindTable(std::string_view name) const;

    [[nodiscard]] Connection& GetConnection() { return connection_; }

private:
    Connection connection_;
    std::vector<Table> tables_;
};

} // namespace host
