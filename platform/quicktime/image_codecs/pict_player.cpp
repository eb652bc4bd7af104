#include "platform/quicktime/image_codecs/pict_player.h"

#include "platform/quicktime/image_codecs/pict_text.h"

#include <algorithm>
#include <cmath>

namespace qt {
namespace {

/// Kinds of shapes, as the high four bits of their operations have them.
enum ShapeKind : std::uint32_t { kRect = 0, kRoundRect = 1, kOval = 2, kArc = 3, kPolygon = 4, kRegion = 5 };

/// The eight colours of old pictures.
std::uint32_t OldColour(std::uint32_t colour) {
    switch (colour) {
    case 30: return kWhite;
    case 205: return 0xFFDD'0806;
    case 341: return 0xFF00'8011;
    case 409: return 0xFF00'00D4;
    case 273: return 0xFF02'ABEA;
    case 137: return 0xFFF2'0884;
    case 69: return 0xFFFC'F305;
    default: return kBlack;
    }
}

std::uint32_t ReadRgb(PictCursor& cursor) {
    const std::uint32_t red = EightOfSixteenBits(cursor.Word());
    const std::uint32_t green = EightOfSixteenBits(cursor.Word());
    const std::uint32_t blue = EightOfSixteenBits(cursor.Word());
    return Pixel(red, green, blue);
}

Pattern ReadPattern(PictCursor& cursor) {
    Pattern pattern;
    for (auto& row : pattern.bits) row = static_cast<std::uint8_t>(cursor.Byte());
    return pattern;
}

Box Inset(const Box& box, std::int32_t horizontally, std::int32_t vertically) {
    return {box.x1 + horizontally, box.y1 + vertically, box.x2 - horizontally, box.y2 - vertically};
}

/// Of a matrix as images have it, its scale and place; turned images come out upright.
struct PictMatrix {
    static constexpr std::size_t kSize = 36;

    explicit PictMatrix(PictCursor cursor) {
        std::array<double, 9> values{};
        for (double& value : values) value = static_cast<std::int32_t>(cursor.Long()) / 65'536.0;
        if (values[0] > 0.0) scale_x = values[0];
        if (values[4] > 0.0) scale_y = values[4];
        move_x = values[6];
        move_y = values[7];
    }

    [[nodiscard]] Box Map(const Box& box) const {
        const auto place = [](std::int32_t value, double scale, double move) {
            return static_cast<std::int32_t>(
                std::lround(std::clamp(value * scale + move, -65'536.0, 65'536.0)));
        };
        return {place(box.x1, scale_x, move_x), place(box.y1, scale_y, move_y),
                place(box.x2, scale_x, move_x), place(box.y2, scale_y, move_y)};
    }

