#include "files/data_reference.h"
#include "files/path_parameter.h"
#include "files/references.h"
#include "images/functions.h"
#include "images/streams.h"
#include "plugin/errors.h"
#include "plugin/host_version.h"
#include "plugin/results.h"

#include <limits>
#include <span>
#include <string>

namespace corvane {
namespace {

constexpr std::int16_t kFirstInterfaceWithFilePaths = 51;
constexpr std::uint32_t kFileStream = FourCC("FILE");

// Where the bytes to insert are, and the file's specification when they are a file's.
struct FileSource {
    qt::MemoryHandle embedded; ///< what a 'hndl' reference designates
    qt::DataReference reference;
    XFileSpec spec;
    std::int32_t path_code = 0; ///< of ResolvePathParameter
};

void ReportMissing(std::int32_t code) {
    ReportError(code, "Could not find referenced file");
}

// False when there is no source and that is reported.
bool FindSource(const FM_Data* parameter, FileSource& source) {
    source.path_code = ResolvePathParameter(*parameter, source.spec);
    std::int32_t code = source.path_code;
    if (code == kEmbeddedContainer) {
        source.embedded = GetStreamData(Host(FM_Data_GetBinaryData, parameter), kFileStream);
        if (!source.embedded) return false;
        code = QTNewDataReferenceFromHandle(source.embedded.get(), source.reference);
    } else if (code == 0) {
        code = DataReferenceOf(source.spec, source.reference);
    } else if (AddressReferenceOf(parameter, source.reference) == 0) {
        code = 0;
    }
    if (code != 0) ReportMissing(code);
    return code == 0;
}

void ReportUnreadable(std::int32_t code) {
    ReportError(code, "Error reading target data");
}

void InsertText(qt::DataSource& data) {
    if (data.GetSize() > std::numeric_limits<std::int32_t>::max()) return ReportUnreadable(kErrorOutOfMemory);
    std::string text(data.GetSize(), '\0');
    if (data.Read(0, std::as_writable_bytes(std::span(text))) != text.size())
        return ReportUnreadable(kFM_ErrorReading);
    SetResultBufferText(text);
}

void AddFilePath(FM_BinaryData* container, const XFileSpec& file) {
    const Text path = TextFromBytes(file.GetFileMakerPath("file").text);
    const FM_Error error = Host(FM_BinaryData_AddFNAMData, container, path.get());
    if (error != kFM_ErrorNone) throw HostFailure(error);
}

// False when the container could not be made and that is reported.
bool InsertContainer(qt::DataSource& data, const FileSource& source, FM_Data& result) {
    const BinaryData container(Host(FM_BinaryData_Constructor1));
    const std::int32_t code = AddStreamFrom(container.get(), kFileStream, data, 0);
    if (code != 0) {
        ReportUnreadable(code);
        return false;
    }
    const bool has_path = CurrentHostVersion().interface_version >= kFirstInterfaceWithFilePaths;
    if (has_path && source.path_code == 0) AddFilePath(container.get(), source.spec);
    SetContainerResult(result, container.get());
    return true;
}

// False when the reference could not be made and that is reported.
bool InsertReference(const FileSource& source, FM_Data& result) {
    if (source.reference.type != qt::kAliasDataHandler) {
        ReportError(0, "Source must be a file to import by reference");
        return false;
    }
    // A drive in small letters would keep the file from lying beside the database: the reference has
    // capitals.
    XFileSpec file;
    std::int32_t code = FileOfDataReference(source.reference, file);
    if (code == 0) code = PutFileReferenceResult(result, file, "file", 0, 0);
    if (code != 0) ReportMissing(code);
    return code == 0;
}

// True when the result is set; else the result buffer holds a text or an error.
bool Insert(const FM_DataVect& parameters, FM_Data& result) {
    if (CheckParameterCount(parameters, 3)) return false;
    const bool by_reference = Host(FM_DataVect_AtAsBoolean, &parameters, 1);
    const bool as_text = Host(FM_DataVect_AtAsBoolean, &parameters, 2);
    FileSource source;
    if (!FindSource(Host(FM_DataVect_At, &parameters, 0), source)) return false;
    if (by_reference) return InsertReference(source, result);

    const qt::OpenedSource opened =
        qt::OpenDataReference(source.reference.handle.get(), source.reference.type);
    if (opened.code != noErr) {
        ReportUnreadable(opened.code);
        return false;
    }
    if (!as_text) return InsertContainer(*opened.source, source, result);
    InsertText(*opened.source);
    return false;
}

} // namespace

FM_Error InsertFile(std::int16_t, const FM_ExprEnv&, const FM_DataVect& parameters, FM_Data& result) {
    if (!Insert(parameters, result)) FinishResult(result);
    return kFM_ErrorNone;
}

} // namespace corvane
