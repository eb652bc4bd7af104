#include "platform/quicktime/data_references.h"

#include "platform/quicktime/url_source.h"
#include "platform/win32/paths.h"

#include <array>
#include <cstring>
#include <string>

namespace {

OSErr MakeReference(const void* bytes, std::size_t size, OSType type, qt::DataReference& reference) {
    Handle handle = nullptr;
    const OSErr code = PtrToHand(bytes, &handle, static_cast<Size>(size));
    reference = {qt::MemoryHandle(handle), type};
    return code;
}

} // namespace

OSErr QTNewDataReferenceFromFullPathCFString(std::u16string_view path, QTPathStyle style, std::uint32_t,
                                             qt::DataReference& reference) {
    if (style != kQTWindowsPathStyle || path.empty()) return paramErr;
    return MakeReference(path.data(), path.size() * sizeof(char16_t), qt::kAliasDataHandler, reference);
}

OSErr QTNewDataReferenceFromURLCFURL(std::string_view url, std::uint32_t, qt::DataReference& reference) {
    const std::string terminated(url);
    return MakeReference(terminated.c_str(), terminated.size() + 1, qt::kUrlDataHandler, reference);
}

OSErr QTNewDataReferenceFromHandle(Handle data, qt::DataReference& reference) {
    if (data == nullptr) return paramErr;
    return MakeReference(&data, sizeof(data), qt::kHandleDataHandler, reference);
}

namespace qt {
namespace {

OpenedSource OpenAlias(std::span<const std::byte> reference) {
    std::u16string path(reference.size() / sizeof(char16_t), u'\0');
    if (path.empty()) return {invalidDataRef, nullptr};
    std::memcpy(path.data(), reference.data(), path.size() * sizeof(char16_t));
    const win32::UnixPath target = win32::ToUnixPath(path);
    if (target.error != ERROR_SUCCESS || !target.exists) return {fnfErr, nullptr};
    return OpenFileSource(target.path);
}

OpenedSource OpenUrl(std::span<const std::byte> reference) {
    const std::string_view text(reinterpret_cast<const char*>(reference.data()), reference.size());
    return OpenUrlSource(std::string(text.substr(0, text.find('\0'))));
}

OpenedSource OpenHandle(std::span<const std::byte> reference) {
    Handle data = nullptr;
    if (reference.size() != sizeof(data)) return {invalidDataRef, nullptr};
    std::memcpy(&data, reference.data(), sizeof(data));
    return {noErr, MemorySource(HandleBytes(data))};
}

struct DataHandler {
    OSType type;
    OpenedSource (*open)(std::span<const std::byte> reference);
};

constexpr std::array<DataHandler, 3> kDataHandlers = {{
    {kAliasDataHandler, OpenAlias},
    {kUrlDataHandler, OpenUrl},
    {kHandleDataHandler, OpenHandle},
}};

} // namespace

OpenedSource OpenDataReference(Handle data_reference, OSType type) {
    if (data_reference == nullptr) return {invalidDataRef, nullptr};
    for (const DataHandler& handler : kDataHandlers) {
        if (handler.type == type) return handler.open(HandleBytes(data_reference));
    }
    return {cantFindHandler, nullptr};
}

} // namespace qt
