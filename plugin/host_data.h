// The plug-in's own view of the host's values: owning handles, failures as exceptions, and the conversions
// between host text and the plug-in's UTF-8 and UTF-16 strings.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"
#include "plugin/errors.h"

#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace corvane {

/// The host ran out of memory (status 1).
class HostOutOfMemory : public std::bad_alloc {
public:
    [[nodiscard]] const char* what() const noexcept override { return "bad allocation"; }
};

/// Any other failure of a host operation: status 2, or the code that it answered.
class HostFailure : public std::exception {
public:
    explicit HostFailure(FM_Error code = FM_Error{kErrorUnknown}) : code_(code) {}
    [[nodiscard]] const char* what() const noexcept override { return "host failure"; }
    [[nodiscard]] FM_Error code() const { return code_; }

private:
    FM_Error code_;
};

inline void RaiseOn(FM_Status status) {
    if (status == kFM_StatusNoMemory) throw HostOutOfMemory();
    if (status == kFM_StatusFailed) throw HostFailure();
}

/// Calls a host operation with a status of its own and raises what the status says:
/// Host(FM_Text_GetSize, text).
template <class... Parameters, class Result, class... Arguments>
Result Host(Result (*operation)(Parameters...), Arguments&&... arguments) {
    FM_Status status = kFM_StatusOk;
    if constexpr (std::is_void_v<Result>) {
        operation(std::forward<Arguments>(arguments)..., &status);
        RaiseOn(status);
    } else {
        Result result = operation(std::forward<Arguments>(arguments)..., &status);
        RaiseOn(status);
        return result;
    }
}

/// Sole owner of a host object. Moving leaves the source empty; the target deletes what it held.
template <class Object, void (*Delete)(Object*, FM_Status*)>
class HostHandle {
public:
    HostHandle() = default;
    explicit HostHandle(Object* object) : object_(object) {}
    HostHandle(HostHandle&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    HostHandle& operator=(HostHandle&& other) noexcept {
        if (this != &other) {
            Release();
            object_ = std::exchange(other.object_, nullptr);
        }
        return *this;
    }
    HostHandle(const HostHandle&) = delete;
    HostHandle& operator=(const HostHandle&) = delete;
    ~HostHandle() { Release(); }

    [[nodiscard]] Object* get() const { return object_; }

private:
    void Release() {
        FM_Status status = kFM_StatusOk; // a refused deletion leaves nothing to do
        if (object_ != nullptr) Delete(object_, &status);
    }

    Object* object_ = nullptr;
};

using Text = HostHandle<FM_Text, FM_Text_Delete>;
using Data = HostHandle<FM_Data, FM_Data_Delete>;
using FixPt = HostHandle<FM_FixPt, FM_FixPt_Delete>;
using QuadChar = HostHandle<FM_QuadChar, FM_QuadChar_Delete>;
using BinaryData = HostHandle<FM_BinaryData, FM_BinaryData_Delete>;
using Locale = HostHandle<FM_Locale, FM_Locale_Delete>;
using ExprEnv = HostHandle<FM_ExprEnv, FM_ExprEnv_Delete>;

/// Four-character code of four characters: FourCC("JPEG").
constexpr std::uint32_t FourCC(const char (&characters)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(characters[i]);
    return code;
}

Text NewText();
QuadChar NewQuadChar(std::uint32_t code);

/// A host text from 8-bit text: UTF-8 for user data, native for the program's own fixed texts.
Text TextFromBytes(std::string_view bytes, FM_Encoding encoding = kFM_EncodingUTF8);

std::string TextAsUtf8(const FM_Text* text);
std::string ParameterAsUtf8(const FM_Data* data);
std::u16string ParameterAsUtf16(const FM_Data* data);

/// Sets a text result with the English locale; answers the host's error code.
FM_Error SetResultText(FM_Data& result, const FM_Text* text);
FM_Error SetResultText(FM_Data& result, std::string_view utf8);
FM_Error SetResultNumber(FM_Data& result, double value);

/// Makes the result the empty text.
void ClearResult(FM_Data& result);

/// Path of the current database as host path text, asked of the running calculation; nothing when the host
/// can't tell. Longer than 4,095 bytes is cut.
std::optional<std::string> EvaluateFilePath();

} // namespace corvane
