// Plays the operations of a QuickDraw picture on a canvas.
#pragma once

#include "platform/quicktime/image_codecs/described_image.h"
#include "platform/quicktime/image_codecs/pict_canvas.h"

#include <optional>
#include <string_view>

namespace qt {

class PictPlayer {
public:
    /// Borrows all; `picture` begins at the picture, not at the file's header.
    PictPlayer(std::span<const std::byte> picture, const PictHeader& header, Canvas& canvas);

    /// Draws until the picture or its data ends, or an operation's data makes no sense. False when nothing
    /// was drawn that the data should have held.
    bool Play();

private:
    enum Verb : std::uint32_t { kFrame, kPaint, kErase, kInvert, kFill };

    struct ArcAngles {
        int start = 0;
        int extent = 0;
    };

    bool PlayOperation(std::uint32_t operation);
    bool PlaySetting(std::uint32_t operation);
    bool PlayPixelPattern(Pattern& pattern);
    void PlayLine(std::uint32_t operation);
    void PlayText(std::uint32_t operation);
    void PlayShape(std::uint32_t operation);
    bool PlayBits(std::uint32_t operation);
    void PlayCompressed();
    void PlayUncompressed();

    void DrawLineTo(std::int32_t x, std::int32_t y);
    void DrawText(std::string_view text);
    void DrawShape(Verb verb, const Region& whole, const Region& outline);
    void DrawPolygon(Verb verb);
    void DrawBoxShape(std::uint32_t kind, Verb verb);
    [[nodiscard]] Region ShapeOf(std::uint32_t kind, const Box& box, std::int32_t inset) const;
    void ReadPolygon();

    PictCursor cursor_;
    const PictHeader& header_;
    Canvas& canvas_;
    bool drew_ = false;
    bool drew_compressed_ = false;

    Colours colours_;
    Pattern pen_pattern_ = Pattern::Black();
    Pattern fill_pattern_ = Pattern::Black();
    Pattern back_pattern_ = Pattern::White();
    TransferMode pen_mode_;
    TransferMode text_mode_{1};
    std::int32_t pen_x_ = 0;
    std::int32_t pen_y_ = 0;
    std::int32_t pen_width_ = 1;
    std::int32_t pen_height_ = 1;
    std::int32_t oval_width_ = 0;
    std::int32_t oval_height_ = 0;
    std::int32_t text_x_ = 0;
    std::int32_t text_y_ = 0;
    std::int32_t text_size_ = 12;
    std::array<Box, 4> last_boxes_{}; ///< of rectangles, round rectangles, ovals, arcs
    ArcAngles arc_;
    std::vector<Point> polygon_;
    Region region_;
};

} // namespace qt
