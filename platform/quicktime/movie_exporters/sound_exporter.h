// Exporters of sound files: what all of them share, over the writer that each format has.
#pragma once

#include "platform/quicktime/movie_exporters/exported_file.h"
#include "platform/quicktime/movie_exporters/sound_settings.h"

#include <memory>
#include <string_view>

namespace qt {

/// Writes one file of a format. After a failure nothing more is asked of it.
class SoundFileWriter {
public:
    SoundFileWriter() = default;
    SoundFileWriter(const SoundFileWriter&) = delete;
    SoundFileWriter& operator=(const SoundFileWriter&) = delete;
    virtual ~SoundFileWriter() = default;

    /// In which it takes samples.
    [[nodiscard]] virtual PcmLayout Layout() const = 0;
    /// `frames` is how many will come. fileBoundsErr for more than the format can hold, paramErr for settings
    /// that its encoder refuses.
    virtual OSErr Begin(std::int64_t frames) = 0;
    /// Whole frames.
    virtual OSErr Write(std::span<const std::byte> frames) = 0;
    /// The file is whole only after it.
    virtual OSErr End() = 0;
};

/// A row of the table of exporters. All of them take sound.
struct SoundExporterRow {
    OSType subtype; ///< the file type too
    std::string_view name;
    std::string_view description;
    SoundFormatChoices choices;
    /// `file` outlives the writer.
    std::unique_ptr<SoundFileWriter> (*open_writer)(const SoundExporterRow& row,
                                                    const SoundSettings& settings, ExportedFile& file);
};

std::span<const SoundExporterRow> SoundExporters();

std::unique_ptr<SoundFileWriter> OpenWaveWriter(const SoundExporterRow& row, const SoundSettings& settings,
                                                ExportedFile& file);
/// AIFF, AIFC, AU and CAF files of uncompressed samples, µ-law and A-law included.
std::unique_ptr<SoundFileWriter> OpenPcmFileWriter(const SoundExporterRow& row, const SoundSettings& settings,
                                                   ExportedFile& file);
/// Files that need an encoder or a multiplexer. Null without their module.
std::unique_ptr<SoundFileWriter> OpenEncodedFileWriter(const SoundExporterRow& row,
                                                       const SoundSettings& settings, ExportedFile& file);

} // namespace qt
