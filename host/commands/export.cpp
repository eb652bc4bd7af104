#include "host/commands/commands.h"
#include "host/commands/each_record.h"
#include "host/commands/output_folder.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>

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

// A folder beside the files to come, where each is written whole before it takes its place: one that there is
// no room for costs nobody the file that it was to replace.
class StagingFolder {
public:
    StagingFolder() = default;
    ~StagingFolder() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    bool Make(const std::filesystem::path& folder) {
        std::string path = folder / ".corvane-XXXXXX";
        if (::mkdtemp(path.data()) == nullptr) return false;
        path_ = path;
        return true;
    }
    [[nodiscard]] std::string Name() const { return path_.filename(); }
    /// The name of the file that is there; empty when none is.
    [[nodiscard]] std::string File() const {
        std::error_code ignored;
        const std::filesystem::directory_iterator entry(path_, ignored);
        return entry == std::filesystem::directory_iterator() ? "" : entry->path().filename().string();
    }
    /// Takes the file of this name to the folder beside; false when something has the name there.
    [[nodiscard]] bool MoveOut(const std::string& file) const {
        const std::filesystem::path target = path_.parent_path() / file;
        return ::renameat2(AT_FDCWD, (path_ / file).c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0;
    }
    void Clear() const {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(path_, ignored))
            std::filesystem::remove_all(entry.path(), ignored);
    }

private:
    std::filesystem::path path_;
};

// Who gave a file in the folder its name.
enum class Giver { kRecord, kOther };

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
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(line_.table.to, ignored))
            names_[utf::ToLower(entry.path().filename().string())] = Giver::kOther;
        return staging_.Make(line_.table.to) ? "" : "cannot write into the folder " + line_.table.to;
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
        SetPath("$staged", folder_ + staging_.Name() + '/' + file);
        auto failure = Do("Media_ExportField(" + field + "; $staged; False)");
        if (!failure) failure = Place(staging_.File());
        if (failure) staging_.Clear();
        return failure;
    }

    // The staged file, which may have been given an extension to its name, into the folder.
    std::optional<RecordFailure> Place(const std::string& file) {
        const std::string name = utf::ToLower(file);
        const auto taken = names_.find(name);
        // The functions go through the whole folder for a name, which adds up over many records.
        if (taken == names_.end() && staging_.MoveOut(file)) {
            names_[name] = Giver::kRecord;
            return std::nullopt;
        }
        if (taken != names_.end() && taken->second == Giver::kRecord)
            return Refusal(file, "\" is the name of another record's file");
        if (auto failure = CheckPresent(file)) return failure;
        SetPath("$staged", folder_ + staging_.Name() + '/' + file);
        SetPath("$path", folder_);
        auto failure = Do("Media_MoveItem($staged; $path)"); // in the place of a file that is there
        if (!failure) names_[name] = Giver::kRecord;
        return failure;
    }

    static RecordFailure Refusal(const std::string& file, const char* reason) {
        return {"name", {}, kNameTaken, '"' + file + reason};
    }

    // Whether the item of this name, if there is one, stays as it is.
    std::optional<RecordFailure> CheckPresent(const std::string& file) {
        SetPath("$path", folder_ + file);
        const Outcome info = engine_.Evaluate("Media_GetItemInfo($path)");
        if (FailureOf(engine_, info, field_->name)) return std::nullopt; // nothing is there
        engine_.SessionVariable("$info") = info.value;
        if (IsSo("Directory")) return Refusal(file, "\" is the name of a folder there");
        if (!line_.table.replace) return Refusal(file, "\" is there already; --replace overwrites it");
        if (IsSo("Locked")) return Refusal(file, "\" is there already, and read-only");
        return std::nullopt;
    }

    // A fact of the item that $info tells of.
    bool IsSo(const std::string& fact) {
        return engine_.Evaluate("Media_ExtractInfo($info; \"" + fact + "\")").value.AsBoolean();
    }

    void SetPath(const char* variable, const std::string& path) {
        engine_.SessionVariable(variable) = FM_Data(utf::ToUtf16(path));
    }
    std::optional<RecordFailure> Do(const std::string& calculation) {
        return FailureOf(engine_, engine_.Evaluate(calculation), field_->name);
    }

    Engine& engine_;
    const CommandLine& line_;
    OpenTable table_;
    const Field* field_ = nullptr;
    std::string folder_; ///< host path text with a "/" at its end
    StagingFolder staging_;
    std::map<std::string, Giver> names_; ///< in the folder, in small letters: case does not count for files
};

} // namespace

int Export(Session& session, const CommandLine& line) {
    return Exporter(session, line).Run();
}

} // namespace host
