#include "files/database_folder.h"

#include "plugin/errors.h"
#include "plugin/host_data.h"

namespace corvane {

std::int32_t DatabaseFolder(XFileSpec& database_file) {
    const auto path = EvaluateFilePath();
    if (!path) return kErrorOutOfMemory;
    if (path->starts_with("fmnet")) return kNetworkDatabase;
    return database_file.SetFromFileMakerPath(*path, true);
}

} // namespace corvane
