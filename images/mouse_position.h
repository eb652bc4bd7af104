#pragma once

namespace corvane {

/// Forgets where the pointer was when Media_GetMouseUp last found the host's document window.
void ResetMousePosition();

} // namespace corvane
