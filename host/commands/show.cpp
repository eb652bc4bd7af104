#include "host/commands/commands.h"
#include "host/commands/json.h"
#include "host/commands/open_table.h"
#include "host/commands/output.h"
#include "host/fields/record_work.h"

#include <limits>

namespace host {
namespace {

std::string TextOf(const Table& table) {
    std::string text = table.name;
    for (const Field& field : table.fields)
        text += '\t' + field.name + ':' + std::string(FieldTypeText(field.type));
    return text;
}

// What would break a line of columns is shown as another character.
void AddOneLine(std::string_view text, std::string& line) {
    for (const char c : text) line += c == '\t' || c == '\n' || c == '\r' ? ' ' : c;
}

// A number or text as it is, a container's streams with their sizes, or else its reference.
void AddColumn(const FieldFacts& facts, std::string& line) {
    if (facts.streams.empty()) AddOneLine(facts.text, line);
    for (const FieldFacts::Stream& stream : facts.streams) {
        if (&stream != &facts.streams.front()) line += ", ";
        AddOneLine(stream.type, line);
        line += ' ' + std::to_string(stream.size);
    }
}

class Lister {
public:
    Lister(Session& session, const CommandLine& line) : session_(session), line_(line) {}

    int Run() {
        if (std::string problem = table_.Open(line_); !problem.empty()) return CommandFailed(problem);
        const RecordWork work{line_.table.where, {}};
        RecordWorker worker(session_.GetEngine(), table_.Values(), table_.GetTable(), work);
        if (!Parses(session_.GetEngine(), work.condition)) return kUsageError;
        if (!line_.json) Heading();
        std::string problem;
        const Snapshot snapshot(table_.GetConnection());
        std::string reading = ForEachRecord(table_.GetRecords(), std::numeric_limits<std::int64_t>::max(),
                                            [&](std::int64_t record) {
                                                const RecordResult result = worker.Do(record);
                                                if (result.failure) {
                                                    output_.Complain("record " + std::to_string(record) +
                                                                     ": " + result.failure->Text() + '\n');
                                                    status_ = 1;
                                                } else if (result.chosen) {
                                                    problem = Line(record);
                                                }
                                                return problem.empty() && output_.Good();
                                            });
        output_.Flush();
        if (problem.empty()) problem = std::move(reading);
        if (!problem.empty()) return CommandFailed(problem);
        return output_.Good() ? status_ : kUsageError;
    }

private:
    void Heading() {
        output_.Buffer() += kRecordNumber;
        for (const Field& field : table_.GetTable().fields) output_.Buffer() += '\t' + field.name;
        output_.Buffer() += '\n';
    }

    std::string Line(std::int64_t record) {
        std::string problem = table_.GetRecords().ReadFacts(record, facts_);
        if (!problem.empty()) return problem;
        std::string& text = output_.Buffer();
        if (line_.json) {
            text += JsonOf(record, table_.GetTable(), facts_);
        } else {
            text += std::to_string(record);
            for (const FieldFacts& fact : facts_) AddColumn(fact, text += '\t');
        }
        text += '\n';
        output_.EndPiece();
        return {};
    }

    Session& session_;
    const CommandLine& line_;
    OpenTable table_;
    Output output_;
    std::vector<FieldFacts> facts_;
    int status_ = 0;
};

int ShowTables(const CommandLine& line) {
    Store store;
    if (std::string problem = store.Open(line.arguments[0]); !problem.empty()) return CommandFailed(problem);
    Output output;
    for (const Table& table : store.Tables())
        output.Buffer() += (line.json ? JsonOf(table) : TextOf(table)) + '\n';
    output.Flush();
    return output.Good() ? 0 : kUsageError;
}

} // namespace

int Show(Session& session, const CommandLine& line) {
    if (line.arguments.size() == 1) return ShowTables(line);
    return Lister(session, line).Run();
}

} // namespace host
