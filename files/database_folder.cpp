#include "files/database_folder.h"

#include "plugin/errors.h"
#include "plugin/host_data.h"

namespace corvane {

std::int32_t DatabaseFolder(XFileSpec& database_file) {
    const auto path = EvaluateFilePath();
    if (!path) return kErrorOutOfMemory;
    if (path->starts_with("fmnet")) return kNetworkDatabase;
    const std::int32_t code = database_file.SetFromFileMakerPath(*path, true);
    // A database that is not on the disk yet has its folder all the same.
    return code == kErrorFileNotFound ? 0 : code;
}

} // namespace corvane
