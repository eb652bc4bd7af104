#include "host/commands/commands.h"
#include "host/commands/json.h"
#include "host/commands/open_table.h"
#include "host/commands/output.h"
#include "host/engine/stream_type.h"
#include "host/fields/record_work.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace host {
namespace {

std::string TablesText(const Store& store) {
    std::string text;
    for (const Table& table : store.Tables()) {
        text += table.name;
        for (const Field& field : table.fields)
            text += '\t' + field.name + ':' + std::string(FieldTypeText(field.type));
        text += '\n';
    }
    return text;
}

// What would break a line of columns is shown as another character.
std::string OneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
    return text;
}

std::string FactsText(const ContainerFacts& facts) {
    std::string text = OneLine(facts.streams.empty() ? facts.reference : "");
    for (const ContainerFacts::Stream& stream : facts.streams)
        text += (text.empty() ? "" : ", ") + OneLine(StreamTypeText(stream.type)) + ' ' +
                std::to_string(stream.size);
    return text;
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
        std::string reading = ForEachRecord(
            table_.GetRecords(), std::numeric_limits<std::int64_t>::max(), [&](std::int64_t record) {
                const RecordResult result = worker.Do(record);
                if (result.failure) {
                    Complain("record " + std::to_string(record) + ": " + result.failure->Text());
                } else if (result.chosen) {
                    problem = line_.json ? Json(record) : Columns(record);
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

    std::string Columns(std::int64_t record) {
        std::string text = std::to_string(record);
        const std::vector<Field>& fields = table_.GetTable().fields;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            std::string problem;
            if (fields[i].type == FieldType::kContainer) {
                ContainerFacts facts;
                problem = table_.GetRecords().ReadFacts(record, i, facts);
                text += '\t' + FactsText(facts);
            } else if (const FM_Data* value = table_.Values().FieldValue(i, problem)) {
                text += '\t' + OneLine(utf::ToUtf8(value->AsText().units));
            }
            if (!problem.empty()) return problem;
        }
        output_.Buffer() += text + '\n';
        output_.EndPiece();
        return {};
    }

    std::string Json(std::int64_t record) {
        std::vector<FieldFacts> facts;
        const std::vector<Field>& fields = table_.GetTable().fields;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            std::string problem;
            FieldFacts& fact = facts.emplace_back();
            fact.name = fields[i].name;
            if (fields[i].type == FieldType::kContainer) {
                fact.container.emplace();
                problem = table_.GetRecords().ReadFacts(record, i, *fact.container);
            } else if (const FM_Data* value = table_.Values().FieldValue(i, problem)) {
                fact.value = *value;
            }
            if (!problem.empty()) return problem;
        }
        output_.Buffer() += JsonOf(record, facts) + '\n';
        output_.EndPiece();
        return {};
    }

    // What was shown before stands before the complaint where both go to one place.
    void Complain(const std::string& text) {
        output_.Flush();
        std::fprintf(stderr, "%s\n", text.c_str());
        status_ = 1;
    }

    Session& session_;
    const CommandLine& line_;
    OpenTable table_;
    Output output_;
    int status_ = 0;
};

int ShowTables(const std::string& file) {
    Store store;
    if (std::string problem = store.Open(file); !problem.empty()) return CommandFailed(problem);
    Output output;
    output.Buffer() = TablesText(store);
    output.Flush();
    return output.Good() ? 0 : kUsageError;
}

} // namespace

int Show(Session& session, const CommandLine& line) {
    if (line.arguments.size() == 1) return ShowTables(line.arguments[0]);
    return Lister(session, line).Run();
}

} // namespace host
