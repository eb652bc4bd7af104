#include "host/commands/commands.h"
#include "host/commands/open_table.h"
#include "platform/text/utf.h"

namespace host {
namespace {

std::string MakeTable(const std::vector<std::string>& arguments) {
    Table table{arguments[2], utf::ToLower(arguments[2]), {}};
    std::string problem;
    for (std::size_t i = 3; i < arguments.size(); ++i) {
        auto field = ParseField(arguments[i], problem);
        if (!field) return problem;
        table.fields.push_back(std::move(*field));
    }
    Store store;
    problem = store.Open(arguments[1]);
    return problem.empty() ? store.AddTable(std::move(table)) : problem;
}

} // namespace

int Db(Session&, const CommandLine& line) {
    const std::vector<std::string>& arguments = line.arguments;
    std::string problem;
    if (arguments.size() == 2 && arguments[0] == "create") {
        problem = Store::Create(arguments[1]);
    } else if (arguments.size() >= 3 && arguments[0] == "table") {
        problem = MakeTable(arguments);
    } else {
        problem = "usage: corvane db create FILE, or corvane db table FILE NAME FIELD:TYPE…";
    }
    return problem.empty() ? 0 : CommandFailed(problem);
}

} // namespace host
