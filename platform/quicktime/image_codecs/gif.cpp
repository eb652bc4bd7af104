// GIF. The blocks are walked here, so that counting frames decodes nothing; giflib decodes the pixels.
//
// An image is what a viewer shows at that frame: all frames up to it on top of each other. What none of them
// covers is transparent.
#include "platform/quicktime/image_codecs/metadata_items.h"
#include "platform/quicktime/image_codecs/raster.h"

#include <algorithm>
#include <gif_lib.h>

namespace qt {
namespace {

constexpr std::array<OSType, 4> kTypes = {Code("GIFf"), Code("gif "), Code("GIF "), Code("giff")};
constexpr std::size_t kHeaderSize = 13;
constexpr std::uint32_t kTransparent = kWhite & 0xFF'FFFF;

enum Separator : int { kImageFollows = 0x2C, kExtensionFollows = 0x21, kCommentLabel = 0xFE };

unsigned TableBits(unsigned flags) {
    return (flags & 7) + 1;
}

bool HasTable(unsigned flags) {
    return (flags & 0x80) != 0;
}

void SkipTable(ByteReader& reader, unsigned flags) {
    if (HasTable(flags)) reader.Skip(3U << TableBits(flags));
}

/// Skips the pieces of a block's data, or takes them when there is a text to put them in.
void PassPieces(ByteReader& reader, std::string* text) {
    constexpr std::size_t kMostText = 4096;
    std::array<std::byte, 255> piece;
    for (int size = reader.Next(); size > 0; size = reader.Next()) {
        if (text == nullptr || text->size() > kMostText) {
            reader.Skip(static_cast<std::uint64_t>(size));
            continue;
        }
        const std::size_t count = reader.Read(std::span(piece).first(static_cast<std::size_t>(size)));
        text->append(reinterpret_cast<const char*>(piece.data()), count);
    }
}

struct Frame {
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    unsigned flags = 0;
};

/// Gives every frame to `on_frame` and every comment to `on_comment`, until the data ends or makes no sense.
template <class OnFrame, class OnComment>
void WalkBlocks(DataSource& source, unsigned header_flags, OnFrame on_frame, OnComment on_comment) {
    ByteReader reader(source, kHeaderSize);
    SkipTable(reader, header_flags);
    for (;;) {
        const int separator = reader.Next();
        if (separator == kImageFollows) {
            std::array<std::byte, 9> fields;
            if (reader.Read(fields) != fields.size()) return;
            Frame frame{LittleEndian16(fields.data()), LittleEndian16(&fields[2]), LittleEndian16(&fields[4]),
                        LittleEndian16(&fields[6]), std::to_integer<unsigned>(fields[8])};
            SkipTable(reader, frame.flags);
            if (reader.Next() < 0) return; // the width of the first code
            on_frame(frame);
            PassPieces(reader, nullptr);
        } else if (separator == kExtensionFollows) {
            std::string text;
            const bool is_comment = reader.Next() == kCommentLabel;
            PassPieces(reader, is_comment ? &text : nullptr);
            if (is_comment) on_comment(text);
        } else {
            return;
        }
    }
}

bool Sniff(std::span<const std::byte> head) {
    constexpr std::array<std::string_view, 2> kSignatures = {"GIF87a", "GIF89a"};
    return std::ranges::any_of(kSignatures, [&](std::string_view signature) {
        return head.size() >= signature.size() &&
               std::memcmp(head.data(), signature.data(), signature.size()) == 0;
    });
}

ComponentResult ReadFacts(DataSource& source, ImageFacts& facts) {
    std::array<std::byte, kHeaderSize> header;
    if (source.Read(0, header) != header.size() || !Sniff(header)) return codecBadDataErr;
    std::uint32_t width = LittleEndian16(&header[6]);
    std::uint32_t height = LittleEndian16(&header[8]);
    const auto flags = std::to_integer<unsigned>(header[10]);
    unsigned table_bits = HasTable(flags) ? TableBits(flags) : 0;
    facts.image_count = 0;
    WalkBlocks(
        source, flags,
        [&](const Frame& frame) {
            ++facts.image_count;
            if (facts.image_count > 1) return;
            if (width == 0) width = frame.left + frame.width;
            if (height == 0) height = frame.top + frame.height;
            if (HasTable(frame.flags)) table_bits = std::max(table_bits, TableBits(frame.flags));
        },
        [](const std::string&) {});
    if (facts.image_count == 0 || table_bits == 0) return codecBadDataErr;
    ImageDescription& description = facts.description;
    description.cType = Code("gif ");
    description.name = Name("GIF");
    description.spatialQuality = kLosslessQuality;
    description.depth = static_cast<std::int16_t>(table_bits <= 2 ? table_bits : table_bits <= 4 ? 4 : 8);
    facts.data_size = source.GetSize();
    return SetDimensions(description, width, height);
}

struct Input {
    DataSource& source;
    std::uint64_t offset;
};

int ReadInput(GifFileType* gif, GifByteType* bytes, int count) {
    Input& input = *static_cast<Input*>(gif->UserData);
    const auto wanted = static_cast<std::size_t>(std::max(count, 0));
    const std::size_t read =
        input.source.Read(input.offset, std::as_writable_bytes(std::span(bytes, wanted)));
    input.offset += read;
    return static_cast<int>(read);
}

struct CloseGif {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, CloseGif>;

class Compositor {
public:
    Compositor(GifFileType& gif, PixelImage& image) : gif_(gif), image_(image) { image_.Fill(kTransparent); }

