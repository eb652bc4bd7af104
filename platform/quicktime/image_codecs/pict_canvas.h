// What a picture is drawn on: white pixels, a clip region, and QuickDraw's ways to lay a source over them.
#pragma once

#include "platform/quicktime/image_codecs/pict_pixels.h"
#include "platform/quicktime/image_codecs/pict_region.h"

#include <functional>

namespace qt {

/// How a source meets what is there, as black ink on white paper. Arithmetic modes are copies.
struct TransferMode {
    enum Operation : unsigned { kCopy, kOr, kXor, kBic };

    TransferMode() = default;
    /// Of a source mode (0 to 7), a pattern mode (8 to 15), or one that asks for dithering (64 more).
    explicit TransferMode(std::uint32_t mode);

    Operation operation = kCopy;
    bool inverted = false; ///< the source's black and white change places first
};

/// Eight by eight bits, or pixels of any size.
struct Pattern {
    std::array<std::uint8_t, 8> bits{};
    std::int32_t width = 0; ///< of the pixels; 0 for bits
    std::int32_t height = 0;
    std::vector<std::uint32_t> pixels;

    static Pattern Black() { return {{255, 255, 255, 255, 255, 255, 255, 255}, 0, 0, {}}; }
    static Pattern White() { return {}; }
};

/// The colours that black and white of a source without colours stand for.
struct Colours {
    std::uint32_t fore = kBlack;
    std::uint32_t back = kWhite;
};

class Canvas {
public:
    /// Draws on the image, which is as large as the frame, and covers it with white.
    Canvas(PixelImage& image, const Rect& frame);

    /// What can be drawn on, in the picture's coordinates.
    [[nodiscard]] Box Bounds() const;
    /// From now on what is at these coordinates is at the top left of where they would have been.
    void MoveOrigin(std::int32_t right, std::int32_t down);
    void SetClip(Region clip) {
        Charge(clip);
        clip_ = std::move(clip);
    }

    void Paint(Region shape, const Pattern& pattern, const Colours& colours, TransferMode mode);

    struct Placement {
        Box from; ///< part of the source, in the coordinates that its bounds are in
        Box to;
        TransferMode mode;
        Colours colours;              ///< for bitmaps
        const Region* mask = nullptr; ///< of what is drawn; null for all
    };

    /// Takes all rows of the map, and draws those that are wanted in the nearest size. False at the end of
    /// the data, with the rows that were there drawn.
    bool DrawMap(PixelRows& rows, const PixelMap& map, const Placement& placement);
    void DrawImage(const PixelImage& source, const Placement& placement);

    /// To be called once all is drawn. A fourth component that is 0 in all maps holds nothing, and the
    /// picture is opaque; with another map beside it that has some, as the parts of wide pictures are, it is
    /// transparent.
    void Finish();

    /// Pays for work that is not drawing, in pixels that could be painted meanwhile.
    void Charge(std::int64_t pixels) { budget_ -= pixels; }
    /// Pays for a region's having been built; it may come to nothing.
    void Charge(const Region& region) {
        budget_ -= kBoxCost * static_cast<std::int64_t>(region.Boxes().size());
    }

    /// Whether more was drawn than any sensible picture draws; nothing is drawn from then on.
    [[nodiscard]] bool IsExhausted() const { return budget_ <= 0; }

private:
    /// Pixels that could be painted in the time that a box of a region takes.
    static constexpr std::int64_t kBoxCost = 16;

    /// Fills the buffer with a row of the source; false when there is none. Rows are asked for in order.
    using RowAt = std::function<const std::uint32_t*(std::int32_t row)>;

    Region Visible(Region shape);
    std::uint32_t* PixelAt(std::int32_t x, std::int32_t y) {
        return image_.Row(y - origin_y_) + (x - origin_x_);
    }
    void DrawRows(const Box& source_bounds, const Placement& placement, bool is_bitmap, const RowAt& row_at);

    PixelImage& image_;
    std::int32_t origin_x_;
    std::int32_t origin_y_;
    Region clip_;
    std::int64_t budget_; ///< pixels and boxes that may still be drawn
    bool has_empty_alpha_ = false;
    bool has_used_alpha_ = false;
};

} // namespace qt
