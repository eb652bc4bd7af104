// Graphics exporters: encoders of image files.
//
// Each operation answers 0, a code, or kBadComponentInstance for an instance that is no exporter. What isn't
// set is the encoder's own choice; a setting that its format lacks is kept and has no effect.
#pragma once

#include "platform/quicktime/graphics_importer.h"
#include "platform/quicktime/ports.h"

#include <string>

using GraphicsExportComponent = ComponentInstance;

inline constexpr OSErr userCanceledErr = -128;

/// The importer whose drawing is exported, or the port whose pixels are (paramErr for one without pixels),
/// and the block that becomes the file, whatever it held. All stay the caller's and must outlive the export.
/// The input that was set last counts.
ComponentResult GraphicsExportSetInputGraphicsImporter(GraphicsExportComponent exporter,
                                                       GraphicsImportComponent importer);
ComponentResult GraphicsExportSetInputGWorld(GraphicsExportComponent exporter, GWorldPtr port);
ComponentResult GraphicsExportSetOutputHandle(GraphicsExportComponent exporter, Handle output);

/// Bits per pixel: 1, 2, 4, 8, 16, 24, 32; 33, 34, 36 and 40 for 1, 2, 4 and 8 bits of grey. paramErr for
/// others.
ComponentResult GraphicsExportSetDepth(GraphicsExportComponent exporter, std::int32_t depth);
/// Dots per inch; without them, those of the source (72 for a port). paramErr for a horizontal one that is
/// not positive; a vertical one that is not positive becomes the horizontal one.
ComponentResult GraphicsExportSetResolution(GraphicsExportComponent exporter, Fixed horizontal,
                                            Fixed vertical);
/// Bytes that the file should not exceed; goes before the quality.
ComponentResult GraphicsExportSetTargetDataSize(GraphicsExportComponent exporter, std::uint32_t bytes);
/// 0 lowest, 512 normal, 1023 highest lossy, 1024 lossless; held at both ends.
ComponentResult GraphicsExportSetCompressionQuality(GraphicsExportComponent exporter, std::int32_t quality);
/// 1 none, 5 LZW, 8 Deflate, 32773 PackBits where the format has them; in formats that can be interlaced or
/// progressive, 1 makes them so and 0 not.
ComponentResult GraphicsExportSetCompressionMethod(GraphicsExportComponent exporter, std::int32_t method);
/// Whether compressed data of the source is passed on as it is where the format can do that.
ComponentResult GraphicsExportSetDontRecompress(GraphicsExportComponent exporter, bool dont);

/// Shows the format's settings for the user to change. userCanceledErr on Cancel, which changes nothing.
ComponentResult GraphicsExportRequestSettings(GraphicsExportComponent exporter);
/// The settings as lines "key=value", each ended by a carriage return: format, depth, resolution, quality,
/// size, method, as far as the format has them; of what isn't set, the encoder's choice when that is one
/// value.
ComponentResult GraphicsExportGetSettingsAsText(GraphicsExportComponent exporter, std::string* text);

/// Encodes. `written` is the size of the file in bytes. Codes are those of decoding and of the encoder; the
/// output is then left as it was.
ComponentResult GraphicsExportDoExport(GraphicsExportComponent exporter, std::uint64_t* written);

namespace qt {

/// An exporter for a file type; null when no encoder writes it.
std::unique_ptr<Component> OpenGraphicsExporter(OSType file_type);

} // namespace qt
