#include "fuzz/fuzz_target.h"
#include "platform/quicktime/transform_draw.h"

#include <algorithm>

namespace {

constexpr std::int32_t kWidth = 13;
constexpr std::int32_t kHeight = 9;

qt::DecodedPart MadePart(const Rect& part) {
    qt::DecodedPart made;
    Require(made.image.Allocate(part.right - part.left, part.bottom - part.top) == noErr);
    made.image.Fill(0x80FF'8040);
    made.image.has_alpha = true;
    made.left = part.left;
    made.top = part.top;
    return made;
}

} // namespace

// Steps of a transformation with any numbers, then the drawing of a part of a small image through what they
// make together.
void Fuzz(std::string_view input) {
    constexpr std::int32_t kLargest = 256; // pixels either way: more only takes time
    MatrixRecord matrix = kIdentityMatrix;
    const auto quad = [&] {
        FixedPoint corners[4];
        for (FixedPoint& corner : corners) corner = {Take<Fixed>(input), Take<Fixed>(input)};
        const FixedPoint image[4] = {
            {0, 0}, {kWidth << 16, 0}, {kWidth << 16, kHeight << 16}, {0, kHeight << 16}};
        MatrixRecord map;
        if (QuadToQuadMatrix(image, corners, &map) == noErr) ConcatMatrix(&map, &matrix);
    };
    for (int steps = Take<std::uint8_t>(input) % 4; steps > 0; --steps) {
        const auto kind = Take<std::uint8_t>(input);
        const auto first = Take<Fixed>(input);
        const auto second = Take<Fixed>(input);
        const auto x = Take<Fixed>(input);
        const auto y = Take<Fixed>(input);
        switch (kind % 5) {
        case 0: RotateMatrix(&matrix, first, x, y); break;
        case 1: SkewMatrix(&matrix, first, second, x, y); break;
        case 2: ScaleMatrix(&matrix, first, second, x, y); break;
        case 3: quad(); break;
        default: const auto any = Take<MatrixRecord>(input); ConcatMatrix(&any, &matrix);
        }
    }
    const auto edge = [&](std::int32_t least, std::int32_t most) {
        return static_cast<std::int16_t>(least + Take<std::uint8_t>(input) % (most - least + 1));
    };
    const auto left = edge(0, kWidth - 1);
    const auto top = edge(0, kHeight - 1);
    const Rect part = {top, left, edge(top + 1, kHeight), edge(left + 1, kWidth)};
    qt::TransformPlan plan;
    const ComponentResult code = qt::PlanTransform(matrix, {0, 0, kHeight, kWidth}, part, plan);
    Require(code == noErr || code == paramErr || code == codecSizeErr);
    if (code != noErr || std::max(plan.width, plan.height) > kLargest) return;
    qt::PixelImage out;
    Require(qt::DrawTransformed(MadePart(part), part, plan, qt::Unpainted::kWhite, out) == noErr);
    Require(out.width() == plan.width && out.height() == plan.height);
}
