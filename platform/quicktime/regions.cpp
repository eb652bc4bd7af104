#include "platform/quicktime/regions.h"

#include "platform/quicktime/modules/pixman_library.h"

#include <new>

struct QuickDrawRegion {
    pixman_region32_t pixels;
};

namespace {

/// A region for the time of a computation.
class Scratch {
public:
    Scratch() { qt::g_pixman->region32_init(&pixels_); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() { qt::g_pixman->region32_fini(&pixels_); }
    pixman_region32_t* get() { return &pixels_; }

private:
    pixman_region32_t pixels_;
};

} // namespace

RgnHandle NewRgn() {
    if (!qt::g_pixman.Load()) return nullptr;
    auto* region = new (std::nothrow) QuickDrawRegion;
    if (region != nullptr) qt::g_pixman->region32_init(&region->pixels);
    return region;
}

void DisposeRgn(RgnHandle region) {
    if (region == nullptr) return;
    qt::g_pixman->region32_fini(&region->pixels);
    const std::unique_ptr<QuickDrawRegion> disposed(region);
}

void RectRgn(RgnHandle region, const Rect* rectangle) {
    qt::g_pixman->region32_fini(&region->pixels);
    qt::g_pixman->region32_init(&region->pixels);
    if (rectangle->right <= rectangle->left || rectangle->bottom <= rectangle->top) return;
    qt::g_pixman->region32_union_rect(&region->pixels, &region->pixels, rectangle->left, rectangle->top,
                                      static_cast<unsigned>(rectangle->right - rectangle->left),
                                      static_cast<unsigned>(rectangle->bottom - rectangle->top));
}

void XorRgn(RgnHandle first, RgnHandle second, RgnHandle result) {
    Scratch either;
    Scratch both;
    qt::g_pixman->region32_union(either.get(), &first->pixels, &second->pixels);
    qt::g_pixman->region32_intersect(both.get(), &first->pixels, &second->pixels);
    qt::g_pixman->region32_subtract(&result->pixels, either.get(), both.get());
}

void DiffRgn(RgnHandle first, RgnHandle second, RgnHandle result) {
    qt::g_pixman->region32_subtract(&result->pixels, &first->pixels, &second->pixels);
}

void CopyRgn(RgnHandle source, RgnHandle result) {
    qt::g_pixman->region32_copy(&result->pixels, &source->pixels);
}

namespace qt {

std::vector<Rect> RegionRectangles(RgnHandle region) {
    int count = 0;
    const pixman_box32_t* boxes = g_pixman->region32_rectangles(&region->pixels, &count);
    std::vector<Rect> rectangles;
    rectangles.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        rectangles.push_back({static_cast<std::int16_t>(boxes[i].y1), static_cast<std::int16_t>(boxes[i].x1),
                              static_cast<std::int16_t>(boxes[i].y2),
                              static_cast<std::int16_t>(boxes[i].x2)});
    }
    return rectangles;
}

} // namespace qt
