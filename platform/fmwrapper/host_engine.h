// What the data interface asks of the host's calculation engine.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <string>

namespace fm {

struct ExternalFunction {
    std::uint32_t plugin_id;
    std::int16_t id;
    std::u16string name;
    std::u16string prototype;
    std::int16_t minimum;
    std::int16_t maximum; ///< -1: no upper limit
    std::uint32_t flags;
    FM_ExternalFunction handler;
};

/// Implemented by the host program, and by tests.
class HostEngine {
public:
    virtual ~HostEngine() = default;
    virtual FM_Error Register(const ExternalFunction& function) = 0;
    virtual FM_Error Unregister(std::uint32_t plugin_id, std::int16_t function_id) = 0;
    virtual FM_Error Evaluate(const std::u16string& expression, FM_Data& result) = 0;
};

/// The engine that registrations go to; none after start. The caller keeps it alive while it is set.
void SetHostEngine(HostEngine* engine);
HostEngine* CurrentHostEngine();

} // namespace fm
