#include "files/file_function.h"
#include "files/functions.h"
#include "files/native_files.h"
#include "files/numbered_files.h"
#include "files/path_parameter.h"
#include "images/functions.h"
#include "images/streams.h"
#include "platform/text/utf.h"
#include "plugin/errors.h"
#include "plugin/results.h"

#include <algorithm>
#include <new>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace corvane {
namespace {

constexpr std::uint32_t kWrapperType = FourCC("CVIM");
constexpr std::uint32_t kPictureType = FourCC("PICT");
constexpr std::uint32_t kTextType = FourCC("TEXT");
constexpr std::uint32_t kPieceSize = 256U << 10; // stays in the processor's cache between read and write

// What is written to the file: bytes that are held here, or a stream that is read from the container piece by
// piece, so that a large one is not held twice.
struct Content {
    std::uint32_t type = 0;
    std::string text;
    qt::MemoryHandle picture;
    const FM_BinaryData* container = nullptr;
    std::int32_t stream = 0;
    std::uint32_t size = 0;       ///< of the stream
    std::vector<std::byte> piece; ///< of the stream, at first its beginning
};

FM_Error ReadPiece(Content& content, std::uint32_t offset) {
    content.piece.resize(std::min(content.size - offset, kPieceSize));
    return Host(FM_BinaryData_GetData, content.container, content.stream, offset,
                static_cast<std::uint32_t>(content.piece.size()), static_cast<void*>(content.piece.data()));
}

// The whole text, zero characters and all; false when there is no memory for it and that is reported.
bool TakeText(const FM_Data* parameter, std::string& text) {
    try {
        text = utf::ToUtf8(ParameterAsUtf16(parameter));
    } catch (const std::bad_alloc&) {
        ReportError(kErrorOutOfMemory, "Out of memory");
        return false;
    }
    return true;
}

// Finds the content of an image or a text parameter; false when there is none and that is reported.
bool FindContent(const FM_Data* parameter, Content& content) {
    content.type = GetMainImageType(parameter);
    if (content.type == 0) {
        ReportError(kErrorUnrecognized, "Empty Container");
        return false;
    }
    if (content.type == kWrapperType) {
        ReportError(kErrorContainerIsCVImage, "CV Image must be converted before export");
        return false;
    }
    if (content.type == kReferenceType) {
        content.type = kTextType;
        return TakeText(parameter, content.text);
    }
    if (content.type == kPictureType) {
        content.picture = GetMainImageData(parameter).data;
        return static_cast<bool>(content.picture);
    }
    content.container = Host(FM_Data_GetBinaryData, parameter);
    content.stream = Host(FM_BinaryData_GetIndex, content.container, NewQuadChar(content.type).get());
    content.size = Host(FM_BinaryData_GetSize, content.container, content.stream);
    // Before a file is replaced: a stream that can't be read is known by its beginning.
    const FM_Error code = ReadPiece(content, 0);
    if (code != kFM_ErrorNone) ReportError(code, "Could not access stream data");
    return code == kFM_ErrorNone;
}

// Resolves the target and completes its name; false when it can't be written to and that is reported.
bool FindTarget(const FM_Data* parameter, std::uint32_t type, bool replace, XFileSpec& target) {
    std::int32_t code = ResolvePathParameter(*parameter, target);
    if (target.IsDirectory()) {
        ReportError(kErrorFileExpected, "Target must specify a file, not a directory");
        return false;
    }
    const std::string_view extension = ImageTypeExtension(type);
    if ((code == 0 || code == kErrorFileNotFound) && ExtensionOf(target.name).empty() && !extension.empty()) {
        target.name += "." + std::string(extension);
        code = target.CheckExists();
    }
    if (code != 0 && code != kErrorFileNotFound) {
        ReportError(code, "Bad path or filename");
        return false;
    }
    if (code != 0) return true;
    if (!replace) {
        ReportError(kErrorTargetExists, "Target file already exists and replace flag is false");
        return false;
    }
    code = native::DeleteFile(target.GetNativePathW());
    if (code != 0) ReportError(code, "Could not overwrite existing file (busy, locked, permissions)");
    return code == 0;
}

// The file being written, closed at the end of the scope at the latest.
class OpenTarget {
public:
    explicit OpenTarget(native::FileNumber number) : number_(number) {}
    OpenTarget(const OpenTarget&) = delete;
    OpenTarget& operator=(const OpenTarget&) = delete;
    ~OpenTarget() { Close(); }

