// What importers draw: the chosen image's source rectangle, through the matrix, within the clip region.
#include "platform/quicktime/graphics_importer_state.h"
#include "platform/quicktime/image_exporters/exporter.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace qt {
namespace {

constexpr std::uint32_t kWhite = Pixel(255, 255, 255);

Rect Visible(const Rect& part, const ImageDescription& image) {
    return {std::max<std::int16_t>(part.top, 0), std::max<std::int16_t>(part.left, 0),
            std::min(part.bottom, image.height), std::min(part.right, image.width)};
}

ComponentResult WhitenOutside(PixelImage& image, RgnHandle clip) {
    const Rect bounds = {0, 0, static_cast<std::int16_t>(image.height()),
                         static_cast<std::int16_t>(image.width())};
    const OwnedRegion outside(NewRgn());
    if (outside == nullptr) return memFullErr;
    RectRgn(outside.get(), &bounds);
    DiffRgn(outside.get(), clip, outside.get());
    for (const Rect& part : RegionRectangles(outside.get())) {
        for (std::int32_t y = part.top; y < part.bottom; ++y) {
            std::fill(image.Row(y) + part.left, image.Row(y) + part.right, kWhite);
        }
    }
    return noErr;
}

/// Puts an image into another with its corner at that place, as far as it lies within.
void Place(PixelImage image, std::int32_t left, std::int32_t top, PixelImage& into) {
    const bool covers =
        left == 0 && top == 0 && image.width() == into.width() && image.height() == into.height();
    if (covers) {
        into = std::move(image);
        return;
    }
    const std::int32_t first_x = std::max(0, -left);
    const std::int32_t end_x = std::min(image.width(), into.width() - left);
    const std::int32_t end_y = std::min(image.height(), into.height() - top);
    if (first_x >= end_x) return;
    for (std::int32_t y = std::max(0, -top); y < end_y; ++y) {
        std::copy(image.Row(y) + first_x, image.Row(y) + end_x, into.Row(top + y) + left + first_x);
    }
    into.has_alpha |= image.has_alpha;
    into.is_grey &= image.is_grey;
}

/// Whether decoding gave what the header promised. A file may change in between.
bool Covers(const DecodedPart& part, const Rect& visible) {
    return part.left + part.image.width() * part.reduction >= visible.right &&
           part.top + part.image.height() * part.reduction >= visible.bottom;
}

/// How much a decoder may reduce a line that becomes `scale` times as long. Its squares of two are as good as
/// filtered pixels; larger ones are plain means, of which a filter has to see two to a pixel.
std::int32_t ReductionFor(double scale) {
    if (scale <= 1.0 / 16.0) return 8;
    if (scale <= 1.0 / 8.0) return 4;
    return scale <= 1.0 / 2.0 ? 2 : 1;
}

/// Reduced pixels across an edge that lies within the line show what is beyond it, too, and are left out:
/// whether hardly anything is lost by that. In few pixels even what fills the last one up behind the line's
/// own end counts; and in the line's last one only an end of the line's own can be told.
bool KeepsEdges(std::int32_t begin, std::int32_t end, std::int32_t length, double scale,
                std::int32_t reduction) {
    constexpr double kMostLost = 0.25; ///< of a pixel of the result
    constexpr std::int32_t kFewPixels = 16;
    const std::int32_t lost = std::max(-begin & (reduction - 1), end == length ? 0 : end & (reduction - 1));
    const std::int32_t squares = (end + reduction - 1) / reduction;
    const bool ends_in_last = end != length && squares == (length + reduction - 1) / reduction;
    return lost * scale <= kMostLost && end - begin >= kFewPixels && !ends_in_last;
}

} // namespace

void GraphicsImporter::SetSource(std::unique_ptr<DataSource> source, DataReference reference) {
    source_ = std::move(source);
    reference_ = std::move(reference);
    facts_code_.reset();
    index_ = 1;
    source_rect_.reset();
}

ComponentResult GraphicsImporter::Facts(const ImageFacts*& facts) {
    if (source_ == nullptr) return invalidDataRef;
    if (!facts_code_) {
        facts_ = {};
        facts_code_ = codec_.read_facts(*source_, facts_);
    }
    facts = &facts_;
    return *facts_code_;
}

ComponentResult GraphicsImporter::SetIndex(std::uint32_t index) {
    const ImageFacts* facts = nullptr;
    if (const auto code = Facts(facts); code != noErr) return code;
    if (index < 1 || index > facts_.image_count) return paramErr;
    if (index == index_) return noErr;
    index_ = index; // even of an image that can't be decoded: another must not be drawn in its place
    source_rect_.reset();
    return codec_.describe != nullptr ? codec_.describe(*source_, index, facts_.description)
                                      : ComponentResult{noErr};
}

ComponentResult GraphicsImporter::SetSourceRect(const Rect* rectangle) {
    if (rectangle == nullptr) {
        source_rect_.reset();
        return noErr;
    }
    const ImageFacts* facts = nullptr;
    if (const auto code = Facts(facts); code != noErr) return code;
    const Rect visible = Visible(*rectangle, facts->description);
    if (visible.right <= visible.left || visible.bottom <= visible.top) return paramErr;
    source_rect_ = *rectangle;
    return noErr;
}

ComponentResult GraphicsImporter::GetSourceRect(Rect& rectangle) {
    const ImageFacts* facts = nullptr;
    if (const auto code = Facts(facts); code != noErr) return code;
    rectangle = source_rect_.value_or(Rect{0, 0, facts->description.height, facts->description.width});
    return noErr;
}

