#include "images/streams.h"

#include "platform/quicktime/type_codes.h"
#include "plugin/errors.h"
#include "plugin/results.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>

namespace corvane {
namespace {

constexpr std::uint32_t kWrapperType = FourCC("CVIM");
constexpr std::uint32_t kPictureType = FourCC("PICT");
constexpr std::uint32_t kJpegType = FourCC("JPEG");
constexpr std::uint32_t kWrapperPrefixSize = 4; ///< the type code of what is wrapped, high byte first

struct TypeExtension {
    std::uint32_t type;
    std::string_view extension;
};

constexpr std::array<TypeExtension, 14> kExtensions = {{
    {FourCC("BMPf"), "bmp"},
    {FourCC("JPEG"), "jpg"},
    {FourCC("jp2 "), "jp2"},
    {FourCC("PNTG"), "pnt"},
    {FourCC("8BPS"), "psd"},
    {FourCC("PICT"), "pct"},
    {FourCC("PNGf"), "png"},
    {FourCC("qtif"), "qti"},
    {FourCC(".sgi"), "sgi"},
    {FourCC("TPIC"), "tga"},
    {FourCC("TIFF"), "tif"},
    {FourCC("GIFf"), "gif"},
    {FourCC("snd "), "snd"},
    {FourCC("TEXT"), "txt"},
}};

// Streams of these types are the image wherever they stand.
constexpr std::array<std::uint32_t, 5> kImageTypes = {kWrapperType, FourCC("TIFF"), FourCC("GIFf"),
                                                      kPictureType, FourCC("JFIF")};
// These never are.
constexpr std::array<std::uint32_t, 3> kOtherTypes = {FourCC("FORK"), FourCC("FNAM"), FourCC("SIZE")};

std::uint32_t StreamType(const FM_BinaryData* container, std::int32_t index, const QuadChar& scratch) {
    Host(FM_BinaryData_GetType, container, index, scratch.get());
    return Host(FM_QuadChar_GetMacType, scratch.get());
}

/// Index of a stream, or a negative value when it is missing and that is reported.
std::int32_t FindStream(const FM_BinaryData* container, std::uint32_t type) {
    const std::int32_t index = Host(FM_BinaryData_GetIndex, container, NewQuadChar(type).get());
    if (index < 0) ReportError(kErrorNoSuchMedia, "The specified media type is not in the container");
    return index;
}

/// Reads a part of a stream into memory of the caller; false when the host refuses and that is reported.
bool ReadStream(const FM_BinaryData* container, std::int32_t index, std::uint32_t offset, std::uint32_t size,
                char* bytes) {
    const FM_Error error =
        Host(FM_BinaryData_GetData, container, index, offset, size, static_cast<void*>(bytes));
    if (error != kFM_ErrorNone) ReportError(error, "Could not access stream data");
    return error == kFM_ErrorNone;
}

/// The stream's bytes from `skipped` on, behind `header_size` zero bytes.
qt::MemoryHandle ReadStreamBehind(const FM_BinaryData* container, std::int32_t index,
                                  std::uint32_t header_size, std::uint32_t skipped) {
    const std::uint32_t size = Host(FM_BinaryData_GetSize, container, index) - skipped;
    qt::MemoryHandle data(NewHandle(Size{header_size} + Size{size}));
    if (!data) {
        ReportError(kErrorOutOfMemory, "Insufficient memory to copy image data");
        return {};
    }
    std::memset(*data.get(), 0, header_size);
    if (!ReadStream(container, index, skipped, size, *data.get() + header_size)) return {};
    return data;
}

/// A source from some offset on.
struct Rest {
    qt::DataSource& source;
    std::uint64_t begin;
};

/// For FM_BinaryData_AddFromReader.
bool ReadRest(void* context, std::uint32_t offset, std::uint32_t amount, void* buffer) {
    const auto& rest = *static_cast<const Rest*>(context);
    return rest.source.Read(rest.begin + offset, {static_cast<std::byte*>(buffer), amount}) == amount;
}

} // namespace

std::optional<std::uint32_t> ParseImageTypeCode(const FM_Data* parameter) {
    if (Host(FM_Data_GetNativeType, parameter) != kFM_TypeText) {
        ReportError(kErrorParameterNotText, "Image type code must be text");
        return std::nullopt;
    }
    const std::string text = ParameterAsUtf8(parameter);
    if (text.empty()) return 0;
    if (text.size() == 4 || (text.size() > 4 && text[4] == '|')) return qt::CodeOfText(text);
    ReportError(kErrorImageType,
                "Image type code must be exactly 4 characters, empty, or start a list of items");
    return std::nullopt;
}

std::string_view ImageTypeExtension(std::uint32_t type) {
    const auto* row = std::ranges::find(kExtensions, type, &TypeExtension::type);
    return row != kExtensions.end() ? row->extension : std::string_view();
}

std::uint32_t GetMainImageType(const FM_Data* parameter) {
    const FM_NativeType native_type = Host(FM_Data_GetNativeType, parameter);
    if (native_type == kFM_TypeText) return kReferenceType;
    std::uint32_t main_type = 0;
    if (native_type == kFM_TypeContainer) {
        const FM_BinaryData* container = Host(FM_Data_GetBinaryData, parameter);
        const std::int32_t count = Host(FM_BinaryData_GetCount, container);
        if (count == 0) return kReferenceType;
        const QuadChar scratch = NewQuadChar(0);
        bool other_seen = false;
        bool jpeg_seen = false;
        for (std::int32_t index = 0; index < count; ++index) {
            const std::uint32_t type = StreamType(container, index, scratch);
            if (std::ranges::find(kImageTypes, type) != kImageTypes.end()) return type;
            if (type == kJpegType) {
                jpeg_seen = true;
            } else if (std::ranges::find(kOtherTypes, type) == kOtherTypes.end()) {
                other_seen = true;
                main_type = type;
            }
        }
        if (!other_seen && jpeg_seen) main_type = kJpegType;
    }
    if (main_type == 0) ReportError(kErrorNoSuchMedia, "Parameter must be image or path");
    return main_type;
}

qt::MemoryHandle GetStreamData(const FM_BinaryData* container, std::uint32_t type) {
    const std::int32_t index = FindStream(container, type);
    return index >= 0 ? ReadStreamBehind(container, index, 0, 0) : qt::MemoryHandle();
}

MainImage GetMainImageData(const FM_Data* parameter) {
    MainImage image;
    image.type = GetMainImageType(parameter);
    if (image.type == 0 || image.type == kReferenceType) return image;
    const FM_BinaryData* container = Host(FM_Data_GetBinaryData, parameter);
    const std::int32_t index = FindStream(container, image.type);
    if (index < 0) return image;
    std::uint32_t skipped = 0;
    if (image.type == kWrapperType) {
        std::array<char, kWrapperPrefixSize> prefix{};
        if (!ReadStream(container, index, 0, kWrapperPrefixSize, prefix.data())) return image;
        image.type = qt::CodeOfText({prefix.data(), prefix.size()});
        skipped = kWrapperPrefixSize;
    }
    const std::uint32_t header_size = image.type == kPictureType ? kPictureHeaderSize : 0;
    image.data = ReadStreamBehind(container, index, header_size, skipped);
    return image;
}

void AddStream(FM_BinaryData* container, std::uint32_t type, std::span<const std::byte> bytes) {
    const FM_Error error = Host(FM_BinaryData_Add, container, NewQuadChar(type).get(),
                                static_cast<std::uint32_t>(bytes.size()), bytes.data());
    if (error != kFM_ErrorNone) throw HostFailure(error);
}

std::int32_t AddStreamFrom(FM_BinaryData* container, std::uint32_t type, qt::DataSource& source,
                           std::uint64_t offset, std::uint64_t most) {
    const std::uint64_t size = std::min(most, source.GetSize() - std::min(offset, source.GetSize()));
    if (size > std::numeric_limits<std::uint32_t>::max()) return kErrorOutOfMemory;
    Rest rest{source, offset};
    return Host(FM_BinaryData_AddFromReader, container, NewQuadChar(type).get(),
                static_cast<std::uint32_t>(size), ReadRest, static_cast<void*>(&rest));
}

void AddSizeStream(FM_BinaryData* container, std::int32_t width, std::int32_t height) {
    const std::array<std::byte, 4> bytes = {static_cast<std::byte>(width >> 8), static_cast<std::byte>(width),
                                            static_cast<std::byte>(height >> 8),
                                            static_cast<std::byte>(height)};
    AddStream(container, FourCC("SIZE"), bytes);
}

} // namespace corvane
