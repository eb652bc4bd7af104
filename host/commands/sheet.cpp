#include "host/commands/commands.h"
#include "host/commands/each_record.h"
#include "host/commands/output_folder.h"
#include "host/commands/sheet_page.h"
#include "platform/text/utf.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <unistd.h>

namespace host {
namespace {

constexpr std::size_t kCardsOnPage = 300;
constexpr int kPictureWidth = 640; ///< twice what a card shows, for dense displays
constexpr int kPictureHeight = 480;

constexpr FM_Error kDiskFull = -34;
constexpr std::uint32_t kFileStream = 0x46494C45; // "FILE"

// A file of a stream's bytes in the temporary folder, as long as it lives: sound functions take files, and
// containers of sounds only.
class TemporaryFile {
public:
    /// Its path is empty when it can't be written.
    TemporaryFile(const fm::Bytes& bytes, const std::string& extension) {
        std::error_code error;
        const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
        if (error) return;
        path_ = (folder / ("corvane-sheet-XXXXXX" + extension)).string();
        // Others must not read it, nor have put a link in its place.
        const int descriptor = ::mkstemps(path_.data(), static_cast<int>(extension.size()));
        if (descriptor < 0) {
            path_.clear();
            return;
        }
        std::FILE* const file = ::fdopen(descriptor, "wb");
        const bool written =
            file != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
        const bool closed = (file != nullptr ? std::fclose(file) : ::close(descriptor)) == 0;
        if (!written || !closed) Remove();
    }
    ~TemporaryFile() { Remove(); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    void Remove() {
        if (!path_.empty()) ::unlink(path_.c_str());
        path_.clear();
    }

    std::string path_;
};

// ".mp3" of a file's path text; empty when there is nothing like it.
std::string ExtensionOf(const FM_Data& container) {
    const std::string path = utf::ToUtf8(container.AsText().units);
    const auto dot = path.find_last_of("./");
    const auto is_plain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    };
    if (dot == std::string::npos || path[dot] != '.') return {};
    return std::all_of(path.begin() + static_cast<std::ptrdiff_t>(dot) + 1, path.end(), is_plain)
               ? path.substr(dot)
               : "";
}

using Facts = std::vector<std::pair<std::string, std::string>>;

// The lines "key: value" of an information list; a list below a line is named by it.
Facts FactsOf(const Outcome& list) {
    Facts facts;
    std::string text = utf::ToUtf8(list.value.AsText().units);
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find('\r', at), text.size());
        const std::string line = text.substr(at, end - at);
        const auto colon = line.find(':');
        const auto begin = std::min(line.find_first_not_of(" \t"), line.size());
        if (colon != std::string::npos && begin < colon) {
            const auto value = line.find_first_not_of(' ', colon + 1);
            facts.emplace_back(line.substr(begin, colon - begin),
                               value == std::string::npos ? "" : line.substr(value));
        }
        at = end + 1;
    }
    return facts;
}

std::string Fact(const Facts& facts, std::string_view name) {
    for (const auto& [key, value] : facts)
        if (key == name) return value;
    return {};
}