    double scale_x = 1.0;
    double scale_y = 1.0;
    double move_x = 0.0;
    double move_y = 0.0;
};

/// What hides parts of an image: a description and data as the image has them. It is not applied.
void SkipMatte(PictCursor& data, std::size_t size) {
    if (size == 0) return;
    const std::uint32_t description_size = data.Long();
    data.Skip(std::max<std::size_t>(description_size, 4) - 4 + size);
}

/// Pixels that could be painted in the time that a polygon's crossing of a row takes.
constexpr std::int64_t kCrossingCost = 8;

/// Systems without the decompressor show these words in place of the image in front of them.
bool IsExcuse(std::string_view text) {
    const auto has = [&](std::string_view words) { return text.find(words) != std::string_view::npos; };
    return has("QuickTime") || has("decompressor") || has("needed to see this picture");
}

} // namespace

PictPlayer::PictPlayer(std::span<const std::byte> picture, const PictHeader& header, Canvas& canvas)
    : cursor_(picture), header_(header), canvas_(canvas) {
    cursor_.Skip(header.operations_at);
}

bool PictPlayer::Play() {
    while (!cursor_.Failed() && cursor_.Remaining() > 0 && !canvas_.IsExhausted()) {
        const std::uint32_t operation = ReadOperation(cursor_, header_);
        if (operation == kEndOfPicture) return true;
        if (cursor_.Failed() || !PlayOperation(operation)) break;
    }
    return drew_;
}

bool PictPlayer::PlayOperation(std::uint32_t operation) {
    if (IsBitsOperation(operation)) return PlayBits(operation);
    if (operation < kLine) return PlaySetting(operation);
    if (operation <= kShortLineFrom) {
        PlayLine(operation);
    } else if (operation >= kLongText && operation <= kTextRightDown) {
        PlayText(operation);
    } else if (operation >= kShapes && operation < kShapesEnd) {
        PlayShape(operation);
    } else if (operation == kCompressedQuickTime) {
        PlayCompressed();
    } else if (operation == kUncompressedQuickTime) {
        PlayUncompressed();
    } else {
        SkipOperation(cursor_, operation);
    }
    return true;
}

bool PictPlayer::PlaySetting(std::uint32_t operation) {
    switch (operation) {
    case kClip: canvas_.SetClip(ReadRegion(cursor_.ReadBlock())); break;
    case kBackPattern: back_pattern_ = ReadPattern(cursor_); break;
    case kPenPattern: pen_pattern_ = ReadPattern(cursor_); break;
    case kFillPattern: fill_pattern_ = ReadPattern(cursor_); break;
    case kBackPixelPattern: return PlayPixelPattern(back_pattern_);
    case kPenPixelPattern: return PlayPixelPattern(pen_pattern_);
    case kFillPixelPattern: return PlayPixelPattern(fill_pattern_);
    case kTextMode: text_mode_ = TransferMode(cursor_.Word()); break;
    case kPenMode: pen_mode_ = TransferMode(cursor_.Word()); break;
    case kTextSize: text_size_ = std::clamp<std::int32_t>(cursor_.Short(), 1, 2048); break;
    case kForeColour: colours_.fore = OldColour(cursor_.Long()); break;
    case kBackColour: colours_.back = OldColour(cursor_.Long()); break;
    case kRgbForeColour: colours_.fore = ReadRgb(cursor_); break;
    case kRgbBackColour: colours_.back = ReadRgb(cursor_); break;
    case kPenSize:
        pen_height_ = cursor_.Short();
        pen_width_ = cursor_.Short();
        break;
    case kOvalSize:
        oval_height_ = cursor_.Short();
        oval_width_ = cursor_.Short();
        break;
    case kOrigin: {
        const std::int32_t right = cursor_.Short();
        canvas_.MoveOrigin(right, cursor_.Short());
        break;
    }
    default: SkipOperation(cursor_, operation);
    }
    return true;
}

bool PictPlayer::PlayPixelPattern(Pattern& pattern) {
    constexpr std::uint32_t kPixels = 1;
    constexpr std::uint32_t kDithered = 2;
    constexpr std::int32_t kLargest = 256;
    const std::uint32_t kind = cursor_.Word();
    pattern = ReadPattern(cursor_);
    if (kind == kDithered) {
        pattern.width = pattern.height = 1;
        pattern.pixels = {ReadRgb(cursor_)};
        return true;
    }
    PixelMap map;
    if (kind != kPixels || !ReadPatternMap(cursor_, map)) return false;
    std::vector<std::uint32_t> row(static_cast<std::size_t>(map.Width()));
    const bool usable = map.Width() <= kLargest && map.Height() <= kLargest;
    PixelRows rows(map, true, cursor_);
    for (std::int32_t y = 0; y < map.Height(); ++y) {
        if (!rows.Next(row.data())) return false;
        if (usable) pattern.pixels.insert(pattern.pixels.end(), row.begin(), row.end());
    }
    if (usable) {
        pattern.width = map.Width();
        pattern.height = map.Height();
    }
    return true;
}

void PictPlayer::PlayLine(std::uint32_t operation) {
    if (operation == kLine || operation == kShortLine) {
        pen_y_ = cursor_.Short();
        pen_x_ = cursor_.Short();
    }
    if (operation == kLine || operation == kLineFrom) {
        const std::int32_t y = cursor_.Short();
        DrawLineTo(cursor_.Short(), y);
    } else {
        const std::int32_t right = cursor_.SignedByte();
        DrawLineTo(pen_x_ + right, pen_y_ + cursor_.SignedByte());
    }
}

void PictPlayer::DrawLineTo(std::int32_t x, std::int32_t y) {
    canvas_.Paint(LineRegion(pen_x_, pen_y_, x, y, pen_width_, pen_height_, canvas_.Bounds()), pen_pattern_,
                  colours_, pen_mode_);
    pen_x_ = x;
    pen_y_ = y;
    drew_ = true;
}

void PictPlayer::PlayText(std::uint32_t operation) {
    if (operation == kLongText) {
        text_y_ = cursor_.Short();
        text_x_ = cursor_.Short();
    } else {
        if (operation != kTextDown) text_x_ += static_cast<std::int32_t>(cursor_.Byte());
        if (operation != kTextRight) text_y_ += static_cast<std::int32_t>(cursor_.Byte());
    }
    const auto bytes = cursor_.Take(cursor_.Byte());
    DrawText({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void PictPlayer::DrawText(std::string_view text) {
    if (drew_compressed_ && IsExcuse(text)) return;
    canvas_.Paint(TextRegion(text, text_x_, text_y_, text_size_), Pattern::Black(), colours_, text_mode_);
    drew_ = true;
}

void PictPlayer::PlayShape(std::uint32_t operation) {
    const std::uint32_t kind = (operation - kShapes) >> 4;
    const auto verb = static_cast<Verb>(operation & 7);
    const bool same = (operation & 8) != 0;
    if (verb > kFill) {
        SkipOperation(cursor_, operation);
        return;
    }
    if (kind == kPolygon) {
        if (!same) ReadPolygon();
        DrawPolygon(verb);
    } else if (kind == kRegion) {
        if (!same) region_ = ReadRegion(cursor_.ReadBlock());
        canvas_.Charge(region_);
        Region outline = region_;
        if (verb == kFrame) outline.Subtract(region_.Shrunk(pen_width_, pen_height_));
        DrawShape(verb, region_, outline);
    } else {
        if (!same) last_boxes_[kind] = BoxOf(cursor_.ReadRect());
        if (kind == kArc) {
            arc_.start = cursor_.Short();
            arc_.extent = cursor_.Short();
        }
        DrawBoxShape(kind, verb);
    }
    drew_ = true;
}

Region PictPlayer::ShapeOf(std::uint32_t kind, const Box& box, std::int32_t inset) const {
    const Box inner = Inset(box, inset * pen_width_, inset * pen_height_);
    const Box within = canvas_.Bounds();
    switch (kind) {
    case kRect: return Region(inner);
    case kRoundRect:
        return RoundRectRegion(inner, oval_width_ - 2 * inset * pen_width_,
                               oval_height_ - 2 * inset * pen_height_, within);
    default: return OvalRegion(inner, within);
    }
}

void PictPlayer::DrawBoxShape(std::uint32_t kind, Verb verb) {
    const Box& box = last_boxes_[kind];
    Region whole = ShapeOf(kind, box, 0);
    canvas_.Charge(whole);
    if (canvas_.IsExhausted()) return;
    Region outline;
    if (verb == kFrame) {
        outline = whole;
        outline.Subtract(ShapeOf(kind, box, 1));
    }
    if (kind == kArc) {
        const Region wedge = WedgeRegion(box, arc_.start, arc_.extent, canvas_.Bounds());
        whole.Intersect(wedge);
        outline.Intersect(wedge);
    }
    DrawShape(verb, whole, outline);
}

void PictPlayer::ReadPolygon() {
    PictCursor block = cursor_.ReadBlock();
    block.ReadRect();
    polygon_.clear();
    while (block.Remaining() >= 4) {
        const double y = block.Short();
        polygon_.push_back({static_cast<double>(block.Short()), y});
    }
}

void PictPlayer::DrawPolygon(Verb verb) {
    if (verb != kFrame) {
        canvas_.Charge(kCrossingCost * CrossingsOf(polygon_, canvas_.Bounds()));
        if (!canvas_.IsExhausted()) DrawShape(verb, PolygonRegion(polygon_, canvas_.Bounds()), {});
        return;
    }
    for (std::size_t i = 0; i < polygon_.size() && !canvas_.IsExhausted(); ++i) {
        const auto x = static_cast<std::int32_t>(polygon_[i].x);
        const auto y = static_cast<std::int32_t>(polygon_[i].y);
        if (i == 0) {
            pen_x_ = x;
            pen_y_ = y;
        } else {
            DrawLineTo(x, y);
        }
    }
}

void PictPlayer::DrawShape(Verb verb, const Region& whole, const Region& outline) {
    switch (verb) {
    case kFrame: canvas_.Paint(outline, pen_pattern_, colours_, pen_mode_); break;
    case kPaint: canvas_.Paint(whole, pen_pattern_, colours_, pen_mode_); break;
    case kErase: canvas_.Paint(whole, back_pattern_, colours_, {}); break;
    case kInvert: canvas_.Paint(whole, Pattern::Black(), colours_, TransferMode(TransferMode::kXor)); break;
    case kFill: canvas_.Paint(whole, fill_pattern_, colours_, {}); break;
    }
}

bool PictPlayer::PlayBits(std::uint32_t operation) {
    PixelMap map;
    if (!ReadPixelMap(cursor_, operation, map)) return false;
    Canvas::Placement placement{};
    placement.from = BoxOf(cursor_.ReadRect());
    placement.to = BoxOf(cursor_.ReadRect());
    placement.mode = TransferMode(cursor_.Word());
    placement.colours = colours_;
    Region mask;
    if ((operation & 1) != 0) {
        mask = ReadRegion(cursor_.ReadBlock());
        canvas_.Charge(mask);
        placement.mask = &mask;
    }
    if (cursor_.Failed() || cursor_.Remaining() == 0) return false;
    const bool is_bare = operation == kBitsRect || operation == kBitsRegion;
    PixelRows rows(map, !is_bare, cursor_);
    drew_ = true;
    return canvas_.DrawMap(rows, map, placement);
}

/// Matrix, mode and rectangle, what masks the image, then its description and data.
void PictPlayer::PlayCompressed() {
    PictCursor data(cursor_.Take(cursor_.Long()));
    data.Skip(2); // version
    const PictMatrix matrix(PictCursor(data.Take(PictMatrix::kSize)));
    const std::size_t matte_size = data.Long();
    data.Skip(8);
    Canvas::Placement placement{};
    placement.mode = TransferMode(data.Word());
    placement.from = BoxOf(data.ReadRect());
    data.Skip(4); // wanted accuracy
    const std::size_t mask_size = data.Long();
    SkipMatte(data, matte_size);
    Region mask;
    if (mask_size > 0) {
        PictCursor block(data.Take(mask_size));
        mask = ReadRegion(block.ReadBlock());
        canvas_.Charge(mask);
        placement.mask = &mask;
    }
    DescribedImage described;
    PictCursor description = data;
    const std::uint32_t description_size = description.Long();
    if (!ReadImageDescription(data.Take(description_size), described)) return;

    const auto stored = data.Take(data.Remaining());
    const std::unique_ptr<DataSource> source = MemorySource(stored);
    PixelImage image;
    if (DecodeDescribedImage(described, *source, image) != noErr) {
        canvas_.Charge(std::int64_t{image.width()} * image.height()); // as if it had been drawn
        return;
    }
    if (placement.from.x1 >= placement.from.x2 || placement.from.y1 >= placement.from.y2) {
        placement.from = {0, 0, image.width(), image.height()};
    }
    placement.to = matrix.Map(placement.from);
    canvas_.DrawImage(image, placement);
    drew_ = drew_compressed_ = true;
}

/// The same, but a bits operation in place of description and data.
void PictPlayer::PlayUncompressed() {
    PictCursor data(cursor_.Take(cursor_.Long()));
    data.Skip(2 + PictMatrix::kSize);
    const std::size_t matte_size = data.Long();
    data.Skip(8);
    SkipMatte(data, matte_size);
    const std::uint32_t operation = data.Word();
    if (!IsBitsOperation(operation)) return;
    std::swap(cursor_, data);
    PlayBits(operation);
    std::swap(cursor_, data);
}

} // namespace qt
