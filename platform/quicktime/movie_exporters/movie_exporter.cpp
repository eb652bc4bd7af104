#include "platform/quicktime/movie_exporters/movie_exporter.h"

#include "platform/quicktime/movie_exporters/sound_exporter.h"
#include "platform/quicktime/movies/atoms.h"
#include "platform/quicktime/movies/movie_files.h"
#include "platform/quicktime/movies/movie_playback.h"
#include "platform/quicktime/movies/movie_storage.h"
#include "platform/quicktime/movies/sound_description.h"
#include "platform/quicktime/movies/sound_renderer.h"
#include "platform/quicktime/type_codes.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace qt {
namespace {

constexpr std::size_t kBlockBytes = 1U << 18;
constexpr int kSteps = 100; ///< how often the progress is told

/// Atoms of the settings.
constexpr OSType kFormatAtom = Code("fmt ");
constexpr OSType kTextAtom = Code("text");

class SoundExporter final : public Component {
public:
    explicit SoundExporter(const SoundExporterRow& format)
        : row(format), settings(UsualSettings(format.choices)) {}

    OSErr Export(const MovieRecord& movie, const TrackRecord* only, ExportedFile& file) const {
        const auto writer = row.open_writer(row, settings, file);
        if (writer == nullptr) return cantOpenHandler;
        std::unique_ptr<SoundRenderer> renderer;
        OSErr code = SoundRenderer::Open(movie, only, writer->Layout(), renderer);
        if (code == noErr) code = file.Create();
        if (code == noErr) code = writer->Begin(renderer->GetFrames());
        if (code == noErr) code = WriteSamples(movie, *renderer, *writer);
        return code == noErr ? writer->End() : code;
    }

    const SoundExporterRow& row;
    SoundSettings settings;
    MovieProgressProc progress = nullptr;
    void* progress_context = nullptr;

private:
    OSErr Tell(const MovieRecord& movie, double done) const {
        if (progress == nullptr) return noErr;
        return progress(const_cast<MovieRecord*>(&movie), done, progress_context);
    }

    OSErr WriteSamples(const MovieRecord& movie, SoundRenderer& renderer, SoundFileWriter& writer) const {
        const std::size_t frame = writer.Layout().FrameBytes();
        Bytes block(std::max<std::size_t>(kBlockBytes / frame, 1) * frame);
        std::int64_t written = 0;
        int told = 0;
        if (const OSErr code = Tell(movie, 0); code != noErr) return code;
        while (written < renderer.GetFrames()) {
            const FramesRead read = renderer.Read(block);
            if (read.code != noErr || read.frames == 0) return read.code != noErr ? read.code : OSErr{ioErr};
            const auto size = static_cast<std::size_t>(read.frames) * frame;
            if (const OSErr code = writer.Write(std::span(block).first(size)); code != noErr) return code;
            written += read.frames;
            const int step = static_cast<int>(written * kSteps / renderer.GetFrames());
            if (step == told || step == kSteps) continue;
            told = step;
            if (const OSErr code = Tell(movie, static_cast<double>(step) / kSteps); code != noErr)
                return code;
        }
        return Tell(movie, 1);
    }
};

SoundExporter* ExporterOf(ComponentInstance instance) {
    return dynamic_cast<SoundExporter*>(instance);
}

/// The settings that a description of uncompressed samples asks for; nothing when the format has no such
/// ones.
std::optional<SoundSettings> SettingsOf(std::span<const std::byte> description,
                                        const SoundExporter& exporter) {
    const auto layout = LayoutOf(description);
    if (!layout) return std::nullopt;
    const SoundFormatChoices& choices = exporter.row.choices;
    SoundSettings settings = exporter.settings;
    settings.rate = layout->rate;
    settings.channels = layout->channels;
    settings.encoding = layout->encoding;
    settings.big_endian =
        choices.order == ByteOrder::kEither ? layout->big_endian : choices.order == ByteOrder::kBig;
    if (Offers(choices, settings)) return settings;
    // Files of some formats have bytes of one kind only.
    if (layout->encoding == SampleEncoding::kSigned8) settings.encoding = SampleEncoding::kUnsigned8;
    if (layout->encoding == SampleEncoding::kUnsigned8) settings.encoding = SampleEncoding::kSigned8;
    if (Offers(choices, settings)) return settings;
    return std::nullopt;
}

OSErr InsertText(QTAtomContainer container, OSType type, std::string_view text) {
    return QTInsertChild(container, kParentAtomIsContainer, type, 1, std::as_bytes(std::span(text)), nullptr);
}

std::string_view AtomText(QTAtomContainer container, OSType type) {
    const QTAtom atom = QTFindChildByIndex(container, kParentAtomIsContainer, type, 1, nullptr);
    const auto data = atom != 0 ? QTGetAtomData(container, atom) : std::span<const std::byte>();
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

struct ContainerDisposer {
    void operator()(QTAtomContainer container) const { QTDisposeAtomContainer(container); }
};

/// Plays a sound for a few seconds, and comes back then.
void PlayBeginning(Movie sound) {
    constexpr std::int32_t kMilliseconds = 3000;
    GoToBeginningOfMovie(sound);
    StartMovie(sound);
    if (GetMoviesError() == noErr) MoviesTask(sound, kMilliseconds);
    StopMovie(sound);
}

} // namespace

std::unique_ptr<Component> OpenMovieExporter(OSType subtype) {
    for (const SoundExporterRow& row : SoundExporters())
        if (subtype == kAnySubtype || row.subtype == subtype) return std::make_unique<SoundExporter>(row);
    return nullptr;
}

std::vector<SoundExporterInfo> ListSoundExporters() {
    std::vector<SoundExporterInfo> list;
    for (const SoundExporterRow& row : SoundExporters())
        list.push_back({row.subtype, row.name, row.description});
    return list;
}

} // namespace qt

