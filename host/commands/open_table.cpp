#include "host/commands/open_table.h"

#include "host/commands/results.h"
#include "host/commands/terminal_text.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace host {

std::string OpenTable::Open(const CommandLine& line) {
    if (line.arguments.size() < 2) return line.command + " needs a database file and a table";
    if (std::string problem = store_.Open(line.arguments[0]); !problem.empty()) return problem;
    table_ = store_.FindTable(line.arguments[1]);
    if (table_ == nullptr) return line.arguments[0] + " has no table \"" + line.arguments[1] + '"';
    records_.emplace(store_.GetConnection(), *table_);
    values_.emplace(*records_, *table_);
    return {};
}

std::optional<std::size_t> OpenTable::FieldOf(const std::string& name, FieldType type,
                                              std::string& problem) const {
    const Field* field = table_->Find(name);
    if (field != nullptr && field->type == type)
        return static_cast<std::size_t>(field - table_->fields.data());
    problem = table_->name + " has no " + std::string(FieldTypeText(type)) + " field \"" + name + '"';
    return std::nullopt;
}

std::string ForEachRecord(Records& records, std::int64_t last,
                          const std::function<bool(std::int64_t)>& visit) {
    constexpr std::size_t kPortion = 1000;
    std::vector<std::int64_t> numbers;
    std::int64_t after = 0;
    while (true) {
        if (std::string problem = records.Numbers(after, last, kPortion, numbers); !problem.empty())
            return problem;
        if (numbers.empty()) return {};
        for (const std::int64_t number : numbers)
            if (!visit(number)) return {};
        after = numbers.back();
    }
}

bool Parses(const Engine& engine, const std::string& calculation) {
    if (calculation.empty()) return true;
    const auto error = engine.Check(calculation);
    if (error) std::fputs(ParseErrorReport(calculation, *error, 1).c_str(), stderr);
    return !error;
}

bool Parses(const Engine& engine, const RecordWork& work) {
    return Parses(engine, work.condition) && std::ranges::all_of(work.calculations, [&](const auto& part) {
               return Parses(engine, part.calculation);
           });
}

int CommandFailed(const std::string& problem) {
    std::fprintf(stderr, "corvane: %s\n", TerminalText(problem).c_str());
    return kUsageError;
}

} // namespace host
