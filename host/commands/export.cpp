#include "host/commands/commands.h"
#include "host/commands/each_record.h"
#include "host/commands/output_folder.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <set>

namespace host {
namespace {

constexpr FM_Error kBadName = -37;
constexpr FM_Error kNameTaken = 20200;

// Names come from the contents of records: none leads out of the folder.
bool IsFileName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of("/\\") == std::string_view::npos &&
           std::ranges::none_of(name, [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}

class Exporter {
public:
    Exporter(Session& session, const CommandLine& line) : engine_(session.GetEngine()), line_(line) {}

    int Run() {
        if (std::string problem = Prepare(); !problem.empty()) return CommandFailed(problem);
        return EachChosenRecord(engine_, table_, line_, [this](std::int64_t) { return Write(); });
    }

private:
    std::string Prepare() {
        if (line_.arguments.size() != 3 || line_.table.to.empty())
            return "export needs a database file, a table, a field and --to FOLDER";
        std::string problem = table_.Open(line_);
        if (!problem.empty()) return problem;
        field_ = table_.GetTable().Find(line_.arguments[2]);
        if (field_ == nullptr) return table_.GetTable().name + " has no field \"" + line_.arguments[2] + '"';
        const auto folder = MakeOutputFolder(line_.table.to, problem);
        if (!folder) return problem;
        folder_ = *folder;
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
        if (!names_.insert(utf::ToLower(file)).second)
            return RecordFailure{
                "name", {}, kNameTaken, '"' + file + "\" is the name of another record's file"};
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
    std::set<std::string>
        names_; ///< that were given, in small letters: files are found without regard to case
};

} // namespace

int Export(Session& session, const CommandLine& line) {
    return Exporter(session, line).Run();
}

} // namespace host