ComponentResult MovieExportSetSampleDescription(MovieExportComponent exporter, Handle description,
                                                OSType media_type) {
    qt::SoundExporter* const opened = qt::ExporterOf(exporter);
    if (opened == nullptr) return badComponentInstance;
    const auto settings = qt::SettingsOf(qt::HandleBytes(description), *opened);
    if (media_type != qt::Code("soun") || !settings) return paramErr;
    opened->settings = *settings;
    return noErr;
}

ComponentResult MovieExportGetFileType(MovieExportComponent exporter, OSType* type) {
    const qt::SoundExporter* const opened = qt::ExporterOf(exporter);
    if (opened == nullptr) return badComponentInstance;
    *type = opened->row.subtype;
    return noErr;
}

ComponentResult MovieExportSetProgressProc(MovieExportComponent exporter, MovieProgressProc proc,
                                           void* context) {
    qt::SoundExporter* const opened = qt::ExporterOf(exporter);
    if (opened == nullptr) return badComponentInstance;
    opened->progress = proc;
    opened->progress_context = context;
    return noErr;
}

ComponentResult MovieExportDoUserDialog(MovieExportComponent exporter, Movie sound, bool* cancelled) {
    qt::SoundExporter* const opened = qt::ExporterOf(exporter);
    if (opened == nullptr) return badComponentInstance;
    win32::SettingsDialog dialog;
    dialog.title = std::string(opened->row.name) + " Settings";
    dialog.pages.push_back(qt::DescribeSettings(opened->row.choices, opened->settings));
    if (sound != nullptr) {
        dialog.action_label = "Play";
        dialog.action = [sound](const win32::SettingValues&) { qt::PlayBeginning(sound); };
    }
    const auto answer = win32::AskForSettings(dialog);
    *cancelled = !answer.has_value();
    if (answer) qt::ChangeSettings(opened->row.choices, *answer, opened->settings);
    return noErr;
}

ComponentResult MovieExportGetSettingsAsAtomContainer(MovieExportComponent exporter,
                                                      QTAtomContainer* settings) {
    *settings = nullptr;
    const qt::SoundExporter* const opened = qt::ExporterOf(exporter);
    if (opened == nullptr) return badComponentInstance;
    QTAtomContainer container = nullptr;
    if (const OSErr code = QTNewAtomContainer(&container); code != noErr) return code;
    std::unique_ptr<char*, qt::ContainerDisposer> owned(container);
    OSErr code = qt::InsertText(container, qt::kFormatAtom, qt::TextOfCode(opened->row.subtype));
    if (code == noErr)
        code =
            qt::InsertText(container, qt::kTextAtom, qt::SettingsText(opened->row.choices, opened->settings));
    if (code == noErr) *settings = owned.release();
    return code;
}

ComponentResult MovieExportSetSettingsFromAtomContainer(MovieExportComponent exporter,
                                                        QTAtomContainer settings) {
    qt::SoundExporter* const opened = qt::ExporterOf(exporter);
    if (opened == nullptr) return badComponentInstance;
    if (qt::AtomText(settings, qt::kFormatAtom) != qt::TextOfCode(opened->row.subtype)) return paramErr;
    qt::ChangeSettings(opened->row.choices, qt::ParseSettingsText(qt::AtomText(settings, qt::kTextAtom)),
                       opened->settings);
    return noErr;
}

OSErr ConvertMovieToDataRef(Movie movie, Track only_track, Handle data_reference, OSType reference_type,
                            OSType, OSType, std::uint32_t flags, MovieExportComponent exporter) {
    const qt::SoundExporter* const opened = qt::ExporterOf(exporter);
    if (movie == nullptr) return qt::MoviesError(invalidMovie);
    if (opened == nullptr) return qt::MoviesError(badComponentInstance);
    const std::string path = qt::UnixPathOf(data_reference, reference_type);
    if (path.empty())
        return qt::MoviesError(reference_type == qt::kAliasDataHandler ? fnfErr : cantFindHandler);
    qt::ExportedFile file(path, (flags & createMovieFileDeleteCurFile) != 0);
    OSErr code = opened->Export(*movie, only_track, file);
    if (code == noErr) code = file.Complete();
    return qt::MoviesError(code);
}
