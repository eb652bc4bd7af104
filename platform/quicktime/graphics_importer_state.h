// The importer behind a GraphicsImportComponent.
#pragma once

#include "platform/quicktime/graphics_importer.h"
#include "platform/quicktime/image_codecs/codec.h"
#include "platform/quicktime/transform_draw.h"

#include <optional>

namespace qt {

class GraphicsImporter final : public Component {
public:
    explicit GraphicsImporter(const ImageCodec& codec) : codec_(codec) {}

    void SetSource(std::unique_ptr<DataSource> source, DataReference reference);

    [[nodiscard]] const ImageCodec& codec() const { return codec_; }
    [[nodiscard]] bool Validates() const { return codec_.validates; }
    [[nodiscard]] DataSource* source() { return source_.get(); }
    [[nodiscard]] const DataReference& reference() const { return reference_; }

    /// 0 with the facts of the chosen image, which are read once.
    ComponentResult Facts(const ImageFacts*& facts);

    ComponentResult SetIndex(std::uint32_t index);
    ComponentResult SetSourceRect(const Rect* rectangle);
    ComponentResult GetSourceRect(Rect& rectangle);
    ComponentResult SetClip(RgnHandle region);
    void SetPort(GWorldPtr port) { port_ = port; }
    void SetMatrix(const MatrixRecord& matrix) { matrix_ = matrix; }
    ComponentResult Draw(PixelImage& image);
    ComponentResult DrawIntoPort();
    /// Whether a drawing shows the first image as it is.
    [[nodiscard]] bool DrawsAll() const;

private:
    ComponentResult Decode(PixelImage& image);
    /// Decodes what of the visible part a plan needs.
    ComponentResult DecodeFor(const TransformPlan& plan, const Rect& visible, DecodedPart& part);
    /// Draws, and says what was planned.
    ComponentResult Draw(Unpainted unpainted, PixelImage& image, TransformPlan& plan);

    const ImageCodec& codec_;
    std::unique_ptr<DataSource> source_;
    DataReference reference_;
    ImageFacts facts_;
    std::optional<ComponentResult> facts_code_;
    std::uint32_t index_ = 1;
    std::optional<Rect> source_rect_;
    MatrixRecord matrix_ = kIdentityMatrix;
    OwnedRegion clip_;
    GWorldPtr port_ = nullptr; ///< null: the current one
};

} // namespace qt
