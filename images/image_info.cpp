#include "images/functions.h"
#include "images/image_importer.h"
#include "plugin/results.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace corvane {
namespace {

constexpr std::int32_t kInvalidData = -989;

/// 0 for valid data, and for data that its importer can't validate.
std::int32_t Validate(GraphicsImportComponent importer) {
    bool valid = false;
    const ComponentResult code = GraphicsImportValidate(importer, &valid);
    if (code == kBadComponentSelector) return 0;
    return code == 0 && !valid ? kInvalidData : code;
}

int Rounded(Fixed value) {
    return static_cast<int>((std::int64_t{value} + 0x8000) >> 16);
}

/// Sets the information list of an image as the result text; answers a code, 0 on success.
std::int32_t ListImageInfo(GraphicsImportComponent importer) {
    if (const std::int32_t code = Validate(importer); code != 0) return code;
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    GraphicsImportGetDataOffsetAndSize(importer, &offset, &size);
    ImageDescription description;
    const ComponentResult code = GraphicsImportGetImageDescription(importer, &description);
    if (code != 0) return code;
    std::uint32_t count = 0;
    GraphicsImportGetImageCount(importer, &count);

    const auto type = static_cast<unsigned>(description.cType);
    std::array<char, 512> text;
    const int length = std::snprintf(
        text.data(), text.size(),
        "Height (px): %d\rWidth (px): %d\rDepth (bits): %d\rQuality: %d\rV Resolution (dpi): %d\r"
        "H Resolution (dpi): %d\rImage Count: %u\rSize (bytes): %llu\rCompressor Type: %c%c%c%c\r"
        "Compressor Description: ",
        description.height, description.width, description.depth, description.spatialQuality,
        Rounded(description.vRes), Rounded(description.hRes), count, static_cast<unsigned long long>(size),
        type >> 24 & 0xFF, type >> 16 & 0xFF, type >> 8 & 0xFF, type & 0xFF);
    const std::size_t name_size = std::min<std::size_t>(description.name[0], sizeof(description.name) - 1);
    char* end = std::copy_n(&description.name[1], name_size, text.data() + length);
    *end++ = '\r';
    SetResultBufferText({text.data(), static_cast<std::size_t>(end - text.data())});
    return 0;
}

} // namespace

FM_Error GetImageInfo(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!CheckParameterCount(parameters, 1)) {
        const ImageImporter importer = OpenImageImporter(Host(FM_DataVect_At, &parameters, 0));
        if (importer) {
            const std::int32_t code = ListImageInfo(importer.get());
            if (code != 0) ReportError(code, "GIGetImageDescription failure");
        }
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
