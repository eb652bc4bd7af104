#include "plugin/results.h"

#include "platform/text/utf.h"
#include "plugin/call_block.h"
#include "plugin/host_data.h"

#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace corvane {
namespace {

constexpr std::size_t kErrorTextLimit = 199;

FM_MemoryHandle g_buffer = nullptr;

// The buffer, given up by the process-wide state and disposed of at the end of the scope.
class TakenBuffer {
public:
    TakenBuffer() : block_(std::exchange(g_buffer, nullptr)) {}
    TakenBuffer(const TakenBuffer&) = delete;
    TakenBuffer& operator=(const TakenBuffer&) = delete;
    ~TakenBuffer() {
        if (block_ != nullptr) CurrentCallBlock().dispose_memory_block(block_);
    }

    [[nodiscard]] std::string_view Bytes() const {
        if (block_ == nullptr) return {};
        const FM_CallBlock& host = CurrentCallBlock();
        const auto size = static_cast<std::size_t>(host.memory_block_size(block_));
        host.lock_memory_block(block_);
        return size == 0 ? std::string_view() : std::string_view(*block_, size);
    }

private:
    FM_MemoryHandle block_;
};

} // namespace

void SetResultBufferText(std::string_view utf8) {
    if (g_buffer != nullptr) CurrentCallBlock().resize_memory_block(g_buffer, 0);
    AppendResultBufferText(utf8);
}

void AppendResultBufferText(std::string_view utf8) {
    const FM_CallBlock& host = CurrentCallBlock();
    if (g_buffer == nullptr) g_buffer = host.new_memory_block(0);
    if (g_buffer == nullptr) return;
    const std::int32_t size = host.memory_block_size(g_buffer);
    if (utf8.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max() - size)) return;
    host.resize_memory_block(g_buffer, size + static_cast<std::int32_t>(utf8.size()));
    if (host.last_memory_error() != 0 || utf8.empty()) return;
    host.lock_memory_block(g_buffer);
    std::memcpy(*g_buffer + size, utf8.data(), utf8.size());
}

void DiscardResultBuffer() {
    const TakenBuffer dropped;
}

std::int32_t ResultBufferSize() {
    return g_buffer == nullptr ? 0 : CurrentCallBlock().memory_block_size(g_buffer);
}

void ReportError(std::int32_t code, std::string_view message) {
    const std::string text = "$" + std::to_string(code) + ":" + std::string(message);
    SetResultBufferText(utf::CutAtCharacter(text, kErrorTextLimit));
}

void FinishResult(FM_Data& result) {
    if (g_buffer == nullptr) SetResultBufferText("");
    const TakenBuffer buffer;
    const Text text = TextFromBytes(buffer.Bytes(), kFM_EncodingNative);
    Host(FM_Data_SetAsText, &result, text.get(), Host(FM_Data_GetLocale, &result), kFM_TypeText);
}

void SetContainerResult(FM_Data& result, const FM_BinaryData* container) {
    DiscardResultBuffer();
    Host(FM_Data_SetBinaryData, &result, container, true);
}

bool CheckParameterCount(const FM_DataVect& parameters, std::int32_t expected) {
    if (expected == -1 || Host(FM_DataVect_Size, &parameters) == expected) return false;
    if (expected == 0) {
        ReportError(kErrorParameterCount, "Requires no parameters");
    } else if (expected == 1) {
        ReportError(kErrorParameterCount, "Requires exactly one parameter");
    } else {
        ReportError(kErrorParameterCount, "Requires exactly " + std::to_string(expected) + " parameters");
    }
    return true;
}

bool RequireTextParameter(const FM_DataVect& parameters, std::int32_t index, std::string_view message) {
    const FM_Data* parameter = Host(FM_DataVect_At, &parameters, index);
    if (Host(FM_Data_GetNativeType, parameter) == kFM_TypeText) return false;
    ReportError(kErrorParameterNotText, message);
    return true;
}

} // namespace corvane
