// Error codes in the classic numbering, and the record that the sound functions keep of their last call.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

inline constexpr std::int32_t kErrorUnknown = -1;
inline constexpr std::int32_t kErrorUnknown2 = -2;
inline constexpr std::int32_t kErrorNotImplemented = -4;
inline constexpr std::int32_t kErrorOpenFailed = -34;
inline constexpr std::int32_t kErrorNoSuchVolume = -35;
inline constexpr std::int32_t kErrorBadName = -37;
inline constexpr std::int32_t kErrorFileNotFound = -43;
inline constexpr std::int32_t kErrorFileExists = -48;
inline constexpr std::int32_t kErrorWrongParameter = -50;
inline constexpr std::int32_t kErrorWritePermission = -61;
inline constexpr std::int32_t kErrorOutOfMemory = -108;
inline constexpr std::int32_t kErrorFolderNotFound = -120;
inline constexpr std::int32_t kErrorUserCancelled = -128;
inline constexpr std::int32_t kErrorFileExpected = -1302;
inline constexpr std::int32_t kErrorFolderExpected = -1407;

/// English text of a code; empty for a code that has none.
std::string_view ErrorMessage(std::int32_t code);

/// Outcome of one call: code, message, and the name of the function that the message begins with.
class CVSError {
public:
    CVSError() = default;
    CVSError(const CVSError&) = default;
    CVSError& operator=(const CVSError&) = default;
    virtual ~CVSError() = default;

    /// No error, no message, no function name.
    void Reset();
    void SetFunctionName(const char* name);

    /// Takes the code and its table text, with the function's name in front when there is one.
    void SetCode(std::int32_t code);
    void SetMessage(std::string_view text);
    /// Adds a detail after a blank; an empty one changes nothing.
    void AppendMessage(std::string_view text);

    /// Takes the code and adds a detail; answers what the handler answers the host.
    std::int16_t Fail(std::int32_t code, std::string_view detail);

    [[nodiscard]] std::int32_t GetCode() const { return code_; }
    [[nodiscard]] const std::string& GetMessage() const { return message_; }
    [[nodiscard]] bool IsCode(std::int32_t value) const { return code_ == value; }

    /// The code as the host takes it: its low 16 bits, signed.
    [[nodiscard]] std::int16_t HostCode() const { return static_cast<std::int16_t>(code_); }

private:
    std::string message_;
    std::int32_t code_ = 0;
    std::string function_name_; ///< empty: none
};

/// The record of the latest sound function.
CVSError& LastError();

/// First step of every sound function but `Media_Version` and `Media_GetLastError`.
CVSError& BeginCall(const char* function_name);

} // namespace corvane
