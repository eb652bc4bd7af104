#include "platform/quicktime/url_source.h"

#include "platform/modules/modules.h"
#include "platform/quicktime/graphics_exporter.h"
#include "platform/quicktime/modules/http_module.h"
#include "platform/win32/keyboard.h"

#include <new>
#include <string_view>
#include <utility>

namespace qt {
namespace {

bool Append(void* context, const char* bytes, std::size_t size) {
    auto& body = *static_cast<std::vector<std::byte>*>(context);
    const auto* first = reinterpret_cast<const std::byte*>(bytes);
    try {
        body.insert(body.end(), first, first + size);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

OSErr CodeOf(HttpOutcome outcome) {
    switch (outcome) {
    case kHttpOk: return noErr;
    case kHttpBadAddress: return cantFindHandler;
    case kHttpNotFound: return fnfErr;
    case kHttpRefused: return cantOpenHandler;
    case kHttpBroken: return ioErr;
    case kHttpStopped: return memFullErr;
    case kHttpCancelled: return userCanceledErr;
    }
    return cantOpenHandler;
}

bool IsCancelled() {
    return GetAsyncKeyState(VK_ESCAPE) < 0;
}

/// People write blanks in addresses; servers want them escaped.
std::string EscapeBlanks(std::string_view url) {
    std::string escaped;
    for (const char character : url) {
        if (character == ' ') {
            escaped += "%20";
        } else {
            escaped += character;
        }
    }
    return escaped;
}

} // namespace

OpenedSource OpenUrlSource(const std::string& url, const UrlLimits& limits) {
    // An address without its scheme would be taken for http by the library.
    if (!url.starts_with("http://")) return {cantFindHandler, nullptr};
    const auto* module = modules::Table<HttpModule>("http");
    if (module == nullptr) return {cantFindHandler, nullptr};
    const HttpLimits http_limits = {limits.bytes, limits.time.count(), limits.stall.count()};
    std::vector<std::byte> body;
    const OSErr code =
        CodeOf(module->fetch(EscapeBlanks(url).c_str(), &http_limits, Append, &body, IsCancelled));
    if (code != noErr) return {code, nullptr};
    return {noErr, MemorySource(std::move(body))};
}

} // namespace qt
