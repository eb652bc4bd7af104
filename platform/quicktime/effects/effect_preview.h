#pragma once

#include "platform/quicktime/effects/parameter_set.h"
#include "platform/win32/settings_dialog.h"

namespace qt {

/// The small picture in which a dialog shows what settings do to one image or two.
class EffectPreview {
public:
    /// Keeps a smaller copy of source 1 or 2; source 2 is made smaller by as much as source 1, which comes
    /// first. codecSizeErr, memFullErr.
    ComponentResult SetSource(std::int32_t number, const PixelImage& image);

    [[nodiscard]] bool IsShown() const { return sources_[0].width() > 0; }
    /// On white. Lengths are shortened as the picture is. Empty without memory.
    [[nodiscard]] win32::SettingsPreview Draw(EffectSettings settings) const;

private:
    std::array<PixelImage, 2> sources_; ///< one without pixels is not there
    double scale_ = 1;                  ///< length in the preview of a pixel of source 1
};

} // namespace qt
