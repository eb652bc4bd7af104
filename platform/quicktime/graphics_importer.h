// Graphics importers: what an image's data says about it.
//
// Each operation answers 0, a code, or kBadComponentInstance for an instance that is no importer; outputs are
// written only with 0. The data is looked at when it is first asked about, and only its header then. Data
// that does not hold what the importer reads gives codecBadDataErr, an image above 30,000 pixels either way
// codecSizeErr, an importer without data invalidDataRef.
#pragma once

#include "platform/quicktime/components.h"
#include "platform/quicktime/handles.h"
#include "platform/quicktime/image_description.h"

using GraphicsImportComponent = ComponentInstance;

/// Opens the importer that recognises the content of the data, whatever its name. cantFindHandler for a
/// reference that nothing reads, badComponentType for content that no importer recognises, else the codes of
/// qt::OpenDataReference. A handle that the reference names must outlive the importer.
OSErr GetGraphicsImporterForDataRef(Handle data_reference, OSType type, GraphicsImportComponent* importer);

/// Hands the importer its data, which stays the caller's and must outlive it.
ComponentResult GraphicsImportSetDataHandle(GraphicsImportComponent importer, Handle data);

/// Whether the data can be decoded, as far as its header tells. kBadComponentSelector from an importer that
/// has no validation.
ComponentResult GraphicsImportValidate(GraphicsImportComponent importer, bool* valid);
ComponentResult GraphicsImportGetImageDescription(GraphicsImportComponent importer,
                                                  ImageDescription* description);
ComponentResult GraphicsImportGetImageCount(GraphicsImportComponent importer, std::uint32_t* count);
/// Where the image's data lies in its source, in bytes.
ComponentResult GraphicsImportGetDataOffsetAndSize(GraphicsImportComponent importer, std::uint64_t* offset,
                                                   std::uint64_t* size);
/// The image's size in pixels, at the origin.
ComponentResult GraphicsImportGetNaturalBounds(GraphicsImportComponent importer, Rect* bounds);

namespace qt {

/// An importer without data for a file type; null when no codec reads it.
std::unique_ptr<Component> OpenGraphicsImporter(OSType file_type);

} // namespace qt
