#include "images/image_importer.h"

#include "files/data_reference.h"
#include "files/path_parameter.h"
#include "images/availability.h"
#include "images/streams.h"
#include "platform/quicktime/data_references.h"
#include "plugin/errors.h"
#include "plugin/results.h"

#include <string_view>

namespace corvane {
namespace {

constexpr std::string_view kNoImporter = "Could not find QT importer for this type.";
constexpr std::string_view kNoFile = "Could not find referenced image file";

/// Reports a failure: no importer.
ImageImporter Fail(std::int32_t code, std::string_view message) {
    ReportError(code, message);
    return {};
}

ImageImporter OpenEmbedded(const FM_Data* parameter) {
    MainImage image = GetMainImageData(parameter);
    if (!image.data) return {};
    GraphicsImportComponent component = nullptr;
    const OSErr code = OpenADefaultComponent(qt::kGraphicsImporter, image.type, &component);
    if (code != noErr) return Fail(code, kNoImporter);
    const Handle data = image.data.get();
    ImageImporter importer(component, std::move(image.data));
    const ComponentResult data_code = GraphicsImportSetDataHandle(importer.get(), data);
    return data_code == noErr ? std::move(importer) : Fail(data_code, kNoImporter);
}

ImageImporter OpenReference(const qt::DataReference& reference, std::string_view message) {
    GraphicsImportComponent component = nullptr;
    const OSErr code = GetGraphicsImporterForDataRef(reference.handle.get(), reference.type, &component);
    return code == noErr ? ImageImporter(component) : Fail(code, message);
}

ImageImporter OpenFile(const XFileSpec& spec) {
    qt::DataReference reference;
    const std::int32_t code = DataReferenceOf(spec, reference);
    return code == 0 ? OpenReference(reference, kNoImporter) : Fail(code, kNoFile);
}

/// For a text that names no file: `code` is why.
ImageImporter OpenAddress(const FM_Data* parameter, std::int32_t code) {
    qt::DataReference reference;
    const bool is_address = AddressReferenceOf(parameter, reference) == 0;
    return is_address ? OpenReference(reference, kNoFile) : Fail(code, kNoFile);
}

} // namespace

ImageImporter OpenImageImporter(const FM_Data* parameter) {
    if (!ImagesAvailable()) {
        return Fail(kErrorNoMediaComponents, "QuickTime required components are not installed");
    }
    XFileSpec spec;
    const std::int32_t code = ResolvePathParameter(*parameter, spec);
    if (code == kEmbeddedContainer) return OpenEmbedded(parameter);
    return code == 0 ? OpenFile(spec) : OpenAddress(parameter, code);
}

} // namespace corvane
