#include "host/commands/commands.h"
#include "host/commands/interruption.h"
#include "host/commands/open_table.h"
#include "host/commands/progress_line.h"
#include "platform/text/utf.h"

#include <filesystem>

namespace host {
namespace {

constexpr FM_Error kBadName = -37;

// Names come from the contents of records: none leads out of the folder.
bool IsFileName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of("/\\") == std::string_view::npos;
}

class Exporter {
public:
    Exporter(Session& session, const CommandLine& line) : engine_(session.GetEngine()), line_(line) {}

    int Run() {
        if (std::string problem = Prepare(); !problem.empty()) return CommandFailed(problem);
        const RecordWork work{line_.table.where, {}};
        RecordWorker worker(engine_, table_.Values(), table_.GetTable(), work);
        if (!Parses(engine_, work.condition) || !Parses(engine_, line_.table.name)) return kUsageError;
        std::int64_t count = 0;
        std::int64_t last = 0;
        std::string problem = table_.GetRecords().CountAfter(0, count);
        if (problem.empty()) problem = table_.GetRecords().LastNumber(last);
        if (!problem.empty()) return CommandFailed(problem);

        const Interruption interruption;
        ProgressLine progress(count, line_.session.progress);
        problem = ForEachRecord(table_.GetRecords(), last, [&](std::int64_t record) {
            const RecordResult result = worker.Do(record);
            const auto failure = result.chosen && !result.failure ? Write() : result.failure;
            if (failure) {
                progress.Complain("record " + std::to_string(record) + ": " + failure->Text());
                status_ = 1;
            }
            progress.Step();
            return !Interruption::IsWished();
        });
        if (!problem.empty()) return CommandFailed(problem);
        return Interruption::IsWished() ? Interruption::ExitStatus() : status_;
    }

private:
    std::string Prepare() {
        if (line_.arguments.size() != 3 || line_.table.to.empty())
            return "export needs a database file, a table, a field and --to FOLDER";
        if (std::string problem = table_.Open(line_); !problem.empty()) return problem;
        field_ = table_.GetTable().Find(line_.arguments[2]);
        if (field_ == nullptr) return table_.GetTable().name + " has no field \"" + line_.arguments[2] + '"';
        std::error_code error;
        std::filesystem::create_directories(line_.table.to, error);
        const std::string folder =
            std::filesystem::absolute(line_.table.to, error).lexically_normal().string();
        if (!std::filesystem::is_directory(folder, error))
            return "cannot make the folder " + line_.table.to + (error ? ": " + error.message() : "");
        const auto path = fm::HostPath(fm::CurrentSession().drives, folder);
        if (!path) return "the folder " + line_.table.to + " is outside every drive";
        folder_ = *path;
        if (!folder_.ends_with('/')) folder_ += '/';
        return {};
    }

    // The current record's field into a file.
    std::optional<RecordFailure> Write() {
        const std::string field = table_.GetTable().name + "::" + field_->name;
        const Outcome name = engine_.Evaluate(line_.table.name.empty() ? kRecordNumber : line_.table.name);
        if (auto failure = FailureOf(engine_, name, "name")) return failure;
        const std::string file = utf::ToUtf8(name.value.AsText().units);
        if (!IsFileName(file))
            return RecordFailure{"name", {}, kBadName, '"' + file + "\" is no name of a file"};
        if (engine_.Evaluate("IsEmpty(" + field + ")").value.AsBoolean()) return std::nullopt;
        engine_.SessionVariable("$path") = FM_Data(utf::ToUtf16(folder_ + file));
        const Outcome outcome = engine_.Evaluate("Media_ExportField(" + field + "; $path; " +
                                                 (line_.table.replace ? "True)" : "False)"));
        return FailureOf(engine_, outcome, field_->name);
    }

    Engine& engine_;
    const CommandLine& line_;
    OpenTable table_;
    const Field* field_ = nullptr;
    std::string folder_; ///< host path text with a "/" at its end
    int status_ = 0;
};

} // namespace

int Export(Session& session, const CommandLine& line) {
    return Exporter(session, line).Run();
}

} // namespace host
