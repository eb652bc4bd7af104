#pragma once

#include "files/file_spec.h"

#include <optional>
#include <string_view>
#include <utility>

namespace corvane {

/// A file that is deleted with this object, whoever made it meanwhile, unless it is to be kept.
class IntermediateFile {
public:
    IntermediateFile() = default;
    explicit IntermediateFile(XFileSpec file) : file_(std::move(file)) {}
    IntermediateFile(IntermediateFile&& other) noexcept;
    IntermediateFile& operator=(IntermediateFile&& other) noexcept;
    ~IntermediateFile() { Delete(); }

    /// Takes a fresh name in the temporary folder with this extension (".wav"); codes of MakeTemporaryFile.
    std::int32_t TakeName(std::string_view extension);

    /// Lets the file stay.
    void Keep() { file_.reset(); }
    /// Whether it has a name.
    explicit operator bool() const { return file_.has_value(); }
    /// Only with a name.
    [[nodiscard]] const XFileSpec& operator*() const { return *file_; }

private:
    void Delete() noexcept;

    std::optional<XFileSpec> file_;
};

} // namespace corvane