ComponentResult GraphicsImporter::SetClip(RgnHandle region) {
    OwnedRegion copy(region != nullptr ? NewRgn() : nullptr);
    if (region != nullptr) {
        if (copy == nullptr) return memFullErr;
        CopyRgn(region, copy.get());
    }
    clip_ = std::move(copy);
    return noErr;
}

ComponentResult GraphicsImporter::Decode(PixelImage& image) {
    if (codec_.decode == nullptr) return codecUnimpErr;
    return codec_.decode(*source_, index_, image);
}

ComponentResult GraphicsImporter::DecodeFor(const TransformPlan& plan, const Rect& visible,
                                            DecodedPart& part) {
    const ImageDescription& image = facts_.description;
    const bool all =
        visible.right - visible.left == image.width && visible.bottom - visible.top == image.height;
    std::int32_t reduction = ReductionFor(std::max(plan.scale_x, plan.scale_y));
    while (reduction > 1 && !(KeepsEdges(visible.left, visible.right, image.width, plan.scale_x, reduction) &&
                              KeepsEdges(visible.top, visible.bottom, image.height, plan.scale_y, reduction)))
        reduction /= 2;
    if (codec_.decode_part == nullptr || (all && reduction == 1)) return Decode(part.image);
    return codec_.decode_part(*source_, index_, visible, reduction, part);
}

ComponentResult GraphicsImporter::Draw(Unpainted unpainted, PixelImage& image, TransformPlan& plan) {
    Rect frame;
    if (const auto code = GetSourceRect(frame); code != noErr) return code;
    const Rect visible = Visible(frame, facts_.description);
    if (const auto code = PlanTransform(matrix_, frame, visible, plan); code != noErr) return code;
    DecodedPart part;
    if (const auto code = DecodeFor(plan, visible, part); code != noErr) return code;
    if (!Covers(part, visible)) return codecBadDataErr;
    if (const auto code = DrawTransformed(std::move(part), visible, plan, unpainted, image); code != noErr)
        return code;
    return clip_ != nullptr ? WhitenOutside(image, clip_.get()) : ComponentResult{noErr};
}

ComponentResult GraphicsImporter::Draw(PixelImage& image) {
    TransformPlan plan;
    return Draw(Unpainted::kWhite, image, plan);
}

ComponentResult GraphicsImporter::DrawIntoPort() {
    GWorldPtr port = port_;
    if (port == nullptr) GetGWorld(&port);
    if (port == nullptr || port->pixels.width() == 0) return paramErr;
    PixelImage image;
    TransformPlan plan;
    if (const auto code = Draw(Unpainted::kTransparent, image, plan); code != noErr) return code;
    Place(std::move(image), plan.left - port->bounds.left, plan.top - port->bounds.top, port->pixels);
    return noErr;
}

bool GraphicsImporter::DrawsAll() const {
    return index_ == 1 && !source_rect_ && clip_ == nullptr && matrix_ == kIdentityMatrix;
}

ComponentResult DrawImporter(GraphicsImportComponent instance, PixelImage& image) {
    auto* importer = dynamic_cast<GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    try {
        return importer->Draw(image);
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
}

DataSource* UnchangedSource(GraphicsImportComponent instance) {
    auto* importer = dynamic_cast<GraphicsImporter*>(instance);
    return importer != nullptr && importer->DrawsAll() ? importer->source() : nullptr;
}

} // namespace qt

ComponentResult GraphicsImportSetImageIndex(GraphicsImportComponent instance, std::uint32_t index) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    return importer != nullptr ? importer->SetIndex(index) : kBadComponentInstance;
}

ComponentResult GraphicsImportGetNaturalBounds(GraphicsImportComponent instance, Rect* bounds) {
    ImageDescription description;
    const ComponentResult code = GraphicsImportGetImageDescription(instance, &description);
    if (code == noErr) *bounds = {0, 0, description.height, description.width};
    return code;
}

ComponentResult GraphicsImportSetSourceRect(GraphicsImportComponent instance, const Rect* rectangle) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    return importer != nullptr ? importer->SetSourceRect(rectangle) : kBadComponentInstance;
}

ComponentResult GraphicsImportGetSourceRect(GraphicsImportComponent instance, Rect* rectangle) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    return importer != nullptr ? importer->GetSourceRect(*rectangle) : kBadComponentInstance;
}

ComponentResult GraphicsImportSetMatrix(GraphicsImportComponent instance, const MatrixRecord* matrix) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    importer->SetMatrix(matrix != nullptr ? *matrix : kIdentityMatrix);
    return noErr;
}

ComponentResult GraphicsImportSetClip(GraphicsImportComponent instance, RgnHandle region) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    return importer != nullptr ? importer->SetClip(region) : kBadComponentInstance;
}

ComponentResult GraphicsImportSetGWorld(GraphicsImportComponent instance, GWorldPtr port) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    importer->SetPort(port);
    return noErr;
}

ComponentResult GraphicsImportDraw(GraphicsImportComponent instance) {
    auto* importer = dynamic_cast<qt::GraphicsImporter*>(instance);
    if (importer == nullptr) return kBadComponentInstance;
    try {
        return importer->DrawIntoPort();
    } catch (const std::bad_alloc&) {
        return memFullErr;
    }
}
