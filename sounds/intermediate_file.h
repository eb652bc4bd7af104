#pragma once

#include "files/file_spec.h"

#include <optional>
#include <string_view>

namespace corvane {

/// A file in the temporary folder that is deleted with this object, whoever made it meanwhile.
class IntermediateFile {
public:
    IntermediateFile() = default;
    IntermediateFile(IntermediateFile&& other) noexcept;
    IntermediateFile& operator=(IntermediateFile&& other) noexcept;
    ~IntermediateFile() { Delete(); }

    /// Takes a fresh name with this extension (".wav"); codes of MakeTemporaryFile.
    std::int32_t TakeName(std::string_view extension);

    /// Lets the file stay.
    void Keep() { file_.reset(); }
    /// Whether it has a name.
    explicit operator bool() const { return file_.has_value(); }
    /// Only with a name.
    [[nodiscard]] const XFileSpec& operator*() const { return *file_; }

private:
    void Delete();

    std::optional<XFileSpec> file_;
};

} // namespace corvane
