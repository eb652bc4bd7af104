#include "files/default_folder.h"

#include "files/special_folders.h"

namespace corvane {

XFileSpec& DefaultFolder() {
    static XFileSpec folder;
    return folder;
}

void ResetDefaultFolder() {
    ResolveSpecialFolder(".R", DefaultFolder());
}

} // namespace corvane
