#include "platform/quicktime/modules/sndfile_library.h"

extern "C" __attribute__((visibility("default"))) const void* corvane_module() {
    static constexpr qt::SndfileLibrary kLibrary;
    return &kLibrary;
}
