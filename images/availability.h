#pragma once

namespace corvane {

/// Decides, once at start-up, whether there is what the image functions need: the media layer in version 4
/// or later, with a JPEG exporter.
void DecideImagesAvailable();

/// False before the decision.
bool ImagesAvailable();

} // namespace corvane
