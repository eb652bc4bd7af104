// The functions of libpng, which stands in a module: few programs decode a PNG.
#pragma once

#include "platform/modules/modules.h"

#include <png.h>

namespace qt {

/// libpng's functions under their own names without the prefix, behaving as its manual says. Only the module
/// makes one of these: the addresses are what it is linked to.
struct PngLibrary {
    decltype(&png_create_info_struct) create_info_struct = &png_create_info_struct;
    decltype(&png_create_read_struct) create_read_struct = &png_create_read_struct;
    decltype(&png_destroy_read_struct) destroy_read_struct = &png_destroy_read_struct;
    decltype(&png_error) error = &png_error;
    decltype(&png_get_bit_depth) get_bit_depth = &png_get_bit_depth;
    decltype(&png_get_color_type) get_color_type = &png_get_color_type;
    decltype(&png_get_error_ptr) get_error_ptr = &png_get_error_ptr;
    decltype(&png_get_image_height) get_image_height = &png_get_image_height;
    decltype(&png_get_image_width) get_image_width = &png_get_image_width;
    decltype(&png_get_interlace_type) get_interlace_type = &png_get_interlace_type;
    decltype(&png_get_io_ptr) get_io_ptr = &png_get_io_ptr;
    decltype(&png_get_rowbytes) get_rowbytes = &png_get_rowbytes;
    decltype(&png_get_valid) get_valid = &png_get_valid;
    decltype(&png_read_info) read_info = &png_read_info;
    decltype(&png_read_row) read_row = &png_read_row;
    decltype(&png_read_update_info) read_update_info = &png_read_update_info;
    decltype(&png_set_bgr) set_bgr = &png_set_bgr;
    decltype(&png_set_expand) set_expand = &png_set_expand;
    decltype(&png_set_filler) set_filler = &png_set_filler;
    decltype(&png_set_gray_to_rgb) set_gray_to_rgb = &png_set_gray_to_rgb;
    decltype(&png_set_interlace_handling) set_interlace_handling = &png_set_interlace_handling;
    decltype(&png_set_keep_unknown_chunks) set_keep_unknown_chunks = &png_set_keep_unknown_chunks;
    decltype(&png_set_read_fn) set_read_fn = &png_set_read_fn;
    decltype(&png_set_scale_16) set_scale_16 = &png_set_scale_16;
    decltype(&png_set_user_limits) set_user_limits = &png_set_user_limits;
};

inline constinit modules::Library<PngLibrary> g_png{"png"};

} // namespace qt