    /// Paints the frames up to that index, from 1. False when nothing at all of it could be decoded.
    bool PaintUpTo(std::uint32_t index) {
        for (std::uint32_t painted = 0; painted < index;) {
            GifRecordType type = UNDEFINED_RECORD_TYPE;
            if (DGifGetRecordType(&gif_, &type) != GIF_OK) return false;
            if (type == EXTENSION_RECORD_TYPE) {
                if (!ReadExtension()) return false;
            } else if (type == IMAGE_DESC_RECORD_TYPE) {
                ++painted;
                const std::int32_t rows = PaintFrame();
                if (rows < gif_.Image.Height) return rows > 0 && painted == index;
            } else {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool IsGreyScale() const { return is_grey_; }

private:
    /// Remembers what a graphic control extension says of the next frame.
    bool ReadExtension() {
        int code = 0;
        GifByteType* extension = nullptr;
        if (DGifGetExtension(&gif_, &code, &extension) != GIF_OK) return false;
        if (code == GRAPHICS_EXT_FUNC_CODE && extension != nullptr) {
            DGifExtensionToGCB(extension[0], extension + 1, &control_);
        }
        while (extension != nullptr) {
            if (DGifGetExtensionNext(&gif_, &extension) != GIF_OK) return false;
        }
        return true;
    }

    bool TakePalette() {
        const ColorMapObject* map = gif_.Image.ColorMap != nullptr ? gif_.Image.ColorMap : gif_.SColorMap;
        if (map == nullptr) return false;
        palette_.fill(kBlack);
        const auto count = std::min(static_cast<std::size_t>(std::max(map->ColorCount, 0)), palette_.size());
        for (std::size_t i = 0; i < count; ++i) {
            palette_[i] = Pixel(map->Colors[i].Red, map->Colors[i].Green, map->Colors[i].Blue);
        }
        is_grey_ = is_grey_ && IsGrey(palette_, count);
        return true;
    }

    struct Area {
        std::int32_t left = 0, top = 0, right = 0, bottom = 0;

        [[nodiscard]] std::int64_t Pixels() const { return std::int64_t{right - left} * (bottom - top); }
    };

    [[nodiscard]] Area FrameArea() const {
        const GifImageDesc& frame = gif_.Image;
        return {std::min(frame.Left, image_.width()), std::min(frame.Top, image_.height()),
                std::min(frame.Left + frame.Width, image_.width()),
                std::min(frame.Top + frame.Height, image_.height())};
    }

    /// What the frame painted last asked for before the next one comes.
    void Dispose() {
        const auto width = static_cast<std::size_t>(disposed_.right - disposed_.left);
        for (std::int32_t y = disposed_.top; y < disposed_.bottom; ++y) {
            std::uint32_t* row = image_.Row(y) + disposed_.left;
            if (!covered_.empty()) {
                std::copy_n(covered_.data() + static_cast<std::size_t>(y - disposed_.top) * width, width,
                            row);
            } else {
                std::fill_n(row, width, kTransparent);
            }
        }
        disposed_ = {};
        covered_.clear();
    }

    void PlanDisposal(const Area& area) {
        if (control_.DisposalMode != DISPOSE_BACKGROUND && control_.DisposalMode != DISPOSE_PREVIOUS) return;
        disposed_ = area;
        if (control_.DisposalMode == DISPOSE_BACKGROUND) return;
        covered_.reserve(static_cast<std::size_t>(area.Pixels()));
        for (std::int32_t y = area.top; y < area.bottom; ++y) {
            covered_.insert(covered_.end(), image_.Row(y) + area.left, image_.Row(y) + area.right);
        }
    }

    /// Answers how many of the frame's rows there were.
    std::int32_t PaintFrame() {
        Dispose();
        if (DGifGetImageDesc(&gif_) != GIF_OK || !TakePalette()) return -1;
        if (gif_.Image.Width > static_cast<int>(kMaximumDimension) ||
            gif_.Image.Height > static_cast<int>(kMaximumDimension))
            return -1;
        const Area area = FrameArea();
        outside_left_ -= std::int64_t{gif_.Image.Width} * gif_.Image.Height - area.Pixels();
        if (outside_left_ < 0) return -1;
        PlanDisposal(area);
        std::int32_t rows = 0;
        if (!gif_.Image.Interlace) {
            rows = PaintRows(area, 0, 1);
        } else {
            constexpr std::array<std::array<std::int32_t, 2>, 4> kPasses = {{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
            for (const auto& [first, step] : kPasses) rows += PaintRows(area, first, step);
        }
        control_ = {};
        control_.TransparentColor = NO_TRANSPARENT_COLOR;
        return rows;
    }

    /// Paints every so manieth row; those that the data lacks become white.
    std::int32_t PaintRows(const Area& area, std::int32_t first, std::int32_t step) {
        const auto width = static_cast<std::size_t>(gif_.Image.Width);
        line_.resize(width);
        std::int32_t rows = 0;
        for (std::int32_t y = first; y < gif_.Image.Height; y += step) {
            is_complete_ = is_complete_ && DGifGetLine(&gif_, line_.data(), gif_.Image.Width) == GIF_OK;
            rows += is_complete_ ? 1 : 0;
            const std::int32_t canvas_y = gif_.Image.Top + y;
            if (canvas_y >= area.bottom) continue;
            std::uint32_t* row = image_.Row(canvas_y);
            if (!is_complete_) {
                std::fill(row + area.left, row + area.right, kWhite);
            } else if (control_.TransparentColor == NO_TRANSPARENT_COLOR) {
                PixelsFromIndices(reinterpret_cast<const std::byte*>(line_.data()), 8, palette_,
                                  area.right - area.left, row + area.left);
            } else {
                for (std::int32_t x = area.left; x < area.right; ++x) {
                    const int index = line_[static_cast<std::size_t>(x - area.left)];
                    if (index != control_.TransparentColor)
                        row[x] = palette_[static_cast<std::size_t>(index)];
                }
            }
        }
        return rows;
    }

    GifFileType& gif_;
    PixelImage& image_;
    Palette palette_{};
    GraphicsControlBlock control_{DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};
    Area disposed_;
    std::vector<std::uint32_t> covered_;  ///< what stood in `disposed_` when the frame leaves that behind
    std::int64_t outside_left_ = 1 << 26; ///< pixels of frames beyond the canvas that may still be decoded
    std::vector<GifByteType> line_;
    bool is_grey_ = true;
    bool is_complete_ = true; ///< no row of a frame was missing so far
};

bool HasTransparency(const PixelImage& image) {
    for (std::int32_t y = 0; y < image.height(); ++y) {
        std::uint32_t all = 0xFF00'0000;
        const std::uint32_t* row = image.Row(y);
        for (std::int32_t x = 0; x < image.width(); ++x) all &= row[x];
        if (all != 0xFF00'0000) return true;
    }
    return false;
}

ComponentResult Decode(DataSource& source, std::uint32_t index, PixelImage& image) {
    constexpr std::uint32_t kMostPixelsOfByte = 2800; // one code of 12 bits can stand for 4,000 pixels
    ImageFacts facts;
    if (const auto code = ReadFacts(source, facts); code != noErr) return code;
    if (index == 0 || index > facts.image_count) return paramErr;
    if (const auto code = AllocateFor(facts.description, source, kMostPixelsOfByte, image); code != noErr)
        return code;
    Input input{source, 0};
    const Gif gif(DGifOpen(&input, ReadInput, nullptr));
    if (gif == nullptr) return codecBadDataErr;
    Compositor compositor(*gif, image);
    if (!compositor.PaintUpTo(index)) return codecBadDataErr;
    image.is_grey = compositor.IsGreyScale();
    image.has_alpha = HasTransparency(image);
    return noErr;
}

ComponentResult ReadMetadata(DataSource& source, std::vector<MetadataItem>& items) {
    std::array<std::byte, kHeaderSize> header;
    if (source.Read(0, header) != header.size() || !Sniff(header)) return codecBadDataErr;
    WalkBlocks(
        source, std::to_integer<unsigned>(header[10]), [](const Frame&) {},
        [&](const std::string& text) { AppendTextItem(TextItem("cmt"), text, items); });
    return noErr;
}

} // namespace

const ImageCodec kGifCodec = {kTypes, Sniff, ReadFacts, true, Decode, ReadMetadata};

} // namespace qt
