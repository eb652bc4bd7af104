#include "host/commands/commands.h"
#include "host/commands/interruption.h"
#include "host/commands/open_table.h"
#include "host/commands/progress_line.h"
#include "host/fields/field_value.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr auto kImageEndings = std::to_array<std::string_view>(
    {"bmp", "bw",   "dib", "gif",  "j2k", "jfif",  "jp2", "jpe", "jpeg", "jpf", "jpg",
     "jpx", "mac",  "pct", "pcx",  "pic", "pict",  "png", "pnt", "psb",  "psd", "qif",
     "qti", "qtif", "rgb", "rgba", "sgi", "targa", "tga", "tif", "tiff"});
static_assert(std::ranges::is_sorted(kImageEndings));

// Records are written together up to these limits: a transaction for each would take most of the time.
constexpr std::size_t kMostTogether = 500;
constexpr std::size_t kMostBytesTogether = std::size_t{16} << 20;

bool EndsLikeImage(const fs::path& path) {
    const std::string extension = utf::ToLower(path.extension().string());
    return extension.size() > 1 && std::ranges::binary_search(kImageEndings, extension.substr(1));
}

std::size_t BytesOf(const FM_Data& value) {
    std::size_t bytes = 0;
    for (const fm::Stream& stream : value.AsContainer().streams) bytes += stream.bytes->size();
    return bytes;
}

class Importer {
public:
    Importer(Session& session, const CommandLine& line) : session_(session), options_(line.table) {}

    int Run(const CommandLine& line) {
        std::string problem = Prepare(line);
        if (!problem.empty()) return CommandFailed(problem);
        const Interruption interruption;
        ProgressLine progress(static_cast<std::int64_t>(files_.size()), line.session.progress);
        for (const std::string& complaint : unread_) progress.Complain(complaint);
        if (!unread_.empty()) status_ = 1;
        for (const fs::path& file : files_) {
            if (auto failure = Take(file)) {
                progress.Complain(file.string() + ": " + failure->Text());
                status_ = 1;
            }
            if (bytes_ >= kMostBytesTogether || waiting_.size() >= kMostTogether) problem = Write();
            if (!problem.empty()) return CommandFailed(problem);
            progress.Step();
            if (Interruption::IsWished()) break;
        }
        problem = Write();
        if (!problem.empty()) return CommandFailed(problem);
        return Interruption::IsWished() ? Interruption::ExitStatus() : status_;
    }

private:
    std::string Prepare(const CommandLine& line) {
        if (line.arguments.size() < 4) return "import needs a database file, a table, a field and files";
        std::string problem = table_.Open(line);
        if (!problem.empty()) return problem;
        const auto field = table_.FieldOf(line.arguments[2], FieldType::kContainer, problem);
        if (!field) return problem;
        field_ = *field;
        if (!options_.name_field.empty()) {
            name_field_ = table_.FieldOf(options_.name_field, FieldType::kText, problem);
            if (!name_field_) return problem;
        }
        for (std::size_t i = 3; i < line.arguments.size() && problem.empty(); ++i)
            problem = AddFiles(line.arguments[i]);
        return problem;
    }

    // The files that a path stands for: itself, or those below a folder, in the order of their names.
    std::string AddFiles(const std::string& path) {
        std::error_code error;
        const fs::path absolute = fm::AbsolutePath(path);
        const fs::file_status status = fs::status(absolute, error);
        if (!fs::exists(status)) return path + ": there is no such file";
        if (!fs::is_directory(status)) {
            files_.push_back(absolute);
            return {};
        }
        const auto first = static_cast<std::ptrdiff_t>(files_.size());
        std::vector<fs::path> folders = {absolute};
        while (!folders.empty()) {
            const fs::path folder = std::move(folders.back());
            folders.pop_back();
            AddEntries(folder, folders);
        }
        std::sort(files_.begin() + first, files_.end());
        return {};
    }

    // The folder's files, and the folders in it, without those that links lead to. One that can't be read is
    // told, and costs no other.
    void AddEntries(const fs::path& folder, std::vector<fs::path>& folders) {
        std::error_code error;
        fs::directory_iterator entry(folder, error);
        for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
            std::error_code ignored; // an entry that is gone by now
            if (entry->is_regular_file(ignored)) files_.push_back(entry->path());
            if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) folders.push_back(entry->path());
        }
        if (error) unread_.push_back(folder.string() + ": " + error.message());
    }

    // Makes a record of the file, to be written soon.
    std::optional<RecordFailure> Take(const fs::path& file) {
        const std::string part = table_.GetTable().fields[field_].name;
        const auto path = fm::HostPath(fm::CurrentSession().drives, file.string());
        if (!path) return RecordFailure{part, {}, kFM_ErrorReading, "the file is outside every drive"};
        Engine& engine = session_.GetEngine();
        engine.SessionVariable("$path") = FM_Data(utf::ToUtf16(*path));
        const bool image = options_.kind == ImportKind::kImage ||
                           (options_.kind == ImportKind::kAuto && EndsLikeImage(file));
        const std::string reference = options_.by_reference ? "True" : "False";
        const Outcome outcome = engine.Evaluate(image ? "Media_InsertImage($path; " + reference + ")"
                                                      : "Media_InsertFile($path; " + reference + "; False)");
        if (auto failure = FailureOf(engine, outcome, part, FieldType::kContainer)) return failure;
        FM_Data value = ValueFor(FieldType::kContainer, outcome.value);
        if (auto refusal = table_.GetRecords().Refusal(value); !refusal.empty())
            return RecordFailure{part, {}, kFM_ErrorOutOfMemory, std::move(refusal)};
        std::vector<FM_Data>& values = waiting_.emplace_back();
        for (const Field& field : table_.GetTable().fields) values.push_back(ValueFor(field.type, FM_Data()));
        bytes_ += BytesOf(value);
        values[field_] = std::move(value);
        if (name_field_) values[*name_field_] = FM_Data(utf::ToUtf16(file.filename().string()));
        return std::nullopt;
    }

    std::string Write() {
        if (waiting_.empty()) return {};
        Transaction transaction(table_.GetConnection());
        if (!transaction.Good()) return table_.GetConnection().Problem();
        for (const auto& values : waiting_)
            if (std::string problem = table_.GetRecords().Insert(values); !problem.empty()) return problem;
        waiting_.clear();
        bytes_ = 0;
        return transaction.Commit() ? "" : table_.GetConnection().Problem();
    }

    Session& session_;
    const TableOptions& options_;
    OpenTable table_;
    std::size_t field_ = 0;
    std::optional<std::size_t> name_field_;
    std::vector<fs::path> files_;
    std::vector<std::string> unread_; ///< folders, each with the reason
    std::vector<std::vector<FM_Data>> waiting_;
    std::size_t bytes_ = 0;
    int status_ = 0;
};

} // namespace

int Import(Session& session, const CommandLine& line) {
    return Importer(session, line).Run(line);
}

} // namespace host
