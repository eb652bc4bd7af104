// Reference texts: how a container field names a file that it does not hold.
//
// Three lines, ended by carriage returns but for the last: "size:640,480" (0,0 for what is no picture),
// "image:img/x.jpg" (the path from the database's folder, or the bare name where there is none), and
// "imagewin:/C:/Db/img/x.jpg" (the absolute host path). The kind word is "image", "file" or "movie".
#pragma once

#include "files/file_spec.h"
#include "platform/fmwrapper/fmwrapper.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

/// Makes the reference text of an existing file the result. 0; -43 when the file is missing; -108 when the
/// host does not tell the database's path; or the host's code of setting the result.
std::int32_t PutFileReferenceResult(FM_Data& result, const XFileSpec& file, std::string_view kind,
                                    std::uint16_t width, std::uint16_t height);

/// The text of a parameter that names a file: at most 511 bytes of a container's reference text, 1,023 of a
/// text.
std::string ReferenceTextOf(const FM_Data& parameter);

/// The file that a reference text names: the first line that leads to an existing file. Relative
/// lines count from the database's folder. Without such a line the code of the last one.
std::int32_t ResolveReferenceText(std::string_view text, XFileSpec& file);

/// A single host path text with its path-type word, relative ones from the database's folder.
std::int32_t ResolveFileMakerReference(std::string_view text, XFileSpec& file);

} // namespace corvane
