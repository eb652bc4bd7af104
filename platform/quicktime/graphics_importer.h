// Graphics importers: what an image's data says about it, and its pixels.
//
// Each operation answers 0, a code, or kBadComponentInstance for an instance that is no importer; outputs are
// written only with 0. The data is looked at when it is first asked about, and only its header then. Data
// that does not hold what the importer reads gives codecBadDataErr, an image above 30,000 pixels either way
// codecSizeErr, an importer without data invalidDataRef.
//
// A new importer stands at the first image of its data, with the whole image as its source rectangle, the
// identity as its matrix and no clip region, and draws into the port that is current when it draws.
#pragma once

#include "platform/quicktime/components.h"
#include "platform/quicktime/data_references.h"
#include "platform/quicktime/image_description.h"
#include "platform/quicktime/matrices.h"
#include "platform/quicktime/movies/atom_containers.h"
#include "platform/quicktime/pixel_image.h"
#include "platform/quicktime/ports.h"
#include "platform/quicktime/regions.h"
#include "platform/quicktime/user_data.h"

#include <string>

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
/// Reads so many bytes of the importer's source from `offset` on. eofErr when there are fewer.
ComponentResult GraphicsImportReadData(GraphicsImportComponent importer, void* bytes, std::uint64_t offset,
                                       std::uint64_t size);
/// The native path of the file that is read; invalidDataRef when it is no file.
ComponentResult GraphicsImportGetDataFile(GraphicsImportComponent importer, std::u16string* path);
/// A copy of the reference to what is read.
ComponentResult GraphicsImportGetDataReference(GraphicsImportComponent importer,
                                               qt::DataReference* reference);
/// Adds the image's text items to the list. Data without any, and formats without, add none.
ComponentResult GraphicsImportGetMetaData(GraphicsImportComponent importer, UserData list);

/// Chooses one of the data's images, from 1; paramErr for one that isn't there. The description, the bounds
/// and the source rectangle are then those of that image.
ComponentResult GraphicsImportSetImageIndex(GraphicsImportComponent importer, std::uint32_t index);
/// The image's size in pixels, at the origin.
ComponentResult GraphicsImportGetNaturalBounds(GraphicsImportComponent importer, Rect* bounds);
/// The part of the image that is drawn; null: all of it. What of it lies outside the image stays unpainted.
/// paramErr for a rectangle that has no pixel of the image.
ComponentResult GraphicsImportSetSourceRect(GraphicsImportComponent importer, const Rect* rectangle);
ComponentResult GraphicsImportGetSourceRect(GraphicsImportComponent importer, Rect* rectangle);
/// The mapping from the image to the drawing; null: the identity. The drawing fills the bounding box of the
/// mapped source rectangle in whole pixels; what of that the image doesn't reach stays unpainted.
ComponentResult GraphicsImportSetMatrix(GraphicsImportComponent importer, const MatrixRecord* matrix);
/// Pixels outside the region, which is copied, are white; null: none are. The drawing's corner is the
/// region's origin.
ComponentResult GraphicsImportSetClip(GraphicsImportComponent importer, RgnHandle region);

/// The port that is drawn into, which stays the caller's; null: the current one.
ComponentResult GraphicsImportSetGWorld(GraphicsImportComponent importer, GWorldPtr port);
/// Draws where the matrix leads, in the port's coordinates. Pixels are replaced, their alpha too; those of
/// the port that the drawing doesn't reach stay as they are. paramErr when there is no port or it has no
/// pixels of its own.
ComponentResult GraphicsImportDraw(GraphicsImportComponent importer);

/// The types that images can be exported to: for each an 'expo' atom with the atoms 'ftyp' (the type, four
/// bytes), 'ext ' (of file names) and 'desc' (a name for people).
ComponentResult GraphicsImportGetExportImageTypeList(GraphicsImportComponent importer,
                                                     QTAtomContainer* container);

namespace qt {

/// An importer without data for a file type; null when no codec reads it.
std::unique_ptr<Component> OpenGraphicsImporter(OSType file_type);

/// The file type of the format that an importer reads, whatever the file wraps; 0 for no importer.
OSType FileTypeOf(GraphicsImportComponent importer);

/// Draws, wherever the matrix leads. What stays unpainted is white, or transparent if the image has alpha:
/// files of opaque images are read by many that know no transparency. Decodes again at each call, so that no
/// image stays in memory. paramErr for a matrix that takes a point of the source rectangle to infinity or
/// beyond; codecSizeErr when the drawing is empty, above 30,000 pixels either way, or above
/// kMaximumPixelBytes.
ComponentResult DrawImporter(GraphicsImportComponent importer, PixelImage& image);

/// The importer's data, when it holds exactly what would be drawn: one image, all of it. Else null.
DataSource* UnchangedSource(GraphicsImportComponent importer);

} // namespace qt
