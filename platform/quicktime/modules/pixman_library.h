// The functions of pixman on regions. It stands in a module: it measures the processor when it is loaded, and
// never gives back what it allocates then.
#pragma once

#include "platform/modules/modules.h"

#include <pixman.h>

namespace qt {

/// pixman's functions under their own names without the prefix, behaving as its manual says. Only the module
/// makes one of these: the addresses are what it is linked to.
struct PixmanLibrary {
    decltype(&pixman_region32_copy) region32_copy = &pixman_region32_copy;
    decltype(&pixman_region32_fini) region32_fini = &pixman_region32_fini;
    decltype(&pixman_region32_init) region32_init = &pixman_region32_init;
    decltype(&pixman_region32_init_rects) region32_init_rects = &pixman_region32_init_rects;
    decltype(&pixman_region32_init_with_extents) region32_init_with_extents =
        &pixman_region32_init_with_extents;
    decltype(&pixman_region32_intersect) region32_intersect = &pixman_region32_intersect;
    decltype(&pixman_region32_rectangles) region32_rectangles = &pixman_region32_rectangles;
    decltype(&pixman_region32_subtract) region32_subtract = &pixman_region32_subtract;
    decltype(&pixman_region32_translate) region32_translate = &pixman_region32_translate;
    decltype(&pixman_region32_union) region32_union = &pixman_region32_union;
    decltype(&pixman_region32_union_rect) region32_union_rect = &pixman_region32_union_rect;
};

inline constinit modules::Library<PixmanLibrary> g_pixman{"pixman"};

} // namespace qt
