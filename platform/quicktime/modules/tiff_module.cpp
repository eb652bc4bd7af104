#include "platform/quicktime/modules/tiff_library.h"

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static constexpr qt::TiffLibrary kLibrary;
    return &kLibrary;
}