    [[nodiscard]] std::int32_t Write(std::int64_t offset, std::span<const std::byte> bytes) const {
        return native::WriteFile(number_, native::PositionMode::kFromStart, offset, bytes).code;
    }
    std::int32_t Close() { return native::CloseFile(std::exchange(number_, kNone)); }

private:
    static constexpr native::FileNumber kNone = 0;
    native::FileNumber number_;
};

std::int32_t WriteStream(Content& content, const OpenTarget& file) {
    for (std::uint32_t offset = 0; offset < content.size;) {
        std::int32_t code = offset == 0 ? kFM_ErrorNone : ReadPiece(content, offset);
        if (code == 0) code = file.Write(offset, content.piece);
        if (code != 0) return code;
        offset += static_cast<std::uint32_t>(content.piece.size());
    }
    return 0;
}

std::int32_t WriteContent(Content& content, const OpenTarget& file) {
    if (content.container != nullptr) return WriteStream(content, file);
    if (content.picture) return file.Write(0, qt::HandleBytes(content.picture.get()));
    return file.Write(0, std::as_bytes(std::span(content.text)));
}

void WriteTarget(Content& content, XFileSpec folder) {
    const std::u16string name = utf::ToUtf16(folder.name);
    folder.MoveToParent();
    const native::CreatedFile created = native::CreateFile(folder.GetNativePathW(), name);
    if (created.code != 0)
        return ReportError(created.code, "Could not export file (disk space, permissions)");
    const native::OpenedFile opened = native::OpenFile(created.path, native::Permission::kWrite);
    std::int32_t code = opened.code;
    if (code == 0) {
        OpenTarget file(opened.number);
        code = WriteContent(content, file);
        if (const std::int32_t close_code = file.Close(); code == 0) code = close_code;
    }
    // What was written stays: the person may look at how far it came.
    if (code != 0) ReportError(code, "Could not write to file (disk space, permissions)");
}

void Export(const FM_DataVect& parameters) {
    const bool replace = Host(FM_DataVect_AtAsBoolean, &parameters, 2);
    Content content;
    if (!FindContent(Host(FM_DataVect_At, &parameters, 0), content)) return;
    XFileSpec target;
    if (!FindTarget(Host(FM_DataVect_At, &parameters, 1), content.type, replace, target)) return;
    DiscardResultBuffer(); // the name of a file that was chosen is no result
    WriteTarget(content, target);
}

// A container that holds a reference text and no image: its file is copied.
bool NamesFile(const FM_Data* parameter) {
    return Host(FM_Data_GetNativeType, parameter) == kFM_TypeContainer && !Host(FM_Data_IsEmpty, parameter) &&
           GetMainImageType(parameter) == kReferenceType;
}

bool IsEmptyContainer(const FM_Data* parameter) {
    return Host(FM_Data_GetNativeType, parameter) == kFM_TypeContainer && Host(FM_Data_IsEmpty, parameter);
}

} // namespace

FM_Error ExportField(std::int16_t id, const FM_ExprEnv& environment, const FM_DataVect& parameters,
                     FM_Data& result) {
    if (!CheckParameterCount(parameters, 3)) {
        const FM_Data* container = Host(FM_DataVect_At, &parameters, 0);
        if (NamesFile(container)) {
            SetExportMode();
            return CopyItem(id, environment, parameters, result);
        }
        if (IsEmptyContainer(container)) {
            ReportError(kErrorUnrecognized, "Empty Container");
        } else {
            Export(parameters);
        }
    }
    FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
