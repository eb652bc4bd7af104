#pragma once

#include "platform/quicktime/data_source.h"

#include <chrono>
#include <string>

namespace qt {

struct UrlLimits {
    std::uint64_t bytes = std::uint64_t{1} << 30;
    std::chrono::milliseconds time{30'000}; ///< for the whole transfer
    std::chrono::seconds stall{10};         ///< without progress
};

/// Downloads an http:// address into memory, following at most five redirects, to http:// only. Escape
/// cancels. cantFindHandler: no such address; fnfErr: the server has no such page (404, 410);
/// cantOpenHandler: no connection, any other error status, out of time; ioErr: the transfer broke off;
/// memFullErr: too large; userCanceledErr.
OpenedSource OpenUrlSource(const std::string& url, const UrlLimits& limits = {});

} // namespace qt
