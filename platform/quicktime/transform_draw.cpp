#include "platform/quicktime/transform_draw.h"

#include "platform/quicktime/transform_resample.h"
#include "platform/quicktime/warp_image.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qt {
namespace {

constexpr std::uint32_t kWhite = Pixel(255, 255, 255);
constexpr std::uint32_t kClear = Pixel(255, 255, 255, 0);

ComponentResult Transpose(DecodedPart& part) {
    PixelImage transposed;
    const auto code = Transpose(part.image, transposed);
    part.image = std::move(transposed);
    std::swap(part.left, part.top);
    return code;
}

/// A stretch in the coordinates of reduced pixels that begin at `begin`.
Stretch Reduced(Stretch stretch, std::int32_t begin, std::int32_t reduction) {
    stretch.from = (stretch.from - begin) / reduction;
    stretch.to = (stretch.to - begin) / reduction;
    return stretch;
}

bool IsAll(const Stretch& stretch, std::int32_t source_pixels, std::int32_t frame_pixels) {
    return stretch.from == 0.0 && stretch.to == source_pixels && stretch.first == 0 &&
           stretch.pixels == source_pixels && frame_pixels == source_pixels;
}

ComponentResult DrawAligned(DecodedPart source, const TransformPlan& plan, Unpainted unpainted,
                            PixelImage& out) {
    if (plan.transposed) {
        if (const auto code = Transpose(source); code != noErr) return code;
    }
    const Stretch across = Reduced(plan.across, source.left, source.reduction);
    const Stretch down = Reduced(plan.down, source.top, source.reduction);
    PixelImage& image = source.image;
    if (IsAll(across, image.width(), plan.width) && IsAll(down, image.height(), plan.height)) {
        out = std::move(image);
        return noErr;
    }
    if (const auto code = out.Allocate(plan.width, plan.height); code != noErr) return code;
    const bool covers = across.pixels == plan.width && down.pixels == plan.height;
    out.has_alpha = image.has_alpha || (!covers && unpainted == Unpainted::kTransparent);
    if (!covers) out.Fill(out.has_alpha ? kClear : kWhite);
    out.is_grey = image.is_grey;
    Resample(image, across, down, out);
    return noErr;
}

/// Shrinks what is going to be shrunk everywhere, with the better filter, and to fewer pixels to turn.
ComponentResult Shrink(PixelImage& image, Area& area, Projection& map, double scale_x, double scale_y) {
    constexpr double kWorthIt = 0.9;
    if (std::min(scale_x, scale_y) > kWorthIt) return noErr;
    const auto stretch = [](double from, double to, double scale) {
        const double pixels = std::ceil((to - from) * std::min(scale, 1.0));
        return Stretch{from, to, 0, std::max(static_cast<std::int32_t>(pixels), 1)};
    };
    const Stretch across = stretch(area.left, area.right, scale_x);
    const Stretch down = stretch(area.top, area.bottom, scale_y);
    PixelImage shrunk;
    if (const auto code = shrunk.Allocate(across.pixels, down.pixels); code != noErr) return code;
    shrunk.has_alpha = image.has_alpha;
    shrunk.is_grey = image.is_grey;
    Resample(image, across, down, shrunk);
    map = Product(ScaleAndMove((area.right - area.left) / across.pixels,
                               (area.bottom - area.top) / down.pixels, area.left, area.top),
                  map);
    area = {0.0, 0.0, double(across.pixels), double(down.pixels)};
    image = std::move(shrunk);
    return noErr;
}

ComponentResult DrawWarped(DecodedPart source, const Rect& visible, const TransformPlan& plan,
                           Unpainted unpainted, PixelImage& out) {
    const double side = source.reduction;
    Area area = {(visible.left - source.left) / side, (visible.top - source.top) / side,
                 (visible.right - source.left) / side, (visible.bottom - source.top) / side};
    Projection map = Product(ScaleAndMove(side, side, source.left, source.top), plan.map);
    const auto code = Shrink(source.image, area, map, plan.scale_x * side, plan.scale_y * side);
    if (code != noErr) return code;
    if (const auto out_code = out.Allocate(plan.width, plan.height); out_code != noErr) return out_code;
    out.has_alpha = source.image.has_alpha || unpainted == Unpainted::kTransparent;
    out.is_grey = source.image.is_grey;
    WarpImage(source.image, area, map, out);
    return noErr;
}

} // namespace

ComponentResult DrawTransformed(DecodedPart source, const Rect& visible, const TransformPlan& plan,
                                Unpainted unpainted, PixelImage& out) {
    return plan.aligned ? DrawAligned(std::move(source), plan, unpainted, out)
                        : DrawWarped(std::move(source), visible, plan, unpainted, out);
}

} // namespace qt
