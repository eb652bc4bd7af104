#include "plugin/errors.h"

#include <algorithm>
#include <array>

namespace corvane {
namespace {

struct CodeMessage {
    std::int32_t code;
    std::string_view message;
};

// In descending order of the codes, for the search.
constexpr std::array<CodeMessage, 92> kMessages = {{
    {0, "No error."},
    {-1, "Unknown error."},
    {-2, "Unknown error 2."},
    {-4, "Feature is not implemented yet."},
    {-34, "The disk is full."},
    {-35, "No such volume."},
    {-36, "I/O error has occured."},
    {-37, "Bad file name."},
    {-39, "End of file has occured."},
    {-43, "File was not found."},
    {-45, "File is locked."},
    {-46, "Disk is locked."},
    {-47, "File is already in use."},
    {-48, "File already exists."},
    {-49, "File is already open for writing."},
    {-50, "Wrong parameter(s)."},
    {-54, "File permissions error."},
    {-61, "Write permissions error."},
    {-108, "Memory full error."},
    {-109, "Null handle has occured, contact developer, please."},
    {-110, "A serious memory related error has occured. Contact developer, please."},
    {-111, "A serious memory related error has occured. Contact developer, please."},
    {-112, "A serious memory related error has occured. Contact developer, please."},
    {-113, "A serious memory related error has occured. Contact developer, please."},
    {-114, "A serious memory related error has occured. Contact developer, please."},
    {-115, "A serious memory related error has occured. Contact developer, please."},
    {-116, "A serious memory related error has occured. Contact developer, please."},
    {-117, "A serious memory related error has occured. Contact developer, please."},
    {-128, "Operation canceled by the user."},
    {-192, "Requested resource was not found."},
    {-193, "Requested resource file was not found."},
    {-194, "Adding resource has failed."},
    {-196, "Removing resource has failed."},
    {-200, "The required sound hardware is missing."},
    {-201, "The sound hardware is not sufficient."},
    {-205, "Bad sound channel."},
    {-206, "Bad sound format."},
    {-208, "Bad sound file format."},
    {-209, "Audio channel is currently busy."},
    {-227, "Device is currently busy."},
    {-1302, "File was expected, not directory."},
    {-2000, "The data reference could not be resolved."},
    {-2001, "The image description seems to be corrupt."},
    {-2003, "Particular data handler could not be found."},
    {-2004, "Particular data handler could not be opened."},
    {-2005, "Bad component type."},
    {-2006, "There is no such media handler."},
    {-2007, "There is no such data handler."},
    {-2008, "Sound media is invalid."},
    {-2009, "Sound track is invalid."},
    {-2010, "Movie is invalid."},
    {-2011, "Sample table is invalid."},
    {-2012, "Data reference is invalid."},
    {-2013, "Data handler is invalid."},
    {-2014, "The duration used is invalid."},
    {-2015, "The time used is invalid."},
    {-2019, "Progress procedure was aborted."},
    {-2022, "Single fork file could not be created."},
    {-2023, "Attempt to perform editing at illegal state."},
    {-2024, "Attempt to perform editing at illegal state."},
    {-2026, "User data item was not found."},
    {-2028, "No such track exists."},
    {-2029, "Track with specified ID does not exist."},
    {-2030, "Track with specified ID does not exist in this movie."},
    {-2031, "No such time within the specified track."},
    {-2032, "No such time within the specified media."},
    {-2033, "Bad edit index."},
    {-2034, "Internal QuickTime error. Contact developer, please."},
    {-2035, "Specified track could not be enabled."},
    {-2036, "Invalid rectangle."},
    {-2037, "Invalid sample number."},
    {-2038, "Invalid chunk number."},
    {-2039, "Invalid sample description number."},
    {-2041, "Invalid sample description."},
    {-2042, "Data was not opened for reading."},
    {-2043, "Data was not opened for writing."},
    {-2044, "Data already opened for writing."},
    {-2045, "Data already closed."},
    {-2046, "End of data has occured."},
    {-2047, "No such data ref."},
    {-2048, "The movie/sound was not found."},
    {-2049, "Invalid data reference container."},
    {-2050, "Bad data reference index."},
    {-2051, "There is no default data reference for this object."},
    {-2053, "Requested feature is not present."},
    {-2054, "There is no video track in this movie."},
    {-2055, "There is no sound track in this movie."},
    {-2056, "There is no sound support available."},
    {-2070, "Internal component error has occured. Please contact, developer."},
    {-3155, "Plug-in tried to issue a call in a wrong internal state. Please contact, developer."},
    {-4960, "Unknown error."},
    {-50000, "The operation could not be finished because QuickTime would hang. To work around, enable "
             "linking media. Sorry."},
}};

CVSError g_last_error;

} // namespace

std::string_view ErrorMessage(std::int32_t code) {
    const auto* found =
        std::lower_bound(kMessages.begin(), kMessages.end(), code,
                         [](const CodeMessage& row, std::int32_t sought) { return row.code > sought; });
    return found != kMessages.end() && found->code == code ? found->message : std::string_view();
}

void CVSError::Reset() {
    code_ = 0;
    message_.clear();
    function_name_.clear();
}

void CVSError::SetFunctionName(const char* name) {
    function_name_ = name == nullptr ? "" : name;
}

void CVSError::SetCode(std::int32_t code) {
    code_ = code;
    SetMessage(ErrorMessage(code));
}

void CVSError::SetMessage(std::string_view text) {
    message_ = function_name_.empty() ? std::string(text) : function_name_ + ": " + std::string(text);
}

void CVSError::AppendMessage(std::string_view text) {
    if (!text.empty()) message_.append(" ").append(text);
}

std::int16_t CVSError::Fail(std::int32_t code, std::string_view detail) {
    SetCode(code);
    AppendMessage(detail);
    return HostCode();
}

CVSError& LastError() {
    return g_last_error;
}

CVSError& BeginCall(const char* function_name) {
    g_last_error.Reset();
    g_last_error.SetFunctionName(function_name);
    return g_last_error;
}

} // namespace corvane
