// CIE L*a*b* as sRGB (IEC 61966-2-1). White comes out as white, whichever light it was measured under: the
// cone responses are scaled from that light's white to D65's, as ICC profiles do it (the Bradford matrix).
#pragma once

#include <array>
#include <cstdint>

namespace qt {

class LabColours {
public:
    /// The chromaticity of the white, at most 1 and `y` above 0. Without one, or with one that no light has:
    /// D50, as printers measure.
    explicit LabColours(double x = 0.0, double y = 0.0);

    /// An opaque pixel. `l`: 0 to 255 for 0 to 100; `a`, `b`: 128 is neither colour.
    [[nodiscard]] std::uint32_t PixelOf(std::uint32_t l, std::uint32_t a, std::uint32_t b) const;

private:
    std::array<std::array<double, 3>, 3> linear_from_xyz_; ///< X and Z as parts of the white's
};

} // namespace qt
