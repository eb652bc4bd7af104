#pragma once

#include "platform/quicktime/types.h"

/// What is known of an image without decoding it.
struct ImageDescription {
    OSType cType = 0;                ///< compressor type: 'jpeg', 'png '
    std::int32_t spatialQuality = 0; ///< 0 lowest, 512 normal, 1023 highest lossy, 1024 lossless
    std::int16_t width = 0;          ///< pixels
    std::int16_t height = 0;
    Fixed hRes = 72 << 16; ///< dots per inch
    Fixed vRes = 72 << 16;
    Str31 name{};           ///< the compressor's description
    std::int16_t depth = 0; ///< bits per pixel; 32 with alpha; 34, 36 and 40 for 2, 4 and 8 bits of grey
};
