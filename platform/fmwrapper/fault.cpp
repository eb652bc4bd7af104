#include "platform/fmwrapper/fault.h"

#include "platform/fmwrapper/objects.h"

#include <string>

std::int64_t fm::Counted::alive = 0;

namespace fm {
namespace {

struct FaultState {
    std::int64_t operations = 0;
    bool armed = false;
    std::int64_t remaining = 0;
    FM_Status status = kFM_StatusOk;
    std::string name;
};

FaultState g_fault;

} // namespace

void FailOperation(std::int64_t after, FM_Status status, std::string_view name) {
    g_fault.armed = true;
    g_fault.remaining = after;
    g_fault.status = status;
    g_fault.name = name;
}

void FailNothing() {
    g_fault.armed = false;
}

std::int64_t OperationCount() {
    return g_fault.operations;
}

std::int64_t LiveObjects() {
    return Counted::alive;
}

bool Fails(const char* operation, FM_Status* status) {
    ++g_fault.operations;
    if (status != nullptr) *status = kFM_StatusOk;
    if (!g_fault.armed || (!g_fault.name.empty() && g_fault.name != operation)) return false;
    if (g_fault.remaining-- > 0) return false;
    g_fault.armed = false;
    if (status != nullptr) *status = g_fault.status;
    return true;
}

} // namespace fm