int NumberOf(const std::string& text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// "000:03:07.000" without hours that are none, and without milliseconds.
std::string ShortDuration(const std::string& text) {
    const std::size_t begin = text.starts_with("000:") ? 4 : 0;
    return text.substr(begin, text.find('.') - begin);
}

// Whether there is a page of a sheet.
bool IsSheet(const std::string& page) {
    std::ifstream file(page, std::ios::binary);
    std::string head(4096, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    return head.find(kSheetMark) != std::string::npos;
}

// What forbids to write a page there; empty when there is nothing, or a page of a sheet.
std::string RefusalOf(const std::string& page) {
    std::error_code ignored;
    const bool may = !std::filesystem::exists(page, ignored) || IsSheet(page);
    return may ? "" : page + " is there, and no page of a sheet";
}

std::string WritePage(const std::string& path, const std::string& page) {
    if (std::string refusal = RefusalOf(path); !refusal.empty()) return refusal;
    std::ofstream file(path, std::ios::binary);
    file << page;
    file.close();
    return file ? "" : "cannot write " + path;
}

class SheetMaker {
public:
    SheetMaker(Session& session, const CommandLine& line) : engine_(session.GetEngine()), line_(line) {}

    int Run() {
        if (std::string problem = Prepare(); !problem.empty()) return CommandFailed(problem);
        (void)engine_.Evaluate("Media_SetImageDefaults(-1; False)"); // previews would be thrown away
        const int status =
            EachChosenRecord(engine_, table_, line_, [this](std::int64_t record) { return AddCard(record); });
        if (status == kUsageError) return status;
        if (const std::string problem = WritePages(); !problem.empty()) return CommandFailed(problem);
        return status;
    }

private:
    std::string Prepare() {
        if (line_.arguments.size() != 3 || line_.table.to.empty())
            return "sheet needs a database file, a table, a field and --to FOLDER";
        std::string problem = table_.Open(line_);
        if (!problem.empty()) return problem;
        const auto index = table_.FieldOf(line_.arguments[2], FieldType::kContainer, problem);
        if (!index) return problem;
        part_ = table_.GetTable().fields[*index].name;
        field_ = table_.GetTable().name + "::" + part_;
        const std::string pictures = line_.table.to + "/pictures";
        const std::string page = line_.table.to + '/' + SheetPageName(1);
        if (problem = RefusalOf(page); !problem.empty()) return problem;
        std::error_code ignored;
        const bool is_new = !std::filesystem::exists(page, ignored);
        if (is_new && std::filesystem::exists(pictures, ignored)) // and would be replaced, number by number
            return pictures + " is there, and not of a sheet";
        const auto folder = MakeOutputFolder(pictures, problem);
        if (!folder) return problem;
        pictures_ = *folder;
        // A new one gets its page at once, so that the pictures are known as the sheet's, however it ends.
        return is_new ? WritePage(page, SheetPage(Title(), {}, 1, 1)) : "";
    }

    [[nodiscard]] std::string Title() const { return table_.GetTable().name + " – " + part_; }

    // The current record's card, with whatever can be had of its contents; the failure is to be told.
    std::optional<RecordFailure> AddCard(std::int64_t record) {
        SheetCard& card = cards_.emplace_back();
        card.title = std::to_string(record);
        auto failure = SetTitle(card);
        const std::unique_ptr<TemporaryFile> file = MakeFile();
        if (file != nullptr && file->Path().empty()) {
            card.summary = "File";
            return RecordFailure{part_, {}, kDiskFull, "there is no room for a temporary copy of it"};
        }
        const std::string picture = std::to_string(record) + ".jpg";
        const Outcome image = engine_.Evaluate("Media_GetImageInfo($media)");
        const bool is_image = !FailureOf(engine_, image, part_);
        const Outcome sound = is_image ? Outcome() : engine_.Evaluate("Media_GetSoundInfo($media)");
        if (!is_image && (sound.value.IsEmpty() || sound.error != kFM_ErrorNone)) {
            card.summary = engine_.SessionVariable("$media").IsEmpty() ? "Empty" : "File";
            return failure;
        }
        auto drawing =
            is_image ? AddImage(card, FactsOf(image), picture) : AddSound(card, FactsOf(sound), picture);
        if (!drawing) card.picture = "pictures/" + picture;
        return failure ? failure : drawing;
    }

    // $media becomes the field's value; of a container with the bytes of a file, the path of the file that is
    // made, if it can be.
    std::unique_ptr<TemporaryFile> MakeFile() {
        FM_Data& media = engine_.SessionVariable("$media");
        media = engine_.Evaluate(field_).value;
        const std::int32_t index = media.AsContainer().IndexOf(kFileStream);
        if (index < 0) return nullptr;
        auto file = std::make_unique<TemporaryFile>(
            *media.AsContainer().streams[static_cast<std::size_t>(index)].bytes, ExtensionOf(media));
        if (file->Path().empty()) return file;
        if (const auto path = fm::HostPath(fm::CurrentSession().drives, file->Path()))
            media = FM_Data(utf::ToUtf16(*path));
        return file;
    }

    std::optional<RecordFailure> SetTitle(SheetCard& card) {
        if (line_.table.name.empty()) return std::nullopt;
        const Outcome name = engine_.Evaluate(line_.table.name);
        if (auto failure = FailureOf(engine_, name, "name")) return failure;
        card.title = utf::ToUtf8(name.value.AsText().units);
        return std::nullopt;
    }

    std::optional<RecordFailure> AddImage(SheetCard& card, Facts facts, const std::string& file) {
        const std::string width = Fact(facts, "Width (px)");
        const std::string height = Fact(facts, "Height (px)");
        card.summary = width + " × " + height + " · " + Fact(facts, "Compressor Description");
        card.facts = std::move(facts);
        const std::int64_t across = NumberOf(width);
        const std::int64_t down = NumberOf(height);
        if (across <= kPictureWidth && down <= kPictureHeight)
            return Save(R"(Media_ConvertImage($media; "JPEG"))", file);
        const bool wide = across * kPictureHeight > down * kPictureWidth;
        return Save("Let([c = Media_TClear; r = Media_TResize(" + std::to_string(wide ? kPictureWidth : 0) +
                        "; " + std::to_string(wide ? 0 : kPictureHeight) +
                        ")]; Media_ConvertImage(Media_TApply($media); \"JPEG\"))",
                    file);
    }

    std::optional<RecordFailure> AddSound(SheetCard& card, Facts facts, const std::string& file) {
        card.summary = "Sound · " + ShortDuration(Fact(facts, "Duration (s)"));
        const std::string rate = Fact(facts, "Sample Rate (Hz)");
        if (!rate.empty()) card.summary += " · " + rate + " Hz";
        card.facts = std::move(facts);
        return Save("Media_DrawWaveform($media; \"1\"; " + std::to_string(kPictureWidth) + "; " +
                        std::to_string(kPictureHeight) + R"x(; "0:0:0"; "0:0:0"; "#2f7de1"; "#10141a"))x",
                    file);
    }

    // The container of a JPEG image that the calculation gives, as a file among the pictures.
    std::optional<RecordFailure> Save(const std::string& calculation, const std::string& file) {
        const Outcome picture = engine_.Evaluate("Let($picture = " + calculation + "; $picture)");
        if (auto failure = FailureOf(engine_, picture, part_, FieldType::kContainer)) return failure;
        engine_.SessionVariable("$path") = FM_Data(utf::ToUtf16(pictures_ + file));
        return FailureOf(engine_, engine_.Evaluate("Media_ExportField($picture; $path; True)"), part_);
    }

    std::string WritePages() {
        const std::size_t count = std::max<std::size_t>((cards_.size() + kCardsOnPage - 1) / kCardsOnPage, 1);
        for (std::size_t page = 1; page <= count; ++page) {
            const auto first = cards_.begin() + static_cast<std::ptrdiff_t>((page - 1) * kCardsOnPage);
            const auto end = page < count ? first + static_cast<std::ptrdiff_t>(kCardsOnPage) : cards_.end();
            std::string problem = WritePage(line_.table.to + '/' + SheetPageName(page),
                                            SheetPage(Title(), {first, end}, page, count));
            if (!problem.empty()) return problem;
        }
        return {};
    }

    Engine& engine_;
    const CommandLine& line_;
    OpenTable table_;
    std::string part_;     ///< name of the field
    std::string field_;    ///< the field in a calculation
    std::string pictures_; ///< host path text of the folder, with a "/" at its end
    std::vector<SheetCard> cards_;
};

} // namespace

int Sheet(Session& session, const CommandLine& line) {
    return SheetMaker(session, line).Run();
}

} // namespace host
