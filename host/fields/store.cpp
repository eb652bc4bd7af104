#include "host/fields/store.h"

#include "platform/text/utf.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace host {
namespace {

// A relative path that SQLite could take for one of its own words gets a folder in front.
std::string Absolute(const std::string& path) {
    std::error_code error;
    return std::filesystem::absolute(path, error).string();
}

} // namespace

std::string Store::Create(const std::string& path) {
    const std::string file = Absolute(path);
    const int descriptor = ::open(file.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    if (descriptor < 0) return path + ": " + std::strerror(errno);
    ::close(descriptor);
    std::string problem;
    {
        Connection connection;
        problem = connection.Open(file);
        if (problem.empty()) problem = LayOut(connection);
    }
    if (!problem.empty()) ::unlink(file.c_str());
    return problem;
}

std::string Store::Open(const std::string& path) {
    if (std::string problem = connection_.Open(Absolute(path)); !problem.empty()) return problem;
    if (std::string problem = LayoutProblem(connection_); !problem.empty()) return path + ": " + problem;
    return LoadTables(connection_, tables_);
}

std::string Store::AddTable(Table table) {
    if (std::string problem = NameProblem(table); !problem.empty()) return problem;
    Transaction transaction(connection_);
    if (!transaction.Good()) return connection_.Problem();
    std::vector<Table> tables; // another process may have added one
    if (std::string problem = LoadTables(connection_, tables); !problem.empty()) return problem;
    if (std::ranges::find(tables, table.key, &Table::key) != tables.end())
        return "there is a table with the name \"" + table.name + '"';
    if (std::string problem = host::AddTable(connection_, table); !problem.empty()) return problem;
    if (!transaction.Commit()) return connection_.Problem();
    tables.push_back(std::move(table));
    tables_ = std::move(tables);
    return {};
}

const Table* Store::FindTable(std::string_view name) const {
    const auto found = std::ranges::find(tables_, utf::ToLower(name), &Table::key);
    return found == tables_.end() ? nullptr : &*found;
}

} // namespace host
