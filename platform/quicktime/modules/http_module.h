// Interface of the module that fetches http:// addresses. It stands apart because its library takes several
// milliseconds to load, which nobody should pay who reads a local file.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

enum HttpOutcome : std::int32_t {
    kHttpOk,
    kHttpBadAddress, ///< no http:// address, or redirected to something else
    kHttpNotFound,   ///< the server says 404 or 410
    kHttpRefused,    ///< no connection, another error status, too many redirects, out of time
    kHttpBroken,     ///< the transfer broke off
    kHttpStopped,    ///< more bytes than the limit, or the receiver refused them
    kHttpCancelled   ///< somebody does not want to wait any longer
};

struct HttpLimits {
    std::uint64_t bytes;        ///< checked against what arrives, not only what the server announces
    std::int64_t milliseconds;  ///< for the whole transfer, redirects included
    std::int64_t stall_seconds; ///< gives up when next to nothing arrived for so long
};

/// Takes the next bytes of the body; false stops the transfer. Must not throw.
using HttpReceiver = bool (*)(void* context, const char* bytes, std::size_t size);

/// Asked several times a second; true cancels the transfer. Must not throw.
using HttpCancelled = bool (*)();

struct HttpModule {
    HttpOutcome (*fetch)(const char* url, const HttpLimits* limits, HttpReceiver receiver, void* context,
                         HttpCancelled cancelled);
};
}
